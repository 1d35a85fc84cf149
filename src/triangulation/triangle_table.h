// The triangulation of the mesh points and what each pass works out from it.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "triangulation/dtris2.h"

namespace tesseramill {

struct TriangleTable {
  std::vector<std::int32_t> sort_index;
  // Three entries per triangle; triangle t (1-based) at [3(t-1)], edge or
  // corner e (1-based) at [3(t-1) + e-1].
  std::vector<std::int32_t> tri_vertex;
  std::vector<std::int32_t> tri_neighbour;
  std::int32_t triangle_count = 0;
  std::int32_t first_triangle_count = 0;

  std::vector<std::int32_t> itstat;          // 0 internal, -1 external
  std::vector<double> tri_centroid;          // x,y pairs
  // The circles and whether each centre lies inside its triangle: worked
  // out and kept by the reference path alone, as nothing reads them (the
  // cells' corners are the centroids); the fast path leaves them empty.
  std::vector<double> tri_circumcentre;      // x,y pairs
  std::vector<double> tri_circumradius;
  std::vector<std::int32_t> tri_centre_inside;

  std::vector<std::int32_t> point_tri_count;
  // Column p (1-based) holds the internal triangles at mesh point p and
  // starts at (p-1) * row_capacity.
  std::vector<std::int32_t> connected_triangles;
  std::int32_t row_capacity = 0;
  std::int32_t largest_tri_count = 0;
  std::int32_t smallest_tri_count = 0;

  std::vector<std::int32_t> stack;        // DTRIS2's swap stack
  Dtris2Workspace dtris2;                 // DTRIS2's sort keys and sorted points
  std::vector<std::int32_t> column_fill;  // scratch: entries so far in each column
  std::vector<std::int32_t> second_scratch;  // scratch of a fan for the second part of shared work
};

}  // namespace tesseramill
