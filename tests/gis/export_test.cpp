// The export in a run folder: without a coordinate system file, and when
// the run has not been made or its tables are missing.
#include <gtest/gtest.h>

#include <gdal_priv.h>
#include <ogrsf_frmts.h>

#include "gis/layer_fixtures.h"
#include "support/scratch.h"

namespace tesseramill_test {
namespace {

namespace fs = std::filesystem;

// A finished run of a 2 km square imported from a GeoPackage.
fs::path finished_run(const ScratchDir& dir) {
  write_layer(dir.path() / "square.gpkg", "GPKG", "square", 32633,
              {{"POLYGON ((" + square(500000, 5100000, 2000) + "))", 150.0}});
  const fs::path model = dir.path() / "model";
  const GisRun run = run_gis({"import", model.string(), "--boundary", (dir.path() / "square.gpkg").string(),
                              "--max-spacing", "250"});
  EXPECT_EQ(run.status, 0) << run.screen;
  const RunResult mesher = run_executable(model, TESSERAMILL_BINARY, {"model.in"});
  EXPECT_NE(mesher.screen.find(" - file model.oc written ok."), std::string::npos) << mesher.screen;
  return model;
}

TEST(Export, WithoutAPrjFileTheGeoPackageCarriesNoSystem) {
  ScratchDir dir;
  const fs::path model = finished_run(dir);
  fs::remove(model / "model.prj");
  const RunResult exported = run_executable(model, TESSERAMILL_GIS_BINARY, {"export", "model.in"});
  EXPECT_EQ(exported.status, 0);
  EXPECT_NE(exported.screen.find(" - no file model.prj here: the GeoPackage carries no coordinate system.\n"),
            std::string::npos)
      << exported.screen;
  GDALAllRegister();
  GDALDataset* d = static_cast<GDALDataset*>(
      GDALOpenEx((model / "model.gpkg").c_str(), GDAL_OF_VECTOR | GDAL_OF_READONLY, nullptr, nullptr, nullptr));
  ASSERT_NE(d, nullptr);
  const OGRSpatialReference* srs = d->GetLayerByName("cells")->GetSpatialRef();
  EXPECT_TRUE(srs == nullptr || std::string(srs->GetName()).rfind("Undefined ", 0) == 0);
  EXPECT_EQ(d->GetLayerByName("wells")->GetFeatureCount(), 0);
  EXPECT_EQ(d->GetLayerByName("domain")->GetFeatureCount(), 1);
  GDALClose(d);
}

TEST(Export, WithoutTheBoundaryCellTableItSaysWhatToRun) {
  ScratchDir dir;
  const fs::path model = finished_run(dir);
  fs::remove(model / "model_boundary_cells.dat");
  const RunResult exported = run_executable(model, TESSERAMILL_GIS_BINARY, {"export", "model.in"}, {.status = 1});
  EXPECT_EQ(exported.status, 1);
  const std::string expected =
      failure_text("Cannot open file model_boundary_cells.dat. It is the boundary cell table that the command "
                   "\"tesseramill model.in\" writes: run that command in this folder first.");
  EXPECT_EQ(screen_tail(exported.screen, expected.size()), expected);
  EXPECT_FALSE(fs::exists(model / "model.gpkg"));
}

TEST(Export, BeforeTheRunItSaysWhatToRun) {
  ScratchDir dir;
  write_layer(dir.path() / "square.gpkg", "GPKG", "square", 32633,
              {{"POLYGON ((" + square(500000, 5100000, 2000) + "))", 150.0}});
  const fs::path model = dir.path() / "model";
  ASSERT_EQ(run_gis({"import", model.string(), "--boundary", (dir.path() / "square.gpkg").string(), "--max-spacing",
                     "250"})
                .status,
            0);
  const RunResult exported = run_executable(model, TESSERAMILL_GIS_BINARY, {"export", "model.in"}, {.status = 1});
  EXPECT_EQ(exported.status, 1);
  const std::string expected =
      failure_text("Cannot open file model.disv. It is the MODFLOW 6 grid that the command \"tesseramill model.in\" "
                   "writes: run that command in this folder first.");
  EXPECT_EQ(screen_tail(exported.screen, expected.size()), expected);
}

}  // namespace
}  // namespace tesseramill_test
