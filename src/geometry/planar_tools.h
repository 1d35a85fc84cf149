// Planar routines on the run's shifted geometry.
#pragma once

#include <cstdint>

#include "input/boundary_ring.h"
#include "run/run_state.h"

namespace tesseramill {

// True when (x, y) lies strictly inside the outer boundary and strictly
// outside every inner boundary.
bool point_in_domain(const RunState& state, double x, double y);

// Distance from (x, y) to the segment from (x1, y1) to (x2, y2).
double distance_to_segment(double x, double y, double x1, double y1, double x2, double y2);

// True when a populated point of inner line `line_number` (1-based) may become
// a mesh point: inside the domain, at least `clearance` from every boundary
// segment and from every accepted point of an earlier line.
bool line_point_clear(const RunState& state, double x, double y, double clearance,
                      std::int32_t line_number);

}  // namespace tesseramill
