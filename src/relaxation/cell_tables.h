// The cell polygons built round every mesh point in each Lloyd pass.
#pragma once

#include <cstdint>
#include <vector>

#include "common/limits.h"

namespace tesseramill {


struct CellTables {
  std::vector<std::int32_t> cell_vertex_count;
  std::vector<std::int32_t> cell_first_vertex;  // 1-based position in the lists below
  std::vector<double> cell_vertices;            // x,y pairs of all cells end to end
  std::vector<std::int32_t> cell_vertex_code;   // > 0 triangle number; < 0 minus a ring code
  std::vector<double> cell_centroid;            // x,y pairs
  std::vector<double> cell_area;                // signed: positive anticlockwise
  std::vector<double> boundary_spacing;
  std::vector<double> polygon_buffer;           // x,y pairs, room for kMaxPolyVert corners
  std::vector<double> second_polygon_buffer;    // the same for the second part of shared work
  std::vector<double> free_point_distance;      // scratch: each free point's measure in a pass
  std::int32_t edge_code_base = 0;
};

}  // namespace tesseramill
