// Layers of every kind of source through the whole chain: the import, the
// mesher, the report and the export, with the GeoPackage read back by GDAL
// and held against the grid file and the report's tables.
#include <gtest/gtest.h>

#include <cmath>
#include <fstream>
#include <map>
#include <set>
#include <sstream>

#include <gdal_priv.h>
#include <ogrsf_frmts.h>

#include "gis/layer_fixtures.h"
#include "support/csv_rows.h"
#include "support/scratch.h"

namespace tesseramill_test {
namespace {

namespace fs = std::filesystem;

constexpr int kUtm33 = 32633;

struct Dataset {
  GDALDataset* d = nullptr;
  explicit Dataset(const fs::path& p) {
    d = static_cast<GDALDataset*>(GDALOpenEx(p.c_str(), GDAL_OF_VECTOR | GDAL_OF_READONLY, nullptr, nullptr, nullptr));
  }
  ~Dataset() {
    if (d != nullptr) GDALClose(d);
  }
};

// The layers of the chain: a catchment whose multipolygon holds a lake and
// a sliver part (GeoJSON), a river and its tributary as one multi-line
// (Shapefile), wells as a CSV table, a zone (GeoPackage).
// The first field of the first row a statement gives, as text.
std::string sql_text(GDALDataset& d, const std::string& sql) {
  OGRLayer* result = d.ExecuteSQL(sql.c_str(), nullptr, nullptr);
  if (result == nullptr) return "(no result)";
  OGRFeatureUniquePtr row(result->GetNextFeature());
  std::string text = row ? row->GetFieldAsString(0) : "(no row)";
  d.ReleaseResultSet(result);
  return text;
}

// The first field of every row a statement gives, as integers.
std::set<GIntBig> sql_ids(GDALDataset& d, const std::string& sql) {
  std::set<GIntBig> ids;
  OGRLayer* result = d.ExecuteSQL(sql.c_str(), nullptr, nullptr);
  if (result == nullptr) return ids;
  for (auto& row : *result) ids.insert(row->GetFieldAsInteger64(0));
  d.ReleaseResultSet(result);
  return ids;
}

void write_layers(const fs::path& dir) {
  write_layer(dir / "catchment.geojson", "GeoJSON", "catchment", kUtm33,
              {{"MULTIPOLYGON (((500200 5100100, 503100 5099800, 505900 5100600, 506300 5102500, 505200 5104100, "
                "502600 5104400, 500700 5103600, 499900 5101900, 500200 5100100), (503600 5102800, 504300 5102700, "
                "504500 5103200, 503900 5103500, 503500 5103200, 503600 5102800)), ((507000 5100000, 507010 5100000, "
                "507010 5100001, 507000 5100000)))",
                150.0}});
  write_layer(dir / "rivers.shp", "ESRI Shapefile", "rivers", kUtm33,
              {{"MULTILINESTRING ((501000 5103000, 501800 5102500, 502700 5102200, 503500 5101900, 504400 5101500, "
                "505300 5101000, 505800 5100900), (502900 5100300, 503100 5100900, 503300 5101500, 503500 5101900))",
                60.0}});
  std::ofstream(dir / "wells.csv") << "name,x,y,spacing\nW1,501900,5101500,20\nW2,504800,5102300,20\nW3,502300,5103500,25\n";
  write_layer(dir / "zones.gpkg", "GPKG", "zones", kUtm33,
              {{"POLYGON ((501500 5101000, 502800 5100900, 503000 5101700, 501700 5101900, 501500 5101000))", 100.0}});
}

TEST(ImportMeshExport, LayersBecomeAModelWhoseGridComesBackAsAGeoPackage) {
  ScratchDir dir;
  write_layers(dir.path());
  const fs::path model = dir.path() / "model";
  const GisRun import = run_gis({"import", model.string(), "--boundary", (dir.path() / "catchment.geojson").string(),
                                 "--lines", (dir.path() / "rivers.shp").string(), "--points",
                                 (dir.path() / "wells.csv").string(), "--assume", "EPSG:32633", "--zones",
                                 (dir.path() / "zones.gpkg").string(), "--max-spacing", "400"});
  ASSERT_EQ(import.status, 0) << import.screen;
  EXPECT_NE(import.screen.find(" - part 2 of feature 0 of layer catchment left out: its area of 5.0 is far smaller "
                               "than a cell of spacing 150.0 there.\n"),
            std::string::npos)
      << import.screen;
  EXPECT_NE(import.screen.find(" - lines: 2 lines, 11 vertices read, "), std::string::npos) << import.screen;
  EXPECT_NE(import.screen.find(" - points: 3 points\n"), std::string::npos) << import.screen;
  EXPECT_NE(import.screen.find(" - coordinate system: WGS 84 / UTM zone 33N (EPSG:32633)\n"), std::string::npos);
  EXPECT_NE(import.screen.find("   cd " + model.string() + " && tesseramill model.in\n"), std::string::npos);
  const std::string control = read_file(model / "model.in");
  EXPECT_NE(control.find("START INNER_BOUNDARY\n  BLN_FILE = model_hole1.bln\nEND INNER_BOUNDARY\n"), std::string::npos);
  EXPECT_NE(control.find("  NUMLINES = 2\n"), std::string::npos);
  EXPECT_NE(control.find("  XORIGIN = 499000\n  YORIGIN = 5099000\n"), std::string::npos);
  EXPECT_EQ(read_file(model / "model_points.bln"), "3\n501900 5101500 20\n504800 5102300 20\n502300 5103500 25\n");

  const RunResult mesher = run_executable(model, TESSERAMILL_BINARY, {"model.in"});
  ASSERT_NE(mesher.screen.find(" - file model.oc written ok."), std::string::npos) << mesher.screen;
  const RunResult report = run_executable(model, TESSERAMILL_REPORT_BINARY, {"model.in"});
  ASSERT_NE(report.screen.find("model_quality.txt written ok"), std::string::npos) << report.screen;
  const RunResult exported = run_executable(model, TESSERAMILL_GIS_BINARY, {"export", "model.in"});
  ASSERT_EQ(exported.status, 0) << exported.screen;
  ASSERT_NE(exported.screen.find(" - file model.gpkg written ok.\n"), std::string::npos) << exported.screen;

  Dataset gpkg(model / "model.gpkg");
  ASSERT_NE(gpkg.d, nullptr);
  // Cells: one per cell of the grid file, areas adding up to the domain's.
  OGRLayer* cells = gpkg.d->GetLayerByName("cells");
  ASSERT_NE(cells, nullptr);
  EXPECT_EQ(cells->GetFeatureCount(), ncpl_of(read_file(model / "model.disv")));
  double area_sum = 0.0;
  double geometry_sum = 0.0;
  int on_rings[3] = {0, 0, 0};
  for (auto& f : *cells) {
    area_sum += f->GetFieldAsDouble("area");
    geometry_sum += f->GetGeometryRef()->toPolygon()->get_Area();
    on_rings[std::min(2, f->GetFieldAsInteger("ring"))] += 1;
  }
  OGRLayer* domain = gpkg.d->GetLayerByName("domain");
  ASSERT_EQ(domain->GetFeatureCount(), 1);
  OGRFeatureUniquePtr domain_feature(domain->GetNextFeature());
  const OGRPolygon* domain_polygon = domain_feature->GetGeometryRef()->toPolygon();
  EXPECT_EQ(domain_polygon->getNumInteriorRings(), 1);
  const double domain_area = domain_polygon->get_Area();
  EXPECT_NEAR(area_sum / domain_area, 1.0, 1e-9);
  EXPECT_NEAR(geometry_sum / domain_area, 1.0, 1e-9);
  EXPECT_GT(on_rings[1], 0);  // cells on the outer boundary
  EXPECT_GT(on_rings[2], 0);  // cells round the lake
  EXPECT_GT(on_rings[0], on_rings[1] + on_rings[2]);

  // Reaches and wells agree with the report's tables row by row.
  const auto reach_rows = csv_rows(read_file(model / "model_reaches.csv"), "line,bln_file,cell,length,start,end");
  OGRLayer* reaches = gpkg.d->GetLayerByName("reaches");
  ASSERT_EQ(reaches->GetFeatureCount(), static_cast<GIntBig>(reach_rows.size()));
  std::size_t row = 0;
  for (auto& f : *reaches) {
    const auto& r = reach_rows[row++];
    EXPECT_EQ(f->GetFieldAsInteger("line"), std::stoi(r[0]));
    EXPECT_EQ(f->GetFieldAsString("bln_file"), r[1]);
    EXPECT_EQ(f->GetFieldAsInteger("cell"), std::stoi(r[2]));
    EXPECT_NEAR(f->GetFieldAsDouble("length"), std::stod(r[3]), 1e-9);
    EXPECT_NEAR(f->GetFieldAsDouble("start"), std::stod(r[4]), 1e-9);
    EXPECT_NEAR(f->GetFieldAsDouble("end"), std::stod(r[5]), 1e-9);
    EXPECT_NEAR(f->GetGeometryRef()->toLineString()->get_Length(), std::stod(r[3]), 1e-6);
  }
  const auto well_rows = csv_rows(read_file(model / "model_points.csv"), "point,bln_file,x,y,cell");
  OGRLayer* wells = gpkg.d->GetLayerByName("wells");
  ASSERT_EQ(wells->GetFeatureCount(), 3);
  row = 0;
  for (auto& f : *wells) {
    const auto& r = well_rows[row++];
    EXPECT_EQ(f->GetFieldAsInteger("point"), std::stoi(r[0]));
    EXPECT_EQ(f->GetFieldAsInteger("cell"), std::stoi(r[4]));
    EXPECT_NE(f->GetFieldAsInteger("cell"), 0);
    EXPECT_NEAR(f->GetGeometryRef()->toPoint()->getX(), std::stod(r[2]), 1e-6);
    EXPECT_NEAR(f->GetGeometryRef()->toPoint()->getY(), std::stod(r[3]), 1e-6);
  }
  const auto zone_rows = csv_rows(read_file(model / "model_zones.csv"), "polygon,bln_file,cell,share");
  OGRLayer* zones = gpkg.d->GetLayerByName("zones");
  ASSERT_EQ(zones->GetFeatureCount(), static_cast<GIntBig>(zone_rows.size()));
  row = 0;
  for (auto& f : *zones) {
    const auto& r = zone_rows[row++];
    EXPECT_EQ(f->GetFieldAsInteger("cell"), std::stoi(r[2]));
    EXPECT_NEAR(f->GetFieldAsDouble("share"), std::stod(r[3]), 1e-12);
  }

  // The system is the input's, on every layer.
  OGRSpatialReference utm;
  utm.importFromEPSG(kUtm33);
  for (const char* name : {"cells", "reaches", "wells", "zones", "domain"}) {
    const OGRSpatialReference* srs = gpkg.d->GetLayerByName(name)->GetSpatialRef();
    ASSERT_NE(srs, nullptr) << name;
    EXPECT_TRUE(srs->IsSame(&utm)) << name;
  }
  // SQLite's own check of the file.
  OGRLayer* check = gpkg.d->ExecuteSQL("PRAGMA integrity_check", nullptr, nullptr);
  ASSERT_NE(check, nullptr);
  OGRFeatureUniquePtr verdict(check->GetNextFeature());
  EXPECT_STREQ(verdict->GetFieldAsString(0), "ok");
  gpkg.d->ReleaseResultSet(check);
  // Each layer's spatial index: SQLite's own check of the tree, one entry a
  // feature, and a search through it finds what a scan of every feature does.
  for (const char* name : {"cells", "reaches", "wells", "zones", "domain"}) {
    const std::string rtree = std::string("rtree_") + name + "_geom";
    EXPECT_EQ(sql_text(*gpkg.d, "SELECT rtreecheck('" + rtree + "')"), "ok") << name;
    OGRLayer* layer = gpkg.d->GetLayerByName(name);
    EXPECT_EQ(sql_text(*gpkg.d, "SELECT count(*) FROM " + rtree + "_rowid"), std::to_string(layer->GetFeatureCount()))
        << name;
  }
  // A search of the cells' index finds every cell whose box meets the
  // window, and no other but those within the index's float rounding (under
  // a metre at these coordinates) of it.
  OGRLayer* indexed = gpkg.d->GetLayerByName("cells");
  OGREnvelope extent;
  ASSERT_EQ(indexed->GetExtent(&extent), OGRERR_NONE);
  std::map<GIntBig, OGREnvelope> boxes;
  for (auto& f : *indexed) f->GetGeometryRef()->getEnvelope(&boxes[f->GetFID()]);
  auto meets = [](const OGREnvelope& e, double x0, double y0, double x1, double y1) {
    return e.MaxX >= x0 && e.MinX <= x1 && e.MaxY >= y0 && e.MinY <= y1;
  };
  for (int k = 0; k < 4; ++k) {
    const double side = 0.2 * (extent.MaxX - extent.MinX);
    const double x0 = extent.MinX + (extent.MaxX - extent.MinX) * (0.1 + 0.2 * k);
    const double y0 = extent.MinY + (extent.MaxY - extent.MinY) * (0.7 - 0.15 * k);
    std::ostringstream query;
    query.precision(17);
    query << "SELECT id FROM rtree_cells_geom WHERE maxx >= " << x0 << " AND minx <= " << x0 + side
          << " AND maxy >= " << y0 << " AND miny <= " << y0 + side;
    const std::set<GIntBig> searched = sql_ids(*gpkg.d, query.str());
    std::size_t scanned = 0;
    for (const auto& [fid, e] : boxes) {
      if (meets(e, x0, y0, x0 + side, y0 + side)) {
        ++scanned;
        EXPECT_TRUE(searched.count(fid)) << "cell " << fid << " missed by the index";
      }
    }
    for (GIntBig fid : searched) EXPECT_TRUE(meets(boxes.at(fid), x0 - 1, y0 - 1, x0 + side + 1, y0 + side + 1)) << fid;
    EXPECT_GT(scanned, 0u) << k;
  }
#ifdef TESSERAMILL_VALIDATE_GPKG
  // GDAL's validation of the GeoPackage's tables, as a separate program.
  const RunResult validation =
      run_executable(model, TESSERAMILL_SYSTEM_PYTHON, {TESSERAMILL_VALIDATE_GPKG, "model.gpkg"});
  EXPECT_EQ(validation.status, 0) << validation.screen;
  EXPECT_EQ(validation.screen, "");
#endif
}

}  // namespace
}  // namespace tesseramill_test
