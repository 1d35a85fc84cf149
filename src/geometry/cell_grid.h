// A grid of square cells over a rectangle of the plane, as the spatial
// indexes of the geometry use it: which cells a point, a rectangle or a
// segment falls in.
#pragma once

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <cstdint>

namespace tesseramill {

struct CellGrid {
  double x0 = 0.0;  // lower left corner of cell (0, 0)
  double y0 = 0.0;
  double h = 1.0;   // side of a cell
  double inverse_h = 1.0;
  std::int32_t nx = 0;
  std::int32_t ny = 0;

  std::size_t cell(std::int32_t i, std::int32_t j) const {
    return static_cast<std::size_t>(j) * static_cast<std::size_t>(nx) + static_cast<std::size_t>(i);
  }
  std::size_t cell_count() const { return static_cast<std::size_t>(nx) * static_cast<std::size_t>(ny); }
  // The column or row of a coordinate, unclamped and possibly not a number.
  double column_of(double x) const { return std::floor((x - x0) * inverse_h); }
  double row_of(double y) const { return std::floor((y - y0) * inverse_h); }
};

// Cells along the longer side of a grid over the `items` edges of an
// outline.  An outline of n edges of about one length spans some sqrt(n)
// of their lengths or more however it winds, so cells whose number along
// a side grows as sqrt(n) each hold about as many edges at any size: eight
// per root, no fewer than 256 (the grids of the outlines of up to 1,024
// edges stay as they were) and no more than 1,024 (a million cells).  The
// number of cells changes which cells are visited, never an answer.
inline std::int32_t cells_per_side_for(std::size_t items) {
  const double side = 8.0 * std::sqrt(static_cast<double>(items));
  return side < 256.0 ? 256 : side > 1024.0 ? 1024 : static_cast<std::int32_t>(side);
}

// A column or row number clamped into [0, size).  Not a number gives 0.
inline std::int32_t clamp_index(double value, std::int32_t size) {
  if (!(value >= 0.0)) return 0;
  if (value >= static_cast<double>(size - 1)) return size - 1;
  return static_cast<std::int32_t>(value);
}

// The cells a rectangle touches: columns i0..i1 and rows j0..j1, clamped
// into the grid.  `outside` when the rectangle lies wholly off the grid,
// `beyond` when part of it does.
struct CellSpan {
  bool outside;
  bool beyond;
  std::int32_t i0, i1, j0, j1;
};

inline CellSpan cells_touched(const CellGrid& g, double xlo, double xhi, double ylo, double yhi) {
  const double fi0 = g.column_of(xlo);
  const double fi1 = g.column_of(xhi);
  const double fj0 = g.row_of(ylo);
  const double fj1 = g.row_of(yhi);
  return CellSpan{fi1 < 0.0 || fi0 >= g.nx || fj1 < 0.0 || fj0 >= g.ny,
                  fi0 < 0.0 || fi1 >= g.nx || fj0 < 0.0 || fj1 >= g.ny,
                  clamp_index(fi0, g.nx),
                  clamp_index(fi1, g.nx),
                  clamp_index(fj0, g.ny),
                  clamp_index(fj1, g.ny)};
}

// Calls visit(i, j) once for every cell within `reach` of the segment from
// (ax, ay) to (bx, by), and possibly for a few more: row by row, the part
// of the segment whose height falls in the row widened by `reach`, and the
// columns it spans widened by `reach`.  The reach should include a share of
// a cell for the rounding of these steps.
template <typename Visit>
void for_each_cell_along_segment(const CellGrid& grid, double ax, double ay, double bx, double by, double reach,
                                 Visit visit) {
  const std::int32_t jlo = clamp_index(grid.row_of(std::min(ay, by) - reach), grid.ny);
  const std::int32_t jhi = clamp_index(grid.row_of(std::max(ay, by) + reach), grid.ny);
  for (std::int32_t j = jlo; j <= jhi; ++j) {
    double xa = std::min(ax, bx);
    double xb = std::max(ax, bx);
    if (ay != by) {
      const double band_lo = grid.y0 + j * grid.h - reach;
      const double band_hi = grid.y0 + (j + 1) * grid.h + reach;
      double t0 = (band_lo - ay) / (by - ay);
      double t1 = (band_hi - ay) / (by - ay);
      if (t0 > t1) std::swap(t0, t1);
      t0 = std::max(t0, 0.0);
      t1 = std::min(t1, 1.0);
      if (t0 > t1) continue;
      const double x0 = ax + t0 * (bx - ax);
      const double x1 = ax + t1 * (bx - ax);
      xa = std::min(x0, x1);
      xb = std::max(x0, x1);
    }
    const std::int32_t ilo = clamp_index(grid.column_of(xa - reach), grid.nx);
    const std::int32_t ihi = clamp_index(grid.column_of(xb + reach), grid.nx);
    for (std::int32_t i = ilo; i <= ihi; ++i) visit(i, j);
  }
}

}  // namespace tesseramill
