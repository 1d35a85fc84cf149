// The message a step of the run ends with, for tests of its failures.
#pragma once

#include <string>

#include "common/failure.h"
#include "common/run_state.h"

namespace tesseramill_test {

// Runs `phase` on `state` and gives the message it ended the run with, or
// an empty text when it did not end the run.
inline std::string failure_of(tesseramill::RunState& state, void (*phase)(tesseramill::RunState&)) {
  try {
    phase(state);
  } catch (const tesseramill::RunFailure&) {
    return state.message_buffer;
  }
  return "";
}

}  // namespace tesseramill_test
