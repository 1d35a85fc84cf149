// The quality figures and readiness checks on hand-made grids whose
// answers are known.
#include <gtest/gtest.h>

#include <cmath>

#include "report/grid_quality.h"
#include "support/hand_grid.h"

namespace tesseramill_test {
namespace {

using tesseramill::assess_grid;
using tesseramill::DisvGrid;
using tesseramill::DomainRings;
using tesseramill::GridQuality;

DomainRings rectangle(double width, double height) {
  DomainRings rings;
  rings.outer = {0, 0, width, 0, width, height, 0, height, 0, 0};
  return rings;
}

void expect_all_pass(const GridQuality& q) {
  for (const auto& check : q.checks) EXPECT_TRUE(check.passed) << check.what;
}

TEST(GridQuality, OfUnitSquares) {
  const GridQuality q = assess_grid(unit_squares(3, 2), rectangle(3, 2), 1.2);
  expect_all_pass(q);
  EXPECT_EQ(q.cells, 6);
  EXPECT_EQ(q.vertices, 12);
  EXPECT_EQ(q.area_smallest, 1.0);
  EXPECT_EQ(q.area_median, 1.0);
  EXPECT_EQ(q.area_largest, 1.0);
  // 3 x 2 squares meet across 2 x 2 + 3 x 1 faces.
  EXPECT_EQ(q.neighbour_pairs, 7);
  EXPECT_EQ(q.largest_area_ratio, 1.0);
  EXPECT_EQ(q.pairs_above_growth, 0);
  EXPECT_EQ(q.angle_largest, 0.0);
  EXPECT_EQ(q.not_convex, 0);
  EXPECT_EQ(q.many_faces, 0);
  EXPECT_EQ(q.cell_area_sum, 6.0);
  EXPECT_EQ(q.domain_area, 6.0);
}

TEST(GridQuality, TextOfUnitSquares) {
  const GridQuality q = assess_grid(unit_squares(3, 2), rectangle(3, 2), 1.2);
  EXPECT_EQ(tesseramill::quality_text(q, "g.disv"),
            "\n"
            " Grid quality of g.disv\n"
            "   cells: 6, vertices: 12\n"
            "   cell area: smallest 1.00000E+00, median 1.00000E+00, largest 1.00000E+00\n"
            "   neighbouring cells: 7 pairs, largest area ratio 1.0000, 0.00% of pairs above the growth rate 1.2000\n"
            "   angle between centre line and face normal: largest 0.00 degrees, median 0.00 degrees\n"
            "   cells that are not convex: 0\n"
            "   cells with more than 30 faces: 0\n"
            "\n"
            " MODFLOW 6 readiness\n"
            "   pass  every cell clockwise with positive area\n"
            "   pass  no two vertex numbers at the same position\n"
            "   pass  no zero-length edge\n"
            "   pass  every interior face shared by exactly two cells through the same two vertex numbers\n"
            "   pass  cell areas add up to the domain's area (sum 6.000000000E+00, domain 6.000000000E+00, "
            "relative difference 0.00E+00)\n"
            "   pass  every vertex number on the cell lines set apart by a blank\n");
}

TEST(GridQuality, AreaRatiosAndSkewedFaces) {
  // Two cells: a unit square and a 2 x 1 rectangle beside it, whose centres
  // lie on one line normal to the shared face; then the rectangle's centre
  // moved up makes the centre line lean.
  DisvGrid grid;
  grid.ncpl = 2;
  grid.nvert = 6;
  grid.vertices = {0, 0, 1, 0, 3, 0, 0, 1, 1, 1, 3, 1};
  grid.cell_vertices = {1, 4, 5, 2, 2, 5, 6, 3};
  grid.cell_start = {0, 4, 8};
  grid.centres = {0.5, 0.5, 2.0, 0.5};
  GridQuality q = assess_grid(grid, rectangle(3, 1), 1.5);
  expect_all_pass(q);
  EXPECT_EQ(q.largest_area_ratio, 2.0);
  EXPECT_EQ(q.pairs_above_growth, 1);
  EXPECT_EQ(q.angle_largest, 0.0);
  grid.centres = {0.5, 0.5, 2.0, 2.0};
  q = assess_grid(grid, rectangle(3, 1), 2.5);
  EXPECT_EQ(q.pairs_above_growth, 0);
  EXPECT_NEAR(q.angle_largest, 45.0, 1e-12);
}

TEST(GridQuality, CountsCellsThatAreNotConvex) {
  // One L-shaped cell, clockwise: (0,0) (0,2) (1,2) (1,1) (2,1) (2,0).
  DisvGrid grid;
  grid.ncpl = 1;
  grid.nvert = 6;
  grid.vertices = {0, 0, 0, 2, 1, 2, 1, 1, 2, 1, 2, 0};
  grid.cell_vertices = {1, 2, 3, 4, 5, 6};
  grid.cell_start = {0, 6};
  grid.centres = {0.8, 0.8};
  DomainRings rings;
  rings.outer = {0, 0, 2, 0, 2, 1, 1, 1, 1, 2, 0, 2, 0, 0};
  const GridQuality q = assess_grid(grid, rings, 1.2);
  expect_all_pass(q);
  EXPECT_EQ(q.not_convex, 1);
  EXPECT_EQ(q.first_not_convex, 1);
  EXPECT_EQ(q.many_faces, 0);
}

TEST(GridQuality, CountsCellsWithMoreThanThirtyFaces) {
  // Two regular polygons side by side, of 30 and 31 corners, clockwise.
  DisvGrid grid;
  grid.ncpl = 2;
  grid.cell_start = {0};
  DomainRings rings;
  rings.outer = {-1.5, -1.5, 6.5, -1.5, 6.5, 1.5, -1.5, 1.5, -1.5, -1.5};
  for (int cell = 0; cell < 2; ++cell) {
    const int corners = 30 + cell;
    for (int k = 0; k < corners; ++k) {
      const double angle = -6.283185307179586 * k / corners;
      grid.vertices.push_back(5.0 * cell + std::cos(angle));
      grid.vertices.push_back(std::sin(angle));
      grid.cell_vertices.push_back(static_cast<std::int32_t>(grid.vertices.size() / 2));
    }
    grid.cell_start.push_back(static_cast<std::int32_t>(grid.cell_vertices.size()));
    grid.centres.push_back(5.0 * cell);
    grid.centres.push_back(0.0);
  }
  grid.nvert = 61;
  const GridQuality q = assess_grid(grid, rings, 1.2);
  EXPECT_TRUE(q.checks[tesseramill::kClockwiseCells].passed);
  EXPECT_EQ(q.not_convex, 0);
  EXPECT_EQ(q.many_faces, 1);
  EXPECT_EQ(q.first_many_faces, 2);
}

TEST(GridQuality, FindsAFaceThatDoesNotMatchItsNeighbours) {
  // Two squares below one 2 x 1 rectangle that skips their shared corner:
  // the rectangle's bottom face is not the squares' two top faces.
  DisvGrid grid;
  grid.ncpl = 3;
  grid.nvert = 8;
  grid.vertices = {0, 0, 1, 0, 2, 0, 0, 1, 1, 1, 2, 1, 0, 2, 2, 2};
  grid.cell_vertices = {1, 4, 5, 2, 2, 5, 6, 3, 4, 7, 8, 6};
  grid.cell_start = {0, 4, 8, 12};
  grid.centres = {0.5, 0.5, 1.5, 0.5, 1.0, 1.5};
  GridQuality q = assess_grid(grid, rectangle(2, 2), 1.2);
  EXPECT_FALSE(q.checks[tesseramill::kFacesShared].passed);
  EXPECT_EQ(q.checks[tesseramill::kFacesShared].first_cell, 1);
  // Naming the corner in the rectangle as well makes the faces match.
  grid.cell_vertices = {1, 4, 5, 2, 2, 5, 6, 3, 4, 7, 8, 6, 5};
  grid.cell_start = {0, 4, 8, 13};
  q = assess_grid(grid, rectangle(2, 2), 1.2);
  expect_all_pass(q);
  EXPECT_EQ(q.not_convex, 0);
}

TEST(GridQuality, CellsOfNoAreaGiveNoRatioAndFailTheirCheck) {
  DisvGrid grid;
  grid.ncpl = 2;
  grid.nvert = 4;
  grid.vertices = {0, 0, 1, 0, 2, 0, 3, 0};
  grid.cell_vertices = {1, 2, 3, 2, 3, 4};
  grid.cell_start = {0, 3, 6};
  grid.centres = {1, 0, 2, 0};
  DomainRings rings;
  rings.outer = {0, 0, 3, 0, 0, 0};
  const GridQuality q = assess_grid(grid, rings, 1.2);
  EXPECT_FALSE(q.checks[tesseramill::kClockwiseCells].passed);
  EXPECT_EQ(q.checks[tesseramill::kClockwiseCells].first_cell, 1);
  EXPECT_EQ(q.largest_area_ratio, 0.0);
  EXPECT_FALSE(q.checks[tesseramill::kAreasAddUp].passed);
  // The text stays readable.
  const std::string text = tesseramill::quality_text(q, "flat.disv");
  EXPECT_NE(text.find("   FAIL  every cell clockwise with positive area: first at cell 1\n"), std::string::npos) << text;
}

}  // namespace
}  // namespace tesseramill_test
