// The clearance of the inner lines' points from the boundaries, through the
// rings' segment index, gives the full walk's answer for every point and
// clearance, the hard ones included.
#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <vector>

#include "geometry/planar_tools.h"
#include "support/random.h"
#include "support/rings.h"

namespace tesseramill {
namespace {

using tesseramill_test::Random;
using tesseramill_test::ring_of;

constexpr double kPi = 3.141592653589793;

// A wiggly closed ring round (cx, cy) with `vertices` vertices; every
// `repeat`th vertex is given twice, which makes a segment of no length.
std::vector<double> wiggly(Random& random, double cx, double cy, double radius, int vertices, int repeat) {
  std::vector<double> ring;
  const double phase = random.uniform(0, 2 * kPi);
  for (int i = 0; i < vertices; ++i) {
    const double theta = 2 * kPi * i / vertices;
    const double r = radius * (1.0 + 0.2 * std::sin(7 * theta + phase) + random.uniform(-0.05, 0.05));
    ring.push_back(cx + r * std::cos(theta));
    ring.push_back(cy + r * std::sin(theta));
    if (repeat > 0 && i % repeat == 0) {
      ring.push_back(ring[ring.size() - 2]);
      ring.push_back(ring[ring.size() - 2]);
    }
  }
  ring.push_back(ring[0]);
  ring.push_back(ring[1]);
  return ring;
}

struct Probe {
  double x;
  double y;
  double clearance;
};

// Points on, beside and between the segments of each ring, with clearances
// at, just below and just above the distance distance_to_segment gives to
// the nearest segment, and random ones over the box.
std::vector<Probe> probes(Random& random, const std::vector<std::vector<double>>& rings, double centre,
                          double width) {
  std::vector<Probe> out;
  for (const std::vector<double>& ring : rings) {
    for (std::size_t k = 0; k + 3 < ring.size(); k += 2 * 5) {
      const double ax = ring[k], ay = ring[k + 1], bx = ring[k + 2], by = ring[k + 3];
      for (double t : {0.0, 0.5, random.uniform(0, 1), 1.0}) {
        const double px = ax + t * (bx - ax);
        const double py = ay + t * (by - ay);
        for (double offset : {0.0, 1e-12 * width, 1e-6 * width, 1e-3 * width, 0.02 * width}) {
          const double angle = random.uniform(0, 2 * kPi);
          const double x = px + offset * std::cos(angle);
          const double y = py + offset * std::sin(angle);
          double nearest = std::numeric_limits<double>::infinity();
          for (const std::vector<double>& other : rings) {
            for (std::size_t m = 0; m + 3 < other.size(); m += 2) {
              nearest = std::min(nearest, distance_to_segment(x, y, other[m], other[m + 1], other[m + 2], other[m + 3]));
            }
          }
          for (double c : {nearest, std::nextafter(nearest, 0.0), std::nextafter(nearest, 1e300), 2 * nearest,
                           0.5 * nearest, 0.0, -1.0}) {
            out.push_back({x, y, c});
          }
        }
      }
    }
  }
  for (int k = 0; k < 2000; ++k) {
    out.push_back({centre + random.uniform(-width, width), centre + random.uniform(-width, width),
                   random.uniform(0, 0.2 * width)});
  }
  return out;
}

// Every probe gets the same answer through the indexes as by the full walk.
void expect_same_answers(RunState& state, const std::vector<Probe>& points) {
  build_domain_index(state);
  for (const Probe& p : points) {
    state.reference_paths = true;
    const bool walked = line_point_clear(state, p.x, p.y, p.clearance, 1);
    state.reference_paths = false;
    ASSERT_EQ(line_point_clear(state, p.x, p.y, p.clearance, 1), walked)
        << "point " << p.x << " " << p.y << " clearance " << p.clearance;
  }
}

TEST(LineClearance, IndexedRingsGiveTheFullWalksAnswerAtManyScales) {
  for (std::uint64_t seed = 1; seed <= 4; ++seed) {
    Random random(seed);
    const double scale = std::pow(10.0, static_cast<double>(seed) - 3.0);
    const double centre = seed % 2 == 0 ? 5e5 * scale : 0.0;
    RunState state;
    const std::vector<double> outer = wiggly(random, centre, centre, 100 * scale, 400, 0);
    const std::vector<double> hole = wiggly(random, centre + 20 * scale, centre, 15 * scale, 60, 7);
    state.outer_boundary = ring_of(outer);
    state.inner_boundaries.push_back(ring_of(hole));
    expect_same_answers(state, probes(random, {outer, hole}, centre, 120 * scale));
    EXPECT_TRUE(state.domain_index.segments.built);
  }
}

TEST(LineClearance, PointsAndClearancesThatAreNoNumbersAndRingsTheIndexCannotServe) {
  Random random(7);
  RunState state;
  state.outer_boundary = ring_of(wiggly(random, 0, 0, 100, 50, 5));
  std::vector<double> hole = wiggly(random, 0, 0, 10, 20, 0);
  hole[6] = std::numeric_limits<double>::quiet_NaN();  // every segment is walked in full
  state.inner_boundaries.push_back(ring_of(hole));
  const double nan = std::numeric_limits<double>::quiet_NaN();
  const double inf = std::numeric_limits<double>::infinity();
  std::vector<Probe> points;
  for (double x : {0.0, 30.0, 99.0, nan, inf}) {
    for (double c : {1.0, 50.0, 0.0, nan, inf, -inf}) points.push_back({x, 1.0, c});
  }
  expect_same_answers(state, points);
  EXPECT_FALSE(state.domain_index.segments.built);
}

}  // namespace
}  // namespace tesseramill
