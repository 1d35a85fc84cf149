#pragma once

#include "run/run_state.h"

namespace tesseramill {

// The separation the run asks for at (x, y): the smallest size over all
// sources (inner points and populated chain points), each growing away from
// its own separation at the rate `growth`, capped by the inner polygons that
// hold the point and by MAX_CENTROID_SEPARATION.
double local_separation(const RunState& state, double x, double y, double growth);

}  // namespace tesseramill
