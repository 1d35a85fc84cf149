// A program run as a child process of the benchmarks, with its wall time
// and the peak memory it held, its own and no one else's.
#pragma once

#include <filesystem>
#include <string>
#include <vector>

namespace tesseramill_bench {

struct ChildRun {
  bool ok = false;  // ended normally with status 0
  double wall = 0.0;
  long peak_kib = 0;
  double user = 0.0;    // processor seconds in its own code
  double system = 0.0;  // and in the system's on its behalf
  std::string out;  // what it wrote to its standard output
};

// Runs args[0] with the arguments args[1..] in `folder`.
ChildRun run_child(const std::vector<std::string>& args, const std::filesystem::path& folder);

}  // namespace tesseramill_bench
