#pragma once

#include <array>
#include <iosfwd>

namespace tesseramill {

// The phases after the command line, in the order a run makes them.
enum class Phase {
  kReadControlFile,
  kReadBoundaryFiles,
  kCheckBoundaries,
  kPopulateBoundaries,
  kPopulateInterior,
  kLloydIterations,
  kWriteFinalFiles,
  kWriteMf6Files,
};
inline constexpr int kPhaseCount = 8;

// Choices open to the library's own tests, benchmarks and fuzz targets; the
// program itself has no options and always runs with the defaults.
struct RunOptions {
  // Every fast path replaced by the reference routine it must agree with.
  bool reference_paths = false;
  // The run ends normally after this phase.
  Phase last_phase = Phase::kWriteMf6Files;
  // When given, receives the wall seconds spent in each phase.
  std::array<double, kPhaseCount>* phase_seconds = nullptr;
};

struct RunState;

// Runs one phase on the run state.
void run_phase(RunState& state, Phase phase);

// Runs the whole program on the given command line, writing the screen text
// to `screen`.  The result is always 0: a caller tells success from failure
// only by the screen text and the files.
int run_program(int argc, const char* const* argv, std::ostream& screen, const RunOptions& options = {});

}  // namespace tesseramill
