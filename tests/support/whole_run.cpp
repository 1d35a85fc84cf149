#include "support/whole_run.h"

#include <gtest/gtest.h>

#include <limits>
#include <sstream>

#include "common/parallel.h"
#include "support/scratch.h"

namespace tesseramill_test {

namespace fs = std::filesystem;

WholeRun run_in(const fs::path& dir, const std::string& control, const tesseramill::RunOptions& options) {
  std::map<std::string, bool> inputs;
  for (const auto& entry : fs::directory_iterator(dir)) inputs[entry.path().filename().string()] = true;
  const fs::path here = fs::current_path();
  fs::current_path(dir);
  std::ostringstream screen;
  const char* argv[] = {"tesseramill", control.c_str()};
  tesseramill::run_program(2, argv, screen, options);
  fs::current_path(here);
  WholeRun run;
  run.screen = screen.str();
  for (const auto& entry : fs::directory_iterator(dir)) {
    const std::string name = entry.path().filename().string();
    if (!inputs.count(name)) run.files[name] = read_file(entry.path());
  }
  return run;
}

OneCore::OneCore() {
  tesseramill::smallest_shared_work = std::numeric_limits<std::size_t>::max();
  tesseramill::smallest_shared_cycle = std::numeric_limits<std::size_t>::max();
}

OneCore::~OneCore() {
  tesseramill::smallest_shared_work = tesseramill::kSmallestSharedWork;
  tesseramill::smallest_shared_cycle = tesseramill::kSmallestSharedCycle;
}

SharedFrom::SharedFrom(std::size_t count) { tesseramill::smallest_shared_work = count; }

SharedFrom::~SharedFrom() { tesseramill::smallest_shared_work = tesseramill::kSmallestSharedWork; }

void expect_same_runs(const WholeRun& expected, const WholeRun& actual) {
  EXPECT_EQ(actual.screen, expected.screen);
  ASSERT_EQ(actual.files.size(), expected.files.size());
  for (const auto& [name, text] : expected.files) {
    ASSERT_TRUE(actual.files.count(name)) << name;
    EXPECT_TRUE(actual.files.at(name) == text) << name << " differs";
  }
}

}  // namespace tesseramill_test
