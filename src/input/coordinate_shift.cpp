#include "input/coordinate_shift.h"

#include <algorithm>
#include <vector>

#include "common/failure.h"
#include "common/text_tools.h"

namespace tesseramill {

namespace {

bool exceeds(const std::vector<double>& separations, double limit) {
  return std::any_of(separations.begin(), separations.end(),
                     [limit](double s) { return s > limit; });
}

// Calls `visit` with the separations and file name of every ring, line and
// point set that carries separations, in their fixed order.
template <typename Visit>
void for_each_separation_table(const RunState& state, Visit visit) {
  const ControlData& c = state.control;
  visit(state.outer_boundary.vertex_separation, c.outer_boundary_file);
  for (std::size_t i = 0; i < state.inner_boundaries.size(); ++i) {
    visit(state.inner_boundaries[i].vertex_separation, c.inner_boundary_files[i]);
  }
  for (std::size_t i = 0; i < state.inner_lines.size(); ++i) {
    visit(state.inner_lines[i].vertex_separation, c.inner_line_files[i]);
  }
  for (std::size_t i = 0; i < state.inner_point_sets.size(); ++i) {
    visit(state.inner_point_sets[i].separation, c.inner_points_files[i]);
  }
}

void shift(std::vector<double>& coordinates, double x_offset, double y_offset) {
  for (std::size_t k = 0; k + 1 < coordinates.size(); k += 2) {
    coordinates[k] -= x_offset;
    coordinates[k + 1] -= y_offset;
  }
}

}  // namespace

void check_separations_and_shift(RunState& state) {
  const double limit = state.control.max_centroid_separation;
  for_each_separation_table(state, [&](const std::vector<double>& separations, const std::string&) {
    if (exceeds(separations, limit)) {
      fail(state,
           "The value provided for MAXCENTSEP in the CONTROL block of the TESSERAMILL input file "
           "should exceed the cell separation provided in any outer/inner boundary BLN files, or "
           "in any inner line/point BLN files.");
    }
  });

  const std::vector<double>& outer = state.outer_boundary.vertices;
  double xmin = outer[0];
  double ymin = outer[1];
  for (std::size_t k = 0; k + 1 < outer.size(); k += 2) {
    xmin = std::min(xmin, outer[k]);
    ymin = std::min(ymin, outer[k + 1]);
  }
  state.x_offset = xmin - 1000.0;
  state.y_offset = ymin - 1000.0;

  shift(state.outer_boundary.vertices, state.x_offset, state.y_offset);
  for (BoundaryRing& ring : state.inner_boundaries) shift(ring.vertices, state.x_offset, state.y_offset);
  for (BoundaryRing& line : state.inner_lines) shift(line.vertices, state.x_offset, state.y_offset);
  for (PointSet& points : state.inner_point_sets) shift(points.coords, state.x_offset, state.y_offset);
  for (BoundaryRing& ring : state.inner_polygons) shift(ring.vertices, state.x_offset, state.y_offset);

  // A guard: the shift leaves separations as they were.
  for_each_separation_table(state, [&](const std::vector<double>& separations,
                                       const std::string& file) {
    if (exceeds(separations, limit)) {
      fail(state, "At least one centroid separation provided in file " + trimmed(file) +
                      " exceeds MAX_CENTROID_SEPARATION provided in the CONTROL block.");
    }
  });
}

}  // namespace tesseramill
