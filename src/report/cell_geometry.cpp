#include "report/cell_geometry.h"

#include <algorithm>
#include <cmath>

namespace tesseramill {

Side locate_in_polygon(const double* xy, std::int32_t count, double x, double y) {
  int winding = 0;
  for (std::int32_t i = 0; i < count; ++i) {
    const std::int32_t j = i + 1 == count ? 0 : i + 1;
    const double ax = xy[2 * i];
    const double ay = xy[2 * i + 1];
    const double bx = xy[2 * j];
    const double by = xy[2 * j + 1];
    const double cross = (bx - ax) * (y - ay) - (x - ax) * (by - ay);
    // On the edge: on its line and within its extent.
    if (cross == 0.0 && x >= std::min(ax, bx) && x <= std::max(ax, bx) && y >= std::min(ay, by) &&
        y <= std::max(ay, by)) {
      return Side::kOnEdge;
    }
    if (ay <= y) {
      if (by > y && cross > 0.0) ++winding;
    } else if (by <= y && cross < 0.0) {
      --winding;
    }
  }
  return winding != 0 ? Side::kInside : Side::kOutside;
}

double doubled_area(const double* xy, std::int32_t count) {
  if (count < 3) return 0.0;
  // Relative to the first corner, so that large world coordinates cost no
  // digits.
  double sum = 0.0;
  for (std::int32_t i = 1; i + 1 < count; ++i) {
    const double ax = xy[2 * i] - xy[0];
    const double ay = xy[2 * i + 1] - xy[1];
    const double bx = xy[2 * i + 2] - xy[0];
    const double by = xy[2 * i + 3] - xy[1];
    sum += ax * by - bx * ay;
  }
  return sum;
}

void cell_polygon(const DisvGrid& disv, std::size_t c, std::vector<double>& xy) {
  xy.clear();
  for (std::int32_t i = 0; i < corner_count(disv, c); ++i) {
    const std::int32_t v = corner(disv, c, i);
    xy.push_back(vertex_x(disv, v));
    xy.push_back(vertex_y(disv, v));
  }
}

void build_cell_locator(const DisvGrid& disv, CellLocator& locator) {
  const std::size_t cells = static_cast<std::size_t>(disv.ncpl);
  locator.boxes.assign(4 * cells, 0.0);
  double xmin = INFINITY, xmax = -INFINITY, ymin = INFINITY, ymax = -INFINITY;
  for (std::size_t c = 0; c < cells; ++c) {
    double bx0 = INFINITY, bx1 = -INFINITY, by0 = INFINITY, by1 = -INFINITY;
    for (std::int32_t i = 0; i < corner_count(disv, c); ++i) {
      const std::int32_t v = corner(disv, c, i);
      bx0 = std::min(bx0, vertex_x(disv, v));
      bx1 = std::max(bx1, vertex_x(disv, v));
      by0 = std::min(by0, vertex_y(disv, v));
      by1 = std::max(by1, vertex_y(disv, v));
    }
    locator.boxes[4 * c] = bx0;
    locator.boxes[4 * c + 1] = bx1;
    locator.boxes[4 * c + 2] = by0;
    locator.boxes[4 * c + 3] = by1;
    xmin = std::min(xmin, bx0);
    xmax = std::max(xmax, bx1);
    ymin = std::min(ymin, by0);
    ymax = std::max(ymax, by1);
  }
  CellGrid& g = locator.grid;
  const double width = std::max({xmax - xmin, ymax - ymin, 1e-300});
  const double side = std::max(1.0, std::ceil(std::sqrt(static_cast<double>(cells))));
  g.h = width / side;
  g.inverse_h = 1.0 / g.h;
  g.x0 = xmin - 0.5 * g.h;
  g.y0 = ymin - 0.5 * g.h;
  g.nx = static_cast<std::int32_t>((xmax - g.x0) * g.inverse_h) + 2;
  g.ny = static_cast<std::int32_t>((ymax - g.y0) * g.inverse_h) + 2;
  locator.start.assign(g.cell_count() + 1, 0);
  auto each_square = [&](std::size_t c, auto visit) {
    const std::int32_t i0 = clamp_index(g.column_of(locator.boxes[4 * c]), g.nx);
    const std::int32_t i1 = clamp_index(g.column_of(locator.boxes[4 * c + 1]), g.nx);
    const std::int32_t j0 = clamp_index(g.row_of(locator.boxes[4 * c + 2]), g.ny);
    const std::int32_t j1 = clamp_index(g.row_of(locator.boxes[4 * c + 3]), g.ny);
    for (std::int32_t j = j0; j <= j1; ++j) {
      for (std::int32_t i = i0; i <= i1; ++i) visit(g.cell(i, j));
    }
  };
  for (std::size_t c = 0; c < cells; ++c) each_square(c, [&](std::size_t s) { locator.start[s + 1] += 1; });
  for (std::size_t s = 0; s < g.cell_count(); ++s) locator.start[s + 1] += locator.start[s];
  locator.cells.resize(static_cast<std::size_t>(locator.start[g.cell_count()]));
  std::vector<std::int32_t> fill(locator.start.begin(), locator.start.end() - 1);
  for (std::size_t c = 0; c < cells; ++c) {
    each_square(c, [&](std::size_t s) { locator.cells[static_cast<std::size_t>(fill[s]++)] = static_cast<std::int32_t>(c); });
  }
}

void cells_near(const CellLocator& locator, double xlo, double xhi, double ylo, double yhi,
                std::vector<std::int32_t>& out) {
  out.clear();
  const CellGrid& g = locator.grid;
  const std::int32_t i0 = clamp_index(g.column_of(xlo), g.nx);
  const std::int32_t i1 = clamp_index(g.column_of(xhi), g.nx);
  const std::int32_t j0 = clamp_index(g.row_of(ylo), g.ny);
  const std::int32_t j1 = clamp_index(g.row_of(yhi), g.ny);
  for (std::int32_t j = j0; j <= j1; ++j) {
    for (std::int32_t i = i0; i <= i1; ++i) {
      const std::size_t s = g.cell(i, j);
      for (std::int32_t k = locator.start[s]; k < locator.start[s + 1]; ++k) {
        const std::int32_t c = locator.cells[static_cast<std::size_t>(k)];
        const double* box = &locator.boxes[4 * static_cast<std::size_t>(c)];
        if (box[0] <= xhi && box[1] >= xlo && box[2] <= yhi && box[3] >= ylo) out.push_back(c);
      }
    }
  }
  std::sort(out.begin(), out.end());
  out.erase(std::unique(out.begin(), out.end()), out.end());
}

void cells_along_segment(const CellLocator& locator, double ax, double ay, double bx, double by,
                         std::vector<std::int32_t>& out) {
  out.clear();
  const double xlo = std::min(ax, bx);
  const double xhi = std::max(ax, bx);
  const double ylo = std::min(ay, by);
  const double yhi = std::max(ay, by);
  // A hundredth of a square more on each side covers the rounding of the
  // walk; the boxes decide in the end.
  for_each_cell_along_segment(locator.grid, ax, ay, bx, by, 0.01 * locator.grid.h, [&](std::int32_t i, std::int32_t j) {
    const std::size_t s = locator.grid.cell(i, j);
    for (std::int32_t k = locator.start[s]; k < locator.start[s + 1]; ++k) {
      const std::int32_t c = locator.cells[static_cast<std::size_t>(k)];
      const double* box = &locator.boxes[4 * static_cast<std::size_t>(c)];
      if (box[0] <= xhi && box[1] >= xlo && box[2] <= yhi && box[3] >= ylo) out.push_back(c);
    }
  });
  std::sort(out.begin(), out.end());
  out.erase(std::unique(out.begin(), out.end()), out.end());
}

std::int32_t cell_holding(const DisvGrid& disv, const std::vector<std::int32_t>& candidates, double x, double y,
                          bool& on_edge, std::vector<double>& scratch) {
  on_edge = false;
  for (std::int32_t c : candidates) {
    cell_polygon(disv, static_cast<std::size_t>(c), scratch);
    const Side side = locate_in_polygon(scratch.data(), corner_count(disv, static_cast<std::size_t>(c)), x, y);
    if (side == Side::kInside) return c;
    if (side == Side::kOnEdge) on_edge = true;
  }
  return -1;
}

std::int32_t point_cell(const DisvGrid& disv, const CellLocator& locator, double x, double y,
                        std::vector<std::int32_t>& near, std::vector<double>& scratch) {
  cells_near(locator, x, x, y, y, near);
  bool on_edge = false;
  const std::int32_t inside = cell_holding(disv, near, x, y, on_edge, scratch);
  if (inside >= 0 || !on_edge) return inside;
  for (std::int32_t c : near) {
    cell_polygon(disv, static_cast<std::size_t>(c), scratch);
    if (locate_in_polygon(scratch.data(), corner_count(disv, static_cast<std::size_t>(c)), x, y) == Side::kOnEdge) {
      return c;
    }
  }
  return -1;
}

}  // namespace tesseramill
