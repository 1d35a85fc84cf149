#pragma once

#include <cstdint>

#include "run/run_state.h"

namespace tesseramill {

// Sizes the candidate grid from NSDIM.
void create_emplacement_grid(RunState& state);

// Number of the last mesh point that is not a seed in cycle `cycle`, given
// the value it had in the cycle before.
std::int32_t seed_range_start(const RunState& state, std::int32_t cycle, std::int32_t seed_after);

// Lets mesh point `seed` (1-based) propose one new point of cycle `cycle`;
// returns whether it added one.
bool propose_from_seed(RunState& state, std::int32_t seed, std::int32_t cycle);

}  // namespace tesseramill
