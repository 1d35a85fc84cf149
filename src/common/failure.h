// The one failure exit of a run.  A routine that finds a fault composes its
// text with `fail`; the text travels to the program's single exit, where
// `report_failure` prints it.
#pragma once

#include <new>
#include <stdexcept>
#include <string>

#include "common/run_state.h"

namespace tesseramill {

struct RunFailure {};

// Puts `message` into message_buffer (cut to its length) and leaves the phase.
[[noreturn]] void fail(RunState& state, const std::string& message);

// Prints the failure text: an empty line, then the text with one leading
// blank, wrapped at 78 columns; then releases the run state.
void report_failure(RunState& state);

// Runs `body()` and leaves through report_failure when it fails, or when
// memory runs out: a table larger than any allocation can hold is a memory
// failure too.
template <typename Body>
void run_to_one_exit(RunState& state, Body body) {
  try {
    body();
  } catch (const RunFailure&) {
    report_failure(state);
  } catch (const std::bad_alloc&) {
    state.message_buffer = "Unable to allocate sufficient memory to continue execution.";
    report_failure(state);
  } catch (const std::length_error&) {
    state.message_buffer = "Unable to allocate sufficient memory to continue execution.";
    report_failure(state);
  }
}

}  // namespace tesseramill
