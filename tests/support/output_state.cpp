#include "support/output_state.h"

namespace tesseramill_test {

tesseramill::RunState state_writing_into(const ScratchDir& dir, const std::string& stamp) {
  tesseramill::RunState state;
  state.control.out_file_base = (dir.path() / "t").string();
  state.iteration_stamp = stamp;
  state.x_offset = -1000.0;
  state.y_offset = 500.0;
  return state;
}

}  // namespace tesseramill_test
