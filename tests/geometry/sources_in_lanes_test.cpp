// The sources' bounds worked out in lanes are the bits of lower_size and
// upper_size worked out one source at a time, on every kind of value.
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <cstring>
#include <limits>
#include <vector>

#include "geometry/size_bounds.h"
#include "geometry/sources_in_lanes.h"
#include "support/random.h"

namespace tesseramill {
namespace {

using tesseramill_test::Random;

constexpr double kInf = std::numeric_limits<double>::infinity();
constexpr double kNaN = std::numeric_limits<double>::quiet_NaN();

// The same bits, or NaN both: no decision reads more of a NaN than that it
// is one.
bool same(double a, double b) {
  if (std::isnan(a) || std::isnan(b)) return std::isnan(a) && std::isnan(b);
  std::uint64_t ua = 0;
  std::uint64_t ub = 0;
  std::memcpy(&ua, &a, sizeof a);
  std::memcpy(&ub, &b, sizeof b);
  return ua == ub;
}

// The bounds over a rectangle, one source at a time, in the steps the
// rectangle's and the tiles' walks took before the lanes.
void bounds_one_at_a_time(const Growth& g, double sx, double sy, double s, double xlo, double xhi, double ylo,
                          double yhi, double& lower, double& upper) {
  const double ex = std::max({xlo - sx, 0.0, sx - xhi});
  const double ey = std::max({ylo - sy, 0.0, sy - yhi});
  const double fx = std::max(std::fabs(sx - xlo), std::fabs(sx - xhi));
  const double fy = std::max(std::fabs(sy - ylo), std::fabs(sy - yhi));
  lower = lower_size(g, std::sqrt(ex * ex + ey * ey), s);
  upper = upper_size(g, std::sqrt(fx * fx + fy * fy), s);
}

struct Sources {
  std::vector<double> xs, ys, separations;
  void add(double x, double y, double s) {
    xs.push_back(x);
    ys.push_back(y);
    separations.push_back(s);
  }
};

// Sources of every kind round the rectangle [xlo, xhi] x [ylo, yhi]: inside,
// on its sides and corners, far off, at distances past upper_size's range,
// with separations of zero, below zero, subnormal and huge, and with NaN
// and infinite coordinates; then seeded random ones.
Sources hard_sources(double xlo, double xhi, double ylo, double yhi, std::uint64_t seed) {
  Sources s;
  const double xs[] = {xlo, xhi, 0.5 * (xlo + xhi), std::nextafter(xlo, -kInf), std::nextafter(xhi, kInf),
                       xlo - 1e6, xhi + 1e308, -1e308, kInf, -kInf, kNaN};
  const double ys[] = {ylo, yhi, 0.5 * (ylo + yhi), std::nextafter(yhi, kInf), ylo - 3.0, 1e305, kNaN};
  const double separations[] = {60.0, 150.0, 0.0, -5.0, 4.9e-324, 1e-300, 1e295, 1e300, 2e300, 1e306, kInf, kNaN};
  for (double x : xs) {
    for (double y : ys) {
      for (double sep : separations) s.add(x, y, sep);
    }
  }
  Random random(seed);
  for (int k = 0; k < 4000; ++k) {
    const double wide = random.uniform(0.0, 1.0) < 0.1 ? 1e6 : 2000.0;
    s.add(random.uniform(xlo - wide, xhi + wide), random.uniform(ylo - wide, yhi + wide),
          random.uniform(0.0, 1.0) < 0.05 ? random.uniform(-1.0, 1e-3) : random.uniform(20.0, 400.0));
  }
  return s;
}

TEST(SourcesInLanes, BoundsOverARectangleAreTheBitsOfEachSourceAlone) {
  struct Case {
    double growth, xlo, xhi, ylo, yhi;
  };
  const Case cases[] = {
      {1.25, 1000.0, 1600.0, -300.0, 100.0},
      {1.1, 5e5, 5e5, 7e6, 7e6},  // a rectangle of no size
      {1.0000001, -1.0, 1.0, -1.0, 1.0},
      {3.0, 654321.125, 654987.5, 7012345.25, 7013000.0},
      {1.25, -kInf, kInf, 0.0, 1.0},
      {1.25, kNaN, 1.0, 0.0, 1.0},
  };
  std::uint64_t seed = 41;
  for (const Case& c : cases) {
    Growth g{};
    ASSERT_TRUE(growth_for(c.growth, g)) << c.growth;
    const Sources s = hard_sources(c.xlo, c.xhi, c.ylo, c.yhi, seed++);
    // Every count up to a few past two chunks, from every start, so that
    // the lanes' remainders and unaligned starts are all met.
    for (std::size_t from : {std::size_t{0}, std::size_t{1}, std::size_t{3}, std::size_t{700}}) {
      for (std::size_t n = 0; n <= 2 * kSourcesInLanes + 3 && from + n <= s.xs.size(); ++n) {
        std::vector<double> lowers(n + 1, -1.0);
        std::vector<double> uppers(n + 1, -1.0);
        bound_sources_over(g, n, s.xs.data() + from, s.ys.data() + from, s.separations.data() + from, c.xlo, c.xhi,
                           c.ylo, c.yhi, lowers.data(), uppers.data());
        for (std::size_t k = 0; k < n; ++k) {
          double lower = 0.0;
          double upper = 0.0;
          bounds_one_at_a_time(g, s.xs[from + k], s.ys[from + k], s.separations[from + k], c.xlo, c.xhi, c.ylo,
                               c.yhi, lower, upper);
          ASSERT_TRUE(same(lowers[k], lower)) << "growth " << c.growth << " source " << from + k << ": "
                                              << lowers[k] << " against " << lower;
          ASSERT_TRUE(same(uppers[k], upper)) << "growth " << c.growth << " source " << from + k << ": "
                                              << uppers[k] << " against " << upper;
        }
        // Nothing past the n asked for is written.
        EXPECT_EQ(lowers[n], -1.0);
        EXPECT_EQ(uppers[n], -1.0);
      }
    }
    // All of them at once, in chunks as the callers take them.
    std::vector<double> lowers(kSourcesInLanes);
    std::vector<double> uppers(kSourcesInLanes);
    int infinite = 0;
    int nothing = 0;
    for (std::size_t from = 0; from < s.xs.size(); from += kSourcesInLanes) {
      const std::size_t n = std::min(kSourcesInLanes, s.xs.size() - from);
      bound_sources_over(g, n, s.xs.data() + from, s.ys.data() + from, s.separations.data() + from, c.xlo, c.xhi,
                         c.ylo, c.yhi, lowers.data(), uppers.data());
      for (std::size_t k = 0; k < n; ++k) {
        double lower = 0.0;
        double upper = 0.0;
        bounds_one_at_a_time(g, s.xs[from + k], s.ys[from + k], s.separations[from + k], c.xlo, c.xhi, c.ylo, c.yhi,
                             lower, upper);
        ASSERT_TRUE(same(lowers[k], lower)) << "source " << from + k;
        ASSERT_TRUE(same(uppers[k], upper)) << "source " << from + k;
        infinite += upper == kInf ? 1 : 0;
        nothing += lower == 0.0 ? 1 : 0;
      }
    }
    // The hard sources reach upper_size's tests of range, and lower bounds
    // of nothing (a NaN size or one below zero).
    EXPECT_GT(infinite, 0) << c.growth;
    EXPECT_GT(nothing, 0) << c.growth;
  }
}

}  // namespace
}  // namespace tesseramill
