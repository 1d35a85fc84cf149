// The ring index gives point_in_polygon's location for every point, and a
// rectangle's location only where every point of it has that location.
#include <gtest/gtest.h>

#include <cmath>
#include <vector>

#include "geometry/domain_index.h"
#include "geometry/point_in_polygon.h"
#include "support/random.h"

namespace tesseramill {
namespace {

using tesseramill_test::Random;

constexpr double kPi = 3.141592653589793;

int reference(const std::vector<double>& ring, double x, double y) {
  return point_in_polygon(x, y, ring.data(), static_cast<std::int32_t>(ring.size() / 2)).location;
}

std::int32_t count(const std::vector<double>& ring) { return static_cast<std::int32_t>(ring.size() / 2); }

// A star-shaped ring round (cx, cy), closed.
std::vector<double> star(Random& random, double cx, double cy, double radius, int vertices, bool closed = true) {
  std::vector<double> ring;
  const double phase = random.uniform(0, 2 * kPi);
  for (int i = 0; i < vertices; ++i) {
    const double theta = 2 * kPi * i / vertices;
    const double r = radius * (1.0 + 0.3 * std::sin(3 * theta + phase) + random.uniform(-0.1, 0.1));
    ring.push_back(cx + r * std::cos(theta));
    ring.push_back(cy + r * std::sin(theta));
  }
  if (closed) {
    ring.push_back(ring[0]);
    ring.push_back(ring[1]);
  }
  return ring;
}

// A random walk that crosses itself freely.
std::vector<double> tangle(Random& random, double cx, double cy, double size, int vertices) {
  std::vector<double> ring;
  for (int i = 0; i < vertices; ++i) {
    ring.push_back(cx + random.uniform(-size, size));
    ring.push_back(cy + random.uniform(-size, size));
  }
  ring.push_back(ring[0]);
  ring.push_back(ring[1]);
  return ring;
}

// The points that test the index hardest: vertices, points on edges and
// beside them at and around the margin (every `stride`th edge), and points
// spread over the box.
std::vector<double> probes(Random& random, const std::vector<double>& ring, int spread, std::size_t stride = 1) {
  std::vector<double> points;
  const std::size_t n = ring.size() / 2;
  double xmin = ring[0], xmax = ring[0], ymin = ring[1], ymax = ring[1];
  for (std::size_t k = 0; k < n; ++k) {
    xmin = std::min(xmin, ring[2 * k]);
    xmax = std::max(xmax, ring[2 * k]);
    ymin = std::min(ymin, ring[2 * k + 1]);
    ymax = std::max(ymax, ring[2 * k + 1]);
  }
  const double width = std::max(xmax - xmin, ymax - ymin);
  for (std::size_t k = 0; k + 1 < n; k += stride) {
    const double ax = ring[2 * k], ay = ring[2 * k + 1], bx = ring[2 * k + 2], by = ring[2 * k + 3];
    points.insert(points.end(), {ax, ay});
    const double length = std::hypot(bx - ax, by - ay);
    const double nx = length > 0 ? -(by - ay) / length : 0.0;
    const double ny = length > 0 ? (bx - ax) / length : 0.0;
    const double margin = 1e-8 * (length + width);
    for (double t : {0.5, random.uniform(0, 1), 1e-9, 1 - 1e-9}) {
      const double px = ax + t * (bx - ax);
      const double py = ay + t * (by - ay);
      points.insert(points.end(), {px, py});
      for (double offset : {1e-15 * width, 1e-12 * width, 0.5 * margin, margin, 1.5 * margin, 2 * margin,
                            2.0001 * margin, 3 * margin, 1e-6 * width, 1e-3 * width}) {
        points.insert(points.end(), {px + offset * nx, py + offset * ny, px - offset * nx, py - offset * ny});
      }
    }
  }
  for (int k = 0; k < spread; ++k) {
    points.push_back(random.uniform(xmin - 0.1 * width, xmax + 0.1 * width));
    points.push_back(random.uniform(ymin - 0.1 * width, ymax + 0.1 * width));
  }
  return points;
}

// Every probe gets the reference's location; returns how many the index
// decided without the angle sum (for information only).
void expect_same_locations(const std::vector<double>& ring, const std::vector<double>& points) {
  const RingIndex index = build_ring_index(ring.data(), count(ring));
  for (std::size_t k = 0; k + 1 < points.size(); k += 2) {
    ASSERT_EQ(locate_in_ring(index, points[k], points[k + 1]), reference(ring, points[k], points[k + 1]))
        << "point " << points[k] << " " << points[k + 1];
  }
}

TEST(RingIndex, StarRingsAtManyScales) {
  Random random(11);
  for (int trial = 0; trial < 60; ++trial) {
    const double offset = trial % 3 == 0 ? 0.0 : trial % 3 == 1 ? 1e6 : 7e6;
    const double radius = trial % 4 == 0 ? 1e-3 : trial % 4 == 1 ? 10.0 : trial % 4 == 2 ? 2e4 : 3e5;
    const int vertices = 3 + static_cast<int>(random.uniform(0, 60));
    const std::vector<double> ring = star(random, offset + 1000, offset + 2000, radius, vertices, trial % 2 == 0);
    expect_same_locations(ring, probes(random, ring, 400));
  }
}

TEST(RingIndex, RingsOfThousandsOfVertices) {
  Random random(12);
  for (int vertices : {2000, 10000}) {
    const std::vector<double> ring = star(random, 5e6, 7e6, 4e4, vertices);
    expect_same_locations(ring, probes(random, ring, 500, vertices / 40));
  }
}

TEST(RingIndex, SelfCrossingRingsWindingTwiceAndDegenerateOnes) {
  Random random(13);
  for (int trial = 0; trial < 40; ++trial) {
    const std::vector<double> ring = tangle(random, 1000, 1000, 50, 5 + trial);
    expect_same_locations(ring, probes(random, ring, 300));
  }
  // A ring round the same square twice has winding number 2 inside.
  const std::vector<double> twice = {0, 0, 10, 0, 10, 10, 0, 10, 0, 0, 10, 0, 10, 10, 0, 10, 0, 0};
  expect_same_locations(twice, probes(random, twice, 300));
  // Collinear and repeated vertices, a zero-area ring, an open ring.
  const std::vector<double> collinear = {0, 0, 5, 0, 10, 0, 10, 0, 10, 10, 0, 10, 0, 0};
  expect_same_locations(collinear, probes(random, collinear, 300));
  const std::vector<double> flat = {0, 0, 50, 0, 100, 0, 0, 0};
  expect_same_locations(flat, probes(random, flat, 300));
  const std::vector<double> open = {0, 0, 10, 0, 10, 10, 0, 10};
  expect_same_locations(open, probes(random, open, 300));
  // A ring whose closing vertex differs from the first by a rounding.
  const std::vector<double> almost = {0, 0, 10, 0, 10, 10, 0, 10, 1e-7, 0};
  expect_same_locations(almost, probes(random, almost, 300));
}

TEST(RingIndex, PointsThatAreNoNumbersAndRingsTheIndexCannotServe) {
  const std::vector<double> square = {0, 0, 10, 0, 10, 10, 0, 10, 0, 0};
  const RingIndex index = build_ring_index(square.data(), count(square));
  EXPECT_EQ(locate_in_ring(index, std::nan(""), 5), reference(square, std::nan(""), 5));
  EXPECT_EQ(locate_in_ring(index, INFINITY, 5), reference(square, INFINITY, 5));
  const std::vector<double> point = {3, 3, 3, 3};
  const RingIndex single = build_ring_index(point.data(), count(point));
  EXPECT_FALSE(single.usable);
  EXPECT_EQ(locate_in_ring(single, 3, 3), 0);
  EXPECT_EQ(locate_in_ring(single, 4, 3), -1);
}

// Every point of a rectangle the index places wholly on one side has that
// location by the angle sum; probed on an 11 by 11 lattice with its rim.
TEST(RingIndex, RectanglesAreDecidedOnlyWhereEveryPointAgrees) {
  Random random(14);
  int decided = 0;
  for (int trial = 0; trial < 40; ++trial) {
    const std::vector<double> ring =
        trial % 2 == 0 ? star(random, 1e6, 2e6, 1000, 40) : tangle(random, 1e6, 2e6, 1000, 12);
    const RingIndex index = build_ring_index(ring.data(), count(ring));
    for (int k = 0; k < 200; ++k) {
      const double x = random.uniform(1e6 - 1500, 1e6 + 1500);
      const double y = random.uniform(2e6 - 1500, 2e6 + 1500);
      const double w = random.uniform(0, 100);
      const double h = random.uniform(0, 100);
      const int location = locate_rectangle_in_ring(index, x, x + w, y, y + h);
      if (location == kMixed) continue;
      ++decided;
      for (int i = 0; i <= 10; ++i) {
        for (int j = 0; j <= 10; ++j) {
          ASSERT_EQ(reference(ring, x + w * i / 10, y + h * j / 10), location);
        }
      }
    }
  }
  // Most rectangles away from the edges are decided at once.
  EXPECT_GT(decided, 4000);
}

}  // namespace
}  // namespace tesseramill
