// Planar tools and the ring integrity test, on hand-made geometry.
#include <gtest/gtest.h>

#include <cmath>
#include <vector>

#include "geometry/local_separation.h"
#include "geometry/planar_tools.h"
#include "geometry/point_in_polygon.h"
#include "geometry/polygon_integrity.h"
#include "support/rings.h"

namespace tesseramill {
namespace {

using tesseramill_test::ring_of;

const std::vector<double> kSquare = {0, 0, 4, 0, 4, 4, 0, 4, 0, 0};
const std::vector<double> kSquareReversed = {0, 0, 0, 4, 4, 4, 4, 0, 0, 0};

PolygonLocation locate(double x, double y, const std::vector<double>& ring) {
  return point_in_polygon(x, y, ring.data(), static_cast<std::int32_t>(ring.size() / 2));
}

TEST(PointInPolygon, WorkedSquare) {
  EXPECT_EQ(locate(2, 2, kSquare).location, 1);
  EXPECT_EQ(locate(2, 2, kSquare).winding, 1);
  EXPECT_EQ(locate(2, 2, kSquareReversed).location, 1);
  EXPECT_EQ(locate(2, 2, kSquareReversed).winding, -1);
  EXPECT_EQ(locate(2, 0, kSquare).location, 0);
  EXPECT_EQ(locate(5, 2, kSquare).location, -1);
  EXPECT_EQ(locate(5, 2, kSquare).winding, 0);
}

TEST(PointInPolygon, ExactVertexHitIsOnTheBoundary) {
  for (std::size_t k = 0; k + 1 < kSquare.size(); k += 2) {
    EXPECT_EQ(locate(kSquare[k], kSquare[k + 1], kSquare).location, 0);
  }
  const std::vector<double> spike = {0, 0, 10, 0, 0, 0.001, 0, 0};
  EXPECT_EQ(locate(10, 0, spike).location, 0);
}

TEST(PointInPolygon, EdgeOnlyWithinTheStraightAngleTolerance) {
  EXPECT_EQ(locate(2, 1e-12, kSquare).location, 0);
  EXPECT_EQ(locate(2, -1e-12, kSquare).location, 0);
  EXPECT_EQ(locate(2, 1e-6, kSquare).location, 1);
  EXPECT_EQ(locate(2, -1e-6, kSquare).location, -1);
  EXPECT_EQ(locate(4, 3, kSquare).location, 0);
}

TEST(PointInPolygon, ClosedAndOpenRingsAgree) {
  const std::vector<double> open(kSquare.begin(), kSquare.end() - 2);
  for (double x : {-1.0, 0.0, 1.0, 2.0, 4.0, 4.5}) {
    for (double y : {-0.5, 0.0, 2.0, 4.0, 7.0}) {
      EXPECT_EQ(locate(x, y, open).location, locate(x, y, kSquare).location) << x << "," << y;
    }
  }
}

TEST(PointInPolygon, RingOfOneDistinctVertex) {
  const std::vector<double> ring = {3, 3, 3, 3};
  EXPECT_EQ(locate(3, 3, ring).location, 0);
  EXPECT_EQ(locate(3.5, 3, ring).location, -1);
  EXPECT_EQ(locate(0, 0, ring).location, -1);
}

// Outer square 0..100 with a square hole 40..60.
RunState domain_with_hole() {
  RunState state;
  state.outer_boundary = ring_of({0, 0, 100, 0, 100, 100, 0, 100, 0, 0});
  state.inner_boundaries.push_back(ring_of({40, 40, 60, 40, 60, 60, 40, 60, 40, 40}));
  return state;
}

TEST(PointInDomain, StrictlyBetweenOuterBoundaryAndHoles) {
  RunState state = domain_with_hole();
  EXPECT_TRUE(point_in_domain(state, 10, 10));
  EXPECT_TRUE(point_in_domain(state, 39.999, 50));
  EXPECT_FALSE(point_in_domain(state, 0, 50));    // on the outer boundary
  EXPECT_FALSE(point_in_domain(state, 100, 100)); // an outer vertex
  EXPECT_FALSE(point_in_domain(state, 40, 50));   // on the hole's edge
  EXPECT_FALSE(point_in_domain(state, 60, 60));   // a hole vertex
  EXPECT_FALSE(point_in_domain(state, 50, 50));   // inside the hole
  EXPECT_FALSE(point_in_domain(state, 150, 50));  // outside
}

TEST(DistanceToSegment, ToTheEndsAndToTheInside) {
  EXPECT_DOUBLE_EQ(distance_to_segment(-3, 4, 0, 0, 10, 0), 5.0);
  EXPECT_DOUBLE_EQ(distance_to_segment(13, -4, 0, 0, 10, 0), 5.0);
  EXPECT_DOUBLE_EQ(distance_to_segment(5, 7, 0, 0, 10, 0), 7.0);
  EXPECT_EQ(distance_to_segment(5, 0, 0, 0, 10, 0), 0.0);
}

// An inner line whose populated points are given with their mesh numbers.
BoundaryRing chain(const std::vector<double>& points, const std::vector<double>& separations,
                   const std::vector<std::int32_t>& mesh_index) {
  BoundaryRing ring;
  ring.points = points;
  ring.point_separation = separations;
  ring.point_mesh_index = mesh_index;
  ring.point_count = static_cast<std::int32_t>(points.size() / 2);
  return ring;
}

TEST(LinePointClear, TestsInTheirOrder) {
  RunState state = domain_with_hole();
  state.inner_lines.push_back(chain({20, 20, 30, 20}, {5, 5}, {7, 0}));
  state.inner_lines.push_back(chain({20, 25}, {5}, {0}));
  EXPECT_FALSE(line_point_clear(state, 50, 50, 1, 1));   // in the hole
  EXPECT_FALSE(line_point_clear(state, 40, 50, 0, 1));   // exactly on the hole's ring
  EXPECT_FALSE(line_point_clear(state, 5, 50, 6, 1));    // 5 from the outer boundary
  EXPECT_TRUE(line_point_clear(state, 5, 50, 5, 1));     // exactly the clearance passes
  EXPECT_FALSE(line_point_clear(state, 35, 50, 6, 1));   // 5 from the hole
  // Line 1 never looks at any line, however close its points are.
  EXPECT_TRUE(line_point_clear(state, 20, 21, 5, 1));
  // Line 2 looks at the accepted points of line 1 only.
  EXPECT_FALSE(line_point_clear(state, 20, 24, 5, 2));
  EXPECT_TRUE(line_point_clear(state, 20, 25, 5, 2));
  EXPECT_TRUE(line_point_clear(state, 30, 21, 5, 2));  // point 2 of line 1 was refused
}

RunState field_state() {
  RunState state;
  state.control.max_centroid_separation = 1000.0;
  state.smallest_max_separation = 1000.0;
  state.outer_boundary = chain({0, 0}, {10}, {1});
  return state;
}

TEST(LocalSeparation, WorkedValues) {
  RunState state = field_state();
  EXPECT_EQ(local_separation(state, 0, 0, 1.2), 10.0);
  EXPECT_EQ(local_separation(state, 15, 0, 1.2), 10.0);
  EXPECT_NEAR(local_separation(state, 100, 0, 1.2), 22.82177, 5e-6);
  EXPECT_NEAR(local_separation(state, 0, 1000, 1.2), 159.7524, 5e-5);
  EXPECT_GT(local_separation(state, 15.8, 0, 1.2), 10.0);
}

TEST(LocalSeparation, WithoutSourcesGivesTheCaps) {
  RunState state;
  state.control.max_centroid_separation = 250.0;
  state.smallest_max_separation = 50.0;
  EXPECT_EQ(local_separation(state, 5, 5, 1.2), 250.0);
  BoundaryRing polygon = ring_of({0, 0, 10, 0, 10, 10, 0, 10, 0, 0});
  state.inner_polygons.push_back(polygon);
  state.control.inner_polygon_max_separation[0] = 50.0;
  EXPECT_EQ(local_separation(state, 5, 5, 1.2), 50.0);
  EXPECT_EQ(local_separation(state, 10, 5, 1.2), 50.0);  // on the polygon's edge
  EXPECT_EQ(local_separation(state, 15, 5, 1.2), 250.0);
}

TEST(LocalSeparation, PointInTwoPolygonsTakesTheSmallerValue) {
  RunState state;
  state.control.max_centroid_separation = 250.0;
  state.smallest_max_separation = 40.0;
  state.inner_polygons.push_back(ring_of({0, 0, 10, 0, 10, 10, 0, 10, 0, 0}));
  state.inner_polygons.push_back(ring_of({5, 5, 20, 5, 20, 20, 5, 20, 5, 5}));
  state.control.inner_polygon_max_separation[0] = 80.0;
  state.control.inner_polygon_max_separation[1] = 40.0;
  EXPECT_EQ(local_separation(state, 7, 7, 1.2), 40.0);
  EXPECT_EQ(local_separation(state, 2, 2, 1.2), 80.0);
  EXPECT_EQ(local_separation(state, 15, 15, 1.2), 40.0);
}

TEST(LocalSeparation, InnerPointGivesItsOwnSeparationAtItsPlace) {
  RunState state = field_state();
  PointSet points;
  points.count = 2;
  points.coords = {500, 500, 700, 500};
  points.separation = {3.5, 12.0};
  state.inner_point_sets.push_back(points);
  EXPECT_EQ(local_separation(state, 500, 500, 1.3), 3.5);
  EXPECT_LE(local_separation(state, 700, 500, 1.3), 12.0);
}

TEST(LocalSeparation, BelowTheSmallestCapTheCapsAreSkipped) {
  RunState state = field_state();
  state.control.max_centroid_separation = 5.0;  // would cap, but is not consulted
  state.smallest_max_separation = 20.0;
  EXPECT_EQ(local_separation(state, 0, 0, 1.2), 10.0);
  state.smallest_max_separation = 10.0;  // not greater than the field: caps apply
  EXPECT_EQ(local_separation(state, 0, 0, 1.2), 5.0);
}

TEST(LocalSeparation, EveryFamilyOfSourcesCounts) {
  RunState state = field_state();
  state.outer_boundary = chain({0, 0}, {100}, {1});
  state.inner_lines.push_back(chain({50, 0}, {9}, {0}));  // refused points count too
  EXPECT_EQ(local_separation(state, 50, 0, 1.2), 9.0);
  state.inner_boundaries.push_back(chain({60, 0}, {8}, {2}));
  EXPECT_EQ(local_separation(state, 60, 0, 1.2), 8.0);
  BoundaryRing polygon = chain({70, 0}, {7}, {});
  polygon.point_mesh_index.clear();
  state.inner_polygons.push_back(polygon);
  state.control.inner_polygon_max_separation[0] = 1000.0;
  EXPECT_EQ(local_separation(state, 70, 0, 1.2), 7.0);
}

std::string integrity_message(const std::vector<double>& vertices) {
  RunState state;
  BoundaryRing ring = ring_of(vertices);
  int code = check_polygon_integrity(state, ring, "ring.bln  ");
  EXPECT_EQ(code == 0, state.message_buffer.empty());
  return state.message_buffer;
}

TEST(PolygonIntegrity, ShortRingsPassUntested) {
  EXPECT_EQ(integrity_message({0, 0, 5, 5, 0, 0}), "");
  EXPECT_EQ(integrity_message({0, 0, 0, 0}), "");
}

TEST(PolygonIntegrity, TrianglePasses) {
  EXPECT_EQ(integrity_message({0, 0, 10, 0, 0, 10, 0, 0}), "");
}

TEST(PolygonIntegrity, BothDirectionsPass) {
  EXPECT_EQ(integrity_message(kSquare), "");
  EXPECT_EQ(integrity_message(kSquareReversed), "");
}

TEST(PolygonIntegrity, CrossingRing) {
  EXPECT_EQ(integrity_message({0, 0, 2, 2, 2, 0, 0, 2, 0, 0}),
            "Line segment joining points 1 and 2 crosses line segment joining points 3 and 4 in "
            "file ring.bln.");
}

TEST(PolygonIntegrity, NeighboursWithinToleranceCoincide) {
  EXPECT_EQ(integrity_message({0, 0, 10, 0, 10 + 5e-7, 5e-7, 0, 10, 0, 0}),
            "Polygon vertex 3 coincides with polygon vertex 2 in file ring.bln.");
}

TEST(PolygonIntegrity, VertexCoincidingWithTheFirstIsFoundAsNeighbourOfTheClosure) {
  EXPECT_EQ(integrity_message({0, 0, 10, 0, 10, 10, 5e-7, -5e-7, 0, 0}),
            "Polygon vertex 4 coincides with polygon vertex 1 in file ring.bln.");
}

TEST(PolygonIntegrity, VertexMatchingTheSegmentsSecondEnd) {
  // Vertex 4 repeats vertex 2: found at i = 1 against the segment's second end.
  EXPECT_EQ(integrity_message({0, 0, 10, 0, 10, 10, 10, 0, 0, 5, 0, 0}),
            "Polygon vertex 4 coincides with polygon vertex 2 in file ring.bln.");
  EXPECT_EQ(integrity_message({0, 0, 10, 0, 5, 5, 10, 10, 10, 0, 0, 10, 0, 0}),
            "Polygon vertex 5 coincides with polygon vertex 2 in file ring.bln.");
}

TEST(PolygonIntegrity, VertexOnASegment) {
  EXPECT_EQ(integrity_message({0, 0, 10, 0, 10, 10, 5, 0, 0, 10, 0, 0}),
            "Polygon vertex 4 is on the line that joins vertices 1 and 2 in file ring.bln.");
}

TEST(PolygonIntegrity, VertexOnTheExtensionOfASegmentIsNoFault) {
  // Vertex 4 (15,0) lies on the line through segment 1 but beyond its end.
  EXPECT_EQ(integrity_message({0, 0, 10, 0, 20, 10, 15, 0, 30, -10, 0, -10, 0, 0}), "");
  // The same vertex moved onto segment 1 itself is found.
  EXPECT_EQ(integrity_message({0, 0, 10, 0, 20, 10, 5, 0, 30, -10, 0, -10, 0, 0}),
            "Polygon vertex 4 is on the line that joins vertices 1 and 2 in file ring.bln.");
}

TEST(PolygonIntegrity, CrossValueIsAnAreaNotADistance) {
  EXPECT_EQ(integrity_message({0, 0, 0.001, 0.001, 1, 1, 0.0006, 0.0004, 0, 0}),
            "Polygon vertex 4 is on the line that joins vertices 1 and 2 in file ring.bln.");
}

TEST(PolygonIntegrity, VertexTouchingOnlyTheLastSegmentIsNotFound) {
  // Vertex 3 lies on the last segment, from vertex 4 back to vertex 1; the
  // last segment is never the segment of the vertex test, and touching
  // segments pass the crossing test.
  EXPECT_EQ(integrity_message({0, 0, 10, 0, 0, 5, 0, 10, 0, 0}), "");
}

}  // namespace
}  // namespace tesseramill
