// The slabs' cuts are the values a full sort puts at their ranks.
#include <gtest/gtest.h>

#include <algorithm>
#include <cstddef>
#include <vector>

#include "emplacement/slab_cuts.h"
#include "support/random.h"

namespace tesseramill {
namespace {

using tesseramill_test::Random;

std::vector<double> sorted_cuts(std::vector<double> values, const std::vector<std::size_t>& shares) {
  std::sort(values.begin(), values.end());
  std::size_t total = 0;
  for (std::size_t share : shares) total += share;
  std::vector<double> cuts;
  std::size_t before = 0;
  for (std::size_t k = 0; k + 1 < shares.size() && !values.empty(); ++k) {
    before += shares[k];
    cuts.push_back(values[std::min(before * values.size() / total, values.size() - 1)]);
  }
  return cuts;
}

// Equal as the slabs compare them: a zero may come with either sign, as
// ties may come in either order, and no comparison tells the two apart.
void expect_equal(const std::vector<double>& a, const std::vector<double>& b) {
  ASSERT_EQ(a.size(), b.size());
  for (std::size_t k = 0; k < a.size(); ++k) EXPECT_EQ(a[k], b[k]) << k;
}

// Equal shares and unequal ones, the program's among them, and shares of
// none; fewer values than slabs, many ties, sorted and reversed runs, both
// zeros, and counts up to tens of thousands.
TEST(SlabCuts, AreTheValuesASortPutsAtTheirRanks) {
  Random random(53);
  const std::vector<std::vector<std::size_t>> share_lists = {
      {1, 1}, {1, 1, 1}, {1, 1, 1, 1, 1, 1, 1, 1}, {9, 9, 7, 6, 4, 3, 1, 1}, {5, 0, 3, 0, 0}, {1, 2, 3, 4, 5, 6, 7}};
  for (const std::vector<std::size_t>& shares : share_lists) {
    for (std::size_t count : {1u, 2u, 5u, 7u, 8u, 9u, 16u, 100u, 1000u, 20011u}) {
      for (int kind = 0; kind < 5; ++kind) {
        std::vector<double> values(count);
        for (std::size_t i = 0; i < count; ++i) {
          const double u = random.uniform(0, 1);
          switch (kind) {
            case 0: values[i] = random.uniform(-1e6, 1e6); break;
            case 1: values[i] = static_cast<double>(static_cast<int>(u * 4)); break;  // four values only
            case 2: values[i] = static_cast<double>(i); break;
            case 3: values[i] = -static_cast<double>(i); break;
            default: values[i] = u < 0.5 ? 0.0 : -0.0; break;
          }
        }
        SCOPED_TRACE(testing::Message() << "slabs " << shares.size() << " count " << count << " kind " << kind);
        std::vector<double> work = values;
        const std::vector<double> cuts = slab_cuts(work, shares);
        expect_equal(cuts, sorted_cuts(values, shares));
        // The values are all still there.
        std::sort(work.begin(), work.end());
        std::sort(values.begin(), values.end());
        EXPECT_EQ(work, values);
      }
    }
  }
}

TEST(SlabCuts, NoneForNoValuesOneSlabOrNoShares) {
  std::vector<double> none;
  EXPECT_TRUE(slab_cuts(none, std::vector<std::size_t>{1, 1}).empty());
  std::vector<double> some = {3.0, 1.0, 2.0};
  EXPECT_TRUE(slab_cuts(some, std::vector<std::size_t>{1}).empty());
  EXPECT_TRUE(slab_cuts(some, std::vector<std::size_t>{0, 0}).empty());
  EXPECT_TRUE(slab_cuts(some, std::vector<std::size_t>{}).empty());
}

}  // namespace
}  // namespace tesseramill
