// The ring integrity test that passes over runs of vertices by their boxes
// finds the failure that testing every pair finds first, with the same
// message, or none where that finds none.
#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <vector>

#include "geometry/polygon_integrity.h"
#include "support/random.h"
#include "support/rings.h"

namespace tesseramill {
namespace {

using tesseramill_test::Random;
using tesseramill_test::ring_of;

constexpr double kPi = 3.141592653589793;

std::vector<double> closed(std::vector<double> ring) {
  ring.push_back(ring[0]);
  ring.push_back(ring[1]);
  return ring;
}

// A simple wiggly ring of `vertices` vertices round (cx, cy).
std::vector<double> wiggly(Random& random, double cx, double cy, double radius, int vertices) {
  std::vector<double> ring;
  const double phase = random.uniform(0, 2 * kPi);
  for (int i = 0; i < vertices; ++i) {
    const double theta = 2 * kPi * i / vertices;
    const double r = radius * (1.0 + 0.2 * std::sin(9 * theta + phase) + random.uniform(-0.02, 0.02));
    ring.push_back(cx + r * std::cos(theta));
    ring.push_back(cy + r * std::sin(theta));
  }
  return closed(ring);
}

// Returns the message both give ("" when the ring passes) after checking
// that they agree.
std::string same_verdict(const std::vector<double>& vertices) {
  const BoundaryRing ring = ring_of(vertices);
  RunState fast;
  RunState every;
  const int a = check_polygon_integrity(fast, ring, "ring.bln ");
  const int b = check_polygon_integrity_reference(every, ring, "ring.bln ");
  EXPECT_EQ(a, b);
  EXPECT_EQ(fast.message_buffer, every.message_buffer);
  return a == 0 ? std::string() : fast.message_buffer;
}

TEST(PolygonIntegrity, SimpleRingsPassBothWays) {
  for (std::uint64_t seed = 1; seed <= 4; ++seed) {
    Random random(seed);
    const double scale = std::pow(10.0, 2.0 * static_cast<double>(seed) - 4.0);
    EXPECT_EQ(same_verdict(wiggly(random, 3e5 * scale, -2e5 * scale, 100 * scale, 1500)), "");
  }
}

// Each defect put into a simple ring at a random place: the first failure
// of the literal order is found, whichever defect it comes from.
TEST(PolygonIntegrity, DefectsAreFoundInTheLiteralOrder) {
  Random random(11);
  int failures = 0;
  for (int round = 0; round < 300; ++round) {
    std::vector<double> ring = wiggly(random, 5000, 5000, 1000, 200 + round);
    const std::size_t n = ring.size() / 2 - 1;  // distinct vertices
    const int defects = 1 + round % 3;
    for (int d = 0; d < defects; ++d) {
      const std::size_t k = 1 + static_cast<std::size_t>(random.uniform(0, static_cast<double>(n - 2)));
      const std::size_t m = 1 + static_cast<std::size_t>(random.uniform(0, static_cast<double>(n - 2)));
      const double t = random.uniform(0, 1);
      switch ((round + d) % 6) {
        case 0:  // a vertex on another exactly
          ring[2 * k] = ring[2 * m];
          ring[2 * k + 1] = ring[2 * m + 1];
          break;
        case 1:  // a vertex within the tolerance of another
          ring[2 * k] = ring[2 * m] + 0.9e-6;
          ring[2 * k + 1] = ring[2 * m + 1] - 0.9e-6;
          break;
        case 2:  // just beyond it
          ring[2 * k] = ring[2 * m] + 1.1e-6;
          ring[2 * k + 1] = ring[2 * m + 1];
          break;
        case 3:  // a vertex on a segment, as rounded
          ring[2 * k] = ring[2 * m] + t * (ring[2 * m + 2] - ring[2 * m]);
          ring[2 * k + 1] = ring[2 * m + 1] + t * (ring[2 * m + 3] - ring[2 * m + 1]);
          break;
        case 4:  // a vertex pulled across the ring: segments cross
          ring[2 * k] = 2 * 5000 - ring[2 * k];
          break;
        default:  // a vertex pulled far out
          ring[2 * k] += 3000;
          break;
      }
    }
    ring[2 * n] = ring[0];
    ring[2 * n + 1] = ring[1];
    if (!same_verdict(ring).empty()) ++failures;
  }
  EXPECT_GT(failures, 250);
}

// Rings whose vertices lie on lines that binary fractions cannot hold
// exactly, so that the rounded sides of far-apart segments on one line are
// rounding noise; and rings that cross themselves everywhere.
TEST(PolygonIntegrity, NearlyCollinearAndTangledRings) {
  Random random(5);
  for (int round = 0; round < 40; ++round) {
    std::vector<double> line;
    const double step = 0.1 * (1 + round % 7);
    for (int i = 0; i < 120; ++i) {
      line.push_back(i * step);
      line.push_back(i * step * 3.0 + (round % 2 == 0 ? 0.0 : 1e-13 * random.uniform(-1, 1)));
    }
    for (int i = 118; i >= 1; --i) {
      line.push_back(i * step + 0.7);
      line.push_back(i * step * 3.0 + 0.1);
    }
    same_verdict(closed(line));
    // Nearly level runs, whose boxes are as thin as the noise of the sides.
    std::vector<double> level;
    for (int i = 0; i < 150; ++i) {
      level.push_back(i * step);
      level.push_back(0.3 + 1e-15 * random.uniform(-1, 1) + (i % 2 == 0 ? 0.0 : 0.1 * 3.0 - 0.3));
    }
    for (int i = 148; i >= 1; --i) {
      level.push_back(i * step + 0.05);
      level.push_back(5.0);
    }
    same_verdict(closed(level));
    std::vector<double> tangle;
    for (int i = 0; i < 150; ++i) {
      tangle.push_back(random.uniform(-1, 1));
      tangle.push_back(random.uniform(-1, 1));
    }
    EXPECT_NE(same_verdict(closed(tangle)), "");
  }
}

TEST(PolygonIntegrity, ValuesTheBoxesDoNotServeAndTinyRings) {
  const double nan = std::numeric_limits<double>::quiet_NaN();
  const double inf = std::numeric_limits<double>::infinity();
  for (double odd : {nan, inf, -inf, 1e150, -3e200}) {
    std::vector<double> ring = {0, 0, 10, 0, 10, 10, 5, 12, 0, 10, 0, 0};
    ring[6] = odd;
    same_verdict(ring);
  }
  EXPECT_EQ(same_verdict({0, 0, 1, 0, 0, 0}), "");
  EXPECT_EQ(same_verdict({0, 0, 1, 0, 0, 1, 0, 0}), "");
  EXPECT_EQ(same_verdict({0, 0, 2, 2, 2, 0, 0, 2, 0, 0}),
            "Line segment joining points 1 and 2 crosses line segment joining points 3 and 4 in file ring.bln.");
  EXPECT_EQ(same_verdict({0, 0, 2, 0, 2, 2, 1, 0, 0, 2, 0, 0}),
            "Polygon vertex 4 is on the line that joins vertices 1 and 2 in file ring.bln.");
}

}  // namespace
}  // namespace tesseramill
