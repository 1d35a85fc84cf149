// Turns rings and lines into chains of mesh points.
#include "run/phases.h"

namespace tesseramill {

void populate_boundaries(RunState&) {}

}  // namespace tesseramill
