#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "common/run_state.h"

namespace tesseramill {

struct GridVertices {
  std::int32_t nvert = 0;
  std::vector<std::int32_t> triangle_use_count;
  std::vector<std::int32_t> triangle_vertex_number;
};

// Gives every corner of every cell a grid vertex number: ring points and
// ring midpoints first, ring by ring, then the triangle centroids in use.
GridVertices number_grid_vertices(RunState& state);

// A constant-head line of the CHD file: layer 1, `cell`, `head`.
std::string head_line(std::int32_t cell, double head);

// Writes the MODFLOW 6 DISV file with every cell clockwise.
void write_disv_file(RunState& state, const GridVertices& grid);

}  // namespace tesseramill
