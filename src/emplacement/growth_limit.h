#pragma once

#include "common/run_state.h"
#include "input/boundary_ring.h"

namespace tesseramill {

// Walks each segment of a ring or line at 51 stations and lowers both end
// separations where the wanted separation exceeds the separation field.
// Returns whether anything was lowered.
bool enforce_growth_limit(const RunState& state, BoundaryRing& ring);

}  // namespace tesseramill
