// The Lloyd loop: each pass triangulates the mesh points, builds and
// measures the cells, and moves every free point part of the way towards
// the centroid of its own cell.
#include <cmath>
#include <ostream>

#include "common/parallel.h"
#include "geometry/planar_tools.h"
#include "output/iteration_files.h"
#include "output/number_format.h"
#include "output/text_file.h"
#include "relaxation/cell_polygons.h"
#include "relaxation/lloyd_step.h"
#include "run/phases.h"
#include "triangulation/triangulate_points.h"

namespace tesseramill {

bool iteration_files_due(const RunState& state) {
  return state.lloyd_iteration == 0 || state.lloyd_iteration == state.control.max_lloyd ||
         state.lloyd_last_pass;
}

std::int32_t first_free_point(const RunState& state) {
  const std::int32_t inner_points = state.inner_point_sets.empty() ? 0 : state.inner_point_sets[0].count;
  std::int32_t sum = inner_points + state.outer_boundary.point_count;
  for (const BoundaryRing& ring : state.inner_boundaries) sum += ring.point_count - 1;
  for (const BoundaryRing& line : state.inner_lines) sum += line.point_count - line.omitted_count;
  return sum + 6 * inner_points;
}

PassMeasure measure_pass(RunState& state) {
  const std::vector<double>& points = state.mesh.mesh_points;
  const CellTables& cells = state.cells;
  const std::size_t first = static_cast<std::size_t>(std::max(first_free_point(state), 1) - 1);
  const std::size_t last = static_cast<std::size_t>(std::max(state.mesh.mesh_point_count, 0));
  // Each point's distance by itself on both cores; the sum then in point
  // order, as rounding makes the order of a sum part of its value.
  std::vector<double>& distances = state.cells.free_point_distance;
  distances.resize(last > first ? last - first : 0);
  run_in_parts(distances.size(), [&](std::size_t begin, std::size_t end, int) {
    for (std::size_t i = begin; i < end; ++i) {
      const std::size_t k = first + i;
      const double dx = points[2 * k] - cells.cell_centroid[2 * k];
      const double dy = points[2 * k + 1] - cells.cell_centroid[2 * k + 1];
      const double dist2 = dx * dx + dy * dy;
      distances[i] = std::sqrt(dist2 / std::fabs(cells.cell_area[k]));
    }
    return PartFailure{};
  });
  PassMeasure m;
  for (double d : distances) {
    m.sum += d;
    m.worst = std::max(m.worst, d);
    m.count += 1;
    m.last_d = d;
  }
  return m;
}

std::string pass_line(std::int32_t iteration, const PassMeasure& m) {
  std::string line = "   itn " + std::to_string(iteration) + ": max/ave normalized pt-to-centroid dist = [";
  if (m.count == 0) {
    // With no free point there is no distance to measure.
    line += "0.00000E+00,0.00000E+00]";
    return line;
  }
  append_scientific(line, m.worst, 0, 5);
  line += ",";
  append_scientific(line, m.sum / m.count, 0, 5);
  line += "]";
  return line;
}

void move_free_points(RunState& state, double stay_fac) {
  const double lloyd_fac = state.control.lloyd_fac;
  std::vector<double>& points = state.mesh.mesh_points;
  const CellTables& cells = state.cells;
  const std::size_t first = static_cast<std::size_t>(std::max(first_free_point(state), 1) - 1);
  const std::size_t last = static_cast<std::size_t>(std::max(state.mesh.mesh_point_count, 0));
  // A point's move reads its own cell and writes itself alone.
  run_in_parts(last > first ? last - first : 0, [&](std::size_t begin, std::size_t end, int) {
    for (std::size_t k = first + begin; k < first + end; ++k) {
      const double cx = cells.cell_centroid[2 * k];
      const double cy = cells.cell_centroid[2 * k + 1];
      if (!point_in_domain(state, cx, cy)) continue;
      points[2 * k] = points[2 * k] * stay_fac + cx * lloyd_fac;
      points[2 * k + 1] = points[2 * k + 1] * stay_fac + cy * lloyd_fac;
    }
    return PartFailure{};
  });
}

// The files of a pass are opened where the pass writes them, so that a name
// that cannot be written ends the run at the same point, and filled on a
// thread of their own while the passes go on; each is filled from tables
// that nothing changes until the fill is waited for:
// - the triangle map files read the triangle tables and the mesh points,
//   which the cells of the pass only read; they are filled beside the
//   pass's cells, on both cores, and waited for before the points move;
// - the cell files read the cell tables, which nothing changes until the
//   next pass assembles its cells, after its triangulation.  In the last
//   pass they are filled at once beside the triangle files.  In an earlier
//   pass (the first) their fill begins once the triangle files are done and
//   takes one core, beside the next pass's triangulation, whose insertion
//   holds the other core alone; it is waited for before the next pass
//   assembles its cells.  Begun earlier, it took the cores the triangle
//   files need before the points can move, and left the second core idle
//   through the insertion.
// The files thus hold what they hold when written at once.  The reference
// path writes each at once.
void lloyd_iterations(RunState& state) {
  std::ostream& screen = *state.screen;
  state.lloyd_iteration = 0;
  state.lloyd_last_pass = false;
  const double stay_fac = 1.0 - state.control.lloyd_fac;
  const bool beside = !state.reference_paths;
  TriangleMapFiles triangle_files;
  CellFiles cell_files;
  BackgroundJob triangle_fill;
  BackgroundJob cell_fill;
  for (;;) {
    triangulate_points(state);
    const bool files_due = iteration_files_due(state);
    if (files_due) {
      open_triangle_map_files(state, triangle_files);
      if (beside) {
        triangle_fill.start([&] { fill_triangle_map_files(state, triangle_files); });
      } else {
        fill_triangle_map_files(state, triangle_files);
      }
    }
    build_connected_triangles(state);
    order_connected_triangles(state);
    cell_fill.finish();
    const bool count_reached = state.lloyd_iteration == state.control.max_lloyd;
    const bool last_pass = count_reached || state.lloyd_last_pass;
    // Files are due in the first pass and in the last; the cells of the
    // passes between are read only for their areas and centroids.
    if (beside && !files_due) {
      assemble_and_measure_cells(state);
    } else {
      assemble_cell_polygons(state);
      measure_cells(state);
    }
    if (files_due) {
      open_cell_files(state, cell_files);
      if (!beside) {
        fill_cell_files(state, cell_files);
      } else if (last_pass) {
        cell_fill.start([&] { fill_cell_files(state, cell_files); });
      }
    }
    const PassMeasure m = measure_pass(state);
    screen << pass_line(state.lloyd_iteration, m) << "\n";
    if (last_pass) {
      if (count_reached) {
        screen << "\n - Lloyd iteration count of " << state.control.max_lloyd << " reached\n\n";
      } else {
        screen << "\n - Lloyd convergence criterion reached.\n\n";
      }
      triangle_fill.finish();
      cell_fill.finish();
      return;
    }
    if (m.count > 0 && state.control.eps_lloyd >= m.last_d) state.lloyd_last_pass = true;
    triangle_fill.finish();
    if (files_due && beside) cell_fill.start([&] { fill_cell_files(state, cell_files, FillCores::one); });
    move_free_points(state, stay_fac);
    state.lloyd_iteration += 1;
  }
}

}  // namespace tesseramill
