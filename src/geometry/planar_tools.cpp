#include "geometry/planar_tools.h"

#include <cmath>

#include "geometry/point_in_polygon.h"

namespace tesseramill {

namespace {

PolygonLocation locate(double x, double y, const BoundaryRing& ring) {
  return point_in_polygon(x, y, ring.vertices.data(), ring.vertex_count);
}

// True when some segment of the ring's input vertices lies closer than
// `clearance` to (x, y).
bool ring_too_close(const BoundaryRing& ring, double x, double y, double clearance) {
  const double* v = ring.vertices.data();
  for (std::int32_t j = 0; j + 1 < ring.vertex_count; ++j) {
    if (clearance > distance_to_segment(x, y, v[2 * j], v[2 * j + 1], v[2 * j + 2], v[2 * j + 3])) {
      return true;
    }
  }
  return false;
}

// Whether some segment of the outer boundary or of a hole lies closer than
// `clearance` to (x, y); through the rings' segment index when the index
// serves them, by ring_too_close on each ring otherwise.  The index looks
// only at the segments that come within `reach` of the point, and the
// answer is the same.  Why: distance_to_segment puts its foot at x1 + t dx,
// y1 + t dy with one t in [0, 1] (the ends themselves outside it), so the
// foot lies on the segment up to the rounding of two steps, below 1e-15 of
// the ends' magnitudes in each coordinate; or t is no number, the distance
// too, and no clearance exceeds it.  The distance from the foot is rounded
// by a relative 4e-16 at most while the squares stay normal, which they do
// when it exceeds 1e-150.  So a segment farther than `reach` from the
// point, as the index has it, lies farther than the clearance from it as
// distance_to_segment rounds it, and cannot be too close; the others are
// tested as the full walk tests them, and whether any is too close does
// not depend on their order or their ring.  Values that are no finite
// numbers take the full walk.
bool boundaries_too_close(const RunState& state, double x, double y, double clearance) {
  const SegmentIndex& index = state.domain_index.segments;
  if (!state.domain_index.built || state.reference_paths || !index.built || !std::isfinite(x) ||
      !std::isfinite(y) || !std::isfinite(clearance)) {
    if (ring_too_close(state.outer_boundary, x, y, clearance)) return true;
    for (const BoundaryRing& ring : state.inner_boundaries) {
      if (ring_too_close(ring, x, y, clearance)) return true;
    }
    return false;
  }
  const double reach =
      std::fabs(clearance) * (1.0 + 1e-9) + 1e-9 * (std::fabs(x) + std::fabs(y) + 4.0 * index.magnitude) + 1e-150;
  return any_segment_near(index, x, x, y, y, reach, [&](std::int32_t s) {
    const double* e = &index.ends[4 * static_cast<std::size_t>(s)];
    return clearance > distance_to_segment(x, y, e[0], e[1], e[2], e[3]);
  });
}

}  // namespace

bool point_in_domain_reference(const RunState& state, double x, double y) {
  if (locate(x, y, state.outer_boundary).location != 1) return false;
  for (const BoundaryRing& ring : state.inner_boundaries) {
    if (locate(x, y, ring).location >= 0) return false;
  }
  return true;
}

bool point_in_domain(const RunState& state, double x, double y) {
  const DomainIndex& index = state.domain_index;
  if (!index.built || state.reference_paths) return point_in_domain_reference(state, x, y);
  // The same tests in the same order, each ring located through its index.
  if (locate_in_ring(index.outer, x, y) != kInside) return false;
  for (const RingIndex& hole : index.holes) {
    if (locate_in_ring(hole, x, y) != kOutside) return false;
  }
  return true;
}

int rectangle_in_domain(const RunState& state, double xlo, double xhi, double ylo, double yhi) {
  const DomainIndex& index = state.domain_index;
  if (!index.built || state.reference_paths) return kMixed;
  const int outer = locate_rectangle_in_ring(index.outer, xlo, xhi, ylo, yhi);
  if (outer == kOutside) return kOutside;
  int result = outer;
  for (const RingIndex& hole : index.holes) {
    const int in_hole = locate_rectangle_in_ring(hole, xlo, xhi, ylo, yhi);
    if (in_hole == kInside) return kOutside;
    if (in_hole == kMixed) result = kMixed;
  }
  return result;
}

bool in_inner_polygon(const RunState& state, std::size_t polygon, double x, double y) {
  const DomainIndex& index = state.domain_index;
  if (index.built && !state.reference_paths) return locate_in_ring(index.polygons[polygon], x, y) != kOutside;
  const BoundaryRing& ring = state.inner_polygons[polygon];
  return point_in_polygon(x, y, ring.vertices.data(), ring.vertex_count).location >= 0;
}

BoundaryRings boundary_rings(const RunState& state) {
  BoundaryRings b{{state.outer_boundary.vertices.data()}, {state.outer_boundary.vertex_count}};
  for (const BoundaryRing& ring : state.inner_boundaries) {
    b.rings.push_back(ring.vertices.data());
    b.counts.push_back(ring.vertex_count);
  }
  return b;
}

void build_domain_index(RunState& state) {
  DomainIndex& index = state.domain_index;
  auto ring_index = [](const BoundaryRing& ring) { return build_ring_index(ring.vertices.data(), ring.vertex_count); };
  index.outer = ring_index(state.outer_boundary);
  index.holes.clear();
  for (const BoundaryRing& ring : state.inner_boundaries) index.holes.push_back(ring_index(ring));
  index.polygons.clear();
  for (const BoundaryRing& ring : state.inner_polygons) index.polygons.push_back(ring_index(ring));
  const BoundaryRings boundaries = boundary_rings(state);
  build_segment_index(index.segments, boundaries.rings, boundaries.counts);
  index.built = true;
}

double distance_to_segment(double x, double y, double x1, double y1, double x2, double y2) {
  const double dx = x2 - x1;
  const double dy = y2 - y1;
  const double t = ((y - y1) * dy + (x - x1) * dx) / (dy * dy + dx * dx);
  double px;
  double py;
  if (t < 0.0) {
    px = x1;
    py = y1;
  } else if (t > 1.0) {
    px = x2;
    py = y2;
  } else {
    px = x1 + t * dx;
    py = y1 + t * dy;
  }
  const double ex = x - px;
  const double ey = y - py;
  return std::sqrt(ex * ex + ey * ey);
}

bool line_point_clear(const RunState& state, double x, double y, double clearance,
                      std::int32_t line_number) {
  if (!point_in_domain(state, x, y)) return false;
  if (boundaries_too_close(state, x, y, clearance)) return false;
  if (state.inner_lines.size() < 2 || line_number < 2) return true;
  for (std::int32_t k = 0; k < line_number - 1; ++k) {
    const BoundaryRing& line = state.inner_lines[static_cast<std::size_t>(k)];
    for (std::int32_t j = 0; j < line.point_count; ++j) {
      if (line.point_mesh_index[static_cast<std::size_t>(j)] == 0) continue;
      const double dx = x - line.points[2 * j];
      const double dy = y - line.points[2 * j + 1];
      if (clearance > std::sqrt(dx * dx + dy * dy)) return false;
    }
  }
  return true;
}

}  // namespace tesseramill
