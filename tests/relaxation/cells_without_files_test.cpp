// The cells of a pass that writes no files, assembled and measured in one
// step (assemble_and_measure_cells), against assemble_cell_polygons and
// measure_cells one after the other: the same areas and centroids to the
// bit, the same counts, first corners and codes (entries left from an
// earlier pass included), the same ring cells, and the same failures.
#include <gtest/gtest.h>

#include <cmath>
#include <cstring>
#include <sstream>
#include <string>
#include <vector>

#include "common/failure.h"
#include "relaxation/cell_polygons.h"
#include "relaxation/lloyd_step.h"
#include "run/program.h"
#include "support/model_state.h"
#include "support/phase_failure.h"
#include "support/scratch.h"
#include "triangulation/triangulate_points.h"

namespace tesseramill {
namespace {

// The same doubles bit for bit: a NaN or a signed zero counts as itself.
bool same_bits(const std::vector<double>& a, const std::vector<double>& b) {
  return a.size() == b.size() && (a.empty() || std::memcmp(a.data(), b.data(), a.size() * sizeof(double)) == 0);
}

using tesseramill_test::failure_of;

void assemble_then_measure(RunState& state) {
  assemble_cell_polygons(state);
  measure_cells(state);
}

void expect_same_cells(const RunState& one_step, const RunState& two_steps, const std::string& what) {
  const CellTables& a = one_step.cells;
  const CellTables& b = two_steps.cells;
  EXPECT_TRUE(same_bits(a.cell_centroid, b.cell_centroid)) << what;
  EXPECT_TRUE(same_bits(a.cell_area, b.cell_area)) << what;
  EXPECT_TRUE(same_bits(a.boundary_spacing, b.boundary_spacing)) << what;
  EXPECT_EQ(a.cell_vertex_count, b.cell_vertex_count) << what;
  EXPECT_EQ(a.cell_first_vertex, b.cell_first_vertex) << what;
  EXPECT_EQ(a.cell_vertex_code, b.cell_vertex_code) << what;
  EXPECT_EQ(a.edge_code_base, b.edge_code_base) << what;
}

// The model's second pass up to its cells: the first pass made whole (its
// cells, then the points moved), the second triangulated, listed and
// ordered.  Every code is then set to -7, so that a code the pass does not
// write shows.
void second_pass_before_its_cells(RunState& state, const std::string& folder, const std::string& control,
                                  const tesseramill_test::ScratchDir& dir, std::ostringstream& screen) {
  tesseramill_test::copy_folder(tesseramill_test::source_path(folder), dir.path());
  ASSERT_TRUE(tesseramill_test::run_phases_until(state, dir.path(), control, Phase::kPopulateInterior, screen));
  triangulate_points(state);
  build_connected_triangles(state);
  order_connected_triangles(state);
  assemble_then_measure(state);
  move_free_points(state, 1.0 - state.control.lloyd_fac);
  state.lloyd_iteration = 1;
  triangulate_points(state);
  build_connected_triangles(state);
  order_connected_triangles(state);
  std::fill(state.cells.cell_vertex_code.begin(), state.cells.cell_vertex_code.end(), -7);
}

TEST(AssembleAndMeasureCells, SameAsTheTwoStepsOnModelsWithRingsHolesLinesAndPoints) {
  const std::vector<std::pair<std::string, std::string>> models = {{"examples/full", "model.in"},
                                                                   {"tests/models/two_holes", "m.in"}};
  for (const auto& [folder, control] : models) {
    tesseramill_test::ScratchDir dir;
    std::ostringstream screen;
    RunState two_steps;
    second_pass_before_its_cells(two_steps, folder, control, dir, screen);
    ASSERT_GT(two_steps.mesh.mesh_point_count, 200) << folder;
    RunState one_step = two_steps;
    assemble_then_measure(two_steps);
    assemble_and_measure_cells(one_step);
    expect_same_cells(one_step, two_steps, folder);
    // The cells of the inner points and the ring points, which stand first,
    // have their corners written as the two steps write them.
    std::size_t fixed = two_steps.inner_point_sets.empty() ? 0 : static_cast<std::size_t>(two_steps.inner_point_sets[0].count);
    fixed += static_cast<std::size_t>(two_steps.outer_boundary.point_count - 1);
    for (const BoundaryRing& ring : two_steps.inner_boundaries) fixed += static_cast<std::size_t>(ring.point_count - 1);
    const std::size_t ring_corners = 2 * static_cast<std::size_t>(two_steps.cells.cell_first_vertex[fixed] - 1);
    EXPECT_GT(ring_corners, 0u) << folder;
    EXPECT_TRUE(std::equal(one_step.cells.cell_vertices.begin(),
                           one_step.cells.cell_vertices.begin() + static_cast<std::ptrdiff_t>(ring_corners),
                           two_steps.cells.cell_vertices.begin()))
        << folder;
  }
}

// Mesh points 1 to n, each with its own fan of 3 to 7 triangles of a
// table of n triangles whose centroids are all different and not on one
// line (two corners always enclose nothing).
void many_plain_cells(RunState& state, std::int32_t n, std::int32_t rows = 8) {
  state.mesh.mesh_point_count = n;
  state.mesh.mesh_points.assign(2 * static_cast<std::size_t>(n), 0.0);
  TriangleTable& tt = state.triangles;
  tt.triangle_count = n;
  tt.row_capacity = rows;
  tt.tri_centroid.resize(2 * static_cast<std::size_t>(n));
  tt.point_tri_count.resize(static_cast<std::size_t>(n));
  tt.connected_triangles.assign(static_cast<std::size_t>(rows) * static_cast<std::size_t>(n), 0);
  for (std::int32_t p = 1; p <= n; ++p) {
    const std::size_t at = static_cast<std::size_t>(p - 1);
    tt.tri_centroid[2 * at] = 100.0 * std::cos(p * 0.7);
    tt.tri_centroid[2 * at + 1] = 100.0 * std::sin(p * 1.3) + p * 1e-3;
    const std::int32_t c = 3 + (p * 7919) % 5;
    tt.point_tri_count[at] = c;
    for (std::int32_t k = 0; k < c; ++k) {
      tt.connected_triangles[static_cast<std::size_t>(rows) * at + static_cast<std::size_t>(k)] =
          1 + (p * 31 + k * 977) % n;
    }
  }
}

TEST(AssembleAndMeasureCells, SameAsTheTwoStepsOnFiftyThousandPlainCells) {
  RunState two_steps;
  many_plain_cells(two_steps, 50000);
  RunState one_step = two_steps;
  assemble_then_measure(two_steps);
  assemble_and_measure_cells(one_step);
  expect_same_cells(one_step, two_steps, "plain cells");
  // The corners of point 30,001 are those of its column, in order.
  const std::size_t first = static_cast<std::size_t>(one_step.cells.cell_first_vertex[30000] - 1);
  const std::int32_t t = one_step.triangles.connected_triangles[8 * 30000];
  EXPECT_EQ(one_step.cells.cell_vertex_code[first], t);
}

// A point whose fan holds `count` triangles, from triangle `first` on, in
// rows of 110.
void give_fan(RunState& state, std::int32_t p, std::int32_t count, std::int32_t first) {
  TriangleTable& tt = state.triangles;
  tt.point_tri_count[static_cast<std::size_t>(p - 1)] = count;
  for (std::int32_t k = 0; k < count; ++k) {
    tt.connected_triangles[110 * static_cast<std::size_t>(p - 1) + static_cast<std::size_t>(k)] = first + k;
  }
}

TEST(AssembleAndMeasureCells, HundredCornersPassAndHundredAndOneFail) {
  for (std::int32_t corners : {100, 101}) {
    RunState state;
    many_plain_cells(state, 400, 110);
    give_fan(state, 200, corners, 1);
    RunState two_steps = state;
    const std::string message = failure_of(state, assemble_and_measure_cells);
    EXPECT_EQ(message, failure_of(two_steps, assemble_then_measure)) << corners;
    if (corners == 100) {
      EXPECT_EQ(message, "");
      EXPECT_TRUE(same_bits(state.cells.cell_area, two_steps.cells.cell_area));
    } else {
      EXPECT_EQ(message,
                "Maximum permitted vertices in any one Voronoi polygon is 100. Increase MAXPOLYVERT and "
                "recompile program.");
    }
  }
}

TEST(AssembleAndMeasureCells, TheLowestFailingCellIsReported) {
  RunState state;
  many_plain_cells(state, 400, 110);
  // Point 300 has too many corners; point 250's two corners, the same
  // triangle twice, enclose nothing; point 350 has one triangle only.
  give_fan(state, 300, 101, 1);
  give_fan(state, 250, 2, 9);
  state.triangles.connected_triangles[110 * 249 + 1] = 9;
  RunState two_steps = state;
  EXPECT_EQ(failure_of(state, assemble_and_measure_cells),
            "The area of the Voronoi polygon associated with cell number 250 is zero.");
  EXPECT_EQ(failure_of(two_steps, assemble_then_measure), state.message_buffer);
  // A cell of too few triangles is met before any cell is measured.
  give_fan(state, 350, 1, 5);
  two_steps = state;
  EXPECT_EQ(failure_of(state, assemble_and_measure_cells),
            "Only a single triangle, or zero triangles, is connected to emplaced point number 350. This "
            "is an internal point.");
  EXPECT_EQ(failure_of(two_steps, assemble_then_measure), state.message_buffer);
}

}  // namespace
}  // namespace tesseramill
