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

std::vector<double> sorted_cuts(std::vector<double> values, std::size_t slabs) {
  std::sort(values.begin(), values.end());
  std::vector<double> cuts;
  for (std::size_t k = 1; k < slabs && !values.empty(); ++k) cuts.push_back(values[k * values.size() / slabs]);
  return cuts;
}

// Equal as the slabs compare them: a zero may come with either sign, as
// ties may come in either order, and no comparison tells the two apart.
void expect_equal(const std::vector<double>& a, const std::vector<double>& b) {
  ASSERT_EQ(a.size(), b.size());
  for (std::size_t k = 0; k < a.size(); ++k) EXPECT_EQ(a[k], b[k]) << k;
}

// Fewer values than slabs, many ties, sorted and reversed runs, both zeros,
// and counts up to tens of thousands.
TEST(SlabCuts, AreTheValuesASortPutsAtTheirRanks) {
  Random random(53);
  for (std::size_t slabs : {2u, 3u, 8u, 13u}) {
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
        SCOPED_TRACE(testing::Message() << "slabs " << slabs << " count " << count << " kind " << kind);
        std::vector<double> work = values;
        const std::vector<double> cuts = slab_cuts(work, slabs);
        expect_equal(cuts, sorted_cuts(values, slabs));
        // The values are all still there.
        std::sort(work.begin(), work.end());
        std::sort(values.begin(), values.end());
        EXPECT_EQ(work, values);
      }
    }
  }
}

TEST(SlabCuts, NoneForNoValuesOrOneSlab) {
  std::vector<double> none;
  EXPECT_TRUE(slab_cuts(none, 8).empty());
  std::vector<double> some = {3.0, 1.0, 2.0};
  EXPECT_TRUE(slab_cuts(some, 1).empty());
}

}  // namespace
}  // namespace tesseramill
