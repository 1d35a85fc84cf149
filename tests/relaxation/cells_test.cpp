// Cell polygons and the Lloyd loop on hand-made tables and small models.
#include <gtest/gtest.h>

#include <cmath>
#include <sstream>

#include "common/failure.h"
#include "relaxation/cell_polygons.h"
#include "relaxation/lloyd_step.h"
#include "support/phase_failure.h"
#include "support/scratch.h"
#include "support/whole_run.h"

namespace tesseramill {
namespace {

TEST(PolygonAreaCentroid, SquareBothWays) {
  double square[] = {0, 0, 2, 0, 2, 2, 0, 2};
  AreaCentroid a = polygon_area_centroid(4, square);
  EXPECT_EQ(a.area, 4.0);
  EXPECT_EQ(a.x, 1.0);
  EXPECT_EQ(a.y, 1.0);
  // The corners are shifted by the last one in place.
  EXPECT_EQ(square[0], 0.0);
  EXPECT_EQ(square[1], -2.0);
  double clockwise[] = {0, 0, 0, 2, 2, 2, 2, 0};
  AreaCentroid b = polygon_area_centroid(4, clockwise);
  EXPECT_EQ(b.area, -4.0);
  EXPECT_EQ(b.x, 1.0);
  EXPECT_EQ(b.y, 1.0);
}

// A ring of five populated points, (0,0), (10,0), (20,0), (10,10) and the
// closing (0,0), whose mesh points are 1 to 4; point 2 sits at (10,0).
struct RingCase {
  RunState state;
  BoundaryRing ring;

  explicit RingCase(const std::vector<std::vector<std::int32_t>>& triangles_of_point_2,
                    const std::vector<double>& centroids) {
    ring.point_count = 5;
    ring.points = {0, 0, 10, 0, 20, 0, 10, 10, 0, 0};
    ring.point_mesh_index = {1, 2, 3, 4, 0};
    state.mesh.mesh_points = {0, 0, 10, 0, 20, 0, 10, 10};
    state.mesh.mesh_point_label = {-1, -1, -1, -1};
    state.mesh.mesh_point_count = 4;
    TriangleTable& tt = state.triangles;
    const std::int32_t c = static_cast<std::int32_t>(triangles_of_point_2.size());
    tt.triangle_count = c;
    for (const auto& corners : triangles_of_point_2) tt.tri_vertex.insert(tt.tri_vertex.end(), corners.begin(), corners.end());
    tt.tri_centroid = centroids;
    tt.point_tri_count = {1, c, 1, 1};
    tt.row_capacity = c + 2;
    tt.connected_triangles.assign(static_cast<std::size_t>(4 * tt.row_capacity), 0);
    for (std::int32_t k = 0; k < c; ++k) tt.connected_triangles[static_cast<std::size_t>(tt.row_capacity + k)] = k + 1;
    state.outer_boundary = ring;
    size_cell_tables(state);
  }

  std::vector<double> corners_of_point_2() const {
    const CellTables& cells = state.cells;
    const std::size_t first = static_cast<std::size_t>(cells.cell_first_vertex[1] - 1);
    const std::size_t count = static_cast<std::size_t>(cells.cell_vertex_count[1]);
    return std::vector<double>(cells.cell_vertices.begin() + static_cast<std::ptrdiff_t>(2 * first),
                               cells.cell_vertices.begin() + static_cast<std::ptrdiff_t>(2 * (first + count)));
  }
};

TEST(RingCell, ClosedAlongTheRingThroughItsMidpoints) {
  RingCase rc({{2, 1, 4}, {2, 4, 3}}, {6, 3, 14, 3});
  CellCursor cursor{1, 7};
  ASSERT_TRUE(ring_point_cell(rc.state, cursor, rc.ring, 2));
  EXPECT_EQ(rc.corners_of_point_2(), (std::vector<double>{10, 0, 5, 0, 6, 3, 14, 3, 15, 0}));
  EXPECT_EQ(rc.state.cells.boundary_spacing[1], 10.0);
  EXPECT_EQ(rc.state.cells.cell_first_vertex[1], 8);
  const std::vector<std::int32_t> codes(rc.state.cells.cell_vertex_code.begin() + 7,
                                        rc.state.cells.cell_vertex_code.begin() + 12);
  EXPECT_EQ(codes, (std::vector<std::int32_t>{-3, -2, 1, 2, -4}));
  EXPECT_EQ(cursor.last_point, 2);
  EXPECT_EQ(cursor.last_vertex, 12);
}

TEST(RingCell, FanStartingAtTheNextNeighbourRunsTheOtherWay) {
  RingCase rc({{3, 2, 4}, {1, 2, 4}}, {14, 3, 6, 3});
  CellCursor cursor{1, 0};
  ASSERT_TRUE(ring_point_cell(rc.state, cursor, rc.ring, 2));
  EXPECT_EQ(rc.corners_of_point_2(), (std::vector<double>{10, 0, 15, 0, 14, 3, 6, 3, 5, 0}));
}

TEST(RingCell, OneTriangleGivesFourCorners) {
  // The single triangle touches both neighbours; its first corner that hits
  // decides the direction: corner 1 is point 1, the previous neighbour.
  RingCase rc({{1, 2, 3}}, {10, 1});
  CellCursor cursor{1, 0};
  ASSERT_TRUE(ring_point_cell(rc.state, cursor, rc.ring, 2));
  EXPECT_EQ(rc.corners_of_point_2(), (std::vector<double>{10, 0, 5, 0, 10, 1, 15, 0}));
}

TEST(RingCell, FanTouchingNeitherNeighbourFails) {
  RingCase rc({{2, 4, 5}}, {10, 1});
  CellCursor cursor{1, 0};
  EXPECT_FALSE(ring_point_cell(rc.state, cursor, rc.ring, 2));
  EXPECT_EQ(rc.state.message_buffer,
            "Conceptual error in function populate_boundary_with_polys(). If this occurs during Lloyd "
            "iterations, consider reducing the LLOYD_FAC control variable.");
}

// One plain cell of `corners` corners on a circle, for measure_cells.
RunState one_cell(std::int32_t corners) {
  RunState state;
  state.mesh.mesh_point_count = 1;
  state.mesh.mesh_points = {0, 0};
  CellTables& cells = state.cells;
  cells.cell_vertex_count = {corners};
  cells.cell_first_vertex = {1};
  for (std::int32_t k = 0; k < corners; ++k) {
    cells.cell_vertices.push_back(100 * std::cos(k * 6.283185307179586 / corners));
    cells.cell_vertices.push_back(100 * std::sin(k * 6.283185307179586 / corners));
  }
  cells.cell_vertex_code.assign(static_cast<std::size_t>(corners), 1);
  cells.cell_centroid = {0, 0};
  cells.cell_area = {0};
  cells.polygon_buffer.assign(200, 0.0);
  return state;
}

TEST(MeasureCells, HundredCornersPassAndHundredAndOneFail) {
  RunState ok = one_cell(100);
  measure_cells(ok);
  EXPECT_NEAR(ok.cells.cell_area[0], 31395.26, 0.01);
  RunState too_many = one_cell(101);
  try {
    measure_cells(too_many);
    FAIL();
  } catch (const RunFailure&) {
    EXPECT_EQ(too_many.message_buffer,
              "Maximum permitted vertices in any one Voronoi polygon is 100. Increase MAXPOLYVERT and "
              "recompile program.");
  }
}

TEST(MeasureCells, ZeroAreaFails) {
  RunState state = one_cell(2);
  try {
    measure_cells(state);
    FAIL();
  } catch (const RunFailure&) {
    EXPECT_EQ(state.message_buffer, "The area of the Voronoi polygon associated with cell number 1 is zero.");
  }
}

// A closed fan of six triangles round point 1 at the centre of a hexagon
// of points 2 to 7.
RunState hexagon_fan() {
  RunState state;
  state.mesh.mesh_point_count = 7;
  TriangleTable& tt = state.triangles;
  tt.triangle_count = 6;
  for (std::int32_t k = 0; k < 6; ++k) {
    const std::int32_t a = 2 + k;
    const std::int32_t b = 2 + (k + 1) % 6;
    tt.tri_vertex.insert(tt.tri_vertex.end(), {1, a, b});
    // Edge 1 (1 to a) borders the triangle before, edge 3 (b to 1) the one after.
    tt.tri_neighbour.insert(tt.tri_neighbour.end(), {(k + 5) % 6 + 1, -1, (k + 1) % 6 + 1});
  }
  tt.point_tri_count = {6, 2, 2, 2, 2, 2, 2};
  tt.row_capacity = 8;
  tt.connected_triangles.assign(7 * 8, 0);
  for (std::int32_t k = 0; k < 6; ++k) tt.connected_triangles[static_cast<std::size_t>(k)] = k + 1;
  // Rim point p is corner a of triangle p-1 and corner b of the one before.
  for (std::int32_t p = 2; p <= 7; ++p) {
    const std::int32_t as_a = p - 1;
    const std::int32_t as_b = (p + 3) % 6 + 1;
    tt.connected_triangles[static_cast<std::size_t>((p - 1) * 8)] = std::min(as_a, as_b);
    tt.connected_triangles[static_cast<std::size_t>((p - 1) * 8 + 1)] = std::max(as_a, as_b);
  }
  state.mesh.work_list.assign(8, 0);
  return state;
}

TEST(OrderConnectedTriangles, ClosedFanOfSixFollowsFirstUntakenNeighbour) {
  RunState state = hexagon_fan();
  order_connected_triangles(state);
  const std::vector<std::int32_t> column(state.triangles.connected_triangles.begin(),
                                         state.triangles.connected_triangles.begin() + 6);
  // Closed: start at entry 1; triangle 1's first neighbour still in the
  // column is triangle 6 (edge 1), and so on backwards.
  EXPECT_EQ(column, (std::vector<std::int32_t>{1, 6, 5, 4, 3, 2}));
}

TEST(OrderConnectedTriangles, TwoTrianglesSkipTheWalk) {
  RunState state = hexagon_fan();
  order_connected_triangles(state);
  // Point 2 has triangles 1 and 6; each has the other as its one neighbour
  // in the column, so the first is the start and the other goes second.
  EXPECT_EQ(state.triangles.connected_triangles[8], 1);
  EXPECT_EQ(state.triangles.connected_triangles[9], 6);
  // Point 3 has triangles 1 and 2.
  EXPECT_EQ(state.triangles.connected_triangles[16], 1);
  EXPECT_EQ(state.triangles.connected_triangles[17], 2);
}

TEST(OrderConnectedTriangles, PointWithoutTrianglesFails) {
  RunState state = hexagon_fan();
  state.triangles.point_tri_count[3] = 0;
  try {
    order_connected_triangles(state);
    FAIL();
  } catch (const RunFailure&) {
    EXPECT_EQ(state.message_buffer,
              "Sub-optimal triangulation. This can sometimes be rectified by decreasing requested "
              "cell density along inner lines (especially if close to model boundary) or increasing "
              "requested cell density along outer polygonal boundary.");
  }
}

TEST(LloydStep, WorkedMove) {
  RunState state;
  state.control.lloyd_fac = 0.25;
  state.outer_boundary.vertices = {0, 0, 100, 0, 100, 100, 0, 100, 0, 0};
  state.outer_boundary.vertex_count = 5;
  state.outer_boundary.point_count = 1;  // the first free point is then 1
  state.mesh.mesh_point_count = 1;
  state.mesh.mesh_points = {10, 10};
  state.cells.cell_centroid = {12, 10};
  state.cells.cell_area = {-25};
  ASSERT_EQ(first_free_point(state), 1);
  PassMeasure m = measure_pass(state);
  EXPECT_DOUBLE_EQ(m.last_d, 0.4);
  EXPECT_EQ(m.count, 1);
  move_free_points(state, 1.0 - 0.25);
  EXPECT_EQ(state.mesh.mesh_points, (std::vector<double>{10.5, 10}));
  EXPECT_EQ(pass_line(3, m), "   itn 3: max/ave normalized pt-to-centroid dist = [4.00000E-01,4.00000E-01]");
}

TEST(LloydStep, CentroidOutsideTheDomainLeavesThePoint) {
  RunState state;
  state.control.lloyd_fac = 0.25;
  state.outer_boundary.vertices = {0, 0, 100, 0, 100, 100, 0, 100, 0, 0};
  state.outer_boundary.vertex_count = 5;
  state.outer_boundary.point_count = 1;
  state.mesh.mesh_point_count = 1;
  state.mesh.mesh_points = {99, 10};
  state.cells.cell_centroid = {100, 10};  // on the ring
  state.cells.cell_area = {25};
  EXPECT_DOUBLE_EQ(measure_pass(state).last_d, 0.2);
  move_free_points(state, 0.75);
  EXPECT_EQ(state.mesh.mesh_points, (std::vector<double>{99, 10}));
}

TEST(LloydStep, NoFreePointsPrintZeros) {
  PassMeasure none;
  EXPECT_EQ(pass_line(0, none), "   itn 0: max/ave normalized pt-to-centroid dist = [0.00000E+00,0.00000E+00]");
}

TEST(LloydStep, FilesAreDueInTheFirstAndLastPassOnly) {
  RunState state;
  state.control.max_lloyd = 5;
  state.lloyd_iteration = 0;
  EXPECT_TRUE(iteration_files_due(state));
  state.lloyd_iteration = 3;
  EXPECT_FALSE(iteration_files_due(state));
  state.lloyd_last_pass = true;
  EXPECT_TRUE(iteration_files_due(state));
  state.lloyd_last_pass = false;
  state.lloyd_iteration = 5;
  EXPECT_TRUE(iteration_files_due(state));
}

TEST(LloydStep, FirstFreePointFollowsTheFixedPoints) {
  RunState state;
  PointSet points;
  points.count = 2;
  state.inner_point_sets.push_back(points);
  state.outer_boundary.point_count = 11;
  BoundaryRing hole;
  hole.point_count = 5;
  state.inner_boundaries.push_back(hole);
  BoundaryRing line;
  line.point_count = 7;
  line.omitted_count = 3;
  state.inner_lines.push_back(line);
  // 2 inner points + 10 outer + 4 hole + 4 line + 12 hexagon points = 32.
  EXPECT_EQ(first_free_point(state), 33);
}

}  // namespace
}  // namespace tesseramill

namespace tesseramill {
namespace {

// A state whose point 1 has the triangles of `column` and whose triangles
// have the given neighbours.
RunState fan_state(const std::vector<std::int32_t>& column,
                   const std::vector<std::vector<std::int32_t>>& neighbours) {
  RunState state;
  state.mesh.mesh_point_count = 1;
  TriangleTable& tt = state.triangles;
  tt.triangle_count = static_cast<std::int32_t>(neighbours.size());
  for (const auto& n : neighbours) {
    tt.tri_neighbour.insert(tt.tri_neighbour.end(), n.begin(), n.end());
    tt.tri_vertex.insert(tt.tri_vertex.end(), {1, 1, 1});
  }
  tt.point_tri_count = {static_cast<std::int32_t>(column.size())};
  tt.row_capacity = static_cast<std::int32_t>(column.size()) + 2;
  tt.connected_triangles.assign(static_cast<std::size_t>(tt.row_capacity), 0);
  std::copy(column.begin(), column.end(), tt.connected_triangles.begin());
  state.mesh.work_list.assign(column.size() + 2, 0);
  return state;
}

using tesseramill_test::failure_of;

TEST(OrderConnectedTriangles, ThreeNeighboursInOneFanIsAnAnomaly) {
  RunState state = fan_state({1, 2, 3, 4}, {{2, 3, 4}, {1, -1, -1}, {1, -1, -1}, {1, -1, -1}});
  EXPECT_EQ(failure_of(state, order_connected_triangles),
            "Connection anomaly for connected triangle 1of point 1.");
}

TEST(OrderConnectedTriangles, WalkWithoutANeighbourFails) {
  RunState state = fan_state({1, 2, 3, 4}, {{-1, -1, -1}, {3, -1, -1}, {2, -1, -1}, {-1, -1, -1}});
  EXPECT_EQ(failure_of(state, order_connected_triangles), "Missing triangle local neighbour: cell = 1");
}

// Three mesh points sharing a single triangle.
void one_triangle(RunState& state) {
  state.mesh.mesh_point_count = 3;
  state.mesh.mesh_points = {0, 0, 1, 0, 0, 1};
  TriangleTable& tt = state.triangles;
  tt.triangle_count = 1;
  tt.tri_centroid = {0.3, 0.3};
  tt.point_tri_count = {1, 1, 1};
  tt.row_capacity = 3;
  tt.connected_triangles = {1, 0, 0, 1, 0, 0, 1, 0, 0};
}

TEST(AssembleCellPolygons, PlainCellWithOneTriangleFails) {
  RunState state;
  one_triangle(state);
  EXPECT_EQ(failure_of(state, assemble_cell_polygons),
            "Only a single triangle, or zero triangles, is connected to emplaced point number 1. This "
            "is an internal point.");
}

TEST(AssembleCellPolygons, InnerPointWithOneTriangleIsReportedAsTheCountPlusOne) {
  RunState state;
  PointSet points;
  points.count = 1;
  points.coords = {0, 0};
  points.separation = {1};
  state.inner_point_sets.push_back(points);
  one_triangle(state);
  EXPECT_EQ(failure_of(state, assemble_cell_polygons),
            "Only a single triangle, or zero triangles, is connected to emplaced point number 4. This "
            "is an internal point.");
}

// Mesh points 1 to n, each with its own fan of 2 to 7 triangles of a
// table of n triangles whose centroids are all different.
void many_plain_cells(RunState& state, std::int32_t n) {
  state.mesh.mesh_point_count = n;
  state.mesh.mesh_points.assign(2 * static_cast<std::size_t>(n), 0.0);
  TriangleTable& tt = state.triangles;
  tt.triangle_count = n;
  tt.row_capacity = 8;
  tt.tri_centroid.resize(2 * static_cast<std::size_t>(n));
  tt.point_tri_count.resize(static_cast<std::size_t>(n));
  tt.connected_triangles.assign(8 * static_cast<std::size_t>(n), 0);
  for (std::int32_t p = 1; p <= n; ++p) {
    const std::size_t at = static_cast<std::size_t>(p - 1);
    tt.tri_centroid[2 * at] = p * 0.5;
    tt.tri_centroid[2 * at + 1] = -p * 0.25;
    const std::int32_t c = 2 + (p * 7919) % 6;
    tt.point_tri_count[at] = c;
    for (std::int32_t k = 0; k < c; ++k) {
      tt.connected_triangles[8 * at + static_cast<std::size_t>(k)] = 1 + (p * 31 + k * 977) % n;
    }
  }
}

TEST(AssembleCellPolygons, PlainCellsFilledInTwoHalvesAreTheCellsFilledInOrder) {
  RunState two;
  many_plain_cells(two, 50000);
  assemble_cell_polygons(two);
  RunState one;
  many_plain_cells(one, 50000);
  {
    tesseramill_test::OneCore one_core;
    assemble_cell_polygons(one);
  }
  EXPECT_EQ(two.cells.cell_vertex_count, one.cells.cell_vertex_count);
  EXPECT_EQ(two.cells.cell_first_vertex, one.cells.cell_first_vertex);
  EXPECT_EQ(two.cells.cell_vertex_code, one.cells.cell_vertex_code);
  EXPECT_EQ(two.cells.cell_vertices, one.cells.cell_vertices);
  // Point 30,001's corners follow the counts of the points before it.
  std::int32_t before = 0;
  for (std::size_t k = 0; k < 30000; ++k) before += two.triangles.point_tri_count[k];
  EXPECT_EQ(two.cells.cell_first_vertex[30000], before + 1);
  const std::int32_t t = two.triangles.connected_triangles[8 * 30000];
  EXPECT_EQ(two.cells.cell_vertex_code[static_cast<std::size_t>(before)], t);
  EXPECT_EQ(two.cells.cell_vertices[2 * static_cast<std::size_t>(before)], t * 0.5);
}

TEST(AssembleCellPolygons, TheLowestPointWithTooFewTrianglesIsReported) {
  RunState state;
  many_plain_cells(state, 50000);
  state.triangles.point_tri_count[44999] = 0;
  state.triangles.point_tri_count[30000] = 1;
  EXPECT_EQ(failure_of(state, assemble_cell_polygons),
            "Only a single triangle, or zero triangles, is connected to emplaced point number 30001. This "
            "is an internal point.");
}

}  // namespace
}  // namespace tesseramill
