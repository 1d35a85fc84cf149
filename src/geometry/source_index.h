// A bucket grid over the sources of the separation field, so that a query
// visits only the sources near enough to lower its result.
#pragma once

#include <algorithm>
#include <cstdint>
#include <vector>

#include "geometry/cell_grid.h"

namespace tesseramill {

struct RunState;

// The smallest rectangle that holds the sources of a cell of the grid, and
// the smallest of their separations.
struct SourceCellSummary {
  double xlo = 0.0;
  double xhi = 0.0;
  double ylo = 0.0;
  double yhi = 0.0;
  double least = 0.0;
};

struct SourceIndex {
  bool built = false;
  CellGrid grid;
  std::vector<std::int32_t> cell_start;  // sources of cell c: [cell_start[c], cell_start[c+1])
  std::vector<double> xs;
  std::vector<double> ys;
  std::vector<double> separations;
  // For each cell, the Chebyshev distance in cells to the nearest cell that
  // holds a source: the number of rings of cells around it that hold none.
  // kNoSourceNear where no cell holds one.
  std::vector<std::uint16_t> empty_rings;
  // For each cell that holds a source, the summary of its sources, so that
  // a walk may pass over a cell none of whose sources could change its
  // result (see the walks of local_separation.cpp and field_bounds.cpp);
  // that of cell c is kept at the place of its first source,
  // summaries[cell_start[c]], so that the table grows with the sources
  // rather than with the cells, most of which hold none.  Empty when not
  // kept: the walks then look at every source, as they did before the
  // summaries, which the tests compare.
  std::vector<SourceCellSummary> summaries;
};

// The squared gap between the rectangle [xlo, xhi] x [ylo, yhi] (a point
// when xlo = xhi and ylo = yhi) and a cell's rectangle of sources, rounded
// as the walks round the gap to each source: each of x - sx, sx - x and
// their squares and sum only grows, step by rounded step, as the source
// moves away, and every source of the cell lies in its rectangle, so the
// gap to the cell is no larger than that to any of its sources.  All four
// sides must be finite numbers.
inline double squared_gap_to_cell(const SourceCellSummary& cell, double xlo, double xhi, double ylo, double yhi) {
  const double ex = std::max({xlo - cell.xhi, 0.0, cell.xlo - xhi});
  const double ey = std::max({ylo - cell.yhi, 0.0, cell.ylo - yhi});
  return ex * ex + ey * ey;
}

inline constexpr std::uint16_t kNoSourceNear = 65535;

// Builds the index from the run's inner points and populated chains as they
// stand; it must be built again whenever the chains change.
void build_source_index(RunState& state);

// How many rings of cells around the block of columns i0..i1 and rows
// j0..j1 (i0 <= i1, j0 <= j1) surely hold no source, so that a walk
// outwards ring by ring may start at that ring.  The block may reach
// outside the grid; a block of many cells is not looked at and gives 0.
std::int64_t empty_rings_around(const SourceIndex& index, std::int64_t i0, std::int64_t i1, std::int64_t j0,
                                std::int64_t j1);

}  // namespace tesseramill
