// Fills the model domain with free mesh points.
#include "run/phases.h"

namespace tesseramill {

void populate_interior(RunState&) {}

}  // namespace tesseramill
