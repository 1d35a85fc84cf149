#pragma once

#include <cstdint>

#include "common/run_state.h"

namespace tesseramill {

// Sizes the candidate grid from NSDIM.
void create_emplacement_grid(RunState& state);

// Number of the last mesh point that is not a seed in cycle `cycle`, given
// the value it had in the cycle before.
std::int32_t seed_range_start(const RunState& state, std::int32_t cycle, std::int32_t seed_after);

// Lets mesh point `seed` (1-based) propose one new point of cycle `cycle`;
// returns whether it added one.  The candidate comes from the fast path once
// it is started, unless the run takes the reference paths.
bool propose_from_seed(RunState& state, std::int32_t seed, std::int32_t cycle);

// The candidate that seed `seed` chooses, by the literal steps: the grid,
// every candidate's domain test and separation, every listed point and
// boundary segment.  False when none is left.
bool choose_from_seed_reference(RunState& state, std::int32_t seed, double& x, double& y);

}  // namespace tesseramill
