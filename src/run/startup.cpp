// The first phases of a run: the banner and the command line.
#include <ostream>

#include "common/command_line.h"
#include "run/phases.h"

namespace tesseramill {

void print_banner(RunState& state) {
  *state.screen << "\n TESSERAMILL version " << state.version_text << " by Larkspur Analytics.\n";
}

bool get_command_line(RunState& state, int argc, const char* const* argv) {
  const std::string argument = command_line_argument(argc, argv);
  if (argument.empty()) {
    *state.screen << "\n"
                     " TESSERAMILL is run using the command:\n"
                     "\n"
                     "   tesseramill infile\n"
                     "\n"
                     " where\n"
                     "\n"
                     "   infile is the name of the TESSERAMILL input file.\n";
    release_run_state(state);
    return false;
  }
  state.control_file_name = argument;
  return true;
}

}  // namespace tesseramill
