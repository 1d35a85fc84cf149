// The one failure exit of a run.  A routine that finds a fault composes its
// text with `fail`; the text travels to the program's single exit, where
// `report_failure` prints it.
#pragma once

#include <string>

#include "run/run_state.h"

namespace tesseramill {

struct RunFailure {};

// Puts `message` into message_buffer (cut to its length) and leaves the phase.
[[noreturn]] void fail(RunState& state, const std::string& message);

// Prints the failure text: an empty line, then the text with one leading
// blank, wrapped at 78 columns; then releases the run state.
void report_failure(RunState& state);

}  // namespace tesseramill
