// The Delaunay triangulation: worked cases, failures and properties on many
// point sets.
#include <gtest/gtest.h>

#include <cmath>
#include <numeric>
#include <set>
#include <sstream>

#include "support/flat_triangle.h"
#include "support/random.h"
#include "triangulation/dtris2.h"
#include "triangulation/triangulate_points.h"

namespace tesseramill {
namespace {

struct Triangulation {
  std::vector<double> points;
  std::vector<std::int32_t> sort_index;
  std::vector<std::int32_t> vertex;
  std::vector<std::int32_t> neighbour;
  std::vector<std::int32_t> stack;
  std::int32_t count = 0;
  int ierror = -1;
  std::string screen;

  std::int32_t n() const { return static_cast<std::int32_t>(points.size() / 2); }
  std::int32_t v(std::int32_t e, std::int32_t t) const { return vertex[3 * (t - 1) + e - 1]; }
  std::int32_t nb(std::int32_t e, std::int32_t t) const { return neighbour[3 * (t - 1) + e - 1]; }
  double x(std::int32_t k) const { return points[2 * (k - 1)]; }
  double y(std::int32_t k) const { return points[2 * (k - 1) + 1]; }
};

Triangulation triangulate_once(const std::vector<double>& points, bool reference) {
  Triangulation tr;
  tr.points = points;
  const std::int32_t n = tr.n();
  tr.sort_index.resize(static_cast<std::size_t>(n));
  std::iota(tr.sort_index.begin(), tr.sort_index.end(), 1);
  tr.vertex.assign(6 * static_cast<std::size_t>(std::max(n, 2)), 0);
  tr.neighbour.assign(6 * static_cast<std::size_t>(std::max(n, 2)), 0);
  tr.stack.assign(static_cast<std::size_t>(std::max(n, 1)), 0);
  std::ostringstream screen;
  Dtris2Workspace work;
  tr.ierror = reference ? DTRIS2_reference(n, tr.points.data(), tr.sort_index.data(), tr.count, tr.vertex.data(),
                                           tr.neighbour.data(), tr.stack.data(), screen)
                        : DTRIS2(n, tr.points.data(), tr.sort_index.data(), tr.count, tr.vertex.data(),
                                 tr.neighbour.data(), tr.stack.data(), screen, work);
  tr.screen = screen.str();
  return tr;
}

// The literal routine's triangulation; on every input the fast routine must
// give the same code, screen, order and tables.
Triangulation triangulate(const std::vector<double>& points) {
  const Triangulation tr = triangulate_once(points, true);
  const Triangulation fast = triangulate_once(points, false);
  EXPECT_EQ(fast.ierror, tr.ierror);
  EXPECT_EQ(fast.screen, tr.screen);
  if (tr.ierror == 0) {
    EXPECT_EQ(fast.sort_index, tr.sort_index);
    EXPECT_EQ(fast.count, tr.count);
    const std::size_t used = 3 * static_cast<std::size_t>(tr.count);
    EXPECT_TRUE(std::equal(tr.vertex.begin(), tr.vertex.begin() + used, fast.vertex.begin()));
    EXPECT_TRUE(std::equal(tr.neighbour.begin(), tr.neighbour.begin() + used, fast.neighbour.begin()));
  }
  return tr;
}

TEST(Dtris2, WorkedFourPoints) {
  Triangulation tr = triangulate({0, 0, 1, 0, 0, 1, 1, 1});
  ASSERT_EQ(tr.ierror, 0);
  EXPECT_EQ(tr.sort_index, (std::vector<std::int32_t>{1, 3, 2, 4}));
  ASSERT_EQ(tr.count, 2);
  EXPECT_EQ((std::vector<std::int32_t>(tr.vertex.begin(), tr.vertex.begin() + 6)),
            (std::vector<std::int32_t>{3, 1, 2, 3, 2, 4}));
  EXPECT_EQ((std::vector<std::int32_t>(tr.neighbour.begin(), tr.neighbour.begin() + 6)),
            (std::vector<std::int32_t>{-4, -7, 2, 1, -8, -3}));
  EXPECT_EQ(tr.screen, "");
}

TEST(Dtris2, DiagonalTest) {
  const double rhombus[4][2] = {{0, -1}, {3, 0}, {0, 1}, {-3, 0}};
  EXPECT_EQ(diagonal_test(rhombus[0], rhombus[1], rhombus[2], rhombus[3]), 1);
  const double square[4][2] = {{0, 0}, {1, 0}, {1, 1}, {0, 1}};
  EXPECT_EQ(diagonal_test(square[0], square[1], square[2], square[3]), 0);
  const double kite[4][2] = {{0, -3}, {1, 0}, {0, 3}, {-1, 0}};
  EXPECT_EQ(diagonal_test(kite[0], kite[1], kite[2], kite[3]), -1);
}

TEST(Dtris2, ModuloIsNeverNegative) {
  EXPECT_EQ(I4_MODP(-1, 3), 2);
  EXPECT_EQ(I4_MODP(0, 3), 0);
  EXPECT_EQ(I4_MODP(4, 3), 1);
  EXPECT_EQ(I4_MODP(-3, 3), 0);
}

TEST(Dtris2, ThreeCollinearPointsAndOneOff) {
  Triangulation tr = triangulate({0, 0, 1, 0, 2, 0, 3, 1});
  ASSERT_EQ(tr.ierror, 0);
  ASSERT_EQ(tr.count, 2);
  // The fourth sorted point is left of the line: fan s(i), s(i+1), m.
  EXPECT_EQ((std::vector<std::int32_t>(tr.vertex.begin(), tr.vertex.begin() + 6)),
            (std::vector<std::int32_t>{1, 2, 4, 2, 3, 4}));
}

TEST(Dtris2, FirstFanRightOfTheLineLinksItsHullDownTheLine) {
  // Points 1, 2, 3 on x = 0 and point 4 to their right: a fan of two
  // triangles whose line edges link downwards, edge 1 of triangle 2 to
  // edge 1 of triangle 1, and that to edge 2 of triangle 1.
  Triangulation tr = triangulate({0, 0, 0, 1, 0, 2, 1, 0.5});
  ASSERT_EQ(tr.ierror, 0);
  ASSERT_EQ(tr.count, 2);
  EXPECT_EQ((std::vector<std::int32_t>(tr.vertex.begin(), tr.vertex.begin() + 6)),
            (std::vector<std::int32_t>{2, 1, 4, 3, 2, 4}));
  EXPECT_EQ((std::vector<std::int32_t>(tr.neighbour.begin(), tr.neighbour.begin() + 6)),
            (std::vector<std::int32_t>{-4, -8, 2, -3, 1, -6}));
}

TEST(Dtris2, AllPointsOnALine) {
  const std::string message = " \nDTRIS2 - Fatal error!\n  Could not find a noncollinear third point.\n";
  Triangulation tr = triangulate({0, 0, 1, 1, 2, 2, 3, 3, 4, 4});
  EXPECT_EQ(tr.ierror, 225);
  EXPECT_EQ(tr.screen, message);
  EXPECT_EQ(triangulate({0, 0, 5, 5}).ierror, 225);
  EXPECT_EQ(triangulate({0, 0, 5, 5}).screen, message);
}

TEST(Dtris2, NearDuplicates) {
  const std::string message = " \nDTRIS2 - Fatal error!\n  Consecutive points are too close.\n";
  Triangulation tr = triangulate({0, 0, 5, 0, 1, 1, 1 + 1e-15, 1 + 1e-15});
  EXPECT_EQ(tr.ierror, 224);
  EXPECT_EQ(tr.screen, message);
  // Coordinates smaller than the tolerance all compare equal.
  EXPECT_EQ(triangulate({1e-15, 0, 2e-15, 0, 5, 5}).ierror, 224);
  // Same x with clearly different y is fine, and the same y likewise.
  EXPECT_EQ(triangulate({1, 0, 1, 1e-6, 3, 0}).ierror, 0);
  EXPECT_EQ(triangulate({0, 1, 1e-6, 1, 0, 3}).ierror, 0);
}

TEST(Dtris2, VerticalRowEntersBottomUp) {
  Triangulation tr = triangulate({0, 3, 0, 1, 0, 2, 1, 0});
  ASSERT_EQ(tr.ierror, 0);
  EXPECT_EQ(tr.sort_index, (std::vector<std::int32_t>{2, 3, 1, 4}));
}

TEST(Dtris2, PointSeeingOneHullEdgeMakesOneTriangle) {
  // The third point closes a triangle; the fourth sees only the edge from
  // (2,0) to (2,2).
  Triangulation tr = triangulate({0, 0, 2, 0, 1, 2, 3, 1});
  ASSERT_EQ(tr.ierror, 0);
  EXPECT_EQ(tr.count, 2);
}

double orientation(const Triangulation& tr, std::int32_t t) {
  const std::int32_t a = tr.v(1, t);
  const std::int32_t b = tr.v(2, t);
  const std::int32_t c = tr.v(3, t);
  return (tr.x(b) - tr.x(a)) * (tr.y(c) - tr.y(a)) - (tr.y(b) - tr.y(a)) * (tr.x(c) - tr.x(a));
}

// Checks every property of a valid triangulation; returns the hull size.
void check_properties(const Triangulation& tr, const std::string& what) {
  ASSERT_EQ(tr.ierror, 0) << what;
  std::int32_t hull_edges = 0;
  std::int32_t first_hull_t = 0;
  std::int32_t first_hull_e = 0;
  for (std::int32_t t = 1; t <= tr.count; ++t) {
    EXPECT_GT(orientation(tr, t), 0.0) << what << " triangle " << t;
    for (std::int32_t e = 1; e <= 3; ++e) {
      const std::int32_t u = tr.nb(e, t);
      const std::int32_t a = tr.v(e, t);
      const std::int32_t b = tr.v(e % 3 + 1, t);
      if (u > 0) {
        // The neighbour has this triangle across the same edge, reversed.
        bool found = false;
        for (std::int32_t f = 1; f <= 3; ++f) {
          if (tr.nb(f, u) == t) {
            found = true;
            EXPECT_EQ(tr.v(f, u), b) << what;
            EXPECT_EQ(tr.v(f % 3 + 1, u), a) << what;
          }
        }
        EXPECT_TRUE(found) << what << " triangle " << t << " edge " << e;
      } else {
        ++hull_edges;
        first_hull_t = t;
        first_hull_e = e;
      }
    }
  }
  EXPECT_EQ(tr.count, 2 * tr.n() - hull_edges - 2) << what;
  // The hull links visit every hull edge once and come back.
  std::int32_t t = first_hull_t;
  std::int32_t e = first_hull_e;
  std::set<std::pair<std::int32_t, std::int32_t>> seen;
  for (std::int32_t step = 0; step < hull_edges; ++step) {
    ASSERT_LT(tr.nb(e, t), 0) << what;
    EXPECT_TRUE(seen.insert({t, e}).second) << what;
    const std::int32_t l = -tr.nb(e, t);
    const std::int32_t next_t = l / 3;
    const std::int32_t next_e = l % 3 + 1;
    // Consecutive hull edges share a point: this edge's end is the next one's start.
    EXPECT_EQ(tr.v(e % 3 + 1, t), tr.v(next_e, next_t)) << what;
    t = next_t;
    e = next_e;
  }
  EXPECT_EQ(t, first_hull_t) << what;
  EXPECT_EQ(e, first_hull_e) << what;
  // Empty circumcircles, within a relative tolerance.
  for (std::int32_t k = 1; k <= tr.count; ++k) {
    const std::int32_t a = tr.v(1, k);
    const std::int32_t b = tr.v(2, k);
    const std::int32_t c = tr.v(3, k);
    for (std::int32_t p = 1; p <= tr.n(); ++p) {
      if (p == a || p == b || p == c) continue;
      const double adx = tr.x(a) - tr.x(p), ady = tr.y(a) - tr.y(p);
      const double bdx = tr.x(b) - tr.x(p), bdy = tr.y(b) - tr.y(p);
      const double cdx = tr.x(c) - tr.x(p), cdy = tr.y(c) - tr.y(p);
      const double ad = adx * adx + ady * ady, bd = bdx * bdx + bdy * bdy, cd = cdx * cdx + cdy * cdy;
      const double det = adx * (bdy * cd - bd * cdy) - ady * (bdx * cd - bd * cdx) + ad * (bdx * cdy - bdy * cdx);
      const double scale = (std::fabs(adx) + std::fabs(ady)) * (std::fabs(bdx) + std::fabs(bdy)) *
                           (std::fabs(cdx) + std::fabs(cdy)) * (ad + bd + cd + 1.0);
      EXPECT_LE(det, 1e-9 * scale) << what << " point " << p << " in circle of " << k;
    }
  }
}

struct Random {
  std::uint64_t state;
  double next() {
    state = state * 6364136223846793005ULL + 1442695040888963407ULL;
    return static_cast<double>(state >> 11) * (1.0 / 9007199254740992.0);
  }
};

TEST(Dtris2Properties, RandomPointSets) {
  for (std::uint64_t seed = 1; seed <= 40; ++seed) {
    Random r{seed};
    const int n = 3 + static_cast<int>(seed * 7 % 200);
    std::vector<double> points;
    for (int k = 0; k < n; ++k) {
      points.push_back(r.next() * 1000.0 + 1000.0);
      points.push_back(r.next() * 600.0 + 1000.0);
    }
    check_properties(triangulate(points), "seed " + std::to_string(seed));
  }
}

TEST(Dtris2Properties, RegularGridsSwapNothingAndStayValid) {
  for (int size : {2, 3, 5, 10, 17}) {
    std::vector<double> points;
    for (int j = 0; j < size; ++j) {
      for (int i = 0; i < size; ++i) {
        points.push_back(1000.0 + 10.0 * i);
        points.push_back(1000.0 + 10.0 * j);
      }
    }
    check_properties(triangulate(points), "grid " + std::to_string(size));
  }
}

TEST(Dtris2Properties, HexagonalLatticeAndRings) {
  std::vector<double> points;
  for (int j = 0; j < 12; ++j) {
    for (int i = 0; i < 12; ++i) {
      points.push_back(1000.0 + 10.0 * i + (j % 2) * 5.0);
      points.push_back(1000.0 + 8.660254037844386 * j);
    }
  }
  check_properties(triangulate(points), "hexagonal");
  std::vector<double> ring;
  for (int k = 0; k < 36; ++k) {
    ring.push_back(1000.0 + 100.0 * std::cos(k * 0.17453292519943295));
    ring.push_back(1000.0 + 100.0 * std::sin(k * 0.17453292519943295));
  }
  ring.push_back(1000.0);
  ring.push_back(1000.0);
  check_properties(triangulate(ring), "ring");
}

TEST(Dtris2Properties, SameInputGivesSameNumbering) {
  Random r{99};
  std::vector<double> points;
  for (int k = 0; k < 300; ++k) {
    points.push_back(r.next() * 50.0);
    points.push_back(r.next() * 50.0);
  }
  Triangulation a = triangulate(points);
  Triangulation b = triangulate(points);
  EXPECT_EQ(a.vertex, b.vertex);
  EXPECT_EQ(a.neighbour, b.neighbour);
}

TEST(TriangleCircumcentre, RightTriangle) {
  Circumcircle c = triangle_circumcentre(0, 0, 4, 0, 0, 3);
  EXPECT_EQ(c.status, 0);
  EXPECT_DOUBLE_EQ(c.radius, 2.5);
  EXPECT_DOUBLE_EQ(c.centre_x, 2.0);
  EXPECT_DOUBLE_EQ(c.centre_y, 1.5);
}

TEST(TriangleCircumcentre, FlatTriangleIsDegenerateNotCollapsed) {
  Circumcircle c = triangle_circumcentre(0, 0, 1, 0, 2, 0);
  EXPECT_EQ(c.status, 0);
  EXPECT_EQ(c.radius, -1.0);
  EXPECT_EQ(c.centre_x, 0.0);
  EXPECT_EQ(c.centre_y, 0.0);
}

}  // namespace
}  // namespace tesseramill

namespace tesseramill {
namespace {

// The fast DTRIS2 gives the literal routine's code, order and tables on
// seeded sets of every kind: triangulate() compares the two on each.
TEST(Dtris2, FastRoutineAgreesWithTheLiteralOneOnManySets) {
  tesseramill_test::Random random(61);
  for (int trial = 0; trial < 300; ++trial) {
    const double offset = trial % 3 == 0 ? 0.0 : trial % 3 == 1 ? 1e6 : 7e6;
    const int n = 3 + trial * 5;
    std::vector<double> points;
    for (int k = 0; k < n; ++k) {
      switch ((trial + k) % 6) {
        case 0:  // an exact lattice: equal x, equal y, cocircular quadruples
          points.push_back(offset + 10.0 * (k % 7));
          points.push_back(offset + 10.0 * (k / 7) + 0.25);
          break;
        case 1:  // x a few units in the last place apart, within the
                 // tolerance, so that only y may order them; y apart
          points.push_back(offset + 500.0 * (1.0 + 1e-15 * (k / 6 % 4)));
          points.push_back(offset + random.uniform(0, 1000));
          break;
        default:
          points.push_back(offset + random.uniform(0, 1000));
          points.push_back(offset + random.uniform(0, 1000));
          break;
      }
    }
    if (trial % 10 == 9) {  // a near-duplicate within the tolerance: 224
      points.push_back(points[0] * (1.0 + 1e-16));
      points.push_back(points[1]);
    }
    SCOPED_TRACE("trial " + std::to_string(trial));
    triangulate(points);
  }
}

TEST(Dtris2, FastRoutineAgreesOnCollinearSetsAndTinyCoordinates) {
  SCOPED_TRACE("collinear");
  triangulate({0, 0, 1, 1, 2, 2, 3, 3, 4, 4});
  SCOPED_TRACE("two points");
  triangulate({0, 0, 1, 1});
  SCOPED_TRACE("below the tolerance");
  triangulate({1e-15, 0, 0, 1e-15, 1, 1, 2, 0});
  SCOPED_TRACE("a vertical row");
  triangulate({5, 0, 5, 3, 5, 1, 5, 2, 6, 1});
}

// 400 distinct points of a 41 by 41 lattice, half of them shifted half a
// unit up: many share an x or a y, and many four lie on one circle, where
// the order of insertion matters most.
std::vector<double> distinct_lattice_points(tesseramill_test::Random& random) {
  std::set<std::pair<double, double>> taken;
  std::vector<double> points;
  while (points.size() < 800) {
    const double x = 1e6 + std::round(random.uniform(0, 40));
    const double y = 2e6 + std::round(random.uniform(0, 40)) + 0.5 * static_cast<double>(taken.size() % 2);
    if (!taken.insert({x, y}).second) continue;
    points.push_back(x);
    points.push_back(y);
  }
  return points;
}

void shuffle_points(std::vector<double>& points, tesseramill_test::Random& random) {
  for (std::size_t k = points.size() / 2 - 1; k > 0; --k) {
    const std::size_t j = static_cast<std::size_t>(random.uniform(0, static_cast<double>(k + 1)));
    std::swap(points[2 * k], points[2 * j]);
    std::swap(points[2 * k + 1], points[2 * j + 1]);
  }
}

// Every shuffle is triangulated in full, so that triangulate() compares the
// fast routine's tables with the literal one's each time; the number of
// triangles does not depend on the order.
TEST(Dtris2, FastRoutineAgreesWhateverTheOrderOfTheInput) {
  tesseramill_test::Random random(62);
  std::vector<double> points = distinct_lattice_points(random);
  std::int32_t first_count = 0;
  for (int shuffle = 0; shuffle < 5; ++shuffle) {
    shuffle_points(points, random);
    SCOPED_TRACE("shuffle " + std::to_string(shuffle));
    const Triangulation tr = triangulate(points);
    ASSERT_EQ(tr.ierror, 0) << tr.screen;
    EXPECT_EQ(tr.screen, "");
    if (shuffle == 0) first_count = tr.count;
    EXPECT_GT(tr.count, 700);
    EXPECT_EQ(tr.count, first_count);
  }
}

// The same points with one of them twice stop both routines at the
// duplicate, with the same code and text, in every order.
TEST(Dtris2, DuplicatePointStopsBothRoutinesWhateverTheOrder) {
  tesseramill_test::Random random(62);
  std::vector<double> points = distinct_lattice_points(random);
  points.push_back(points[10]);
  points.push_back(points[11]);
  for (int shuffle = 0; shuffle < 5; ++shuffle) {
    shuffle_points(points, random);
    SCOPED_TRACE("shuffle " + std::to_string(shuffle));
    const Triangulation tr = triangulate(points);
    EXPECT_EQ(tr.ierror, 224);
    EXPECT_EQ(tr.screen, " \nDTRIS2 - Fatal error!\n  Consecutive points are too close.\n");
  }
}

// The collapse test without the circle against the circle's own status, on
// seeded triangles of every kind the sweep meets: ordinary ones, corners on
// one line in exact and in rounded arithmetic (where rounding alone decides
// between a degenerate triangle and a collapsed one), repeated corners and
// corners that are no numbers or infinite.
TEST(TriangleCollapsed, IsTheCircleStatusOnEveryKindOfTriangle) {
  struct Case {
    double x1, y1, x2, y2, x3, y3;
  };
  const double* flat = tesseramill_test::kFlatCorners;
  std::vector<Case> cases = {
      {0, 0, 4, 0, 0, 3},
      {0, 0, 1, 0, 2, 0},
      {flat[0], flat[1], flat[2], flat[3], flat[4], flat[5]},
      {5, 5, 5, 5, 7, 1},
      {5, 5, 5, 5, 5, 5},
      {std::nan(""), 0, 1, 0, 0, 1},
      {0, 0, HUGE_VAL, 0, 0, 1},
      {0, 0, 1, -HUGE_VAL, 0, 1},
  };
  Random r{2718};
  for (int k = 0; k < 20000; ++k) {
    const double x0 = 1000.0 + r.next() * 5000.0;
    const double y0 = 1000.0 + r.next() * 5000.0;
    const double dx = r.next() * 40.0 - 20.0;
    const double dy = r.next() * 40.0 - 20.0;
    if (k % 2 == 0) {
      cases.push_back({x0, y0, x0 + dx, y0 + dy, x0 + r.next() * 40.0 - 20.0, y0 + r.next() * 40.0 - 20.0});
    } else {
      // A third corner on the line through the first two, rounded.
      const double s = r.next() * 3.0 - 1.0;
      cases.push_back({x0, y0, x0 + dx, y0 + dy, x0 + s * dx, y0 + s * dy});
    }
  }
  int collapsed = 0;
  int degenerate_on_a_line = 0;
  for (const Case& c : cases) {
    const Circumcircle circle = triangle_circumcentre(c.x1, c.y1, c.x2, c.y2, c.x3, c.y3);
    ASSERT_EQ(triangle_collapsed(c.x1, c.y1, c.x2, c.y2, c.x3, c.y3), circle.status != 0)
        << c.x1 << " " << c.y1 << " " << c.x2 << " " << c.y2 << " " << c.x3 << " " << c.y3;
    const double det = (c.y3 - c.y1) * (c.x2 - c.x1) - (c.x3 - c.x1) * (c.y2 - c.y1);
    if (circle.status != 0) ++collapsed;
    if (det == 0.0 && circle.status == 0) ++degenerate_on_a_line;
  }
  // Both outcomes of a zero determinant were met.
  EXPECT_GT(collapsed, 1);
  EXPECT_GT(degenerate_on_a_line, 3);
}

}  // namespace
}  // namespace tesseramill
