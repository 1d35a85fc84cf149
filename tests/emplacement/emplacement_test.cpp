// Chains, fixed mesh points, repopulation and interior emplacement on
// hand-made run states.
#include <gtest/gtest.h>

#include <cmath>
#include <sstream>

#include "common/failure.h"
#include "emplacement/chains.h"
#include "emplacement/fixed_points.h"
#include "emplacement/growth_limit.h"
#include "emplacement/interior_emplacement.h"
#include "geometry/local_separation.h"
#include "geometry/source_index.h"
#include "run/phases.h"

namespace tesseramill {
namespace {

BoundaryRing polyline(const std::vector<double>& vertices, const std::vector<double>& separations) {
  BoundaryRing ring;
  ring.vertices = vertices;
  ring.vertex_separation = separations;
  ring.vertex_count = static_cast<std::int32_t>(vertices.size() / 2);
  return ring;
}

TEST(SubdividePolyline, EqualPiecesAndTheStepBuilt) {
  BoundaryRing line = polyline({0, 0, 10, 0}, {2, 3});
  ASSERT_EQ(subdivide_polyline(line), kSubdivideDone);
  ASSERT_EQ(line.point_count, 5);
  const double xs[] = {0, 2.5, 5, 7.5, 10};
  for (int k = 0; k < 5; ++k) {
    EXPECT_EQ(line.points[2 * k], xs[k]);
    EXPECT_EQ(line.points[2 * k + 1], 0.0);
    EXPECT_EQ(line.point_separation[k], 2.5);
  }
  // The tables hold the chain and nothing more.
  EXPECT_EQ(line.point_separation.size(), 5u);
  EXPECT_EQ(line.point_mesh_index.size(), 5u);
  EXPECT_EQ(line.points.size(), 10u);
}

TEST(SubdividePolyline, ShortSegmentRecordsItsOwnLength) {
  BoundaryRing line = polyline({0, 0, 1, 0}, {2, 3});
  ASSERT_EQ(subdivide_polyline(line), kSubdivideDone);
  ASSERT_EQ(line.point_count, 2);
  EXPECT_EQ(line.point_separation[0], 1.0);
  EXPECT_EQ(line.point_separation[1], 1.0);
  EXPECT_EQ(line.points[2], 1.0);
}

TEST(SubdividePolyline, VerticesAreCopiedExactlyAndEachTakesTheStepOfItsSegment) {
  BoundaryRing line = polyline({0.1, 0.2, 3.3, 0.2, 3.3, 9.7}, {1, 1, 5});
  ASSERT_EQ(subdivide_polyline(line), kSubdivideDone);
  // Segment 1: length 3.2, mean 1, 4 pieces of 0.8; segment 2: length 9.5,
  // mean 3, 4 pieces of 2.375.
  ASSERT_EQ(line.point_count, 9);
  EXPECT_EQ(line.points[8], 3.3);
  EXPECT_EQ(line.points[9], 0.2);
  EXPECT_EQ(line.points[16], 3.3);
  EXPECT_EQ(line.points[17], 9.7);
  EXPECT_DOUBLE_EQ(line.point_separation[0], 0.8);
  EXPECT_DOUBLE_EQ(line.point_separation[4], 0.8);
  EXPECT_DOUBLE_EQ(line.point_separation[5], 2.375);
  EXPECT_DOUBLE_EQ(line.point_separation[8], 2.375);
}

TEST(SubdividePolyline, ExactMultipleOfTheMean) {
  BoundaryRing line = polyline({0, 0, 0, 10}, {2.5, 2.5});
  ASSERT_EQ(subdivide_polyline(line), kSubdivideDone);
  EXPECT_EQ(line.point_count, 5);
  EXPECT_DOUBLE_EQ(line.point_separation[2], 2.5);
}

TEST(SubdividePolyline, LineOfOneVertex) {
  BoundaryRing line = polyline({4, 5}, {1});
  ASSERT_EQ(subdivide_polyline(line), kSubdivideDone);
  EXPECT_EQ(line.point_count, 1);
  EXPECT_EQ(line.points[0], 4.0);
  RunState state;
  state.control.max_cells = 2000;
  emplace_ring_points(state, line, kInnerLineLabel);
  EXPECT_EQ(state.mesh.mesh_point_count, 0);
}

TEST(SubdividePolyline, ZeroLengthSegment) {
  BoundaryRing line = polyline({0, 0, 5, 5, 5, 5}, {1, 1, 1});
  EXPECT_EQ(subdivide_polyline(line), kSubdivideZeroSegment);
}

TEST(SubdividePolyline, SeparationsAddingUpPastTheLargestDoubleGiveOnePiece) {
  BoundaryRing line = polyline({0, 0, 100, 0, 100, 100}, {1e308, 1.7e308, 1e308});
  ASSERT_EQ(subdivide_polyline(line), kSubdivideDone);
  ASSERT_EQ(line.point_count, 3);
  EXPECT_EQ(line.points, (std::vector<double>{0, 0, 100, 0, 100, 100}));
  EXPECT_EQ(line.point_separation, (std::vector<double>{100, 100, 100}));
}

TEST(SubdividePolyline, TinySegmentBetweenHugeSeparationsHasOnePiece) {
  // 1e-150 / 1e300 underflows to zero; the segment still has its one piece.
  BoundaryRing line = polyline({0, 0, 1e-150, 0}, {1e300, 1e300});
  ASSERT_EQ(subdivide_polyline(line), kSubdivideDone);
  EXPECT_EQ(line.point_count, 2);
  const double length = std::sqrt(1e-150 * 1e-150);
  EXPECT_EQ(line.point_separation, (std::vector<double>{length, length}));
}

TEST(SubdividePolyline, ChainLongerThanItsBudgetIsAMemoryFailure) {
  BoundaryRing line = polyline({0, 0, 10, 0}, {1, 1});
  EXPECT_EQ(subdivide_polyline(line, 10), kSubdivideNoMemory);
  EXPECT_EQ(subdivide_polyline(line, 11), kSubdivideDone);
  EXPECT_EQ(line.point_count, 11);
}

TEST(SubdividePolyline, QuotientBeyondAnyChainIsAMemoryFailure) {
  BoundaryRing line = polyline({0, 0, 1e200, 0}, {1e-200, 1e-200});
  EXPECT_EQ(subdivide_polyline(line), kSubdivideNoMemory);
  BoundaryRing infinite = polyline({-1e308, 0, 1e308, 0}, {1, 1});
  EXPECT_EQ(subdivide_polyline(infinite), kSubdivideNoMemory);
}

TEST(SubdividePolyline, ZeroLengthSegmentIsReportedBeforeAnOverlongOne) {
  BoundaryRing line = polyline({0, 0, 1e9, 0, 1e9, 0}, {1e-3, 1e-3, 1e-3});
  EXPECT_EQ(subdivide_polyline(line), kSubdivideZeroSegment);
}

TEST(SubdividePolyline, SecondRunReplacesTheChain) {
  BoundaryRing line = polyline({0, 0, 10, 0}, {5, 5});
  ASSERT_EQ(subdivide_polyline(line), kSubdivideDone);
  EXPECT_EQ(line.point_count, 3);
  line.vertex_separation = {2, 2};
  ASSERT_EQ(subdivide_polyline(line), kSubdivideDone);
  EXPECT_EQ(line.point_count, 6);
  EXPECT_EQ(line.point_separation.size(), 6u);
  EXPECT_EQ(line.points[2], 2.0);
}

RunState state_with_capacity(std::int32_t max_cells = 5000) {
  RunState state;
  state.control.max_cells = max_cells;
  state.control.poly_growth_rate = 1.2;
  state.control.max_centroid_separation = 10.0;
  state.smallest_max_separation = 10.0;
  return state;
}

TEST(DensifyInnerPolygon, FiftySamplesPerSegment) {
  RunState state = state_with_capacity();
  state.control.inner_polygon_max_separation[0] = 7.5;
  BoundaryRing square = polyline({0, 0, 10, 0, 10, 10, 0, 10, 0, 0}, {});
  densify_inner_polygon(state, square, 0);
  ASSERT_EQ(square.point_count, 201);
  ASSERT_EQ(square.point_separation.size(), 201u);
  for (double s : square.point_separation) EXPECT_EQ(s, 7.5);
  EXPECT_EQ(square.points[2], 0.2);
  EXPECT_DOUBLE_EQ(square.points[2 * 50], 10.0);
  EXPECT_DOUBLE_EQ(square.points[2 * 200 + 1], 0.0);
}

TEST(DensifyInnerPolygon, RepeatedNeighbourFails) {
  RunState state = state_with_capacity();
  state.control.inner_polygon_files[0] = "zone.bln";
  BoundaryRing ring = polyline({0, 0, 10, 0, 10, 0, 0, 0}, {});
  try {
    densify_inner_polygon(state, ring, 0);
    FAIL();
  } catch (const RunFailure&) {
    EXPECT_EQ(state.message_buffer,
              "Two neighbouring points in BLN line file zone.bln have the same coordinates.");
  }
}

TEST(EmplaceRingPoints, ClosingRepeatIsNotEmplaced) {
  RunState state = state_with_capacity();
  BoundaryRing ring = polyline({0, 0, 10, 0, 10, 10, 0, 0}, {10, 10, 10, 10});
  ASSERT_EQ(subdivide_polyline(ring), kSubdivideDone);
  // The diagonal back to the start is cut in two.
  ASSERT_EQ(ring.point_count, 5);
  emplace_ring_points(state, ring, kOuterRingLabel);
  EXPECT_EQ(state.mesh.mesh_point_count, 4);
  EXPECT_EQ(ring.point_mesh_index[0], 1);
  EXPECT_EQ(ring.point_mesh_index[3], 4);
  EXPECT_EQ(ring.point_mesh_index[4], 0);
  EXPECT_EQ(state.mesh.mesh_point_label, (std::vector<std::int32_t>{-1, -1, -1, -1}));
}

TEST(AppendMeshPoint, FillsExactlyToCapacityThenFails) {
  RunState state = state_with_capacity(1001);
  for (int k = 0; k < 1001; ++k) EXPECT_EQ(append_mesh_point(state, k, 0, 3), k + 1);
  try {
    append_mesh_point(state, 0, 0, 3);
    FAIL();
  } catch (const RunFailure&) {
    EXPECT_EQ(state.message_buffer,
              "Number of cell centres is greater than MAX_CELLS value of 1001. Alter value for this "
              "variable in CONTROL block of TESSERAMILL input file.");
  }
}

// A large square domain with no chains: the field is MAX_CENTROID_SEPARATION.
RunState open_domain() {
  RunState state = state_with_capacity();
  state.outer_boundary = polyline({-1000, -1000, 1000, -1000, 1000, 1000, -1000, 1000, -1000, -1000},
                                  {10, 10, 10, 10, 10});
  return state;
}

TEST(Hexagon, RoundAnInnerPoint) {
  RunState state = open_domain();
  state.control.max_centroid_separation = 5.0;
  state.smallest_max_separation = 5.0;
  PointSet points;
  points.count = 1;
  points.coords = {100, 100};
  points.separation = {8};
  state.inner_point_sets.push_back(points);
  emplace_fixed_points(state);
  ASSERT_EQ(state.mesh.mesh_point_count, 7);
  const std::vector<double>& p = state.mesh.mesh_points;
  const double expected[] = {100, 100, 100, 105, 104.330127, 102.5, 104.330127, 97.5,
                             100, 95, 95.669873, 97.5, 95.669873, 102.5};
  for (int k = 0; k < 14; ++k) EXPECT_NEAR(p[k], expected[k], 5e-7) << k;
  EXPECT_EQ(p[4], 100 + 5 * kHexLong);
  EXPECT_EQ(p[5], 100 + 5 * kHexShort);
  EXPECT_NE(p[5], 102.5);  // the single-precision sine keeps its last digits
  EXPECT_EQ(state.mesh.mesh_point_label, (std::vector<std::int32_t>{-3, 1, 1, 1, 1, 1, 1}));
}

TEST(Hexagon, IsTestedAsAGroupAgainstTheCapacity) {
  RunState state = open_domain();
  state.control.max_cells = 1001;
  PointSet points;
  points.count = 1;
  points.coords = {0, 500};
  points.separation = {8};
  state.inner_point_sets.push_back(points);
  // 995 line points: with the inner point the list holds 996, and the
  // hexagon's six would make 1002.
  state.inner_lines.push_back(polyline({-497, 0, 497, 0}, {1, 1}));
  ASSERT_EQ(subdivide_polyline(state.inner_lines[0]), kSubdivideDone);
  ASSERT_EQ(state.inner_lines[0].point_count, 995);
  try {
    emplace_fixed_points(state);
    FAIL() << state.mesh.mesh_point_count;
  } catch (const RunFailure&) {
    EXPECT_EQ(state.mesh.mesh_point_count, 996);
    EXPECT_EQ(state.message_buffer,
              "Number of cell centres is greater than MAX_CELLS value of 1001. Alter value for this "
              "variable in CONTROL block of TESSERAMILL input file.");
  }
}

TEST(EnforceGrowthLimit, WorkedSegment) {
  RunState state = state_with_capacity();
  state.control.max_centroid_separation = 100.0;
  state.smallest_max_separation = 100.0;
  state.outer_boundary = polyline({0, 0, 10, 0}, {1, 3});
  ASSERT_EQ(subdivide_polyline(state.outer_boundary), kSubdivideDone);
  // Mean 2, five pieces of 2.
  ASSERT_EQ(state.outer_boundary.point_count, 6);
  EXPECT_TRUE(enforce_growth_limit(state, state.outer_boundary));
  EXPECT_EQ(state.outer_boundary.vertex_separation, (std::vector<double>{2, 2}));
  const std::vector<double> first(state.outer_boundary.points.begin(),
                                  state.outer_boundary.points.begin() + 12);
  ASSERT_EQ(subdivide_polyline(state.outer_boundary), kSubdivideDone);
  ASSERT_EQ(state.outer_boundary.point_count, 6);
  EXPECT_EQ(std::vector<double>(state.outer_boundary.points.begin(),
                                state.outer_boundary.points.begin() + 12),
            first);
}

TEST(EnforceGrowthLimit, ZeroExcessIsNotFlagged) {
  RunState state = state_with_capacity();
  state.control.max_centroid_separation = 100.0;
  state.smallest_max_separation = 100.0;
  state.outer_boundary = polyline({0, 0, 10, 0, 10, 10, 0, 10, 0, 0}, {2, 2, 2, 2, 2});
  ASSERT_EQ(subdivide_polyline(state.outer_boundary), kSubdivideDone);
  EXPECT_FALSE(enforce_growth_limit(state, state.outer_boundary));
  EXPECT_EQ(state.outer_boundary.vertex_separation, (std::vector<double>{2, 2, 2, 2, 2}));
}

TEST(EnforceGrowthLimit, SharedVertexLoweredTwiceAndRingEndsApart) {
  RunState state = state_with_capacity();
  state.control.max_centroid_separation = 100.0;
  state.smallest_max_separation = 100.0;
  // A fine point source beside the second segment pulls it far down.
  PointSet points;
  points.count = 1;
  points.coords = {15, 1};
  points.separation = {0.5};
  state.inner_point_sets.push_back(points);
  state.outer_boundary = polyline({0, 0, 10, 0, 20, 0, 10, -10, 0, 0}, {4, 4, 4, 4, 4});
  ASSERT_EQ(subdivide_polyline(state.outer_boundary), kSubdivideDone);
  // The first segment alone, in the same field.
  BoundaryRing first_segment = polyline({0, 0, 10, 0}, {4, 4});
  ASSERT_TRUE(enforce_growth_limit(state, first_segment));
  const double after_first = first_segment.vertex_separation[1];
  EXPECT_LT(after_first, 4.0);

  ASSERT_TRUE(enforce_growth_limit(state, state.outer_boundary));
  const std::vector<double>& s = state.outer_boundary.vertex_separation;
  // Vertex 2 was lowered by segment 1 and then again by segment 2.
  EXPECT_LT(s[1], after_first);
  // The first entry is the first segment's alone; the closing entry is not
  // lowered with it.
  EXPECT_EQ(s[0], first_segment.vertex_separation[0]);
  EXPECT_NE(s[0], s[4]);
  // Inner point separations are sources only.
  EXPECT_EQ(state.inner_point_sets[0].separation[0], 0.5);
}

TEST(PopulateBoundaries, SquareWithEqualStepsPrintsNoRepopulatingLine) {
  RunState state = state_with_capacity();
  std::ostringstream screen;
  state.screen = &screen;
  state.control.max_centroid_separation = 100.0;
  state.outer_boundary = polyline({0, 0, 10, 0, 10, 10, 0, 10, 0, 0}, {2, 2, 2, 2, 2});
  populate_boundaries(state);
  EXPECT_EQ(screen.str(), "\n - populating user-supplied boundaries/lines with mesh points...\n");
  EXPECT_EQ(state.mesh.mesh_point_count, 20);
  EXPECT_EQ(state.smallest_max_separation, 100.0);
  // Only ring points, numbered from 1 along the outer boundary.
  EXPECT_EQ(state.mesh.mesh_point_label, std::vector<std::int32_t>(20, -1));
  EXPECT_EQ(state.mesh.mesh_points[0], 0.0);
  EXPECT_EQ(state.mesh.mesh_points[2], 2.0);
}

TEST(PopulateBoundaries, RoundedPiecesLowerEqualSeparationsOnce) {
  RunState state = state_with_capacity();
  std::ostringstream screen;
  state.screen = &screen;
  state.control.max_centroid_separation = 100.0;
  // Side 10 with separation 3: four pieces of 2.5, so the wanted 3 exceeds
  // the field of 2.5 and the separations fall to the step.
  state.outer_boundary = polyline({0, 0, 10, 0, 10, 10, 0, 10, 0, 0}, {3, 3, 3, 3, 3});
  populate_boundaries(state);
  EXPECT_EQ(screen.str(),
            "\n - populating user-supplied boundaries/lines with mesh points...\n"
            " - repopulating user-supplied boundaries/lines with mesh points...\n");
  for (double s : state.outer_boundary.vertex_separation) EXPECT_DOUBLE_EQ(s, 2.5);
  EXPECT_EQ(state.mesh.mesh_point_count, 16);
}

TEST(PopulateBoundaries, UnequalEndsRepopulateOnce) {
  RunState state = state_with_capacity();
  std::ostringstream screen;
  state.screen = &screen;
  state.control.max_centroid_separation = 100.0;
  state.outer_boundary = polyline({0, 0, 30, 0, 30, 30, 0, 30, 0, 0}, {1, 9, 1, 9, 1});
  populate_boundaries(state);
  EXPECT_EQ(screen.str(),
            "\n - populating user-supplied boundaries/lines with mesh points...\n"
            " - repopulating user-supplied boundaries/lines with mesh points...\n");
}

TEST(InteriorEmplacement, WorkedNsdimFiveExample) {
  RunState state = open_domain();
  state.control.nsdim = 5;
  create_emplacement_grid(state);
  const double points[][2] = {{0, 0}, {20, 0}, {-20, 0}, {0, 20}, {0, -20}};
  for (const auto& p : points) append_mesh_point(state, p[0], p[1], kInnerPointLabel);
  EXPECT_EQ(local_separation(state, 0, 0, 1.2), 10.0);
  ASSERT_TRUE(propose_from_seed(state, 1, 1));
  ASSERT_EQ(state.mesh.mesh_point_count, 6);
  EXPECT_EQ(state.mesh.mesh_points[10], -6.0);
  EXPECT_EQ(state.mesh.mesh_points[11], -12.0);
  EXPECT_EQ(state.mesh.mesh_point_label[5], 1);
  EXPECT_EQ(state.mesh.work_list, (std::vector<std::int32_t>{1, 2, 3, 4, 5}));
}

TEST(InteriorEmplacement, FourListedPointsGrowTheBox) {
  RunState state = open_domain();
  state.control.nsdim = 5;
  create_emplacement_grid(state);
  const double points[][2] = {{0, 0}, {20, 0}, {-20, 0}, {0, 20}, {0, -40}};
  for (const auto& p : points) append_mesh_point(state, p[0], p[1], kInnerPointLabel);
  ASSERT_TRUE(propose_from_seed(state, 1, 2));
  // (0,-40) lies outside the first box of reach 22; the box grew to 12 and
  // then 14.4, reaching 28.8 and 36 ... until the fifth point was listed.
  EXPECT_EQ(state.mesh.work_list.size(), 5u);
  EXPECT_EQ(state.mesh.mesh_point_label[5], 2);
}

TEST(InteriorEmplacement, SeedWithNoCandidateInsideGivesNothing) {
  RunState state = state_with_capacity();
  state.control.nsdim = 5;
  create_emplacement_grid(state);
  state.outer_boundary = polyline({0, 0, 1, 0, 1, 1, 0, 1, 0, 0}, {1, 1, 1, 1, 1});
  for (int k = 0; k < 5; ++k) append_mesh_point(state, 0.5, 0.1 * k, 1);
  // The field is 10 and the domain 1 wide: every candidate keeps less than 10
  // from the boundary, so every one is struck.
  EXPECT_FALSE(propose_from_seed(state, 1, 1));
  EXPECT_EQ(state.mesh.mesh_point_count, 5);
}

TEST(SeedRange, FollowsSafety) {
  RunState state = state_with_capacity();
  const std::int32_t labels[] = {-1, -1, -3, 1, 1, 2, 2, 3, 3, 4, 5};
  for (std::int32_t label : labels) append_mesh_point(state, 0, 0, label);
  state.control.safety = 0;
  EXPECT_EQ(seed_range_start(state, 1, 0), 0);
  EXPECT_EQ(seed_range_start(state, 3, 0), 3);   // target 0: last fixed point
  EXPECT_EQ(seed_range_start(state, 5, 0), 7);   // target 2
  EXPECT_EQ(seed_range_start(state, 6, 0), 9);   // target 3
  state.control.safety = 2;
  EXPECT_EQ(seed_range_start(state, 6, 0), 5);   // target 1
  state.control.safety = 3;
  EXPECT_EQ(seed_range_start(state, 6, 9), 0);
  state.control.safety = 1;
  EXPECT_EQ(seed_range_start(state, 6, 4), 7);   // target 2
}

TEST(SeedRange, KeepsItsValueWhenTheScanFindsNothing) {
  RunState state = state_with_capacity();
  for (std::int32_t label : {2, 3, 4}) append_mesh_point(state, 0, 0, label);
  state.control.safety = 0;
  EXPECT_EQ(seed_range_start(state, 4, 2), 2);
}

struct Random {
  std::uint64_t state;
  double next() {
    state = state * 6364136223846793005ULL + 1442695040888963407ULL;
    return static_cast<double>(state >> 11) * (1.0 / 9007199254740992.0);
  }
};

RunState field_model() {
  RunState state = state_with_capacity();
  state.control.max_centroid_separation = 40.0;
  state.smallest_max_separation = 25.0;
  state.outer_boundary = polyline({0, 0, 300, 0, 300, 200, 0, 200, 0, 0}, {12, 30, 5, 20, 12});
  state.inner_lines.push_back(polyline({50, 50, 250, 120}, {3, 8}));
  state.inner_polygons.push_back(polyline({100, 100, 200, 100, 150, 180, 100, 100}, {}));
  state.control.inner_polygon_max_separation[0] = 25.0;
  subdivide_polyline(state.outer_boundary);
  subdivide_polyline(state.inner_lines[0]);
  densify_inner_polygon(state, state.inner_polygons[0], 0);
  PointSet points;
  points.count = 2;
  points.coords = {20, 180, 280, 20};
  points.separation = {1.5, 0.75};
  state.inner_point_sets.push_back(points);
  return state;
}

TEST(LocalSeparationFastPath, GivesTheReferenceBits) {
  RunState state = field_model();
  std::uint64_t seed = 12345;
  auto next = [&seed]() {
    seed = seed * 6364136223846793005ULL + 1442695040888963407ULL;
    return static_cast<double>(seed >> 11) * (1.0 / 9007199254740992.0);
  };
  int differences = 0;
  for (int k = 0; k < 20000; ++k) {
    const double x = next() * 400 - 50;
    const double y = next() * 300 - 50;
    for (double growth : {1.05, 1.2, 1.5, 2.0}) {
      if (local_separation(state, x, y, growth) != local_separation_reference(state, x, y, growth)) {
        ++differences;
      }
    }
  }
  // Points exactly on chain points and near the field's bend.
  for (std::int32_t j = 0; j < state.inner_lines[0].point_count; ++j) {
    const double x = state.inner_lines[0].points[2 * j];
    const double y = state.inner_lines[0].points[2 * j + 1];
    for (double dx : {0.0, 1e-9, 3.0, 3.7, 4.0}) {
      if (local_separation(state, x + dx, y, 1.2) != local_separation_reference(state, x + dx, y, 1.2)) {
        ++differences;
      }
    }
  }
  EXPECT_EQ(differences, 0);
}

TEST(LocalSeparationFastPath, IndexedSourcesGiveTheReferenceBits) {
  RunState state = field_model();
  build_source_index(state);
  ASSERT_TRUE(state.source_index.built);
  Random r{777};
  int differences = 0;
  int compared = 0;
  for (int k = 0; k < 20000; ++k) {
    // Inside the sources' extent, around it, and far away from it.
    const double spread = k % 10 == 0 ? 1.0e6 : 500.0;
    const double x = 150.0 + (r.next() - 0.5) * spread;
    const double y = 100.0 + (r.next() - 0.5) * spread;
    for (double growth : {1.05, 1.2, 2.0}) {
      ++compared;
      if (local_separation(state, x, y, growth) != local_separation_reference(state, x, y, growth)) {
        ++differences;
      }
    }
  }
  for (std::int32_t j = 0; j < state.outer_boundary.point_count; ++j) {
    const double x = state.outer_boundary.points[2 * j];
    const double y = state.outer_boundary.points[2 * j + 1];
    ++compared;
    if (local_separation(state, x, y, 1.2) != local_separation_reference(state, x, y, 1.2)) ++differences;
  }
  EXPECT_EQ(differences, 0) << "of " << compared;
}

// Sources on a lattice, all with one separation, asked for at lattice
// points, half-way between them and at the centres of the squares: many
// sources tie exactly, and the first sweep's smallest upper bound is often
// met by several of them.  Growth rates from nearly one to ten.
TEST(LocalSeparationFastPath, TiesOnALatticeGiveTheReferenceBits) {
  RunState state = state_with_capacity();
  state.control.max_centroid_separation = 1.0e6;
  state.smallest_max_separation = 1.0e6;
  PointSet lattice;
  for (int j = 0; j < 12; ++j) {
    for (int i = 0; i < 12; ++i) {
      lattice.coords.push_back(10.0 * i);
      lattice.coords.push_back(10.0 * j);
      lattice.separation.push_back((i + j) % 3 == 0 ? 4.0 : 2.5);
    }
  }
  lattice.count = 144;
  state.inner_point_sets.push_back(lattice);
  build_source_index(state);
  ASSERT_TRUE(state.source_index.built);
  int differences = 0;
  int compared = 0;
  for (double growth : {1.0001, 1.05, 1.2, 1.5, 3.0, 10.0}) {
    for (int j = -4; j <= 26; ++j) {
      for (int i = -4; i <= 26; ++i) {
        const double x = 5.0 * i;
        const double y = 5.0 * j;
        ++compared;
        if (local_separation(state, x, y, growth) != local_separation_reference(state, x, y, growth)) ++differences;
      }
    }
  }
  EXPECT_EQ(differences, 0) << "of " << compared;
}

}  // namespace
}  // namespace tesseramill
