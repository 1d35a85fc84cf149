// The first pass's map files are filled on threads of their own while the
// run goes on to the next pass.  When the next pass's triangulation fails,
// the run must end with the screen and the files of a run that wrote the
// files at once (the reference path): the first pass's files whole,
// DTRIS2's lines after the first pass's line, and its failure text last.
#include <gtest/gtest.h>

#include <string>

#include "common/run_state.h"
#include "model_family.h"
#include "support/scratch.h"
#include "support/whole_run.h"
#include "triangulation/dtris2.h"
#include "triangulation/triangulate_points.h"

namespace tesseramill_test {
namespace {

namespace fs = std::filesystem;

// After the first pass's triangulation, DTRIS2's stack holds one entry, so
// that the second pass's first fan of two triangles fills it.
void shrink_stack_after_first_pass(tesseramill::RunState& state) {
  if (state.lloyd_iteration == 0) tesseramill::dtris2_stack_capacity_for_tests = 1;
}

struct SecondPassFails {
  SecondPassFails() { tesseramill::after_dtris2_for_tests = shrink_stack_after_first_pass; }
  ~SecondPassFails() {
    tesseramill::after_dtris2_for_tests = nullptr;
    tesseramill::dtris2_stack_capacity_for_tests = 0;
  }
  SecondPassFails(const SecondPassFails&) = delete;
  SecondPassFails& operator=(const SecondPassFails&) = delete;
};

WholeRun failing_run(const fs::path& inputs, const std::string& control, bool reference) {
  ScratchDir dir;
  copy_folder(inputs, dir.path());
  SecondPassFails fails;
  return run_in(dir.path(), control, {.reference_paths = reference});
}

const char* const kFirstPassLine = "   itn 0: max/ave normalized pt-to-centroid dist = [";

// DTRIS2's block when the first fan of two triangles fills the stack, and
// when a swap after a fan does.
const char* const kFanFillsTheStack =
    " \nDTRIS2 - Fatal error!\n  Ran out of stack space.\n  MAXST =      1\n  TOP =        1\n"
    "\n Exit from subroutine DTRIS2: IERROR=8.\n";
const char* const kSwapFillsTheStack =
    " \nSWAPEC - Fatal error!\n  Ran out of stack storage.\n  MAXST =      1\n  TOP =        2\n"
    " \nDTRIS2 - Fatal error!\n  SWAPEC returned IERROR =      8\n"
    "\n Exit from subroutine DTRIS2: IERROR=8.\n";

void expect_same_failure(const fs::path& inputs, const std::string& control, const std::string& base,
                         const std::string& last_lines) {
  const WholeRun fast = failing_run(inputs, control, false);
  const WholeRun reference = failing_run(inputs, control, true);
  expect_same_runs(reference, fast);
  // The first pass's line, then DTRIS2's block of the second pass and the
  // run's failure, and nothing after.
  const std::size_t first_pass = fast.screen.find(kFirstPassLine);
  ASSERT_NE(first_pass, std::string::npos) << fast.screen;
  const std::size_t line_end = fast.screen.find("]\n", first_pass);
  ASSERT_NE(line_end, std::string::npos);
  EXPECT_EQ(fast.screen.substr(line_end + 2), last_lines);
  // Both map files of the triangles and the four of the cells of the first
  // pass were written, and no file of a later pass.
  for (const std::string name : {"_triangles_0.mif", "_triangles_0.mid", "_polygons_0.mif", "_polygons_0.mid",
                                 "_polygons_0.bln", "_polygon_centroids_0.dat"}) {
    const auto file = fast.files.find(base + name);
    ASSERT_NE(file, fast.files.end()) << base + name;
    EXPECT_FALSE(file->second.empty()) << base + name;
  }
  for (const auto& [name, text] : fast.files) EXPECT_EQ(name.find("_1."), std::string::npos) << name;
}

TEST(FilesBeside, SecondPassThatCannotTriangulateEndsTheRunAfterTheFirstPassFiles) {
  expect_same_failure(source_path("tests/models/square"), "square.in", "sq", kSwapFillsTheStack);
}

// A model of the family whose first pass's cell files are still being
// filled while the second pass triangulates: they must be whole when the
// run ends on its failure.
TEST(FilesBeside, FamilyModelWhoseCellFilesAreStillFillingWhenTheSecondPassFails) {
  ScratchDir inputs;
  tesseramill_bench::ModelRecipe recipe = tesseramill_bench::family_model(1e3);
  recipe.max_lloyd = 3;
  recipe.nsdim = 7;  // keeps the reference path's emplacement to seconds
  tesseramill_bench::write_model(recipe, inputs.path());
  expect_same_failure(inputs.path(), "model.in", "model", kFanFillsTheStack);
}

}  // namespace
}  // namespace tesseramill_test
