// Checks that the rings read are simple and lie properly in one another, and
// that the inner points keep their distances.
#include <cmath>
#include <ostream>

#include "common/failure.h"
#include "common/text_tools.h"
#include "geometry/point_in_polygon.h"
#include "geometry/polygon_integrity.h"
#include "run/phases.h"

namespace tesseramill {

namespace {

int location_in(const BoundaryRing& ring, double x, double y) {
  return point_in_polygon(x, y, ring.vertices.data(), ring.vertex_count).location;
}

// Calls `visit(x, y)` for every vertex of a ring or every point of a set
// until it returns true; tells whether it did.
template <typename Visit>
bool any_vertex(const BoundaryRing& ring, Visit visit) {
  for (std::int32_t k = 0; k < ring.vertex_count; ++k) {
    if (visit(ring.vertices[2 * k], ring.vertices[2 * k + 1])) return true;
  }
  return false;
}

template <typename Visit>
bool any_point(const PointSet& points, Visit visit) {
  for (std::int32_t k = 0; k < points.count; ++k) {
    if (visit(points.coords[2 * k], points.coords[2 * k + 1])) return true;
  }
  return false;
}

[[noreturn]] void fail_outside(RunState& state, const std::string& file) {
  fail(state, "At least one point in file " + trimmed(file) +
                  " lies outside the outer polygonal model boundary.");
}

[[noreturn]] void fail_inside(RunState& state, const std::string& file, const std::string& ring_file) {
  fail(state, "At least one point in file " + trimmed(file) +
                  " lies inside inner polygonal model boundary defined by file " +
                  trimmed(ring_file) + ".");
}

void check_integrity(RunState& state) {
  std::ostream& screen = *state.screen;
  const ControlData& c = state.control;
  if (check_polygon_integrity(state, state.outer_boundary, c.outer_boundary_file) != 0) {
    throw RunFailure{};
  }
  screen << " - outer boundary ok.\n";
  for (std::size_t i = 0; i < state.inner_boundaries.size(); ++i) {
    if (check_polygon_integrity(state, state.inner_boundaries[i], c.inner_boundary_files[i]) != 0) {
      throw RunFailure{};
    }
    screen << " - inner boundary # " << (i + 1) << " ok.\n";
  }
}

void check_containment(RunState& state) {
  const ControlData& c = state.control;
  const BoundaryRing& outer = state.outer_boundary;
  auto outside_outer = [&](double x, double y) { return location_in(outer, x, y) == -1; };
  for (std::size_t i = 0; i < state.inner_boundaries.size(); ++i) {
    if (any_vertex(state.inner_boundaries[i], outside_outer)) {
      fail_outside(state, c.inner_boundary_files[i]);
    }
  }
  for (std::size_t s = 0; s < state.inner_point_sets.size(); ++s) {
    if (any_point(state.inner_point_sets[s], outside_outer)) fail_outside(state, c.inner_points_files[s]);
  }
  for (std::size_t i = 0; i < state.inner_boundaries.size(); ++i) {
    const BoundaryRing& ring = state.inner_boundaries[i];
    auto inside_ring = [&](double x, double y) { return location_in(ring, x, y) == 1; };
    if (any_vertex(outer, inside_ring)) fail_inside(state, c.outer_boundary_file, c.inner_boundary_files[i]);
    for (std::size_t j = 0; j < state.inner_boundaries.size(); ++j) {
      if (j == i) continue;
      if (any_vertex(state.inner_boundaries[j], inside_ring)) {
        fail_inside(state, c.inner_boundary_files[j], c.inner_boundary_files[i]);
      }
    }
    for (std::size_t s = 0; s < state.inner_point_sets.size(); ++s) {
      if (any_point(state.inner_point_sets[s], inside_ring)) {
        fail_inside(state, c.inner_points_files[s], c.inner_boundary_files[i]);
      }
    }
  }
}

// Every ordered pair of inner points: a point may not stand closer to another
// than that other point's separation.
void check_point_distances(RunState& state) {
  const auto& sets = state.inner_point_sets;
  for (std::size_t sp = 0; sp < sets.size(); ++sp) {
    for (std::int32_t p = 0; p < sets[sp].count; ++p) {
      const double px = sets[sp].coords[2 * p];
      const double py = sets[sp].coords[2 * p + 1];
      for (std::size_t sq = 0; sq < sets.size(); ++sq) {
        for (std::int32_t q = 0; q < sets[sq].count; ++q) {
          if (sq == sp && q == p) continue;
          const double dx = px - sets[sq].coords[2 * q];
          const double dy = py - sets[sq].coords[2 * q + 1];
          const double d = std::sqrt(dx * dx + dy * dy);
          if (sets[sq].separation[q] > d) {
            fail(state, "At least one point in file " + trimmed(state.control.inner_points_files[sp]) +
                            " coincides with another point, or is closer to another point than the "
                            "intercell distance defined for that point.");
          }
        }
      }
    }
  }
}

// The last defaults, resolved once every check has passed.
void resolve_final_defaults(ControlData& c) {
  if (!real_is_set(c.lloyd_fac)) c.lloyd_fac = kDefaultLloydFac;
  if (!real_is_set(c.eps_lloyd)) c.eps_lloyd = kDefaultEpsLloyd;
  if (!real_is_set(c.xorigin)) {
    c.xorigin = 0.0;
    c.yorigin = 0.0;
  }
}

}  // namespace

void check_boundaries(RunState& state) {
  *state.screen << "\n - checking integrity of boundary polygons...\n";
  check_integrity(state);
  check_containment(state);
  check_point_distances(state);
  resolve_final_defaults(state.control);
}

}  // namespace tesseramill
