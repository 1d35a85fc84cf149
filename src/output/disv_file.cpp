#include "output/disv_file.h"

#include <ostream>

#include "common/failure.h"
#include "common/text_tools.h"
#include "output/number_format.h"
#include "output/text_file.h"

namespace tesseramill {

namespace {

// Up to this many vertex numbers stand on one cell line.
constexpr std::int32_t kNumbersPerLine = 1000;

// Appends one vertex line to `text`.
void append_vertex_line(std::string& text, std::int32_t number, double x, double y) {
  // Made up whole and appended at once, as the grid has millions of them.
  char line[10 + 2 * (2 + 18) + 1];
  char* p = put_integer(line, number, 10);
  for (const double value : {x, y}) {
    *p++ = ' ';
    *p++ = ' ';
    p = put_scientific(p, value, 16, 9);
  }
  *p++ = '\n';
  text.append(line, static_cast<std::size_t>(p - line));
}

void vertex_line(OutputFile& out, std::string& line, std::int32_t number, double x, double y) {
  line.clear();
  append_vertex_line(line, number, x, y);
  put_text(out, line);
}

void ring_vertex_lines(OutputFile& out, std::string& line, const RunState& state, const BoundaryRing& ring,
                       std::int32_t& number) {
  const double xo = state.control.xorigin;
  const double yo = state.control.yorigin;
  const std::vector<double>& p = ring.points;
  for (std::int32_t k = 0; k + 1 < ring.point_count; ++k) {
    const double x = p[2 * static_cast<std::size_t>(k)];
    const double y = p[2 * static_cast<std::size_t>(k) + 1];
    const double x_next = p[2 * static_cast<std::size_t>(k + 1)];
    const double y_next = p[2 * static_cast<std::size_t>(k + 1) + 1];
    vertex_line(out, line, ++number, (x - xo) + state.x_offset, (y - yo) + state.y_offset);
    vertex_line(out, line, ++number, ((x_next + x) * 0.5 - xo) + state.x_offset,
                ((y_next + y) * 0.5 - yo) + state.y_offset);
  }
}

}  // namespace

GridVertices number_grid_vertices(RunState& state) {
  GridVertices grid;
  std::int32_t sum = 2 * state.outer_boundary.point_count - 2;
  for (const BoundaryRing& ring : state.inner_boundaries) sum += 2 * ring.point_count - 2;
  if (sum != state.cells.edge_code_base) fail(state, "Logical error type 4.");
  const std::int32_t triangles = state.triangles.triangle_count;
  grid.triangle_use_count.assign(static_cast<std::size_t>(triangles), 0);
  for (std::int32_t code : state.cells.cell_vertex_code) {
    if (code > 0) grid.triangle_use_count[static_cast<std::size_t>(code - 1)] += 1;
  }
  grid.triangle_vertex_number.assign(static_cast<std::size_t>(triangles), 0);
  std::int32_t counter = sum;
  for (std::int32_t t = 0; t < triangles; ++t) {
    if (grid.triangle_use_count[static_cast<std::size_t>(t)] != 0) {
      grid.triangle_vertex_number[static_cast<std::size_t>(t)] = ++counter;
    }
  }
  grid.nvert = counter;
  return grid;
}

void write_disv_file(RunState& state, const GridVertices& grid) {
  OutputFile out;
  open_output(state, out, trimmed(state.control.mf6_basename) + ".disv");
  const ControlData& c = state.control;
  const std::int32_t ncpl = state.mesh.mesh_point_count;
  std::string line;
  put_line(out, "BEGIN OPTIONS");
  line = "  XORIGIN  ";
  append_zero_led(line, c.xorigin, 16, 9);
  put_line(out, line);
  line = "  YORIGIN  ";
  append_zero_led(line, c.yorigin, 16, 9);
  put_line(out, line);
  put_line(out, "  ANGROT   0.0");
  put_line(out, "END OPTIONS");
  put_line(out, " ");
  put_line(out, "BEGIN DIMENSIONS");
  put_line(out, "  NLAY " + format_integer(c.nlay));
  put_line(out, "  NCPL " + format_integer(ncpl));
  put_line(out, "  NVERT " + format_integer(grid.nvert));
  put_line(out, "END DIMENSIONS");
  put_line(out, " ");
  put_line(out, "BEGIN GRIDDATA");
  put_line(out, "  TOP");
  put_line(out, "    CONSTANT " + format_scientific(0.0, 0, 7));
  put_line(out, " ");
  put_line(out, "  BOTM LAYERED");
  for (std::int32_t layer = 1; layer <= c.nlay; ++layer) {
    put_line(out, "    CONSTANT " + format_scientific(-10.0 * layer, 0, 7));
  }
  put_line(out, " ");
  put_line(out, "  IDOMAIN LAYERED");
  for (std::int32_t layer = 1; layer <= c.nlay; ++layer) put_line(out, "    CONSTANT 1");
  put_line(out, "END GRIDDATA");
  put_line(out, " ");

  put_line(out, "BEGIN VERTICES");
  std::int32_t number = 0;
  ring_vertex_lines(out, line, state, state.outer_boundary, number);
  for (const BoundaryRing& ring : state.inner_boundaries) ring_vertex_lines(out, line, state, ring, number);
  const TriangleTable& tt = state.triangles;
  put_items(out, static_cast<std::size_t>(tt.triangle_count), [&](std::size_t t, std::string& text) {
    if (grid.triangle_use_count[t] == 0) return;
    append_vertex_line(text, grid.triangle_vertex_number[t], (tt.tri_centroid[2 * t] - c.xorigin) + state.x_offset,
                       (tt.tri_centroid[2 * t + 1] - c.yorigin) + state.y_offset);
  });
  put_line(out, "END VERTICES");
  put_line(out, " ");

  put_line(out, "BEGIN CELL2D");
  const CellTables& cells = state.cells;
  put_items(out, static_cast<std::size_t>(ncpl), [&](std::size_t k, std::string& text) {
    const std::int32_t m = cells.cell_vertex_count[k];
    const std::size_t first = static_cast<std::size_t>(cells.cell_first_vertex[k] - 1);
    append_integer(text, static_cast<std::int64_t>(k + 1), 10);
    text += "  ";
    append_scientific(text, (cells.cell_centroid[2 * k] - c.xorigin) + state.x_offset, 0, 15);
    text += "  ";
    append_scientific(text, (cells.cell_centroid[2 * k + 1] - c.yorigin) + state.y_offset, 0, 15);
    append_integer(text, m, 5);
    // Clockwise, as MODFLOW 6 demands: stored order when the area is
    // negative, reversed otherwise.
    const bool reverse = !(cells.cell_area[k] < 0.0);
    for (std::int32_t j = 0; j < m; ++j) {
      if (j > 0 && j % kNumbersPerLine == 0) text += '\n';
      const std::int32_t code = cells.cell_vertex_code[first + static_cast<std::size_t>(reverse ? m - 1 - j : j)];
      const std::int32_t vertex = code > 0 ? grid.triangle_vertex_number[static_cast<std::size_t>(code - 1)] : -code;
      append_integer(text, vertex, 7);
    }
    text += '\n';
  });
  put_line(out, "END CELL2D");
  close_output(out);
  *state.screen << " - file " << out.name << " written ok.\n";
}

}  // namespace tesseramill
