// The import's refusals: each bad input with its exact message, and
// nothing written.
#include <gtest/gtest.h>

#include <fstream>
#include <functional>

#include "gis/layer_fixtures.h"
#include "support/scratch.h"

namespace tesseramill_test {
namespace {

namespace fs = std::filesystem;

// The model's area: a square of 10 km in UTM zone 33N.
constexpr double kX0 = 500000.0;
constexpr double kY0 = 5100000.0;
constexpr int kUtm33 = 32633;

std::string polygon(double x, double y, double side) { return "POLYGON ((" + square(x, y, side) + "))"; }

void write_boundary(const fs::path& dir) {
  write_layer(dir / "catchment.gpkg", "GPKG", "catchment", kUtm33, {{polygon(kX0, kY0, 10000.0), 400.0}});
}

struct FailureCase {
  std::string name;
  // Writes the layers into the folder and gives the arguments after
  // "import OUTDIR".
  std::function<std::vector<std::string>(const fs::path&)> setup;
  std::string message;  // {dir} stands for the scratch folder
};

std::string with_dir(std::string text, const fs::path& dir) {
  const std::string key = "{dir}";
  for (std::size_t at = text.find(key); at != std::string::npos; at = text.find(key)) text.replace(at, key.size(), dir.string());
  return text;
}

std::vector<std::string> boundary_and(const fs::path& dir, std::vector<std::string> more) {
  write_boundary(dir);
  std::vector<std::string> args{"--boundary", (dir / "catchment.gpkg").string(), "--max-spacing", "500"};
  args.insert(args.end(), more.begin(), more.end());
  return args;
}

std::vector<FailureCase> failure_cases() {
  return {
      {"MissingFile",
       [](const fs::path& dir) {
         return std::vector<std::string>{"--boundary", (dir / "none.gpkg").string(), "--max-spacing", "500"};
       },
       "Cannot open {dir}/none.gpkg: the file is missing or is not a vector source that GDAL reads."},
      {"MissingLayer",
       [](const fs::path& dir) {
         write_boundary(dir);
         return std::vector<std::string>{"--boundary", (dir / "catchment.gpkg:lakes").string(), "--max-spacing", "500"};
       },
       "File {dir}/catchment.gpkg holds no layer lakes; its layers are catchment."},
      {"LayerNotNamed",
       [](const fs::path& dir) {
         write_boundary(dir);
         write_layer(dir / "catchment.gpkg", "GPKG", "lakes", kUtm33, {{polygon(kX0 + 100, kY0 + 100, 500.0), 50.0}});
         return std::vector<std::string>{"--boundary", (dir / "catchment.gpkg").string(), "--max-spacing", "500"};
       },
       "File {dir}/catchment.gpkg holds 2 layers (catchment, lakes): name one as {dir}/catchment.gpkg:LAYER."},
      {"GeographicLayer",
       [](const fs::path& dir) {
         write_layer(dir / "geo.geojson", "GeoJSON", "geo", 4326,
                     {{"POLYGON ((15.1 46.1, 15.2 46.1, 15.2 46.2, 15.1 46.2, 15.1 46.1))", 400.0}});
         return std::vector<std::string>{"--boundary", (dir / "geo.geojson").string(), "--max-spacing", "500"};
       },
       "Layer geo is in a geographic coordinate system (WGS 84), in degrees, in which cell spacings cannot be "
       "measured. Run the import again with --to EPSG:n naming a projected system in metres, such as EPSG:32633 "
       "(the UTM zone over the layer); every layer is reprojected into it."},
      {"LayerWithoutSystem",
       [](const fs::path& dir) {
         write_layer(dir / "nocrs.shp", "ESRI Shapefile", "nocrs", 0, {{polygon(0, 0, 1000.0), 100.0}});
         return std::vector<std::string>{"--boundary", (dir / "nocrs.shp").string(), "--max-spacing", "500"};
       },
       "Layer nocrs of {dir}/nocrs.shp has no coordinate system. Give it one in a GIS, or name the system its "
       "coordinates are in with --assume EPSG:n."},
      {"GeoPackageLayerWithoutSystem",
       [](const fs::path& dir) {
         write_layer(dir / "wells.gpkg", "GPKG", "wells", 0, {{"POINT (505000 5105000)", 20.0}});
         return boundary_and(dir, {"--points", (dir / "wells.gpkg").string()});
       },
       "Layer wells of {dir}/wells.gpkg has no coordinate system. Give it one in a GIS, or name the system its "
       "coordinates are in with --assume EPSG:n."},
      {"SelfIntersectingZone",
       [](const fs::path& dir) {
         write_layer(dir / "zones.gpkg", "GPKG", "zones", kUtm33,
                     {{"POLYGON ((501000 5101000, 503000 5103000, 503000 5101000, 501000 5103000, 501000 5101000))",
                       200.0}});
         return boundary_and(dir, {"--zones", (dir / "zones.gpkg").string()});
       },
       "Feature 1 of layer zones is not a valid polygon: Self-intersection at or near point 502000 5102000. Repair "
       "it in a GIS, or run the import again with --make-valid."},
      {"SixHoles",
       [](const fs::path& dir) {
         std::vector<FixtureFeature> holes;
         for (int k = 0; k < 6; ++k) holes.push_back({polygon(kX0 + 500 + 1500 * k, kY0 + 4000, 1000.0 - 10 * k), 100.0});
         write_layer(dir / "lakes.gpkg", "GPKG", "lakes", kUtm33, holes);
         return boundary_and(dir, {"--holes", (dir / "lakes.gpkg").string()});
       },
       "The model would have 6 holes, but the mesher takes at most 5. Merge holes that lie close together, or drop "
       "the smallest: feature 6 of layer lakes (area 902500.0)."},
      {"FiftyOneLines",
       [](const fs::path& dir) {
         std::vector<FixtureFeature> lines;
         for (int k = 0; k < 51; ++k) {
           const std::string y = std::to_string(static_cast<int>(kY0) + 100 + 190 * k);
           lines.push_back({"LINESTRING (501000 " + y + ", " + std::to_string(509000 - 10 * k) + " " + y + ")", 50.0});
         }
         write_layer(dir / "drains.gpkg", "GPKG", "drains", kUtm33, lines);
         return boundary_and(dir, {"--lines", (dir / "drains.gpkg").string()});
       },
       "The model would have 51 lines, but the mesher takes at most 50. Merge lines that join end to end, or drop "
       "the shortest: feature 51 of layer drains (length 7500.0)."},
      {"NoSpacingField",
       [](const fs::path& dir) {
         write_layer(dir / "rivers.geojson", "GeoJSON", "rivers", kUtm33,
                     {{"LINESTRING (501000 5105000, 509000 5105000)", std::nullopt}}, false);
         return boundary_and(dir, {"--lines", (dir / "rivers.geojson").string()});
       },
       "Feature 0 of layer rivers has no value in field spacing, and no --line-spacing was given for the lines."},
      {"SpacingZero",
       [](const fs::path& dir) {
         write_layer(dir / "rivers.gpkg", "GPKG", "rivers", kUtm33,
                     {{"LINESTRING (501000 5105000, 509000 5105000)", 50.0},
                      {"LINESTRING (501000 5106000, 509000 5106000)", 0.0}});
         return boundary_and(dir, {"--lines", (dir / "rivers.gpkg").string()});
       },
       "Feature 2 of layer rivers has a spacing of 0 in field spacing: a spacing must be greater than zero."},
      {"ZoneCapAboveLargest",
       [](const fs::path& dir) {
         write_layer(dir / "zones.gpkg", "GPKG", "zones", kUtm33, {{polygon(kX0 + 1000, kY0 + 1000, 2000.0), 600.0}});
         return boundary_and(dir, {"--zones", (dir / "zones.gpkg").string()});
       },
       "The cap of 600.0 of zone feature 1 of layer zones is above --max-spacing 500.0: a zone's cap may not be "
       "larger than the largest spacing."},
      {"HoleOutsideBoundary",
       [](const fs::path& dir) {
         write_layer(dir / "lakes.gpkg", "GPKG", "lakes", kUtm33, {{polygon(kX0 + 9500, kY0 + 4000, 1000.0), 100.0}});
         return boundary_and(dir, {"--holes", (dir / "lakes.gpkg").string()});
       },
       "Hole feature 1 of layer lakes is not inside the boundary (feature 1 of layer catchment): a hole must lie "
       "wholly within the boundary."},
      {"WellOutsideBoundary",
       [](const fs::path& dir) {
         write_layer(dir / "wells.gpkg", "GPKG", "wells", kUtm33,
                     {{"POINT (505000 5105000)", 20.0}, {"POINT (511000 5105000)", 20.0}});
         return boundary_and(dir, {"--points", (dir / "wells.gpkg").string()});
       },
       "Well feature 2 of layer wells lies outside the boundary (feature 1 of layer catchment)."},
      {"WellsTooClose",
       [](const fs::path& dir) {
         write_layer(dir / "wells.gpkg", "GPKG", "wells", kUtm33,
                     {{"POINT (505000 5105000)", 20.0}, {"POINT (505030 5105000)", 40.0}});
         return boundary_and(dir, {"--points", (dir / "wells.gpkg").string()});
       },
       "Wells feature 1 of layer wells and feature 2 of layer wells stand 30.0 apart, closer than the spacing of "
       "40.0 asked at one of them. Drop or merge one of them, or ask a smaller spacing."},
      {"HoleTooCloseToTheBoundary",
       [](const fs::path& dir) {
         write_layer(dir / "lakes.gpkg", "GPKG", "lakes", kUtm33,
                     {{"POLYGON ((502000 5105000, 508000 5105000, 508000 5109995, 502000 5109995, 502000 5105000))",
                       50.0}});
         return boundary_and(dir, {"--holes", (dir / "lakes.gpkg").string()});
       },
       "Hole feature 1 of layer lakes comes within 5.0 of the boundary (feature 1 of layer catchment), less than "
       "half the smaller of their spacings (25.0): the mesher cannot place cells in so narrow a gap. Move them "
       "apart, or merge them."},
      {"WellTooCloseToTheBoundary",
       [](const fs::path& dir) {
         write_layer(dir / "wells.gpkg", "GPKG", "wells", kUtm33, {{"POINT (505000 5100015)", 20.0}});
         return boundary_and(dir, {"--points", (dir / "wells.gpkg").string()});
       },
       "Well feature 1 of layer wells stands 15.0 from the boundary (feature 1 of layer catchment), closer than its "
       "spacing of 20.0: the mesher cannot place the cells round it. Move it, or ask a smaller spacing there."},
      {"TableWithoutPointColumns",
       [](const fs::path& dir) {
         std::ofstream(dir / "wells.csv") << "name,east_m,north_m,spacing\nW1,505000,5105000,20\n";
         return boundary_and(dir, {"--points", (dir / "wells.csv").string(), "--assume", "EPSG:32633"});
       },
       "Layer wells of {dir}/wells.csv has no geometry. A table of points needs columns named x and y (or easting "
       "and northing)."},
      {"EmptyLayer",
       [](const fs::path& dir) {
         write_layer(dir / "wells.gpkg", "GPKG", "wells", kUtm33, {{"POINT (505000 5105000)", 20.0}});
         write_layer(dir / "wells.gpkg", "GPKG", "none", kUtm33, {});
         return boundary_and(dir, {"--points", (dir / "wells.gpkg:none").string()});
       },
       "Layer none of {dir}/wells.gpkg holds no features."},
      {"TwoBoundaryPolygons",
       [](const fs::path& dir) {
         write_layer(dir / "two.gpkg", "GPKG", "two", kUtm33,
                     {{polygon(kX0, kY0, 1000.0), 100.0}, {polygon(kX0 + 2000, kY0, 1000.0), 100.0}});
         return std::vector<std::string>{"--boundary", (dir / "two.gpkg").string(), "--max-spacing", "500"};
       },
       "Layer two gives 2 polygons for the boundary (feature 1 of layer two, feature 2 of layer two), but a model "
       "has one. Dissolve them into one polygon first."},
  };
}

class ImportFailure : public ::testing::TestWithParam<FailureCase> {};

TEST_P(ImportFailure, SaysWhatIsWrongAndWritesNothing) {
  const FailureCase& c = GetParam();
  ScratchDir dir;
  std::vector<std::string> args{"import", (dir.path() / "model").string()};
  const std::vector<std::string> rest = c.setup(dir.path());
  args.insert(args.end(), rest.begin(), rest.end());
  const std::vector<std::string> before = dir.listing();
  const GisRun run = run_gis(args);
  EXPECT_EQ(run.status, 1);
  const std::string expected = failure_text(with_dir(c.message, dir.path()));
  ASSERT_GE(run.screen.size(), expected.size()) << run.screen;
  EXPECT_EQ(run.screen.substr(run.screen.size() - expected.size()), expected) << run.screen;
  EXPECT_EQ(dir.listing(), before);
}

INSTANTIATE_TEST_SUITE_P(Layers, ImportFailure, ::testing::ValuesIn(failure_cases()),
                         [](const ::testing::TestParamInfo<FailureCase>& info) { return info.param.name; });

TEST(ImportFolder, AFolderWithFilesIsNotOverwrittenWithoutForce) {
  ScratchDir dir;
  write_boundary(dir.path());
  fs::create_directories(dir.path() / "model");
  dir.write("model/keep.txt", "");
  const std::vector<std::string> args{"import", (dir.path() / "model").string(), "--boundary",
                                      (dir.path() / "catchment.gpkg").string(), "--max-spacing", "500"};
  GisRun run = run_gis(args);
  EXPECT_EQ(run.status, 1);
  const std::string expected = failure_text("Folder " + (dir.path() / "model").string() +
                                            " exists and is not empty. Name another folder, or run the import again "
                                            "with --force to replace the model's files in it.");
  EXPECT_EQ(run.screen.substr(run.screen.size() - expected.size()), expected);
  EXPECT_FALSE(fs::exists(dir.path() / "model" / "model.in"));

  std::vector<std::string> forced = args;
  forced.push_back("--force");
  run = run_gis(forced);
  EXPECT_EQ(run.status, 0) << run.screen;
  EXPECT_TRUE(fs::exists(dir.path() / "model" / "model.in"));
  EXPECT_TRUE(fs::exists(dir.path() / "model" / "keep.txt"));
}

}  // namespace
}  // namespace tesseramill_test
