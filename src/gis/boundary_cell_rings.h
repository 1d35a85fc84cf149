// Which boundary ring each cell lies on, from the boundary cell table the
// mesher writes beside its grid.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "common/run_state.h"

namespace tesseramill {

// Ring of every cell (0-based index): 0 for an interior cell, 1 for the
// outer boundary, 1 + i for inner boundary i.  A table that cannot be read
// ends the run with its message.
std::vector<std::int32_t> boundary_cell_rings(RunState& state, const std::string& name, std::int32_t ncpl,
                                              const std::string& command);

}  // namespace tesseramill
