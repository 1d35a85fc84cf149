#include "common/failure.h"

#include <ostream>

#include "common/limits.h"
#include "common/text_tools.h"

namespace tesseramill {

void fail(RunState& state, const std::string& message) {
  state.message_buffer = fit_field(message, kMessageLength);
  throw RunFailure{};
}

void report_failure(RunState& state) {
  std::string text = fit_field(" " + trimmed(state.message_buffer), kMessageLength);
  print_message(*state.screen, text);
  state.screen->flush();
  release_run_state(state);
}

}  // namespace tesseramill
