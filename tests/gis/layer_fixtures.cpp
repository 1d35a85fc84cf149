#include "gis/layer_fixtures.h"

#include <gtest/gtest.h>

#include <sstream>

#include <gdal_priv.h>
#include <ogrsf_frmts.h>

#include "common/text_tools.h"
#include "gis/gis_program.h"

namespace tesseramill_test {

void write_layer(const std::filesystem::path& path, const std::string& driver_name, const std::string& layer_name,
                 int epsg, const std::vector<FixtureFeature>& features, bool with_spacing_field) {
  GDALAllRegister();
  GDALDriver* driver = GetGDALDriverManager()->GetDriverByName(driver_name.c_str());
  ASSERT_NE(driver, nullptr);
  GDALDataset* d = nullptr;
  if (driver_name == "GPKG" && std::filesystem::exists(path)) {
    d = static_cast<GDALDataset*>(GDALOpenEx(path.c_str(), GDAL_OF_VECTOR | GDAL_OF_UPDATE, nullptr, nullptr, nullptr));
  } else {
    d = driver->Create(path.c_str(), 0, 0, 0, GDT_Unknown, nullptr);
  }
  ASSERT_NE(d, nullptr);
  OGRSpatialReference crs;
  if (epsg != 0) {
    crs.importFromEPSG(epsg);
    crs.SetAxisMappingStrategy(OAMS_TRADITIONAL_GIS_ORDER);
  }
  OGRwkbGeometryType type = wkbPoint;
  if (!features.empty()) {
    OGRGeometry* first = nullptr;
    OGRGeometryFactory::createFromWkt(features[0].wkt.c_str(), nullptr, &first);
    type = first->getGeometryType();
    OGRGeometryFactory::destroyGeometry(first);
  }
  OGRLayer* layer = d->CreateLayer(layer_name.c_str(), epsg != 0 ? &crs : nullptr, type, nullptr);
  ASSERT_NE(layer, nullptr);
  if (with_spacing_field) {
    OGRFieldDefn field("spacing", OFTReal);
    layer->CreateField(&field);
  }
  for (const FixtureFeature& f : features) {
    OGRFeature feature(layer->GetLayerDefn());
    OGRGeometry* g = nullptr;
    ASSERT_EQ(OGRGeometryFactory::createFromWkt(f.wkt.c_str(), nullptr, &g), OGRERR_NONE) << f.wkt;
    feature.SetGeometryDirectly(g);
    if (with_spacing_field && f.spacing) feature.SetField("spacing", *f.spacing);
    ASSERT_EQ(layer->CreateFeature(&feature), OGRERR_NONE);
  }
  GDALClose(d);
}

std::string square(double x0, double y0, double side) {
  std::ostringstream s;
  s.precision(17);
  s << x0 << " " << y0 << ", " << x0 + side << " " << y0 << ", " << x0 + side << " " << y0 + side << ", " << x0 << " "
    << y0 + side << ", " << x0 << " " << y0;
  return s.str();
}

GisRun run_gis(const std::vector<std::string>& args) {
  std::vector<const char*> argv{"tesseramill-gis"};
  for (const std::string& a : args) argv.push_back(a.c_str());
  std::ostringstream screen;
  GisRun run;
  run.status = tesseramill::run_gis(static_cast<int>(argv.size()), argv.data(), screen);
  run.screen = screen.str();
  return run;
}

int ncpl_of(const std::string& disv) {
  const std::size_t at = disv.find("NCPL");
  return at == std::string::npos ? -1 : std::stoi(disv.substr(at + 4));
}

std::string failure_text(const std::string& message) {
  std::ostringstream out;
  tesseramill::print_message(out, " " + message);
  return out.str();
}

}  // namespace tesseramill_test
