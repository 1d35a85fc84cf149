// The MODFLOW 6 grid and the simulation files around it.
#include "run/phases.h"

namespace tesseramill {

void write_mf6_files(RunState&) {}

}  // namespace tesseramill
