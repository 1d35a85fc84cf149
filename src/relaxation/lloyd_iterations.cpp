// Triangulates, builds the cells and relaxes the free mesh points.
#include "run/phases.h"

namespace tesseramill {

void lloyd_iterations(RunState&) {}

}  // namespace tesseramill
