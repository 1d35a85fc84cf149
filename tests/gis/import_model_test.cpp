// What the import writes from tidy and untidy layers: exact files, repairs
// and parts left out with their screen lines, and thinning that keeps the
// cells of a densely digitised outline as those of the plain one.
#include <gtest/gtest.h>

#include <cmath>
#include <fstream>
#include <sstream>

#include "gis/layer_fixtures.h"
#include "model_family.h"
#include "support/scratch.h"

namespace tesseramill_test {
namespace {

namespace fs = std::filesystem;

constexpr int kUtm33 = 32633;

TEST(ImportModel, ASquareWithAWellGivesExactlyTheseFiles) {
  ScratchDir dir;
  write_layer(dir.path() / "square.gpkg", "GPKG", "square", kUtm33,
              {{"POLYGON ((500000 5100000, 502000 5100000, 502000 5102000, 500000 5102000, 500000 5100000))", 200.0}});
  write_layer(dir.path() / "wells.gpkg", "GPKG", "wells", kUtm33, {{"POINT (501000.5 5101000.25)", std::nullopt}});
  const fs::path model = dir.path() / "out";
  const GisRun run = run_gis({"import", model.string(), "--boundary", (dir.path() / "square.gpkg").string(), "--points",
                              (dir.path() / "wells.gpkg").string(), "--point-spacing", "10", "--max-spacing", "250",
                              "--name", "sq", "--nlay", "3", "--max-lloyd", "20", "--keep-vertices", "--clean", "0"});
  ASSERT_EQ(run.status, 0) << run.screen;
  EXPECT_EQ(read_file(model / "sq.in"),
            "# Model written by tesseramill-gis import.\n\n"
            "START CONTROL\n  MAX_CENTROID_SEPARATION = 250\n  POLY_GROWTH_RATE = 1.2\n  OUT_FILE_BASE = sq\n"
            "  MAX_CELLS = 4000\n  MAX_LLOYD = 20\nEND CONTROL\n\n"
            "START OUTER_BOUNDARY\n  BLN_FILE = sq_boundary.bln\nEND OUTER_BOUNDARY\n\n"
            "START INNER_POINTS\n  BLN_FILE = sq_points.bln\nEND INNER_POINTS\n\n"
            "START MF6\n  MF6_BASENAME = sq\n  NLAY = 3\n  XORIGIN = 500000\n  YORIGIN = 5100000\nEND MF6\n");
  EXPECT_EQ(read_file(model / "sq_boundary.bln"),
            "5\n500000 5100000 200\n502000 5100000 200\n502000 5102000 200\n500000 5102000 200\n500000 5100000 200\n");
  EXPECT_EQ(read_file(model / "sq_points.bln"), "1\n501000.5 5101000.25 10\n");
  EXPECT_NE(read_file(model / "sq.prj").find("AUTHORITY[\"EPSG\",\"32633\"]]\n"), std::string::npos);
  const std::string summary =
      "\n - boundary: 1 ring, 4 vertices read, 4 kept\n - points: 1 point\n"
      " - coordinate system: WGS 84 / UTM zone 33N (EPSG:32633)\n"
      " - spacing from 10.0 to 250.0, MAX_CELLS 4000, origin 500000,5100000\n";
  EXPECT_NE(run.screen.find(summary), std::string::npos) << run.screen;
}

TEST(ImportModel, ZAndMValuesAreDroppedAndAnOpenLineStaysOpen) {
  ScratchDir dir;
  write_layer(dir.path() / "square.gpkg", "GPKG", "square", kUtm33,
              {{"POLYGON Z ((500000 5100000 12.5, 502000 5100000 13, 502000 5102000 14, 500000 5102000 15, "
                "500000 5100000 12.5))",
                200.0}});
  write_layer(dir.path() / "drains.gpkg", "GPKG", "drains", kUtm33,
              {{"LINESTRING ZM (500500 5100500 1 7, 501500 5100500 2 8, 501500 5101500 3 9)", 100.0}});
  const fs::path model = dir.path() / "out";
  const GisRun run = run_gis({"import", model.string(), "--boundary", (dir.path() / "square.gpkg").string(), "--lines",
                              (dir.path() / "drains.gpkg").string(), "--max-spacing", "250", "--keep-vertices",
                              "--clean", "0"});
  ASSERT_EQ(run.status, 0) << run.screen;
  EXPECT_EQ(read_file(model / "model_boundary.bln"),
            "5\n500000 5100000 200\n502000 5100000 200\n502000 5102000 200\n500000 5102000 200\n500000 5100000 200\n");
  EXPECT_EQ(read_file(model / "model_lines.bln"), "3\n500500 5100500 100\n501500 5100500 100\n501500 5101500 100\n");
}

TEST(ImportModel, ASelfIntersectingZoneIsRepairedByMakeValidIntoTwoZones) {
  ScratchDir dir;
  write_layer(dir.path() / "catchment.gpkg", "GPKG", "catchment", kUtm33,
              {{"POLYGON ((500000 5100000, 510000 5100000, 510000 5110000, 500000 5110000, 500000 5100000))", 400.0}});
  write_layer(dir.path() / "zones.gpkg", "GPKG", "zones", kUtm33,
              {{"POLYGON ((501000 5101000, 503000 5103000, 503000 5101000, 501000 5103000, 501000 5101000))", 200.0}});
  const fs::path model = dir.path() / "model";
  const GisRun run = run_gis({"import", model.string(), "--boundary", (dir.path() / "catchment.gpkg").string(),
                              "--zones", (dir.path() / "zones.gpkg").string(), "--max-spacing", "500", "--make-valid"});
  ASSERT_EQ(run.status, 0) << run.screen;
  EXPECT_NE(run.screen.find(" - Feature 1 of layer zones repaired (Self-intersection at or near point 502000 "
                            "5102000): 2 polygons now.\n"),
            std::string::npos)
      << run.screen;
  EXPECT_NE(run.screen.find(" - zones: 2 zones, "), std::string::npos);
  EXPECT_TRUE(fs::exists(model / "model_zone2.bln"));
  const RunResult mesher = run_executable(model, TESSERAMILL_BINARY, {"model.in"});
  EXPECT_NE(mesher.screen.find(" - file model.oc written ok."), std::string::npos) << mesher.screen;
}

TEST(ImportModel, ADissolvedOutlineLosesItsZeroAreaAndSliverHolesWithALineEach) {
  ScratchDir dir;
  write_layer(dir.path() / "tracts.gpkg", "GPKG", "tracts", kUtm33,
              {{"POLYGON ((500000 5100000, 506000 5100000, 506000 5106000, 500000 5106000, 500000 5100000), "
                "(501000 5101000, 501100 5101000, 501050 5101000, 501000 5101000), "
                "(502000 5102000, 502200 5102000, 502200 5102000.5, 502000 5102000), "
                "(503000 5103000, 504000 5103000, 504000 5104000, 503000 5104000, 503000 5103000))",
                150.0}});
  const fs::path model = dir.path() / "model";
  const GisRun run = run_gis({"import", model.string(), "--boundary", (dir.path() / "tracts.gpkg").string(),
                              "--max-spacing", "400"});
  ASSERT_EQ(run.status, 0) << run.screen;
  EXPECT_NE(run.screen.find(" - inner ring 1 of feature 1 of layer tracts left out: its area of 0.0 is far smaller "
                            "than a cell there.\n"),
            std::string::npos)
      << run.screen;
  EXPECT_NE(run.screen.find(" - inner ring 1 of feature 1 of layer tracts left out: its area of 50.0 is far "
                            "smaller than a cell of spacing 150.0 there.\n"),
            std::string::npos)
      << run.screen;
  EXPECT_NE(run.screen.find(" - holes: 1 hole, "), std::string::npos) << run.screen;
  EXPECT_TRUE(fs::exists(model / "model_hole1.bln"));
  EXPECT_FALSE(fs::exists(model / "model_hole2.bln"));
}

// A boundary digitised a metre apart meshes into about the cells of the
// same outline given by its corners.
TEST(ImportModel, ADenselyDigitisedBoundaryGivesAboutTheCellsOfThePlainOne) {
  ScratchDir dir;
  std::ostringstream dense;
  dense.precision(17);
  dense << "POLYGON ((";
  const double side = 4000.0;
  const double x0 = 500000.0;
  const double y0 = 5100000.0;
  for (int edge = 0; edge < 4; ++edge) {
    for (int k = 0; k < 4000; ++k) {
      const double t = k;
      const double x = edge == 0 ? x0 + t : edge == 1 ? x0 + side : edge == 2 ? x0 + side - t : x0;
      const double y = edge == 0 ? y0 : edge == 1 ? y0 + t : edge == 2 ? y0 + side : y0 + side - t;
      dense << x << " " << y << ", ";
    }
  }
  dense << x0 << " " << y0 << "))";
  write_layer(dir.path() / "plain.gpkg", "GPKG", "plain", kUtm33, {{"POLYGON ((" + square(x0, y0, side) + "))", 100.0}});
  write_layer(dir.path() / "dense.gpkg", "GPKG", "dense", kUtm33, {{dense.str(), 100.0}});
  int cells[2] = {0, 0};
  const char* names[2] = {"plain", "dense"};
  for (int k = 0; k < 2; ++k) {
    const fs::path model = dir.path() / names[k];
    const GisRun run = run_gis({"import", model.string(), "--boundary",
                                (dir.path() / (std::string(names[k]) + ".gpkg")).string(), "--max-spacing", "300"});
    ASSERT_EQ(run.status, 0) << run.screen;
    const RunResult mesher = run_executable(model, TESSERAMILL_BINARY, {"model.in"});
    ASSERT_NE(mesher.screen.find(" - file model.oc written ok."), std::string::npos) << mesher.screen;
    cells[k] = ncpl_of(read_file(model / "model.disv"));
  }
  EXPECT_GT(cells[0], 500);
  EXPECT_LT(std::fabs(cells[1] - cells[0]), 0.05 * cells[0]) << cells[0] << " plain, " << cells[1] << " dense";
}

// A lake close under a gently curved side: thinning at the default
// tolerance (40 m) would straighten the side's 30 m bow through the lake,
// so the side is thinned less, and the lake stays inside and apart.
TEST(ImportModel, ThinningThatWouldCutAHoleIsLessened) {
  ScratchDir dir;
  std::ostringstream boundary;
  boundary.precision(17);
  boundary << "POLYGON ((0 0, 10000 0, ";
  for (int k = 0; k <= 100; ++k) {
    const double x = 10000.0 - 100.0 * k;
    boundary << x << " " << 10000.0 + 30.0 * std::sin(M_PI * x / 10000.0) << ", ";
  }
  boundary << "0 0))";
  write_layer(dir.path() / "catchment.gpkg", "GPKG", "catchment", kUtm33, {{boundary.str(), 400.0}});
  // The lake's top runs 25 m under the side, from x 2000 to 8000.
  std::ostringstream lake;
  lake.precision(17);
  lake << "POLYGON ((2000 9900, 8000 9900, ";
  for (int k = 0; k <= 60; ++k) {
    const double x = 8000.0 - 100.0 * k;
    lake << x << " " << 10000.0 + 30.0 * std::sin(M_PI * x / 10000.0) - 25.0 << ", ";
  }
  lake << "2000 9900))";
  write_layer(dir.path() / "lakes.gpkg", "GPKG", "lakes", kUtm33, {{lake.str(), 20.0}});
  const fs::path model = dir.path() / "model";
  const GisRun run = run_gis({"import", model.string(), "--boundary", (dir.path() / "catchment.gpkg").string(),
                              "--holes", (dir.path() / "lakes.gpkg").string(), "--max-spacing", "500", "--clean", "0"});
  ASSERT_EQ(run.status, 0) << run.screen;
  EXPECT_NE(run.screen.find(" - feature 1 of layer catchment thinned less, to keep it a simple ring apart from the "
                            "others.\n"),
            std::string::npos)
      << run.screen;
  const RunResult mesher = run_executable(model, TESSERAMILL_BINARY, {"model.in"});
  EXPECT_NE(mesher.screen.find(" - file model.oc written ok."), std::string::npos) << screen_tail(mesher.screen, 400);
}

// An outline digitised about 100 m apart with spikes and notches far
// narrower than the 500 m asked along it: cleaned and thinned, it meshes to
// the end.  (Kept whole, such outlines stop the mesher.)
TEST(ImportModel, ARoughOutlineWithNarrowSpikesMeshesToTheEnd) {
  for (std::uint64_t seed : {1u, 2u}) {
    ScratchDir dir;
    tesseramill_bench::Random random(seed);
    std::ostringstream wkt;
    wkt.precision(17);
    wkt << "POLYGON ((";
    const int n = 3480;
    const double radius = 60000.0;
    double first_x = 0.0;
    double first_y = 0.0;
    for (int k = 0; k < n; ++k) {
      const double t = 2.0 * M_PI * k / n;
      double r = radius * (1.0 + 0.15 * std::sin(5.0 * t) + 0.05 * std::sin(17.0 * t)) + random.uniform(-150.0, 150.0);
      const double pick = random.uniform(0.0, 1.0);
      if (pick < 0.02) r += random.uniform(500.0, 3000.0);        // spikes a vertex wide
      if (pick > 0.99) r -= random.uniform(500.0, 2000.0);        // notches a vertex wide
      const double x = 500000.0 + r * std::cos(t);
      const double y = 5500000.0 + r * std::sin(t);
      if (k == 0) {
        first_x = x;
        first_y = y;
      }
      wkt << x << " " << y << ", ";
    }
    wkt << first_x << " " << first_y << "))";
    write_layer(dir.path() / "rough.gpkg", "GPKG", "rough", kUtm33, {{wkt.str(), 500.0}});
    const fs::path model = dir.path() / "model";
    const GisRun run = run_gis({"import", model.string(), "--boundary", (dir.path() / "rough.gpkg").string(),
                                "--max-spacing", "2000"});
    ASSERT_EQ(run.status, 0) << run.screen;
    EXPECT_NE(run.screen.find(" - boundary: 1 ring, 3480 vertices read, "), std::string::npos) << run.screen;
    const RunResult mesher = run_executable(model, TESSERAMILL_BINARY, {"model.in"});
    EXPECT_NE(mesher.screen.find(" - file model.oc written ok."), std::string::npos) << screen_tail(mesher.screen, 400);
  }
}

}  // namespace
}  // namespace tesseramill_test
