// GIS layers written by the tests with GDAL, and the GIS program run on
// them, in process or as the built program.
#pragma once

#include <filesystem>
#include <optional>
#include <string>
#include <vector>

namespace tesseramill_test {

struct FixtureFeature {
  std::string wkt;
  std::optional<double> spacing;  // the "spacing" field; none leaves it null
};

// Writes a layer with the GDAL driver `driver` (GPKG, ESRI Shapefile,
// GeoJSON) at `path`, in the system EPSG:`epsg` (0: none), with a numeric
// field "spacing" unless `with_spacing_field` is false.  A GeoPackage
// already at `path` gains the layer.
void write_layer(const std::filesystem::path& path, const std::string& driver, const std::string& layer, int epsg,
                 const std::vector<FixtureFeature>& features, bool with_spacing_field = true);

// A square ring as WKT coordinates "x y, ..." from (x0, y0) with side s,
// anticlockwise and closed.
std::string square(double x0, double y0, double side);

struct GisRun {
  std::string screen;
  int status = -1;
};

// Runs tesseramill-gis in process on the arguments.
GisRun run_gis(const std::vector<std::string>& args);

// NCPL of a grid file's text.
int ncpl_of(const std::string& disv);

// The screen text that a failure with `message` ends with.
std::string failure_text(const std::string& message);

}  // namespace tesseramill_test
