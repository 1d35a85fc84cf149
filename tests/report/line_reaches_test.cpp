// Reaches of lines through hand-made grids of unit squares, where the cell,
// length and distances of every reach are known.
#include <gtest/gtest.h>

#include <cmath>
#include <string>
#include <vector>

#include "report/line_reaches.h"
#include "support/hand_grid.h"

namespace tesseramill_test {
namespace {

using tesseramill::Reach;

struct ExpectedReach {
  int cell;  // 1-based
  double length;
  double start;
  double end;
};

struct ReachCase {
  std::string name;
  int nx;
  int ny;
  std::set<int> left_out;
  std::vector<double> line;  // x,y pairs
  std::vector<ExpectedReach> reaches;
};

const double kRoot2 = std::sqrt(2.0);

std::vector<ReachCase> cases() {
  return {
      // A row of four squares: 1 2 3 4.
      {"StraightAcrossARow", 4, 1, {}, {0.5, 0.5, 3.25, 0.5},
       {{1, 0.5, 0.0, 0.5}, {2, 1.0, 0.5, 1.5}, {3, 1.0, 1.5, 2.5}, {4, 0.25, 2.5, 2.75}}},
      {"StraightAcrossARowBackwards", 4, 1, {}, {3.25, 0.5, 0.5, 0.5},
       {{4, 0.25, 0.0, 0.25}, {3, 1.0, 0.25, 1.25}, {2, 1.0, 1.25, 2.25}, {1, 0.5, 2.25, 2.75}}},
      {"EndingInsideACell", 4, 1, {}, {1.25, 0.2, 1.75, 0.8}, {{2, std::hypot(0.5, 0.6), 0.0, std::hypot(0.5, 0.6)}}},
      {"EndingInsideTheNextCell", 4, 1, {}, {1.5, 0.5, 2.5, 0.5}, {{2, 0.5, 0.0, 0.5}, {3, 0.5, 0.5, 1.0}}},
      // Two rows of two: 3 4 over 1 2.  The line y = 1 is the edge between
      // the rows: the reach belongs to the cell on the line's left.
      {"AlongASharedEdgeEastward", 2, 2, {}, {0.0, 1.0, 2.0, 1.0}, {{3, 1.0, 0.0, 1.0}, {4, 1.0, 1.0, 2.0}}},
      {"AlongASharedEdgeWestward", 2, 2, {}, {2.0, 1.0, 0.0, 1.0}, {{2, 1.0, 0.0, 1.0}, {1, 1.0, 1.0, 2.0}}},
      {"AlongASharedEdgeNorthward", 2, 2, {}, {1.0, 0.25, 1.0, 1.75}, {{1, 0.75, 0.0, 0.75}, {3, 0.75, 0.75, 1.5}}},
      {"PartlyAlongASharedEdge", 2, 2, {}, {0.5, 0.5, 1.0, 1.0, 2.0, 1.0},
       {{1, 0.5 * kRoot2, 0.0, 0.5 * kRoot2}, {4, 1.0, 0.5 * kRoot2, 0.5 * kRoot2 + 1.0}}},
      // Along the rim the left is outside: the cell on the right takes it.
      {"AlongTheRimWestward", 2, 2, {}, {2.0, 0.0, 0.0, 0.0}, {{2, 1.0, 0.0, 1.0}, {1, 1.0, 1.0, 2.0}}},
      {"AlongTheRimEastward", 2, 2, {}, {0.0, 0.0, 2.0, 0.0}, {{1, 1.0, 0.0, 1.0}, {2, 1.0, 1.0, 2.0}}},
      // Through a shared corner: one reach each side of it.
      {"ThroughACorner", 2, 2, {}, {0.0, 0.0, 2.0, 2.0}, {{1, kRoot2, 0.0, kRoot2}, {4, kRoot2, kRoot2, 2.0 * kRoot2}}},
      // A bend inside a cell keeps one reach across the bend.
      {"BendInsideACell", 2, 2, {}, {0.5, 0.5, 1.5, 0.5, 1.5, 1.5},
       {{1, 0.5, 0.0, 0.5}, {2, 1.0, 0.5, 1.5}, {4, 0.5, 1.5, 2.0}}},
      // Leaving the domain: the parts outside are left out.
      {"LeavingTheDomain", 4, 1, {}, {2.5, 0.5, 6.5, 0.5}, {{3, 0.5, 0.0, 0.5}, {4, 1.0, 0.5, 1.5}}},
      {"StartingOutsideTheDomain", 4, 1, {}, {-1.0, 0.5, 1.5, 0.5}, {{1, 1.0, 1.0, 2.0}, {2, 0.5, 2.0, 2.5}}},
      {"AcrossAHole", 4, 1, {3}, {0.5, 0.5, 3.5, 0.5}, {{1, 0.5, 0.0, 0.5}, {2, 1.0, 0.5, 1.5}, {3, 0.5, 2.5, 3.0}}},
      {"OutAndBackIntoTheSameCell", 2, 2, {}, {0.5, 0.5, 0.5, -1.0, 0.25, -1.0, 0.25, 0.5},
       {{1, 0.5, 0.0, 0.5}, {1, 0.5, 2.75, 3.25}}},
      {"MissingTheGrid", 2, 2, {}, {3.0, 0.0, 3.0, 2.0}, {}},
      {"OneRepeatedVertex", 4, 1, {}, {0.5, 0.5, 0.5, 0.5, 1.5, 0.5}, {{1, 0.5, 0.0, 0.5}, {2, 0.5, 0.5, 1.0}}},
  };
}

void PrintTo(const ReachCase& c, std::ostream* out) { *out << c.name; }

class LineReaches : public testing::TestWithParam<ReachCase> {};

TEST_P(LineReaches, GiveTheKnownReaches) {
  const ReachCase& c = GetParam();
  const tesseramill::DisvGrid grid = unit_squares(c.nx, c.ny, c.left_out);
  tesseramill::CellLocator locator;
  tesseramill::build_cell_locator(grid, locator);
  std::vector<Reach> reaches;
  tesseramill::line_reaches(grid, locator, c.line.data(), static_cast<std::int32_t>(c.line.size() / 2), reaches);
  ASSERT_EQ(reaches.size(), c.reaches.size());
  for (std::size_t k = 0; k < reaches.size(); ++k) {
    SCOPED_TRACE("reach " + std::to_string(k + 1));
    EXPECT_EQ(reaches[k].cell + 1, c.reaches[k].cell);
    EXPECT_NEAR(reaches[k].length, c.reaches[k].length, 1e-12);
    EXPECT_NEAR(reaches[k].start, c.reaches[k].start, 1e-12);
    EXPECT_NEAR(reaches[k].end, c.reaches[k].end, 1e-12);
  }
}

INSTANTIATE_TEST_SUITE_P(HandMadeGrids, LineReaches, testing::ValuesIn(cases()),
                         [](const testing::TestParamInfo<ReachCase>& info) { return info.param.name; });

// Reach lengths add up to the length of the line inside the grid, for many
// lines with many bends across a grid of 40 x 30 squares with holes.
TEST(LineReachSums, AddUpToTheLengthInsideTheGrid) {
  const tesseramill::DisvGrid grid = unit_squares(40, 30);
  tesseramill::CellLocator locator;
  tesseramill::build_cell_locator(grid, locator);
  std::uint64_t state = 12345;
  auto uniform = [&](double low, double high) {
    state = state * 6364136223846793005ULL + 1442695040888963407ULL;
    return low + (high - low) * static_cast<double>(state >> 11) * 0x1.0p-53;
  };
  std::vector<Reach> reaches;
  for (int trial = 0; trial < 200; ++trial) {
    std::vector<double> line;
    double length = 0.0;
    const int points = 2 + trial % 7;
    for (int k = 0; k < points; ++k) {
      line.push_back(uniform(0.0, 40.0));
      line.push_back(uniform(0.0, 30.0));
      if (k > 0) length += std::hypot(line[2 * k] - line[2 * k - 2], line[2 * k + 1] - line[2 * k - 1]);
    }
    tesseramill::line_reaches(grid, locator, line.data(), points, reaches);
    double sum = 0.0;
    double previous_end = 0.0;
    for (const Reach& reach : reaches) {
      sum += reach.length;
      // Reaches follow one another without gaps, inside the grid.
      EXPECT_EQ(reach.start, previous_end);
      EXPECT_NEAR(reach.end - reach.start, reach.length, 1e-9 * length);
      previous_end = reach.end;
    }
    EXPECT_NEAR(sum, length, 1e-9 * length) << "trial " << trial;
  }
}

}  // namespace
}  // namespace tesseramill_test
