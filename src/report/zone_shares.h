// The cells of a zone: which cells an inner polygon holds, and how much of
// each lies inside it.
#pragma once

#include <cstdint>
#include <vector>

#include "report/cell_geometry.h"
#include "report/disv_grid.h"

namespace tesseramill {

// The area of the part of polygon a (`na` x,y pairs) that lies inside
// polygon b (`nb` pairs), both simple, closed without a repeated first
// corner, and run either way round.
double overlap_area(const double* a, std::int32_t na, const double* b, std::int32_t nb);

struct ZoneCell {
  std::int32_t cell = -1;  // 0-based
  double share = 0.0;      // of the cell's area inside the polygon, 0 to 1
};

// The cells whose centre, as the grid file gives it, lies inside the
// polygon of `count` x,y pairs or on its edge, in ascending order.  The
// polygon is closed without a repeated first corner.
void zone_cells(const DisvGrid& disv, const CellLocator& locator, const double* polygon, std::int32_t count,
                std::vector<ZoneCell>& out);

}  // namespace tesseramill
