// The reaches of a line through the cells of a grid: in order along the
// line, each cell it passes through, the length inside it and the distances
// along the line where it enters and leaves.
#pragma once

#include <cstdint>
#include <vector>

#include "report/cell_geometry.h"
#include "report/disv_grid.h"

namespace tesseramill {

struct Reach {
  std::int32_t cell = -1;  // 0-based
  double length = 0.0;
  double start = 0.0;
  double end = 0.0;
};

// The reaches of the polyline of `count` x,y pairs (in the grid's frame).
// Parts outside every cell are left out.  A part lying along an edge that
// two cells share belongs to the cell on its left, seen along the line; one
// along the grid's rim to the cell beside it.
void line_reaches(const DisvGrid& disv, const CellLocator& locator, const double* xy, std::int32_t count,
                  std::vector<Reach>& out);

}  // namespace tesseramill
