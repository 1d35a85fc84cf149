// The pieces of one Lloyd pass that follow the building of the cells.
#pragma once

#include <cstdint>
#include <string>

#include "common/run_state.h"

namespace tesseramill {

// Whether the pass being made writes the stamped map files and tables.
bool iteration_files_due(const RunState& state);

// Number of the first mesh point that may move: one more than the fixed ones.
std::int32_t first_free_point(const RunState& state);

struct PassMeasure {
  double sum = 0.0;
  double worst = -1.0e30;
  std::int32_t count = 0;
  double last_d = 0.0;  // the measure of the last mesh point
};

// Distances of the free points from their cells' centroids, in units of the
// square root of the cell's area.
PassMeasure measure_pass(RunState& state);

// The screen line of a pass.
std::string pass_line(std::int32_t iteration, const PassMeasure& m);

// Moves every free point whose cell centroid lies in the domain.
void move_free_points(RunState& state, double stay_fac);

}  // namespace tesseramill
