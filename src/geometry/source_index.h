// A bucket grid over the sources of the separation field, so that a query
// visits only the sources near enough to lower its result.
#pragma once

#include <cstdint>
#include <vector>

#include "geometry/cell_grid.h"

namespace tesseramill {

struct RunState;

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
};

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
