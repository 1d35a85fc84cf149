// Memory that runs out while a BLN file's vertices are read ends the run
// with the reader's own message.  The reader makes room for up to 65,536
// vertices at once when a group's header asks for that many, so a file of
// that header meets a memory that refuses a mebibyte (2 * 65,536 doubles).
#include <gtest/gtest.h>

#include <string>

#include "support/failing_allocation.h"
#include "support/scratch.h"
#include "support/whole_run.h"

namespace tesseramill_test {
namespace {

constexpr std::size_t kMebibyte = std::size_t{1} << 20;

const char* const kControl =
    "START CONTROL\n MAX_CENTROID_SEPARATION 20\n POLY_GROWTH_RATE 1.2\n OUT_FILE_BASE sq\n MAX_CELLS 2000\n"
    "END CONTROL\nSTART MF6\n MF6_BASENAME square\n NLAY 1\nEND MF6\n"
    "START OUTER_BOUNDARY\n BLN_FILE outer.bln\nEND OUTER_BOUNDARY\n";
const char* const kSquare = "5\n0 0 20\n100 0 20\n100 100 20\n0 100 20\n0 0 20\n";

std::string run_with_full_memory(const ScratchDir& dir) {
  const std::size_t refused = LargeAllocationsFail::refused();
  WholeRun run;
  {
    LargeAllocationsFail full(kMebibyte);
    run = run_in(dir.path(), "t.in");
  }
  EXPECT_GT(LargeAllocationsFail::refused(), refused);
  return run.screen;
}

TEST(BlnMemory, LineDataThatFindsNoMemory) {
  ScratchDir dir;
  dir.write("t.in", kControl);
  dir.write("outer.bln", "65536\n0 0 20\n100 0 20\n");
  EXPECT_EQ(run_with_full_memory(dir), reading("t.in") + " - file t.in read ok.\n\n - reading file outer.bln...\n"
                                       "\n Error allocating memory to hold line data.\n");
}

TEST(BlnMemory, PointsDataThatFindsNoMemory) {
  ScratchDir dir;
  dir.write("t.in", std::string(kControl) + "START INNER_POINTS\n BLN_FILE wells.bln\nEND INNER_POINTS\n");
  dir.write("outer.bln", kSquare);
  dir.write("wells.bln", "65536\n50 50 5\n");
  EXPECT_EQ(run_with_full_memory(dir), reading("t.in") + " - file t.in read ok.\n\n - reading file outer.bln...\n"
                                       " - file outer.bln read ok.\n\n - reading file wells.bln...\n"
                                       "\n Error allocating memory to hold points data.\n");
}

}  // namespace
}  // namespace tesseramill_test
