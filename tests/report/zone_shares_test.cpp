// Overlap areas of polygons and the cells of zones, against shapes whose
// overlap is known and against clipping by convex polygons.
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <vector>

#include "report/zone_shares.h"
#include "support/hand_grid.h"
#include "support/planar_check.h"

namespace tesseramill_test {
namespace {

using tesseramill::overlap_area;

double overlap(const std::vector<double>& a, const std::vector<double>& b) {
  return overlap_area(a.data(), static_cast<std::int32_t>(a.size() / 2), b.data(), static_cast<std::int32_t>(b.size() / 2));
}

std::vector<double> reversed(std::vector<double> xy) {
  std::vector<double> out;
  for (std::size_t k = xy.size(); k >= 2; k -= 2) {
    out.push_back(xy[k - 2]);
    out.push_back(xy[k - 1]);
  }
  return out;
}

const std::vector<double> kUnitSquare = {0, 0, 1, 0, 1, 1, 0, 1};

TEST(OverlapArea, OfKnownShapes) {
  EXPECT_DOUBLE_EQ(overlap(kUnitSquare, {0.5, 0.5, 1.5, 0.5, 1.5, 1.5, 0.5, 1.5}), 0.25);
  EXPECT_DOUBLE_EQ(overlap(kUnitSquare, {2, 2, 3, 2, 3, 3, 2, 3}), 0.0);
  EXPECT_DOUBLE_EQ(overlap(kUnitSquare, {-1, -1, 2, -1, 2, 2, -1, 2}), 1.0);
  EXPECT_DOUBLE_EQ(overlap({-1, -1, 2, -1, 2, 2, -1, 2}, kUnitSquare), 1.0);
  // A triangle over half of the square, cut along its diagonal.
  EXPECT_DOUBLE_EQ(overlap(kUnitSquare, {0, 0, 2, 0, 0, 2}), 1.0);
  EXPECT_DOUBLE_EQ(overlap(kUnitSquare, {0, 0, 1, 0, 0, 1}), 0.5);
  // A concave polygon: an L over the square leaves a quarter out.
  EXPECT_DOUBLE_EQ(overlap(kUnitSquare, {0, 0, 1, 0, 1, 0.5, 0.5, 0.5, 0.5, 1, 0, 1}), 0.75);
}

TEST(OverlapArea, AlongSharedEdges) {
  // The same square: every edge lies along the other's.
  EXPECT_DOUBLE_EQ(overlap(kUnitSquare, kUnitSquare), 1.0);
  EXPECT_DOUBLE_EQ(overlap(kUnitSquare, reversed(kUnitSquare)), 1.0);
  // Neighbours that share one edge overlap in nothing.
  EXPECT_DOUBLE_EQ(overlap(kUnitSquare, {1, 0, 2, 0, 2, 1, 1, 1}), 0.0);
  // A half of the square sharing three of its edges in part.
  EXPECT_DOUBLE_EQ(overlap(kUnitSquare, {0, 0, 0.5, 0, 0.5, 1, 0, 1}), 0.5);
  EXPECT_DOUBLE_EQ(overlap({0, 0, 0.5, 0, 0.5, 1, 0, 1}, kUnitSquare), 0.5);
  // A strip along the bottom, wider than the square.
  EXPECT_DOUBLE_EQ(overlap(kUnitSquare, {-1, 0, 2, 0, 2, 0.25, -1, 0.25}), 0.25);
}

// A convex polygon: `corners` points on an ellipse at random angles, anticlockwise.
std::vector<double> convex_polygon(std::uint64_t& state, double cx, double cy, double r, int corners) {
  auto uniform = [&]() {
    state = state * 6364136223846793005ULL + 1442695040888963407ULL;
    return static_cast<double>(state >> 11) * 0x1.0p-53;
  };
  std::vector<double> angles;
  for (int k = 0; k < corners; ++k) angles.push_back(6.283185307179586 * uniform());
  std::sort(angles.begin(), angles.end());
  const double stretch = 0.5 + uniform();
  std::vector<double> xy;
  for (double a : angles) {
    xy.push_back(cx + r * stretch * std::cos(a));
    xy.push_back(cy + r * std::sin(a));
  }
  return xy;
}

TEST(OverlapArea, AgreesWithClippingOnRandomConvexPolygons) {
  std::uint64_t state = 2026;
  for (int trial = 0; trial < 500; ++trial) {
    // Both near a large coordinate, as world coordinates are.
    const double base = trial % 2 == 0 ? 0.0 : 5.0e6;
    const std::vector<double> a = convex_polygon(state, base, base, 1.0, 3 + trial % 6);
    const std::vector<double> b = convex_polygon(state, base + 0.8, base + 0.3, 1.2, 3 + trial % 9);
    // The clipping and its area are measured from the origin, where a
    // polygon near 5e6 would cost them their digits: both are moved back
    // first, which is exact for these coordinates.
    std::vector<double> near_a = a;
    std::vector<double> near_b = b;
    for (double& v : near_a) v -= base;
    for (double& v : near_b) v -= base;
    const double expected = clipped_area(near_a, near_b);
    EXPECT_NEAR(overlap(a, b), expected, 1e-9) << "trial " << trial;
    EXPECT_NEAR(overlap(reversed(a), b), expected, 1e-9) << "trial " << trial;
    EXPECT_NEAR(overlap(b, a), expected, 1e-9) << "trial " << trial;
  }
}

TEST(ZoneCells, OfASquareZoneOverUnitSquares) {
  const tesseramill::DisvGrid grid = unit_squares(4, 4);
  tesseramill::CellLocator locator;
  tesseramill::build_cell_locator(grid, locator);
  const std::vector<double> zone = {0.6, 0.6, 2.6, 0.6, 2.6, 2.6, 0.6, 2.6};
  std::vector<tesseramill::ZoneCell> cells;
  tesseramill::zone_cells(grid, locator, zone.data(), 4, cells);
  ASSERT_EQ(cells.size(), 4u);
  const int expected_cells[] = {6, 7, 10, 11};
  const double expected_shares[] = {1.0, 0.6, 0.6, 0.36};
  for (std::size_t k = 0; k < 4; ++k) {
    EXPECT_EQ(cells[k].cell + 1, expected_cells[k]);
    EXPECT_NEAR(cells[k].share, expected_shares[k], 1e-12);
  }
}

TEST(ZoneCells, CountCentresOnTheZoneEdge) {
  const tesseramill::DisvGrid grid = unit_squares(3, 1);
  tesseramill::CellLocator locator;
  tesseramill::build_cell_locator(grid, locator);
  // The zone's left edge runs through the centre of cell 2.
  const std::vector<double> zone = {1.5, -1.0, 5.0, -1.0, 5.0, 2.0, 1.5, 2.0};
  std::vector<tesseramill::ZoneCell> cells;
  tesseramill::zone_cells(grid, locator, zone.data(), 4, cells);
  ASSERT_EQ(cells.size(), 2u);
  EXPECT_EQ(cells[0].cell + 1, 2);
  EXPECT_NEAR(cells[0].share, 0.5, 1e-12);
  EXPECT_EQ(cells[1].cell + 1, 3);
  EXPECT_EQ(cells[1].share, 1.0);
}

}  // namespace
}  // namespace tesseramill_test
