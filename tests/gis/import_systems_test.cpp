// Layers in several coordinate systems: reprojected into the boundary's or
// the one --to names, with the model's system written as WKT.
#include <gtest/gtest.h>

#include <cmath>
#include <sstream>

#include <ogr_spatialref.h>

#include "gis/layer_fixtures.h"
#include "support/scratch.h"

namespace tesseramill_test {
namespace {

namespace fs = std::filesystem;

// The place (lon, lat) in UTM zone 33N, as PROJ computes it.
std::pair<double, double> utm33(double lon, double lat) {
  OGRSpatialReference wgs84;
  wgs84.importFromEPSG(4326);
  wgs84.SetAxisMappingStrategy(OAMS_TRADITIONAL_GIS_ORDER);
  OGRSpatialReference utm;
  utm.importFromEPSG(32633);
  std::unique_ptr<OGRCoordinateTransformation> t(OGRCreateCoordinateTransformation(&wgs84, &utm));
  double x = lon;
  double y = lat;
  t->Transform(1, &x, &y);
  return {x, y};
}

std::vector<double> numbers(const std::string& text) {
  std::istringstream in(text);
  std::vector<double> out;
  double v = 0.0;
  while (in >> v) out.push_back(v);
  return out;
}

TEST(ImportSystems, WellsInDegreesAreReprojectedIntoTheBoundarysSystem) {
  ScratchDir dir;
  const auto [x0, y0] = utm33(15.0, 46.0);
  std::ostringstream square_wkt;
  square_wkt.precision(17);
  square_wkt << "POLYGON ((" << square(std::floor(x0) - 2000, std::floor(y0) - 2000, 4000.0) << "))";
  write_layer(dir.path() / "catchment.gpkg", "GPKG", "catchment", 32633, {{square_wkt.str(), 200.0}});
  write_layer(dir.path() / "wells.geojson", "GeoJSON", "wells", 4326, {{"POINT (15.0 46.0)", 20.0}});
  const fs::path model = dir.path() / "model";
  const GisRun run = run_gis({"import", model.string(), "--boundary", (dir.path() / "catchment.gpkg").string(),
                              "--points", (dir.path() / "wells.geojson").string(), "--max-spacing", "400"});
  ASSERT_EQ(run.status, 0) << run.screen;
  const std::vector<double> well = numbers(read_file(model / "model_points.bln"));
  ASSERT_EQ(well.size(), 4u);
  EXPECT_EQ(well[0], 1.0);
  EXPECT_NEAR(well[1], x0, 1e-6);
  EXPECT_NEAR(well[2], y0, 1e-6);
  EXPECT_EQ(well[3], 20.0);
}

TEST(ImportSystems, ABoundaryInDegreesIsImportedIntoTheSystemOfTo) {
  ScratchDir dir;
  write_layer(dir.path() / "geo.geojson", "GeoJSON", "geo", 4326,
              {{"POLYGON ((15.0 46.0, 15.05 46.0, 15.05 46.04, 15.0 46.04, 15.0 46.0))", 200.0}});
  const fs::path model = dir.path() / "model";
  const GisRun run = run_gis({"import", model.string(), "--boundary", (dir.path() / "geo.geojson").string(),
                              "--max-spacing", "400", "--to", "EPSG:32633"});
  ASSERT_EQ(run.status, 0) << run.screen;
  EXPECT_NE(run.screen.find(" - coordinate system: WGS 84 / UTM zone 33N (EPSG:32633)\n"), std::string::npos);
  OGRSpatialReference written;
  ASSERT_EQ(written.SetFromUserInput(read_file(model / "model.prj").c_str()), OGRERR_NONE);
  OGRSpatialReference utm;
  utm.importFromEPSG(32633);
  EXPECT_TRUE(written.IsSame(&utm));
  const std::vector<double> ring = numbers(read_file(model / "model_boundary.bln"));
  const auto [x, y] = utm33(15.0, 46.0);
  double xmin = 1e300;
  double ymin = 1e300;
  for (std::size_t k = 1; k + 2 < ring.size(); k += 3) {
    xmin = std::min(xmin, ring[k]);
    ymin = std::min(ymin, ring[k + 1]);
  }
  // The corner at (15, 46) is the lowest-left one, within the cleaning's
  // rounding of corners (radius 100: less than 100 from the corner).
  EXPECT_NEAR(xmin, x, 100.0);
  EXPECT_NEAR(ymin, y, 100.0);
}

TEST(ImportSystems, TheSystemOfToMustBeProjected) {
  ScratchDir dir;
  write_layer(dir.path() / "catchment.gpkg", "GPKG", "catchment", 32633,
              {{"POLYGON ((" + square(500000, 5100000, 4000.0) + "))", 200.0}});
  const GisRun run = run_gis({"import", (dir.path() / "model").string(), "--boundary",
                              (dir.path() / "catchment.gpkg").string(), "--max-spacing", "400", "--to", "EPSG:4326"});
  EXPECT_EQ(run.status, 1);
  const std::string expected =
      failure_text("The system EPSG:4326 of --to is geographic, in degrees; name a projected system in metres.");
  EXPECT_EQ(run.screen.substr(run.screen.size() - expected.size()), expected);
}

}  // namespace
}  // namespace tesseramill_test
