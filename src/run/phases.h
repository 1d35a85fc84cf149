// The phases of a run, called once each in this order by run_program; only
// lloyd_iterations loops inside itself.
#pragma once

#include <string>

#include "run/run_state.h"

namespace tesseramill {

void initialise_run_state(RunState& state);
void print_banner(RunState& state);
// The first argument of the command line, cut to the length of a file
// name and left-adjusted; empty when there is none or it is blank.
std::string command_line_argument(int argc, const char* const* argv);
// Returns false when the run ends with the usage text.
bool get_command_line(RunState& state, int argc, const char* const* argv);
void read_control_file(RunState& state);
void read_boundary_files(RunState& state);
void check_boundaries(RunState& state);
void populate_boundaries(RunState& state);
void populate_interior(RunState& state);
void lloyd_iterations(RunState& state);
void write_final_files(RunState& state);
void write_mf6_files(RunState& state);
void release_run_state(RunState& state);

}  // namespace tesseramill
