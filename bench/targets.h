// The speed targets: GIS-like models at the family's interior cost per cell,
// the family's million cells in a set time and with little system time, and
// optionally ten million cells in a set time and memory.  Within a round
// each GIS-like model runs back to back with the family's model of its
// size, and each figure is the median of the rounds.
#pragma once

#include <string>

namespace tesseramill_bench {

struct TargetOptions {
  int rounds = 3;
  // Another build of the program, run on the models of a group (a GIS-like
  // model and the family's of its size, or one model alone) right after
  // this one; its whole runs are timed and its files compared with this
  // build's.
  std::string other_binary;
  bool with_1e7 = false;
};

// Runs the models and prints their table and the targets'; gives the exit
// status: 0 when every run finished (whether or not the targets are met).
int run_targets(const TargetOptions& options);

}  // namespace tesseramill_bench
