// The phases of a run, called once each in this order by run_program; only
// lloyd_iterations loops inside itself.
#pragma once

#include <string>

#include "common/run_state.h"

namespace tesseramill {

void print_banner(RunState& state);
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

}  // namespace tesseramill
