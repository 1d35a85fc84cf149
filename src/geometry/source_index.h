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
};

// Builds the index from the run's inner points and populated chains as they
// stand; it must be built again whenever the chains change.
void build_source_index(RunState& state);

}  // namespace tesseramill
