// The picture of a grid is one well-formed SVG document with one shape per
// cell.
#include <gtest/gtest.h>

#include "report/grid_picture.h"
#include "support/hand_grid.h"
#include "support/xml_check.h"

namespace tesseramill_test {
namespace {

std::size_t count_of(const std::string& text, const std::string& piece) {
  std::size_t count = 0;
  for (std::size_t p = text.find(piece); p != std::string::npos; p = text.find(piece, p + 1)) ++count;
  return count;
}

tesseramill::PictureLayers layers_for(double width, double height) {
  tesseramill::PictureLayers layers;
  layers.rings.outer = {0, 0, width, 0, width, height, 0, height, 0, 0};
  layers.lines = {{0.5, 0.5, width - 0.5, height - 0.5}};
  layers.zones = {{0.5, 0.5, 1.5, 0.5, 1.5, 1.5, 0.5, 0.5}};
  layers.points = {0.5, 0.5, 1.5, 0.5};
  layers.title = "grid <of> \"squares\" & more";
  return layers;
}

TEST(GridPicture, IsWellFormedWithOneShapePerCell) {
  const tesseramill::DisvGrid grid = unit_squares(4, 3, {5});
  const std::string svg = tesseramill::grid_picture(grid, layers_for(4, 3));
  std::string error;
  EXPECT_TRUE(well_formed_xml(svg, error)) << error;
  EXPECT_EQ(count_of(svg, "<path class=\"cell "), 11u);
  EXPECT_EQ(count_of(svg, "<circle class=\"point\""), 2u);
  EXPECT_EQ(count_of(svg, "<path class=\"line\""), 1u);
  EXPECT_EQ(count_of(svg, "<path class=\"zone\""), 1u);
  EXPECT_NE(svg.find("grid &lt;of&gt; &quot;squares&quot; &amp; more"), std::string::npos);
}

// The picture fills the window it is opened in, keeps its proportions and
// shows all of its drawing area: no fixed size in pixels that a smaller
// window would cut off.
TEST(GridPicture, ScalesToTheWindow) {
  const tesseramill::DisvGrid grid = unit_squares(4, 3, {2});
  const std::string svg = tesseramill::grid_picture(grid, layers_for(4, 3));
  const std::size_t root = svg.find("<svg ");
  ASSERT_NE(root, std::string::npos);
  const std::string tag = svg.substr(root, svg.find('>', root) + 1 - root);
  EXPECT_NE(tag.find(" width=\"100%\" height=\"100%\" viewBox=\"0 0 "), std::string::npos) << tag;
  EXPECT_NE(tag.find(" preserveAspectRatio=\"xMidYMid meet\">"), std::string::npos) << tag;
  EXPECT_EQ(count_of(tag, "px"), 0u) << tag;
}

TEST(GridPicture, StaysWellFormedForFlatAndTinyAndFarAwayGrids) {
  for (const auto& [nx, ny, origin] : {std::tuple{50, 1, 0.0}, std::tuple{1, 50, 0.0}, std::tuple{3, 3, 1.0e7}}) {
    const tesseramill::DisvGrid grid = unit_squares(nx, ny);
    tesseramill::PictureLayers layers = layers_for(nx, ny);
    layers.world_x0 = origin;
    layers.world_y0 = origin;
    const std::string svg = tesseramill::grid_picture(grid, layers);
    std::string error;
    EXPECT_TRUE(well_formed_xml(svg, error)) << error;
    EXPECT_EQ(count_of(svg, "<path class=\"cell "), static_cast<std::size_t>(nx * ny));
  }
}

TEST(GridPicture, PinsShapesFarOutsideACollapsedGrid) {
  // Every vertex at one place, as in a grid file whose digits could not
  // tell the corners apart, and the boundary a long way off: the boundary
  // is pinned a billion units off the canvas rather than scaled past any
  // integer, and the axes, whose tick step is then far below the digits of
  // the coordinates, still end.
  tesseramill::DisvGrid grid = unit_squares(2, 1);
  for (double& v : grid.vertices) v = 5.0;
  tesseramill::PictureLayers layers = layers_for(2, 1);
  layers.rings.outer = {5.0, 5.0, 6.0, 5.0, 6.0, 6.0, 5.0, 6.0, 5.0, 5.0};
  const std::string svg = tesseramill::grid_picture(grid, layers);
  std::string error;
  EXPECT_TRUE(well_formed_xml(svg, error)) << error;
  const std::size_t rim = svg.find("class=\"rim\"");
  ASSERT_NE(rim, std::string::npos);
  const std::size_t d = svg.find(" d=\"", rim);
  ASSERT_NE(d, std::string::npos);
  EXPECT_EQ(svg.substr(d, svg.find('"', d + 4) + 1 - d),
            " d=\"M1200 600l999998800 0l0 -1000000600l-999998800 0l0 1000000600z\"");
  // The axes get one tick each, at the one place the grid has.
  EXPECT_EQ(count_of(svg, ">5.000000000</text>"), 2u);
}

TEST(GridPicture, GivesEveryCellItsAreaClass) {
  // Cells of areas 1 and 4: the smallest in the first class, the largest in
  // the last.
  tesseramill::DisvGrid grid;
  grid.ncpl = 2;
  grid.nvert = 8;
  grid.vertices = {0, 0, 0, 1, 1, 1, 1, 0, 1, 0, 1, 2, 3, 2, 3, 0};
  grid.cell_vertices = {1, 2, 3, 4, 5, 6, 7, 8};
  grid.cell_start = {0, 4, 8};
  grid.centres = {0.5, 0.5, 2, 1};
  const std::string svg = tesseramill::grid_picture(grid, layers_for(3, 2));
  EXPECT_EQ(count_of(svg, "<path class=\"cell a0\""), 1u);
  EXPECT_EQ(count_of(svg, "<path class=\"cell a23\""), 1u);
}

TEST(XmlCheck, RefusesBrokenDocuments) {
  std::string error;
  EXPECT_TRUE(well_formed_xml("<?xml version=\"1.0\"?>\n<a x=\"1\"><b/>t &amp; u</a>\n", error)) << error;
  EXPECT_FALSE(well_formed_xml("<a><b></a></b>", error));
  EXPECT_FALSE(well_formed_xml("<a x=1/>", error));
  EXPECT_FALSE(well_formed_xml("<a x=\"1\" x=\"2\"/>", error));
  EXPECT_FALSE(well_formed_xml("<a>&</a>", error));
  EXPECT_FALSE(well_formed_xml("<a/><b/>", error));
  EXPECT_FALSE(well_formed_xml("<a>", error));
}

}  // namespace
}  // namespace tesseramill_test
