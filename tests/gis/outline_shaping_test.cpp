// Thinning and cleaning of single outlines, where every result is known.
#include <gtest/gtest.h>

#include <cmath>

#include "gis/outline_cleaning.h"
#include "gis/outline_thinning.h"

namespace tesseramill_test {
namespace {

using tesseramill::clean_ring;
using tesseramill::thin_line;
using tesseramill::thin_ring;

TEST(ThinLine, AStraightLineDigitisedDenselyKeepsItsEnds) {
  std::vector<double> xy;
  for (int k = 0; k <= 100; ++k) xy.insert(xy.end(), {static_cast<double>(k), 0.0});
  EXPECT_EQ(thin_line(xy, 0.1), (std::vector<double>{0.0, 0.0, 100.0, 0.0}));
  EXPECT_EQ(thin_line(xy, 0.0), xy);
}

TEST(ThinLine, AVertexFurtherOffThanTheToleranceStays) {
  const std::vector<double> xy{0, 0, 5, 1.02, 10, 2, 20, 0};
  EXPECT_EQ(thin_line(xy, 0.1), (std::vector<double>{0, 0, 10, 2, 20, 0}));
  EXPECT_EQ(thin_line(xy, 0.01), xy);
  EXPECT_EQ(thin_line(xy, 2.0), (std::vector<double>{0, 0, 20, 0}));
  EXPECT_EQ(thin_line(xy, 1.99), (std::vector<double>{0, 0, 10, 2, 20, 0}));
}

TEST(ThinRing, ADenselyDigitisedSquareKeepsItsCorners) {
  std::vector<double> xy;
  for (int k = 0; k < 10; ++k) xy.insert(xy.end(), {static_cast<double>(k), 0.0});
  for (int k = 0; k < 10; ++k) xy.insert(xy.end(), {10.0, static_cast<double>(k)});
  for (int k = 0; k < 10; ++k) xy.insert(xy.end(), {10.0 - k, 10.0});
  for (int k = 0; k < 10; ++k) xy.insert(xy.end(), {0.0, 10.0 - k});
  xy.insert(xy.end(), {0.0, 0.0});
  EXPECT_EQ(thin_ring(xy, 0.5), (std::vector<double>{0, 0, 10, 0, 10, 10, 0, 10, 0, 0}));
}

TEST(ThinRing, ARingThinnerThanTheToleranceKeepsThreeVertices) {
  const std::vector<double> xy{0, 0, 5, 0.01, 10, 0, 5, -0.01, 0, 0};
  const std::vector<double> thinned = thin_ring(xy, 1.0);
  EXPECT_EQ(thinned.size(), 8u);
  EXPECT_EQ(thinned.front(), 0.0);
  EXPECT_EQ(thinned[thinned.size() - 2], 0.0);
}

TEST(CleanRing, ASpikeNarrowerThanTwiceTheRadiusIsCutOff) {
  // A square of 100 with a spike 2 wide and 50 long on its top side.
  const std::vector<double> xy{0, 0, 100, 0, 100, 100, 51, 100, 50, 150, 49, 100, 0, 100, 0, 0};
  const tesseramill::CleanedRing cleaned = clean_ring(xy, 5.0);
  ASSERT_FALSE(cleaned.ring.empty());
  double ymax = 0.0;
  for (std::size_t k = 1; k < cleaned.ring.size(); k += 2) ymax = std::max(ymax, cleaned.ring[k]);
  // The closing fills the corners at the spike's foot with arcs of the
  // radius, and a stub of them stays; the spike above goes.
  EXPECT_LT(ymax, 100.0 + 5.0);
  EXPECT_GT(ymax, 100.0);
  // Most of the spike's 50 and the four rounded corners' (1 - pi/4) 25 each.
  EXPECT_GT(cleaned.removed, 4.0 * (1.0 - M_PI / 4.0) * 25.0 + 40.0);
  EXPECT_LT(cleaned.removed, 4.0 * (1.0 - M_PI / 4.0) * 25.0 + 50.0 + 1.0);
  EXPECT_LT(cleaned.added, 10.0);
  EXPECT_TRUE(cleaned.left_out.empty());
}

TEST(CleanRing, ARingNarrowerThanTwiceTheRadiusEverywhereVanishes) {
  const std::vector<double> xy{0, 0, 100, 0, 100, 4, 0, 4, 0, 0};
  const tesseramill::CleanedRing cleaned = clean_ring(xy, 5.0);
  EXPECT_TRUE(cleaned.ring.empty());
  EXPECT_DOUBLE_EQ(cleaned.removed, 400.0);
}

TEST(CleanRing, ANeckNarrowerThanTwiceTheRadiusSplitsOffTheSmallerPart) {
  // Two squares joined by a neck 2 wide.
  const std::vector<double> xy{0, 0, 100, 0, 100, 49, 130, 49, 130, 35, 160, 35, 160, 65,
                               130, 65, 130, 51, 100, 51, 100, 100, 0, 100, 0, 0};
  const tesseramill::CleanedRing cleaned = clean_ring(xy, 5.0);
  ASSERT_FALSE(cleaned.ring.empty());
  ASSERT_EQ(cleaned.left_out.size(), 1u);
  // The square of 900 less its rounded corners, with a stub of the neck.
  EXPECT_GT(cleaned.left_out[0], 900.0 - 4.0 * (1.0 - M_PI / 4.0) * 25.0);
  EXPECT_LT(cleaned.left_out[0], 900.0 + 20.0);
}

}  // namespace
}  // namespace tesseramill_test
