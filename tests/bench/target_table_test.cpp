// The speed targets' table: each target's verdict and the columns' layout.
#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <string>
#include <vector>

#include "target_table.h"

namespace tesseramill_test {
namespace {

using tesseramill_bench::median;
using tesseramill_bench::Target;
using tesseramill_bench::target_table;
using tesseramill_bench::wall_ratio_target;

constexpr double kNaN = std::numeric_limits<double>::quiet_NaN();

TEST(TargetTable, MedianOfOddAndEvenCountsAndOfNone) {
  struct Case {
    std::vector<double> values;
    double median;
  };
  const std::vector<Case> cases = {
      {{3.0}, 3.0},
      {{5.0, 1.0, 4.0}, 4.0},
      {{2.0, 8.0}, 5.0},
      {{9.0, 1.0, 7.0, 3.0}, 5.0},
      {{1.5, 1.5, 1.5, 1.4, 1.6}, 1.5},
  };
  for (const Case& c : cases) EXPECT_EQ(median(c.values), c.median);
  EXPECT_TRUE(std::isnan(median({})));
}

// A target is met at its limit and below, missed above it, and not
// measured when its value is NaN; the first column is as wide as the
// longest description.
TEST(TargetTable, VerdictsAndColumns) {
  const std::vector<Target> targets = {
      {"ratio", 1.5, 1.5, 2},
      {"ratio below", 1.4949, 1.5, 2},
      {"wall s, a longer description", 53.174, 40.0, 2},
      {"share", 0.071, 0.10, 3},
      {"peak bytes per cell", kNaN, 600.0, 0},
  };
  EXPECT_EQ(target_table(targets),
            "target                         measured     limit  met\n"
            "ratio                              1.50      1.50  yes\n"
            "ratio below                        1.49      1.50  yes\n"
            "wall s, a longer description      53.17     40.00  NO\n"
            "share                             0.071     0.100  yes\n"
            "peak bytes per cell                   -       600  not measured\n");
}

// Rounding for the table never turns a missed target into a met one: the
// verdict compares the value itself.
TEST(TargetTable, VerdictComparesTheValueNotItsDigits) {
  EXPECT_EQ(target_table({{"t", 1.5000001, 1.5, 2}}),
            "target   measured     limit  met\n"
            "t            1.50      1.50  NO\n");
  EXPECT_EQ(target_table({}), "target   measured     limit  met\n");
}

// A wall limit set when the other build took a given time becomes the
// quotient of the two, and the ratio of this run's walls is held to it.
TEST(TargetTable, WallLimitAsRatioToTheOtherBuild) {
  const Target met = wall_ratio_target("1e6, 3 passes, wall / other's", 0.344, 15.0, 31.7);
  EXPECT_EQ(met.limit, 15.0 / 31.7);
  EXPECT_EQ(met.decimals, 3);
  const Target missed = wall_ratio_target("1e6, 30 passes, wall / other's", 0.543, 40.0, 82.5);
  EXPECT_EQ(target_table({met, missed, wall_ratio_target("not run", kNaN, 40.0, 82.5)}),
            "target                           measured     limit  met\n"
            "1e6, 3 passes, wall / other's       0.344     0.473  yes\n"
            "1e6, 30 passes, wall / other's      0.543     0.485  NO\n"
            "not run                                 -     0.485  not measured\n");
}

}  // namespace
}  // namespace tesseramill_test
