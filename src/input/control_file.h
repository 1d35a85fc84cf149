#pragma once

#include "common/run_state.h"

namespace tesseramill {

// The closing checks of the control file that look at the whole file at once:
// duplicate BLN names, polygon separations and the XORIGIN/YORIGIN pair.
void check_duplicate_bln_names(RunState& state);
void check_control_totals(RunState& state);

}  // namespace tesseramill
