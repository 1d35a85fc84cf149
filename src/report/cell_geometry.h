// Geometry on the cells of a grid file: which cells lie near a place, and
// which one holds a point.
#pragma once

#include <cstdint>
#include <vector>

#include "geometry/cell_grid.h"
#include "report/disv_grid.h"

namespace tesseramill {

// Where a point lies against one polygon.
enum class Side { kOutside, kOnEdge, kInside };

// Locates (x, y) against the closed polygon of `count` x,y pairs by the
// winding number, telling a point on an edge or a vertex apart.
Side locate_in_polygon(const double* xy, std::int32_t count, double x, double y);

// Twice the signed area of the polygon: positive when it runs anticlockwise.
double doubled_area(const double* xy, std::int32_t count);

// The cells of a grid by place: each cell listed in the squares of a
// uniform grid that its bounding box meets.
struct CellLocator {
  CellGrid grid;
  std::vector<std::int32_t> start;
  std::vector<std::int32_t> cells;
  std::vector<double> boxes;  // xmin, xmax, ymin, ymax of each cell
};

void build_cell_locator(const DisvGrid& disv, CellLocator& locator);

// The cells (0-based, ascending, each once) whose bounding box meets the rectangle.
void cells_near(const CellLocator& locator, double xlo, double xhi, double ylo, double yhi,
                std::vector<std::int32_t>& out);

// The cells (0-based, ascending, each once) whose bounding box meets the
// segment's and lies in a square of the locator that the segment passes.
void cells_along_segment(const CellLocator& locator, double ax, double ay, double bx, double by,
                         std::vector<std::int32_t>& out);

// The corners of cell c as contiguous x,y pairs.
void cell_polygon(const DisvGrid& disv, std::size_t c, std::vector<double>& xy);

// Among `candidates`, the cell whose inside holds (x, y), or -1; `on_edge`
// tells that the point lies on an edge of one of them instead.
std::int32_t cell_holding(const DisvGrid& disv, const std::vector<std::int32_t>& candidates, double x, double y,
                          bool& on_edge, std::vector<double>& scratch);

// The cell that holds (x, y): the one whose inside holds it, else the
// lowest-numbered cell on whose edge it lies, else -1 (outside the grid).
std::int32_t point_cell(const DisvGrid& disv, const CellLocator& locator, double x, double y,
                        std::vector<std::int32_t>& near, std::vector<double>& scratch);

}  // namespace tesseramill
