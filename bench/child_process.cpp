#include "child_process.h"

#include <chrono>

#include "common/platform.h"

namespace tesseramill_bench {

ChildRun run_child(const std::vector<std::string>& args, const std::filesystem::path& folder) {
  ChildRun run;
  if (args.empty()) return run;
  const auto start = std::chrono::steady_clock::now();
  const std::vector<std::string> rest(args.begin() + 1, args.end());
  const tesseramill::ChildRun child =
      tesseramill::run_child(folder, args[0], rest, tesseramill::ChildStreams::kOutput);
  run.wall = std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
  run.ok = child.status == 0;
  run.peak_kib = child.peak_kib;
  run.user = child.user_seconds;
  run.system = child.system_seconds;
  run.out = child.output;
  return run;
}

}  // namespace tesseramill_bench
