// Work shared between two cores gives the bytes of the same work on one
// core: whole runs large enough for every shared loop to split (20,000
// items and more), and a failure met in the second half of the split work.
#include <gtest/gtest.h>

#include <string>

#include "common/parallel.h"
#include "model_family.h"
#include "support/flat_triangle.h"
#include "support/scratch.h"
#include "support/whole_run.h"

namespace tesseramill_test {
namespace {

// The family's model of about 30,000 cells with three Lloyd passes: more
// than 20,000 mesh points, cells and lines of every map file, and about
// 60,000 triangles, so every loop that shares its work splits it.
tesseramill_bench::ModelRecipe split_model() {
  tesseramill_bench::ModelRecipe recipe = tesseramill_bench::family_model(3e4);
  recipe.max_lloyd = 3;
  return recipe;
}

int cells_of(const WholeRun& run) {
  const std::string& disv = run.files.at("model.disv");
  const std::size_t at = disv.find("NCPL");
  return at == std::string::npos ? -1 : std::stoi(disv.substr(at + 4));
}

WholeRun run_split_model(bool one_core) {
  ScratchDir dir;
  tesseramill_bench::write_model(split_model(), dir.path());
  if (!one_core) return run_in(dir.path(), "model.in");
  OneCore one;
  return run_in(dir.path(), "model.in");
}

TEST(Cores, OneCoreAndTwoCoresWriteTheSameBytes) {
  const WholeRun two = run_split_model(false);
  ASSERT_NE(two.screen.find(" - file model.oc written ok.\n"), std::string::npos) << screen_tail(two.screen, 2000);
  ASSERT_GE(cells_of(two), static_cast<int>(tesseramill::kSmallestSharedWork));
  const WholeRun one = run_split_model(true);
  expect_same_runs(one, two);
}

// A run whose first triangulation collapses triangles at the given shares of
// the table, on one core or two.
WholeRun collapsing_run(bool one_core, const std::vector<double>& shares) {
  ScratchDir dir;
  tesseramill_bench::write_model(split_model(), dir.path());
  FlattenTriangles flatten(shares);
  if (!one_core) return run_in(dir.path(), "model.in");
  OneCore one;
  return run_in(dir.path(), "model.in");
}

// The collapse lies in the second half of the triangles, which the second
// core measures; the run stops with the text one core gives.
TEST(Cores, FailureInTheSecondHalfGivesTheOneCoreText) {
  const WholeRun two = collapsing_run(false, {0.75});
  const std::int32_t collapsed = FlattenTriangles::flattened().at(0);
  const WholeRun one = collapsing_run(true, {0.75});
  EXPECT_EQ(FlattenTriangles::flattened().at(0), collapsed);
  EXPECT_NE(two.screen.find("\n Triangle # " + std::to_string(collapsed) + " collapsed with vertices"),
            std::string::npos)
      << screen_tail(two.screen, 1000);
  expect_same_runs(one, two);
}

// Collapses in both halves: both cores fail, and the run names the lower
// triangle, as one core meets it first.
TEST(Cores, FailuresInBothHalvesNameTheLowerTriangle) {
  const WholeRun two = collapsing_run(false, {0.75, 0.25});
  const std::int32_t lower = FlattenTriangles::flattened().at(1);
  const WholeRun one = collapsing_run(true, {0.75, 0.25});
  EXPECT_NE(two.screen.find("\n Triangle # " + std::to_string(lower) + " collapsed with vertices"),
            std::string::npos)
      << screen_tail(two.screen, 1000);
  expect_same_runs(one, two);
}

}  // namespace
}  // namespace tesseramill_test
