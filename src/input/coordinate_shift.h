#pragma once

#include "common/run_state.h"

namespace tesseramill {

// Tests every separation read against MAX_CENTROID_SEPARATION and moves all
// coordinates so that the outer boundary's smallest x and y become 1000.
void check_separations_and_shift(RunState& state);

}  // namespace tesseramill
