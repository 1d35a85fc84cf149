#include "output/iteration_files.h"

#include <cmath>

#include "output/number_format.h"
#include "output/text_file.h"
#include "run/text_tools.h"

namespace tesseramill {

namespace {

std::string stamped_name(const RunState& state, const std::string& kind, const std::string& ending) {
  return trimmed(state.control.out_file_base) + kind + trimmed(state.iteration_stamp) + ending;
}

// 10 blanks, then x and y each behind 2 blanks in 15 columns, 3 decimals.
void append_coordinates(std::string& line, double x, double y) {
  line.append(10, ' ');
  line += "  ";
  append_fixed(line, x, 15, 3);
  line += "  ";
  append_fixed(line, y, 15, 3);
}

// Writes one coordinate line, reusing `line` as the buffer.
void put_coordinates(OutputFile& out, std::string& line, double x, double y) {
  line.clear();
  append_coordinates(line, x, y);
  put_line(out, line);
}

}  // namespace

void write_triangle_map_files(RunState& state) {
  OutputFile mif;
  OutputFile mid;
  open_output(state, mif, stamped_name(state, "_triangles_", ".mif"));
  open_output(state, mid, stamped_name(state, "_triangles_", ".mid"));
  for (const char* head : {"Version 2", "Delimiter \",\"", "Columns 5", "   itri Integer",
                           "   tnbr_1 Integer", "   tnbr_2 Integer", "   tnbr_3 Integer",
                           "   itstat Integer", "Data"}) {
    put_line(mif, head);
  }
  const TriangleTable& tt = state.triangles;
  const std::vector<double>& p = state.mesh.mesh_points;
  std::string line;
  for (std::int32_t t = 1; t <= tt.triangle_count; ++t) {
    const std::size_t k = static_cast<std::size_t>(t - 1);
    if (tt.itstat[k] == -1) continue;
    put_line(mif, " ");
    put_line(mif, "Region 1");
    put_line(mif, "   3");
    double corner[3][2];
    for (int e = 0; e < 3; ++e) {
      const std::size_t v = static_cast<std::size_t>(tt.tri_vertex[3 * k + static_cast<std::size_t>(e)] - 1);
      corner[e][0] = p[2 * v];
      corner[e][1] = p[2 * v + 1];
      put_coordinates(mif, line, corner[e][0] + state.x_offset, corner[e][1] + state.y_offset);
    }
    const double cx = (corner[0][0] + corner[1][0] + corner[2][0]) * 0.3333333333333333 + state.x_offset;
    const double cy = (corner[0][1] + corner[1][1] + corner[2][1]) * 0.3333333333333333 + state.y_offset;
    line = "Center";
    append_coordinates(line, cx, cy);
    put_line(mif, line);
    line.clear();
    append_integer(line, t, 6);
    for (int e = 0; e < 3; ++e) {
      line += ",";
      append_integer(line, tt.tri_neighbour[3 * k + static_cast<std::size_t>(e)], 6);
    }
    line += ",";
    append_integer(line, tt.itstat[k], 6);
    put_line(mid, line);
  }
}

void write_polygon_map_files(RunState& state) {
  OutputFile mif;
  OutputFile mid;
  open_output(state, mif, stamped_name(state, "_polygons_", ".mif"));
  open_output(state, mid, stamped_name(state, "_polygons_", ".mid"));
  for (const char* head : {"Version 2", "Delimiter \",\"", "Columns 2", "   icpl Integer",
                           "   cell_area  Float", "Data"}) {
    put_line(mif, head);
  }
  const CellTables& cells = state.cells;
  std::string line;
  for (std::int32_t icpl = 1; icpl <= state.mesh.mesh_point_count; ++icpl) {
    const std::size_t k = static_cast<std::size_t>(icpl - 1);
    const std::int32_t m = cells.cell_vertex_count[k];
    const std::size_t first = static_cast<std::size_t>(cells.cell_first_vertex[k] - 1);
    put_line(mif, " ");
    put_line(mif, "Region 1");
    line.clear();
    append_integer(line, m + 1, 6);
    line += ", ";
    put_line(mif, line);
    for (std::int32_t j = 0; j <= m; ++j) {
      const std::size_t c = first + static_cast<std::size_t>(j == m ? 0 : j);
      put_coordinates(mif, line, cells.cell_vertices[2 * c] + state.x_offset,
                      cells.cell_vertices[2 * c + 1] + state.y_offset);
    }
    line = "Center";
    append_coordinates(line, cells.cell_centroid[2 * k] + state.x_offset,
                       cells.cell_centroid[2 * k + 1] + state.y_offset);
    put_line(mif, line);
    line.clear();
    append_integer(line, icpl, 6);
    line += ", ";
    append_scientific(line, std::fabs(cells.cell_area[k]), 16, 9);
    put_line(mid, line);
  }
}

void write_polygon_bln_file(RunState& state) {
  OutputFile bln;
  open_output(state, bln, stamped_name(state, "_polygons_", ".bln"));
  const CellTables& cells = state.cells;
  std::string line;
  for (std::int32_t icpl = 1; icpl <= state.mesh.mesh_point_count; ++icpl) {
    const std::size_t k = static_cast<std::size_t>(icpl - 1);
    const std::int32_t m = cells.cell_vertex_count[k];
    const std::size_t first = static_cast<std::size_t>(cells.cell_first_vertex[k] - 1);
    line.clear();
    append_integer(line, m + 1, 10);
    append_integer(line, 1, 5);
    line += "   \"";
    append_integer(line, icpl);
    line += "\"";
    put_line(bln, line);
    for (std::int32_t j = 0; j <= m; ++j) {
      const std::size_t c = first + static_cast<std::size_t>(j == m ? 0 : j);
      line = "  ";
      append_scientific(line, cells.cell_vertices[2 * c] + state.x_offset, 0, 10);
      line += "  ";
      append_scientific(line, cells.cell_vertices[2 * c + 1] + state.y_offset, 0, 10);
      put_line(bln, line);
    }
  }
}

void write_polygon_centroid_table(RunState& state) {
  OutputFile dat;
  open_output(state, dat, stamped_name(state, "_polygon_centroids_", ".dat"));
  put_line(dat, "      icpl       centroid_x       centroid_y          cell_area");
  const CellTables& cells = state.cells;
  std::string line;
  for (std::int32_t icpl = 1; icpl <= state.mesh.mesh_point_count; ++icpl) {
    const std::size_t k = static_cast<std::size_t>(icpl - 1);
    line.clear();
    append_integer(line, icpl, 10);
    line += "   ";
    append_fixed(line, cells.cell_centroid[2 * k] + state.x_offset, 15, 4);
    line += "   ";
    append_fixed(line, cells.cell_centroid[2 * k + 1] + state.y_offset, 15, 4);
    line += "   ";
    append_fixed(line, std::fabs(cells.cell_area[k]), 15, 4);
    put_line(dat, line);
  }
}

}  // namespace tesseramill
