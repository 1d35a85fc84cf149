#include "run/program.h"

#include <chrono>
#include <ostream>

#include "common/failure.h"
#include "run/phases.h"

namespace tesseramill {

namespace {

using PhaseFunction = void (*)(RunState&);

// The phases after the command line, in their fixed order.
constexpr PhaseFunction kPhases[kPhaseCount] = {
    read_control_file, read_boundary_files, check_boundaries, populate_boundaries,
    populate_interior, lloyd_iterations,    write_final_files, write_mf6_files,
};

}  // namespace

void run_phase(RunState& state, Phase phase) { kPhases[static_cast<int>(phase)](state); }

namespace {

void run_phases(RunState& state, const RunOptions& options) {
  for (int k = 0; k < kPhaseCount; ++k) {
    const auto start = std::chrono::steady_clock::now();
    run_phase(state, static_cast<Phase>(k));
    if (options.phase_seconds != nullptr) {
      (*options.phase_seconds)[static_cast<std::size_t>(k)] =
          std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
    }
    if (k == static_cast<int>(options.last_phase)) break;
  }
}

}  // namespace

int run_program(int argc, const char* const* argv, std::ostream& screen, const RunOptions& options) {
  RunState state;
  state.screen = &screen;
  run_to_one_exit(state, [&] {
    initialise_run_state(state);
    state.reference_paths = options.reference_paths;
    print_banner(state);
    if (!get_command_line(state, argc, argv)) return;
    run_phases(state, options);
    release_run_state(state);
  });
  screen.flush();
  return 0;
}

}  // namespace tesseramill
