// Reading of the BLN files that the control file names.
#include "run/phases.h"

namespace tesseramill {

void read_boundary_files(RunState& state) {
  ControlData& c = state.control;
  // MAX_LLOYD and NSDIM take their defaults only now, after the control file
  // has been reported read, since the emplacement grid is sized from NSDIM.
  if (c.max_lloyd < 0) c.max_lloyd = kDefaultMaxLloyd;
  if (c.nsdim < 0) c.nsdim = kDefaultNsdim;
}

}  // namespace tesseramill
