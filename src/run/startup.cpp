// The first phases of a run and the last: run state, banner, command line,
// release.
#include <ostream>

#include "run/limits.h"
#include "run/phases.h"
#include "run/text_tools.h"

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

void print_banner(RunState& state) {
  *state.screen << "\n TESSERAMILL version " << state.version_text << " by Larkspur Analytics.\n";
}

std::string command_line_argument(int argc, const char* const* argv) {
  std::string argument = argc > 1 ? fit_field(argv[1], kFileNameLength) : std::string();
  left_adjust(argument);
  return argument;
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

void release_run_state(RunState& state) {
  std::ostream* screen = state.screen;
  state = RunState{};
  state.screen = screen;
}

}  // namespace tesseramill
