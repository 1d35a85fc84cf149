// The fast fan ordering against the literal one: the same column and the
// same failure text for every point of seeded triangulations with triangles
// left out, and for columns whose neighbour tables are drawn at random, so
// that every failure (anomaly, missing neighbour, sub-optimal) is met.
#include <gtest/gtest.h>

#include <algorithm>
#include <numeric>
#include <sstream>
#include <string>
#include <vector>

#include "relaxation/fan_order.h"
#include "support/random.h"
#include "triangulation/dtris2.h"

namespace tesseramill {
namespace {

// Orders the column both ways and expects the same outcome; gives the text.
std::string expect_same_order(const std::vector<std::int32_t>& tri_neighbour, const std::vector<std::int32_t>& column,
                              std::int32_t p, const std::string& what) {
  std::vector<std::int32_t> literal = column;
  std::vector<std::int32_t> fast = column;
  const std::size_t room = std::max<std::size_t>(column.size(), 1);
  std::vector<std::int32_t> work_literal(room, 0);
  std::vector<std::int32_t> work_fast(room, 0);
  const std::int32_t c = static_cast<std::int32_t>(column.size());
  literal.push_back(0);  // a column of 0 entries is still read at its first place
  fast.push_back(0);
  const std::string text = order_fan(tri_neighbour.data(), literal.data(), c, p, work_literal.data());
  const std::string fast_text = order_fan_fast(tri_neighbour.data(), fast.data(), c, p, work_fast.data());
  EXPECT_EQ(fast_text, text) << what;
  if (text.empty()) {
    EXPECT_EQ(fast, literal) << what;
  }
  return text;
}

// The triangles of a DTRIS2 triangulation of `points`, with every triangle
// whose number `leave_out` picks left out, gathered per point as a Lloyd
// pass gathers them: ascending triangle numbers.  Each point's column is
// ordered both ways.
void compare_every_point(const std::vector<double>& points, tesseramill_test::Random& random, double leave_out,
                         const std::string& what) {
  const std::int32_t n = static_cast<std::int32_t>(points.size() / 2);
  std::vector<std::int32_t> index(static_cast<std::size_t>(n));
  std::iota(index.begin(), index.end(), 1);
  std::vector<std::int32_t> vertex(6 * static_cast<std::size_t>(n)), neighbour(6 * static_cast<std::size_t>(n));
  std::vector<std::int32_t> stack(static_cast<std::size_t>(n));
  std::int32_t count = 0;
  std::ostringstream screen;
  ASSERT_EQ(DTRIS2_reference(n, points.data(), index.data(), count, vertex.data(), neighbour.data(), stack.data(),
                             screen),
            0)
      << what;
  std::vector<std::vector<std::int32_t>> columns(static_cast<std::size_t>(n));
  for (std::int32_t t = 1; t <= count; ++t) {
    if (random.uniform(0, 1) < leave_out) continue;
    for (int e = 0; e < 3; ++e) columns[static_cast<std::size_t>(vertex[3 * static_cast<std::size_t>(t - 1) + e] - 1)].push_back(t);
  }
  for (std::int32_t p = 1; p <= n; ++p) {
    expect_same_order(neighbour, columns[static_cast<std::size_t>(p - 1)], p, what + " point " + std::to_string(p));
  }
}

TEST(FanOrder, FastOrderingAgreesOnSeededTriangulations) {
  tesseramill_test::Random random(191);
  for (int trial = 0; trial < 40; ++trial) {
    std::vector<double> points;
    const int n = 20 + 37 * trial;
    for (int k = 0; k < n; ++k) {
      if (trial % 4 == 1) {  // a lattice: cocircular squares, collinear rows
        points.push_back(1000.0 + 10.0 * (k % 13));
        points.push_back(1000.0 + 10.0 * (k / 13));
      } else {
        points.push_back(1000.0 + random.uniform(0, 500));
        points.push_back(1000.0 + random.uniform(0, 500));
      }
    }
    // None left out (closed fans inside, open ones on the hull), a few (open
    // fans and gaps inside), or many (broken fans and lone triangles).
    const double leave_out = trial % 3 == 0 ? 0.0 : trial % 3 == 1 ? 0.05 : 0.4;
    compare_every_point(points, random, leave_out, "trial " + std::to_string(trial));
  }
}

TEST(FanOrder, FastOrderingAgreesOnRandomNeighbourTables) {
  // Columns of distinct triangles whose neighbour entries are drawn from the
  // column, from elsewhere and from hull links, so that anomalies, missing
  // neighbours and fans with nothing left for the last place all occur.
  tesseramill_test::Random random(192);
  int failures = 0;
  for (int trial = 0; trial < 3000; ++trial) {
    const std::int32_t c = 1 + static_cast<std::int32_t>(random.uniform(0, 40));
    const std::int32_t triangles = 3 * c + 10;
    std::vector<std::int32_t> all(static_cast<std::size_t>(triangles));
    std::iota(all.begin(), all.end(), 1);
    for (std::size_t k = all.size() - 1; k > 0; --k) {
      std::swap(all[k], all[static_cast<std::size_t>(random.uniform(0, static_cast<double>(k + 1)))]);
    }
    std::vector<std::int32_t> column(all.begin(), all.begin() + c);
    std::sort(column.begin(), column.end());
    std::vector<std::int32_t> neighbour(3 * static_cast<std::size_t>(triangles));
    const double inside = random.uniform(0, 1);
    for (std::int32_t& entry : neighbour) {
      const double draw = random.uniform(0, 1);
      if (draw < inside) {
        entry = column[static_cast<std::size_t>(random.uniform(0, c))];
      } else if (draw < 0.5 + inside / 2) {
        entry = 1 + static_cast<std::int32_t>(random.uniform(0, triangles));
      } else {
        entry = -1 - static_cast<std::int32_t>(random.uniform(0, 3 * triangles));
      }
    }
    if (!expect_same_order(neighbour, column, trial + 1, "random table " + std::to_string(trial)).empty()) ++failures;
  }
  // The draws reach the failures as well as the successes.
  EXPECT_GT(failures, 100);
  EXPECT_LT(failures, 2900);
}

TEST(FanOrder, EmptyColumnGivesSubOptimalBothWays) {
  EXPECT_EQ(expect_same_order({-1, -2, -3}, {}, 7, "empty"),
            "Sub-optimal triangulation. This can sometimes be rectified by decreasing requested cell density along "
            "inner lines (especially if close to model boundary) or increasing requested cell density along outer "
            "polygonal boundary.");
}

}  // namespace
}  // namespace tesseramill
