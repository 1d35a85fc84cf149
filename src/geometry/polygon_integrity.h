#pragma once

#include <string>

#include "common/run_state.h"
#include "input/boundary_ring.h"

namespace tesseramill {

// Decides whether a closed ring is a simple polygon: no vertex on or near
// another vertex or a segment it does not belong to, no two segments
// crossing.  Returns 0, or 1 with the message in message_buffer.
int check_polygon_integrity(RunState& state, const BoundaryRing& ring, const std::string& file_name);

}  // namespace tesseramill
