#pragma once

#include "common/run_state.h"

namespace tesseramill {

// Creates the mesh point list and fills it with every point that does not
// come from the interior cycles, in the list's fixed order.
void emplace_fixed_points(RunState& state);

// The cosine and sine of 30 degrees as worked out from a single-precision
// value of pi; they place the hexagon round each inner point.
inline constexpr double kHexLong = 0.8660253964992068;
inline constexpr double kHexShort = 0.5000000126183913;

}  // namespace tesseramill
