// A MODFLOW 6 DISV grid file as the report reads it back: the vertices and
// the cells with their vertex numbers, in the file's own frame (world
// coordinates less XORIGIN and YORIGIN).
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "common/run_state.h"

namespace tesseramill {

struct DisvGrid {
  double xorigin = 0.0;
  double yorigin = 0.0;
  std::int32_t nlay = 0;
  std::int32_t ncpl = 0;
  std::int32_t nvert = 0;
  std::vector<double> vertices;                // x,y pairs; vertex v (1-based) at [2(v-1)]
  std::vector<double> centres;                 // x,y pairs of the cells' centres as written
  std::vector<std::int32_t> cell_start;        // vertex numbers of cell c (0-based):
  std::vector<std::int32_t> cell_vertices;     //   cell_vertices[cell_start[c] .. cell_start[c+1])
  // The first cell (1-based) whose numbers ran together in their columns and
  // were told apart by the columns alone; 0 when there is none.
  std::int32_t first_joined_cell = 0;
  // The line of the "BEGIN CELL2D" whose block the cells were read from.
  std::int32_t cells_line = 0;
};

// Reads the grid file `name`.  A file that cannot be opened, or that is not
// a grid this system could have written, ends the run with its message;
// `command` names what writes the file, for the message of a missing one.
void read_disv_grid(RunState& state, const std::string& name, const std::string& command, DisvGrid& grid);

// The number of vertices of cell c (0-based) and its i-th vertex number.
inline std::int32_t corner_count(const DisvGrid& g, std::size_t c) { return g.cell_start[c + 1] - g.cell_start[c]; }
inline std::int32_t corner(const DisvGrid& g, std::size_t c, std::int32_t i) {
  return g.cell_vertices[static_cast<std::size_t>(g.cell_start[c] + i)];
}
inline double vertex_x(const DisvGrid& g, std::int32_t v) { return g.vertices[2 * static_cast<std::size_t>(v - 1)]; }
inline double vertex_y(const DisvGrid& g, std::int32_t v) { return g.vertices[2 * static_cast<std::size_t>(v - 1) + 1]; }

}  // namespace tesseramill
