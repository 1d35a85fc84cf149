// Grid files written by hand for the report's tests, in the layout the
// mesher writes.
#pragma once

#include <string>
#include <utility>
#include <vector>

#include "report/disv_grid.h"

namespace tesseramill_test {

// A grid file of `nvert` vertices, each at (k, -1) but for the ones given,
// and cells of the given vertex numbers, each centred at (0.5, 0.5).
std::string grid_file(int nvert, const std::vector<std::pair<int, std::pair<double, double>>>& places,
                      const std::vector<std::vector<int>>& cells);

// Reads `text` as the grid file g.disv of a scratch folder; a failure leaves
// its message in `failure`.
tesseramill::DisvGrid read_grid(const std::string& text, std::string& failure);

}  // namespace tesseramill_test
