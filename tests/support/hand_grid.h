// Grids made by hand for the report's tests, where every number is known.
#pragma once

#include <set>

#include "report/disv_grid.h"

namespace tesseramill_test {

// Unit squares over [0, nx] x [0, ny], numbered row by row from the bottom
// left, each run clockwise as a grid file holds it; the squares whose
// 1-based numbers are in `left_out` are not cells, and the numbers close up
// over them.
tesseramill::DisvGrid unit_squares(int nx, int ny, const std::set<int>& left_out = {});

}  // namespace tesseramill_test
