// One model of the benchmark run as a child process: this build's library
// through the benchmark's own --run-one (with the seconds of each phase), or
// another build of the program as a whole; with its wall and processor
// times and its peak memory, its own and no one else's.
#pragma once

#include <array>
#include <filesystem>
#include <string>

#include "run/program.h"
#include "text_columns.h"

namespace tesseramill_bench {

struct Timing {
  bool ok = false;
  long cells = 0;
  // The phases as the library times them (run/program.h); 0 for another build.
  std::array<double, tesseramill::kPhaseCount> phase{};
  double wall = 0.0;
  double user = 0.0;
  double system = 0.0;
  long peak_kib = 0;

  double seconds(tesseramill::Phase p) const { return phase[static_cast<std::size_t>(p)]; }
  double total_seconds() const {
    double total = 0.0;
    for (double s : phase) total += s;
    return total;
  }
};

// The child's side of time_library: runs model.in in the current folder
// (the reference path when `reference`), keeps its screen in screen.txt and
// prints "ok" or "failed", the cells and the phases' seconds.
int run_one(bool reference);

// Runs model.in in `folder` by this very program's --run-one.
Timing time_library(const std::filesystem::path& folder, bool reference);

// Runs model.in in `folder` by another build of the program, whose screen
// is kept in screen.txt there.
Timing time_binary(const std::string& binary, const std::filesystem::path& folder);

// Whether the two folders hold the same files with the same bytes.
bool same_files(const std::filesystem::path& a, const std::filesystem::path& b);

}  // namespace tesseramill_bench
