// Whole runs on the fast paths and on the reference paths write the same
// screen and the same files, byte for byte.
#include <gtest/gtest.h>

#include <fstream>
#include <map>
#include <sstream>

#include "model_family.h"
#include "run/program.h"
#include "support/random.h"
#include "support/scratch.h"
#include "support/sha256.h"

namespace tesseramill_test {
namespace {

namespace fs = std::filesystem;
using tesseramill_bench::ModelRecipe;

struct WholeRun {
  std::string screen;
  std::map<std::string, std::string> files;  // everything the run wrote
};

// Runs the program in `dir` on `control`, in this process.
WholeRun run_in(const fs::path& dir, const std::string& control, bool reference) {
  std::map<std::string, bool> inputs;
  for (const auto& entry : fs::directory_iterator(dir)) inputs[entry.path().filename().string()] = true;
  const fs::path here = fs::current_path();
  fs::current_path(dir);
  std::ostringstream screen;
  tesseramill::RunOptions options;
  options.reference_paths = reference;
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

// Runs both paths on copies of the same inputs and compares everything.
void expect_identical_runs(const fs::path& inputs, const std::string& control) {
  ScratchDir fast_dir;
  ScratchDir reference_dir;
  copy_folder(inputs, fast_dir.path());
  copy_folder(inputs, reference_dir.path());
  const WholeRun fast = run_in(fast_dir.path(), control, false);
  const WholeRun reference = run_in(reference_dir.path(), control, true);
  // A run that ended early proves little: every model here runs to the end.
  ASSERT_NE(fast.screen.find(" written ok.\n - file mfsim.nam"), std::string::npos) << fast.screen;
  EXPECT_EQ(fast.screen, reference.screen);
  ASSERT_EQ(fast.files.size(), reference.files.size());
  for (const auto& [name, text] : reference.files) {
    ASSERT_TRUE(fast.files.count(name)) << name;
    EXPECT_TRUE(fast.files.at(name) == text) << name << " differs";
  }
  expect_ready_for_modflow(fast_dir.path(), control);
}

TEST(ReferencePaths, SquareModel) { expect_identical_runs(source_path("tests/models/square"), "square.in"); }

TEST(ReferencePaths, ModelWithEveryKindOfInput) { expect_identical_runs(source_path("examples/full"), "model.in"); }

TEST(ReferencePaths, TwoHolesCrossingLinesAndWells) { expect_identical_runs(source_path("tests/models/two_holes"), "m.in"); }

// Models of the family with their features, growth rates, grid sizes and
// Lloyd settings drawn at random, coarse enough for the literal steps: a
// few hundred cells each.
TEST(ReferencePaths, RandomModels) {
  Random random(51);
  for (int trial = 0; trial < 8; ++trial) {
    ModelRecipe recipe = tesseramill_bench::family_model(1e3);
    recipe.seed = 100 + static_cast<std::uint64_t>(trial);
    recipe.scale = random.uniform(40, 60);
    recipe.refinement = random.uniform(0.4, 1.0);
    recipe.lake = trial % 2 == 0;
    recipe.river = trial % 3 != 1;
    recipe.wells = static_cast<int>(random.uniform(0, 4));
    recipe.zone = trial % 4 != 3;
    recipe.growth = random.uniform(1.05, 1.6);
    recipe.nsdim = 2 * static_cast<int>(random.uniform(2, 8)) + 1;
    recipe.safety = static_cast<int>(random.uniform(0, 4));
    recipe.lloyd_fac = random.uniform(0.1, 1.0);
    recipe.max_lloyd = static_cast<int>(random.uniform(0, 6));
    if (trial == 5) {
      recipe.outline_vertices = 80;
      recipe.outline_roughness = 0.03;
    }
    ScratchDir inputs;
    tesseramill_bench::write_model(recipe, inputs.path());
    SCOPED_TRACE("trial " + std::to_string(trial));
    expect_identical_runs(inputs.path(), "model.in");
  }
}

// The family's model of about 30,000 cells (30,651 with 30 Lloyd passes).
// Its reference run takes about an hour, so the digests of what the reference path
// writes are recorded in tests/golden/large/reference.sha256; the fast run
// is compared with them here.  ReferencePathsRecorded re-derives them.
const char* const kRecordedDigests = "tests/golden/large/reference.sha256";

std::map<std::string, std::string> recorded_digests() {
  std::map<std::string, std::string> digests;
  std::istringstream lines(read_file(source_path(kRecordedDigests)));
  std::string digest;
  std::string name;
  while (lines >> digest >> name) digests[name] = digest;
  return digests;
}

std::map<std::string, std::string> digests_of(const WholeRun& run) {
  std::map<std::string, std::string> digests = {{"screen", sha256(run.screen)}};
  for (const auto& [name, text] : run.files) digests[name] = sha256(text);
  return digests;
}

WholeRun large_run(const ScratchDir& dir, bool reference) {
  tesseramill_bench::write_model(tesseramill_bench::family_model(3e4), dir.path());
  return run_in(dir.path(), "model.in", reference);
}

TEST(ReferencePaths, LargeModelWritesWhatTheReferencePathWrote) {
  const std::map<std::string, std::string> recorded = recorded_digests();
  ASSERT_GT(recorded.size(), 20u);
  ScratchDir dir;
  EXPECT_EQ(digests_of(large_run(dir, false)), recorded);
  expect_ready_for_modflow(dir.path(), "model.in");
}

// Takes about an hour: run it with --gtest_also_run_disabled_tests to confirm the
// recorded digests from the reference path itself.
TEST(ReferencePaths, DISABLED_ReferencePathsRecorded) {
  ScratchDir dir;
  const std::map<std::string, std::string> digests = digests_of(large_run(dir, true));
  std::ostringstream listing;
  for (const auto& [name, digest] : digests) listing << digest << "  " << name << "\n";
  EXPECT_EQ(digests, recorded_digests()) << "the reference path wrote:\n" << listing.str();
}

}  // namespace
}  // namespace tesseramill_test
