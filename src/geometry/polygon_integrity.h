#pragma once

#include <string>

#include "common/run_state.h"
#include "input/boundary_ring.h"

namespace tesseramill {

// Decides whether a closed ring is a simple polygon: no vertex on or near
// another vertex or a segment it does not belong to, no two segments
// crossing.  Returns 0, or 1 with the message in message_buffer.
// The runs of vertices whose boxes show that none of their tests can fail
// are passed over; check_polygon_integrity_reference makes every test.
int check_polygon_integrity(RunState& state, const BoundaryRing& ring, const std::string& file_name);
int check_polygon_integrity_reference(RunState& state, const BoundaryRing& ring, const std::string& file_name);

}  // namespace tesseramill
