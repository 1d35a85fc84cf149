#include "emplacement/fixed_points.h"

#include <new>

#include "common/failure.h"
#include "common/text_tools.h"
#include "emplacement/chains.h"
#include "geometry/local_separation.h"
#include "geometry/planar_tools.h"

namespace tesseramill {

namespace {

// Starts an empty mesh point list.  MAX_CELLS is its capacity, which
// append_mesh_point enforces; the tables themselves grow as points come, so
// that a generous MAX_CELLS costs no memory that the run does not use.  When
// memory runs out on the way, the run ends with the memory message.
void start_mesh(RunState& state) {
  MeshPointList& mesh = state.mesh;
  mesh.mesh_points.clear();
  mesh.mesh_point_label.clear();
  mesh.work_list.clear();
  mesh.mesh_point_count = 0;
}

void emplace_line_points(RunState& state) {
  for (std::size_t i = 0; i < state.inner_lines.size(); ++i) {
    BoundaryRing& line = state.inner_lines[i];
    const std::int32_t line_number = static_cast<std::int32_t>(i) + 1;
    for (std::int32_t j = 0; j < line.point_count; ++j) {
      const double x = line.points[2 * j];
      const double y = line.points[2 * j + 1];
      if (!line_point_clear(state, x, y, line.point_separation[j], line_number)) {
        line.point_mesh_index[j] = 0;
        line.omitted_count += 1;
      } else {
        line.point_mesh_index[j] = append_mesh_point(state, x, y, kInnerLineLabel);
      }
    }
    if (line.omitted_count == line.point_count) {
      fail(state, "One or more lines depicted in file " + trimmed(state.control.inner_line_files[i]) +
                      " lie entirely outside the active model boundary or one line is too close "
                      "to another line.");
    }
  }
}

void emplace_hexagons(RunState& state) {
  const double growth = state.control.poly_growth_rate;
  for (const PointSet& points : state.inner_point_sets) {
    for (std::int32_t p = 0; p < points.count; ++p) {
      if (std::int64_t{state.mesh.mesh_point_count} + 6 > state.control.max_cells) fail_mesh_capacity(state);
      const double x = points.coords[2 * p];
      const double y = points.coords[2 * p + 1];
      const double r = local_separation(state, x, y, growth);
      append_mesh_point(state, x, y + r, kHexagonLabel);
      append_mesh_point(state, x + r * kHexLong, y + r * kHexShort, kHexagonLabel);
      append_mesh_point(state, x + r * kHexLong, y - r * kHexShort, kHexagonLabel);
      append_mesh_point(state, x, y - r, kHexagonLabel);
      append_mesh_point(state, x - r * kHexLong, y - r * kHexShort, kHexagonLabel);
      append_mesh_point(state, x - r * kHexLong, y + r * kHexShort, kHexagonLabel);
    }
  }
}

}  // namespace

void emplace_fixed_points(RunState& state) {
  start_mesh(state);
  for (const PointSet& points : state.inner_point_sets) {
    for (std::int32_t p = 0; p < points.count; ++p) {
      append_mesh_point(state, points.coords[2 * p], points.coords[2 * p + 1], kInnerPointLabel);
    }
  }
  emplace_ring_points(state, state.outer_boundary, kOuterRingLabel);
  for (BoundaryRing& ring : state.inner_boundaries) emplace_ring_points(state, ring, kInnerRingLabel);
  emplace_line_points(state);
  emplace_hexagons(state);
}

}  // namespace tesseramill
