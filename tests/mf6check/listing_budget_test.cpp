// The volume budget read from MODFLOW 6's listing file.
#include <gtest/gtest.h>

#include "listing_budget.h"

namespace tesseramill_test {
namespace {

using tesseramill_mf6check::VolumeBudget;

// As MODFLOW 6 6.7 prints it, cumulative volumes left and rates right.
const std::string kBudget =
    "  VOLUME BUDGET FOR ENTIRE MODEL AT END OF TIME STEP    1, STRESS PERIOD   1\n"
    "  ---------------------------------------------------------------------------------------------------\n"
    "\n"
    "           IN:                                      IN:\n"
    "                 CHD =         146.3444                   CHD =         146.3444     CHD-1\n"
    "\n"
    "            TOTAL IN =         146.3444              TOTAL IN =         146.3440\n"
    "\n"
    "          OUT:                                     OUT:\n"
    "                 CHD =         146.3445                   CHD =         146.3445     CHD-1\n"
    "\n"
    "           TOTAL OUT =         146.3445             TOTAL OUT =         146.3450\n"
    "\n"
    "            IN - OUT =      -9.1953E-05              IN - OUT =      -1.0000E-03\n"
    "\n"
    " PERCENT DISCREPANCY =          -0.00     PERCENT DISCREPANCY =          -0.01\n";

TEST(ListingBudget, ReadsTheRateColumn) {
  VolumeBudget b;
  ASSERT_TRUE(tesseramill_mf6check::last_volume_budget("header\n" + kBudget + "\n trailer\n", b));
  EXPECT_EQ(b.total_in, 146.3440);
  EXPECT_EQ(b.total_out, 146.3450);
  EXPECT_EQ(b.in_less_out, -1.0e-3);
  EXPECT_EQ(b.printed_percent, -0.01);
  EXPECT_DOUBLE_EQ(b.percent, 100.0 * -1.0e-3 / ((146.3440 + 146.3450) / 2.0));
}

TEST(ListingBudget, TakesTheLastBudget) {
  std::string later = kBudget;
  later.replace(later.find("-1.0000E-03"), 11, " 2.0000E-03");
  VolumeBudget b;
  ASSERT_TRUE(tesseramill_mf6check::last_volume_budget(kBudget + later, b));
  EXPECT_EQ(b.in_less_out, 2.0e-3);
}

TEST(ListingBudget, RefusesAListingWithoutACompleteBudget) {
  VolumeBudget b;
  EXPECT_FALSE(tesseramill_mf6check::last_volume_budget("", b));
  std::string cut = kBudget;
  cut.erase(cut.find("            IN - OUT"), cut.find(" PERCENT") - cut.find("            IN - OUT"));
  EXPECT_FALSE(tesseramill_mf6check::last_volume_budget(cut, b));
}

}  // namespace
}  // namespace tesseramill_test
