// A run state's first and last moments: blank with its fixed texts, and
// released.  The screen stays attached throughout.
#include "common/run_state.h"

namespace tesseramill {

void initialise_run_state(RunState& state) {
  std::ostream* screen = state.screen;
  state = RunState{};
  state.screen = screen;
  state.version_text = "1.21";
  state.block_names[kOuterBoundaryBlock] = "OUTER_BOUNDARY";
  state.block_names[kInnerBoundaryBlock] = "INNER_BOUNDARY";
  state.block_names[kInnerPointsBlock] = "INNER_POINTS";
  state.block_names[kInnerLineBlock] = "INNER_LINE";
  state.block_names[kInnerPolygonBlock] = "INNER_POLYGON";
  state.block_names[kMf6Block] = "MF6";
  state.block_names[kControlBlock] = "CONTROL";
}

void release_run_state(RunState& state) {
  std::ostream* screen = state.screen;
  state = RunState{};
  state.screen = screen;
}

}  // namespace tesseramill
