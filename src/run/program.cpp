#include "run/program.h"

#include <new>
#include <stdexcept>
#include <ostream>

#include "run/failure.h"
#include "run/phases.h"

namespace tesseramill {

int run_program(int argc, const char* const* argv, std::ostream& screen) {
  RunState state;
  state.screen = &screen;
  try {
    initialise_run_state(state);
    print_banner(state);
    if (!get_command_line(state, argc, argv)) return 0;
    read_control_file(state);
    read_boundary_files(state);
    check_boundaries(state);
    populate_boundaries(state);
    populate_interior(state);
    lloyd_iterations(state);
    write_final_files(state);
    write_mf6_files(state);
    release_run_state(state);
  } catch (const RunFailure&) {
    report_failure(state);
  } catch (const std::bad_alloc&) {
    state.message_buffer = "Unable to allocate sufficient memory to continue execution.";
    report_failure(state);
  } catch (const std::length_error&) {
    // A table larger than any allocation can hold is a memory failure too.
    state.message_buffer = "Unable to allocate sufficient memory to continue execution.";
    report_failure(state);
  }
  screen.flush();
  return 0;
}

}  // namespace tesseramill
