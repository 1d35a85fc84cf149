// A whole run of the program in this process, in a folder of its own: the
// screen and every file the run wrote.
#pragma once

#include <cstddef>
#include <filesystem>
#include <map>
#include <string>

#include "run/program.h"

namespace tesseramill_test {

struct WholeRun {
  std::string screen;
  std::map<std::string, std::string> files;  // everything the run wrote
};

// Runs the program in `dir` on `control` with `options`, in this process.
WholeRun run_in(const std::filesystem::path& dir, const std::string& control,
                const tesseramill::RunOptions& options = {});

// Runs with every piece of work on one core, for the life of the object:
// no count of items reaches the size from which work is shared.
class OneCore {
 public:
  OneCore();
  ~OneCore();
  OneCore(const OneCore&) = delete;
  OneCore& operator=(const OneCore&) = delete;
};

// Shares every piece of work of at least `count` items between the two
// cores, for the life of the object, so that small inputs take the shared
// paths too.
class SharedFrom {
 public:
  explicit SharedFrom(std::size_t count);
  ~SharedFrom();
  SharedFrom(const SharedFrom&) = delete;
  SharedFrom& operator=(const SharedFrom&) = delete;
};

// Expects two runs to have written the same screen and the same files, byte
// for byte.
void expect_same_runs(const WholeRun& expected, const WholeRun& actual);

}  // namespace tesseramill_test
