// What is written once the Lloyd loop has ended: the report of the stamped
// files and the table of the cells along the boundary rings.
#include <cmath>
#include <ostream>

#include "common/text_tools.h"
#include "output/number_format.h"
#include "output/text_file.h"
#include "run/phases.h"

namespace tesseramill {

namespace {

void report_iteration_files(const RunState& state) {
  const std::string base = trimmed(state.control.out_file_base);
  for (const char* suffix : {"_triangles_*.mif", "_triangles_*.mid", "_polygons_*.mif",
                             "_polygons_*.mid", "_polygon_centroids_*.dat", "_polygons_*.bln"}) {
    *state.screen << " - files " << base << suffix << " written ok.\n";
  }
}

void boundary_row(OutputFile& out, const RunState& state, std::int32_t icpl, double accumulated,
                  const std::string& label) {
  const CellTables& cells = state.cells;
  const std::size_t k = static_cast<std::size_t>(icpl - 1);
  std::string line = "  ";
  append_integer(line, icpl, 8);
  line += "    ";
  append_zero_led(line, cells.cell_centroid[2 * k] + state.x_offset, 16, 9);
  line += "    ";
  append_zero_led(line, cells.cell_centroid[2 * k + 1] + state.y_offset, 16, 9);
  line += "    ";
  append_zero_led(line, std::fabs(cells.cell_area[k]), 16, 9);
  line += "    ";
  append_zero_led(line, cells.boundary_spacing[k], 16, 9);
  line += "    ";
  append_zero_led(line, accumulated, 16, 9);
  line += label;
  put_line(out, line);
}

// The rows of one ring's cells, with the length along the ring counted from
// half-length to half-length.
void walk_ring(OutputFile& out, const RunState& state, const BoundaryRing& ring, std::int32_t& icpl,
               const std::string& label) {
  const std::int32_t n = ring.point_count;
  if (n < 2) return;
  const std::vector<double>& spacing = state.cells.boundary_spacing;
  icpl += 1;
  double accumulated = 0.0;
  boundary_row(out, state, icpl, accumulated, label);
  for (std::int32_t cell = 2; cell <= n - 1; ++cell) {
    const double previous = spacing[static_cast<std::size_t>(icpl - 1)];
    icpl += 1;
    accumulated = accumulated + (spacing[static_cast<std::size_t>(icpl - 1)] + previous) * 0.5;
    boundary_row(out, state, icpl, accumulated, label);
  }
}

void write_boundary_cell_table(RunState& state) {
  OutputFile out;
  open_output(state, out, trimmed(state.control.out_file_base) + "_boundary_cells.dat");
  std::int32_t icpl = 0;
  for (const PointSet& points : state.inner_point_sets) icpl += points.count;
  put_line(out,
           "     ICPL     Centroid_x          Centroid_y          Cell_area           "
           "Length_in_cell      Accum_length        Boundary");
  walk_ring(out, state, state.outer_boundary, icpl, "outer_boundary");
  for (std::size_t i = 0; i < state.inner_boundaries.size(); ++i) {
    walk_ring(out, state, state.inner_boundaries[i], icpl, "inner_boundary_" + std::to_string(i + 1));
  }
  close_output(out);
  *state.screen << " - files " << out.name << " written ok.\n";
}

}  // namespace

void write_final_files(RunState& state) {
  report_iteration_files(state);
  write_boundary_cell_table(state);
}

}  // namespace tesseramill
