#include "emplacement/chains.h"

#include <cmath>
#include <limits>
#include <new>

#include "common/failure.h"
#include "common/text_tools.h"

namespace tesseramill {

namespace {

double segment_length(const BoundaryRing& ring, std::int32_t j) {
  const double dx = ring.vertices[2 * j + 2] - ring.vertices[2 * j];
  const double dy = ring.vertices[2 * j + 3] - ring.vertices[2 * j + 1];
  return std::sqrt(dx * dx + dy * dy);
}

// The mean of the two end separations.  Two separations near the largest
// double can add up past it; their halves are added instead, which gives the
// same value whenever the plain sum is finite.
double segment_mean(const BoundaryRing& ring, std::int32_t j) {
  const double a = ring.vertex_separation[j];
  const double b = ring.vertex_separation[j + 1];
  const double sum = a + b;
  return std::isfinite(sum) ? sum * 0.5 : a * 0.5 + b * 0.5;
}

// The number of equal pieces of segment j: the integer ceiling of its length
// divided by the mean of its end separations.  A segment of non-zero length
// has at least one piece even where the quotient underflows to zero (a tiny
// segment between huge separations); a quotient that is not finite or larger
// than any chain may be gives 0.
std::int64_t segment_pieces(const BoundaryRing& ring, std::int32_t j, double length) {
  const double pieces = std::ceil(length / segment_mean(ring, j));
  if (!(pieces <= static_cast<double>(kChainPointBudget))) return 0;
  return pieces < 1.0 ? 1 : static_cast<std::int64_t>(pieces);
}

}  // namespace

int subdivide_polyline(BoundaryRing& ring, std::int64_t max_points) {
  const std::int32_t n = ring.vertex_count;
  // Every segment is looked at for a zero length before a chain too long for
  // its tables is refused, as the tables are only sought after the count.
  std::int64_t total = 1;
  bool too_many = false;
  for (std::int32_t j = 0; j + 1 < n; ++j) {
    const double length = segment_length(ring, j);
    if (length == 0.0) return kSubdivideZeroSegment;
    const std::int64_t pieces = segment_pieces(ring, j, length);
    if (pieces == 0 || total + pieces > max_points) too_many = true;
    if (!too_many) total += pieces;
  }
  if (too_many) return kSubdivideNoMemory;
  try {
    const std::size_t count = static_cast<std::size_t>(total);
    ring.points.assign(2 * count, 0.0);
    ring.point_separation.assign(count, 0.0);
    ring.point_mesh_index.assign(count, 0);
  } catch (const std::bad_alloc&) {
    return kSubdivideNoMemory;
  }
  ring.point_count = static_cast<std::int32_t>(total);
  ring.points[0] = ring.vertices[0];
  ring.points[1] = ring.vertices[1];
  if (n < 2) return kSubdivideDone;

  std::int32_t c = 0;  // last entry written, 0-based
  for (std::int32_t j = 0; j + 1 < n; ++j) {
    const double xj = ring.vertices[2 * j];
    const double yj = ring.vertices[2 * j + 1];
    const double dx = ring.vertices[2 * j + 2] - xj;
    const double dy = ring.vertices[2 * j + 3] - yj;
    const double length = std::sqrt(dx * dx + dy * dy);
    const std::int32_t pieces = static_cast<std::int32_t>(segment_pieces(ring, j, length));
    double step = length;
    if (pieces >= 2) {
      const double r = 1.0 / pieces;
      const double ex = dx * r;
      const double ey = dy * r;
      step = std::sqrt(ex * ex + ey * ey);
      for (std::int32_t i = 1; i < pieces; ++i) {
        ring.points[2 * (c + i)] = xj + ex * i;
        ring.points[2 * (c + i) + 1] = yj + ey * i;
        ring.point_separation[c + i] = step;
      }
      c += pieces - 1;
    }
    c += 1;
    ring.points[2 * c] = ring.vertices[2 * j + 2];
    ring.points[2 * c + 1] = ring.vertices[2 * j + 3];
    ring.point_separation[c] = step;
    if (j == 0) ring.point_separation[0] = step;
  }
  return kSubdivideDone;
}

void densify_inner_polygon(RunState& state, BoundaryRing& ring, std::int32_t polygon,
                           std::int64_t max_points) {
  const std::int32_t n = ring.vertex_count;
  const std::int64_t count = 50 * static_cast<std::int64_t>(n) - 49;
  if (count > max_points) fail(state, "Unable to allocate sufficient memory to continue execution.");
  try {
    ring.points.assign(2 * static_cast<std::size_t>(count), 0.0);
    ring.point_separation.assign(static_cast<std::size_t>(count), 0.0);
  } catch (const std::bad_alloc&) {
    fail(state, "Unable to allocate sufficient memory to continue execution.");
  }
  ring.point_count = static_cast<std::int32_t>(count);
  ring.points[0] = ring.vertices[0];
  ring.points[1] = ring.vertices[1];
  std::int64_t c = 0;
  for (std::int32_t j = 1; j < n; ++j) {
    const double x0 = ring.vertices[2 * j - 2];
    const double y0 = ring.vertices[2 * j - 1];
    const double ex = (ring.vertices[2 * j] - x0) * 0.02;
    const double ey = (ring.vertices[2 * j + 1] - y0) * 0.02;
    if (ex == 0.0 && ey == 0.0) {
      fail(state, "Two neighbouring points in BLN line file " +
                      trimmed(state.control.inner_polygon_files[static_cast<std::size_t>(polygon)]) +
                      " have the same coordinates.");
    }
    for (int k = 1; k <= 50; ++k) {
      ring.points[2 * (c + k)] = x0 + ex * k;
      ring.points[2 * (c + k) + 1] = y0 + ey * k;
    }
    c += 50;
  }
  // The loop and the count must agree; a mismatch is a fault of the program.
  if (c + 1 != count) fail(state, "Programming error type 1");
  const double separation = state.control.inner_polygon_max_separation[static_cast<std::size_t>(polygon)];
  for (double& s : ring.point_separation) s = separation;
}

void emplace_ring_points(RunState& state, BoundaryRing& ring, std::int32_t label) {
  if (ring.point_count < 2) return;
  for (std::int32_t j = 0; j + 1 < ring.point_count; ++j) {
    ring.point_mesh_index[j] = append_mesh_point(state, ring.points[2 * j], ring.points[2 * j + 1], label);
  }
}

void fail_mesh_capacity(RunState& state) {
  fail(state, "Number of cell centres is greater than MAX_CELLS value of " +
                  int_to_text(state.control.max_cells) +
                  ". Alter value for this variable in CONTROL block of TESSERAMILL input file.");
}

std::int32_t append_mesh_point(RunState& state, double x, double y, std::int32_t label) {
  MeshPointList& mesh = state.mesh;
  if (mesh.mesh_point_count >= state.control.max_cells) fail_mesh_capacity(state);
  mesh.mesh_points.push_back(x);
  mesh.mesh_points.push_back(y);
  mesh.mesh_point_label.push_back(label);
  return ++mesh.mesh_point_count;
}

}  // namespace tesseramill
