// Whole runs on the fast paths and on the reference paths write the same
// screen and the same files, byte for byte.
#include <gtest/gtest.h>

#include <fstream>
#include <map>
#include <sstream>

#include "common/parallel.h"
#include "model_family.h"
#include "run/program.h"
#include "support/random.h"
#include "support/scratch.h"
#include "support/sha256.h"
#include "support/whole_run.h"

namespace tesseramill_test {
namespace {

namespace fs = std::filesystem;
using tesseramill_bench::ModelRecipe;

// Runs both paths on copies of the same inputs and compares everything;
// gives the fast run's screen to `fast_screen` when asked.
void expect_identical_runs(const fs::path& inputs, const std::string& control, std::string* fast_screen = nullptr) {
  ScratchDir fast_dir;
  ScratchDir reference_dir;
  copy_folder(inputs, fast_dir.path());
  copy_folder(inputs, reference_dir.path());
  const WholeRun fast = run_in(fast_dir.path(), control);
  const WholeRun reference = run_in(reference_dir.path(), control, {.reference_paths = true});
  // A run that ended early proves little: every model here runs to the end.
  ASSERT_NE(fast.screen.find(" written ok.\n - file mfsim.nam"), std::string::npos) << fast.screen;
  if (fast_screen != nullptr) *fast_screen = fast.screen;
  expect_same_runs(reference, fast);
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

// The short form of the check below, small enough for every test run: a
// square of 10,820 cells at an even spacing, whose 21,186 triangles pass
// the size from which the work on triangles (and on the lines of the
// triangle map files) is split over two cores, with one Lloyd pass.  NSDIM
// 5 keeps the reference emplacement, which measures every candidate against
// every boundary point, to about 25 s on one core (with the default 31 it
// takes many minutes).  The reference routines must write what the fast
// ones do, byte for byte, split work included.
TEST(ReferencePaths, ModelLargeEnoughToSplitTheWork) {
  ScratchDir inputs;
  inputs.write("t.in",
               "START CONTROL\n MAX_CENTROID_SEPARATION 10\n POLY_GROWTH_RATE 1.2\n OUT_FILE_BASE big\n"
               " MAX_CELLS 20000\n MAX_LLOYD 1\n NSDIM 5\nEND CONTROL\nSTART MF6\n MF6_BASENAME big\n NLAY 1\nEND MF6\n"
               "START OUTER_BOUNDARY\n BLN_FILE outer.bln\nEND OUTER_BOUNDARY\n");
  inputs.write("outer.bln", "5\n0 0 10\n1130 0 10\n1130 1130 10\n0 1130 10\n0 0 10\n");
  std::string fast_screen;
  expect_identical_runs(inputs.path(), "t.in", &fast_screen);
  static_assert(tesseramill::kSmallestSharedWork <= 21186);
  EXPECT_NE(fast_screen.find(" - 21186 triangles generated\n"), std::string::npos) << fast_screen;
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
  return run_in(dir.path(), "model.in", {.reference_paths = reference});
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
