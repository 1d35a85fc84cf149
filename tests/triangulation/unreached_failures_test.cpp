// The failures of the triangulation that real input does not reach: a full
// stack (DTRIS2's stack holds one entry per point, more than any fan or
// swap needs), a collapsed triangle (DTRIS2's tolerance keeps such flat
// triangles out) and memory that runs out for the table of triangles per
// point in a later pass.  Test hooks make each happen, and the run ends with
// its exact text.
#include <gtest/gtest.h>

#include <numeric>
#include <sstream>
#include <string>
#include <vector>

#include "common/failure.h"
#include "common/text_tools.h"
#include "run/program.h"
#include "support/failing_allocation.h"
#include "support/flat_triangle.h"
#include "support/model_state.h"
#include "support/scratch.h"
#include "triangulation/dtris2.h"
#include "triangulation/triangulate_points.h"

namespace tesseramill_test {
namespace {

using tesseramill::Phase;
using tesseramill::RunState;

// Sets DTRIS2's stack capacity for the life of the object.
struct SmallStack {
  explicit SmallStack(std::int32_t capacity) { tesseramill::dtris2_stack_capacity_for_tests = capacity; }
  ~SmallStack() { tesseramill::dtris2_stack_capacity_for_tests = 0; }
};

struct Dtris2Run {
  int ierror = -1;
  std::string screen;
};

// Both routines on the same points: the fast one must end as the literal
// one does.
Dtris2Run dtris2_both(const std::vector<double>& points) {
  Dtris2Run runs[2];
  for (int fast = 0; fast < 2; ++fast) {
    const std::int32_t n = static_cast<std::int32_t>(points.size() / 2);
    std::vector<std::int32_t> sort_index(static_cast<std::size_t>(n));
    std::iota(sort_index.begin(), sort_index.end(), 1);
    std::vector<std::int32_t> vertex(6 * static_cast<std::size_t>(n)), neighbour(6 * static_cast<std::size_t>(n));
    std::vector<std::int32_t> stack(static_cast<std::size_t>(n));
    std::int32_t count = 0;
    std::ostringstream screen;
    tesseramill::Dtris2Workspace work;
    runs[fast].ierror =
        fast ? tesseramill::DTRIS2(n, points.data(), sort_index.data(), count, vertex.data(), neighbour.data(),
                                   stack.data(), screen, work)
             : tesseramill::DTRIS2_reference(n, points.data(), sort_index.data(), count, vertex.data(),
                                             neighbour.data(), stack.data(), screen);
    runs[fast].screen = screen.str();
  }
  EXPECT_EQ(runs[1].ierror, runs[0].ierror);
  EXPECT_EQ(runs[1].screen, runs[0].screen);
  return runs[0];
}

// A point right of a triangle sees two of its edges: its fan of two new
// triangles needs two places on the stack.
TEST(Dtris2Stack, FanThatFillsTheStack) {
  SmallStack stack(1);
  const Dtris2Run run = dtris2_both({0, 0, 0, 2, 1, 1, 5, 1});
  EXPECT_EQ(run.ierror, 8);
  EXPECT_EQ(run.screen, " \nDTRIS2 - Fatal error!\n  Ran out of stack space.\n  MAXST =      1\n  TOP =        1\n");
}

// Seven points whose swaps after one fan push a third entry onto a stack of
// two (found by a search over small lattice sets).
TEST(Dtris2Stack, SwapThatFillsTheStack) {
  SmallStack stack(2);
  const Dtris2Run run = dtris2_both({3, 6, 4, 0, 1, 1, 0, 1, 2, 5, 0, 4, 6, 3});
  EXPECT_EQ(run.ierror, 8);
  EXPECT_EQ(run.screen,
            " \nSWAPEC - Fatal error!\n  Ran out of stack storage.\n  MAXST =      2\n  TOP =        3\n"
            " \nDTRIS2 - Fatal error!\n  SWAPEC returned IERROR =      8\n");
}

// In a run, a full stack ends the run with DTRIS2's code after its lines.
TEST(TriangulatePoints, FullStackEndsTheRun) {
  ScratchDir dir;
  copy_model(dir, "square");
  RunState state;
  std::ostringstream screen;
  ASSERT_TRUE(run_phases_until(state, dir.path(), "square.in", Phase::kPopulateInterior, screen));
  SmallStack stack(1);
  EXPECT_THROW(tesseramill::triangulate_points(state), tesseramill::RunFailure);
  EXPECT_EQ(tesseramill::trimmed(state.message_buffer), "Exit from subroutine DTRIS2: IERROR=8.");
  const std::string lines =
      " \nSWAPEC - Fatal error!\n  Ran out of stack storage.\n  MAXST =      1\n  TOP =        2\n"
      " \nDTRIS2 - Fatal error!\n  SWAPEC returned IERROR =      8\n";
  EXPECT_EQ(screen_tail(screen.str(), lines.size()), lines);
}

TEST(TriangulatePoints, CollapsedTriangleEndsTheRunWithItsCorners) {
  ScratchDir dir;
  copy_model(dir, "square");
  RunState state;
  std::ostringstream screen;
  ASSERT_TRUE(run_phases_until(state, dir.path(), "square.in", Phase::kPopulateInterior, screen));
  FlattenTriangles flatten({0.5});
  EXPECT_THROW(tesseramill::triangulate_points(state), tesseramill::RunFailure);
  ASSERT_EQ(FlattenTriangles::flattened().size(), 1u);
  // The square's lower left corner (0, 0) lies at (1000, 1000) inside the
  // run: the corners are printed 1000 lower.
  EXPECT_EQ(tesseramill::trimmed(state.message_buffer),
            "Triangle # " + std::to_string(FlattenTriangles::flattened()[0]) +
                " collapsed with vertices ( 0.6100000E+02, 0.6800000E+02)( 0.6317844E+02, 0.7017844E+02)"
                "( 0.6400000E+02, 0.7100000E+02)");
}

// The row table grows in a later pass when its busiest point has more
// triangles than the rows hold; memory that runs out then has a message of
// its own.  The first pass's tables are made, then a later pass finds the
// rows too few.
TEST(TriangulatePoints, TableOfTrianglesPerPointThatCannotGrowInALaterPass) {
  ScratchDir dir;
  copy_model(dir, "square");
  RunState state;
  std::ostringstream screen;
  ASSERT_TRUE(run_phases_until(state, dir.path(), "square.in", Phase::kPopulateInterior, screen));
  tesseramill::triangulate_points(state);
  tesseramill::build_connected_triangles(state);
  state.lloyd_iteration = 1;
  tesseramill::triangulate_points(state);
  // As though the rows had been made for two triangles, fewer than the
  // busiest point has (at least three): they must be made anew, for at least
  // five.
  state.triangles.row_capacity = 2;
  std::vector<std::int32_t>(2 * static_cast<std::size_t>(state.mesh.mesh_point_count))
      .swap(state.triangles.connected_triangles);
  const std::size_t table_bytes =
      5 * static_cast<std::size_t>(state.mesh.mesh_point_count) * sizeof(std::int32_t);
  const std::size_t refused_before = LargeAllocationsFail::refused();
  {
    LargeAllocationsFail full(table_bytes);
    EXPECT_THROW(tesseramill::build_connected_triangles(state), tesseramill::RunFailure);
  }
  EXPECT_EQ(LargeAllocationsFail::refused() - refused_before, 1u);
  EXPECT_EQ(tesseramill::trimmed(state.message_buffer), "Error reallocating MAXCONTRI array.");
}

}  // namespace
}  // namespace tesseramill_test
