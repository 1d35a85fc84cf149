#include "gis/layer_source.h"

#include <cmath>
#include <filesystem>
#include <memory>

#include <cpl_error.h>
#include <gdal_priv.h>
#include <ogrsf_frmts.h>

#include "common/failure.h"
#include "common/text_tools.h"
#include "output/number_format.h"

namespace tesseramill {

namespace {

struct DatasetCloser {
  void operator()(GDALDataset* d) const { GDALClose(d); }
};
using Dataset = std::unique_ptr<GDALDataset, DatasetCloser>;

bool ends_with_csv(const std::string& path) {
  std::string ext = std::filesystem::path(path).extension().string();
  to_lower(ext);
  return ext == ".csv";
}

// Opens the file with GDAL; a CSV's point columns are found by the names a
// table of wells usually gives them, and a column of numbers is read as one.
Dataset open_vector(const std::string& path) {
  const char* csv_options[] = {"X_POSSIBLE_NAMES=x,easting,east,xcoord,x_coord",
                               "Y_POSSIBLE_NAMES=y,northing,north,ycoord,y_coord", "KEEP_GEOM_COLUMNS=NO",
                               "AUTODETECT_TYPE=YES", nullptr};
  CPLPushErrorHandler(CPLQuietErrorHandler);
  GDALDataset* d = static_cast<GDALDataset*>(GDALOpenEx(path.c_str(), GDAL_OF_VECTOR | GDAL_OF_READONLY, nullptr,
                                                        ends_with_csv(path) ? csv_options : nullptr, nullptr));
  CPLPopErrorHandler();
  return Dataset(d);
}

// Splits path:layer at the last colon, unless the whole text names a file.
void split_source(const std::string& source, std::string& path, std::string& layer) {
  path = source;
  layer.clear();
  std::error_code error;
  if (std::filesystem::exists(source, error)) return;
  const std::size_t colon = source.rfind(':');
  if (colon == std::string::npos || colon == 0) return;
  path = source.substr(0, colon);
  layer = source.substr(colon + 1);
}

std::string layer_names(GDALDataset& d) {
  std::string names;
  for (int k = 0; k < d.GetLayerCount(); ++k) {
    if (k > 0) names += ", ";
    names += d.GetLayer(k)->GetName();
  }
  return names;
}

std::string system_name(const OGRSpatialReference& crs) {
  const char* name = crs.GetName();
  return name != nullptr ? name : "unnamed";
}

// The UTM zone over the middle of a layer given in degrees, as a hint.
std::string utm_hint(OGRLayer& layer) {
  OGREnvelope box;
  if (layer.GetExtent(&box, TRUE) != OGRERR_NONE) return "EPSG:32633";
  const double lon = 0.5 * (box.MinX + box.MaxX);
  const double lat = 0.5 * (box.MinY + box.MaxY);
  int zone = static_cast<int>(std::floor((lon + 180.0) / 6.0)) + 1;
  zone = zone < 1 ? 1 : (zone > 60 ? 60 : zone);
  return "EPSG:" + int_to_text((lat >= 0.0 ? 32600 : 32700) + zone);
}

// A GeoPackage marks a layer without a system with one of its two
// undefined systems (srs_id 0, "Undefined geographic SRS", or -1,
// "Undefined Cartesian SRS"), which GDAL hands on as systems of those names.
bool has_system(const OGRSpatialReference* crs) {
  if (crs == nullptr) return false;
  const char* name = crs->GetName();
  return name == nullptr || std::string(name).rfind("Undefined ", 0) != 0;
}

std::optional<double> spacing_of(RunState& state, OGRFeature& feature, int field, const std::string& field_name,
                                 const std::string& layer) {
  if (field < 0 || !feature.IsFieldSetAndNotNull(field)) return std::nullopt;
  const double value = feature.GetFieldAsDouble(field);
  if (!(value > 0.0)) {
    fail(state, "Feature " + format_integer(feature.GetFID()) + " of layer " + layer + " has a spacing of " +
                    feature.GetFieldAsString(field) + " in field " + field_name +
                    ": a spacing must be greater than zero.");
  }
  return value;
}

}  // namespace

OGRSpatialReference epsg_system(RunState& state, const std::string& code) {
  OGRSpatialReference crs;
  std::int32_t number = 0;
  read_integer(code.substr(5), number);
  CPLPushErrorHandler(CPLQuietErrorHandler);
  const OGRErr err = crs.importFromEPSG(number);
  CPLPopErrorHandler();
  if (err != OGRERR_NONE) fail(state, "The coordinate system " + code + " is not known to PROJ.");
  crs.SetAxisMappingStrategy(OAMS_TRADITIONAL_GIS_ORDER);
  return crs;
}

SourceLayer read_source_layer(RunState& state, const std::string& source, const ImportOptions& options,
                              OGRSpatialReference& model_crs) {
  std::string path;
  std::string wanted;
  split_source(source, path, wanted);
  Dataset dataset = open_vector(path);
  if (!dataset) {
    fail(state, "Cannot open " + path + ": the file is missing or is not a vector source that GDAL reads.");
  }
  OGRLayer* layer = nullptr;
  if (wanted.empty()) {
    if (dataset->GetLayerCount() != 1) {
      fail(state, "File " + path + " holds " + int_to_text(dataset->GetLayerCount()) + " layers (" +
                      layer_names(*dataset) + "): name one as " + path + ":LAYER.");
    }
    layer = dataset->GetLayer(0);
  } else {
    layer = dataset->GetLayerByName(wanted.c_str());
    if (layer == nullptr) {
      fail(state, "File " + path + " holds no layer " + wanted + "; its layers are " + layer_names(*dataset) + ".");
    }
  }
  SourceLayer out;
  out.name = layer->GetName();
  if (layer->GetLayerDefn()->GetGeomFieldCount() == 0) {
    fail(state, "Layer " + out.name + " of " + path +
                    " has no geometry. A table of points needs columns named x and y (or easting and northing).");
  }

  // The layer's coordinate system, or the one --assume gives layers without.
  OGRSpatialReference own;
  if (has_system(layer->GetSpatialRef())) {
    own = *layer->GetSpatialRef();
    own.SetAxisMappingStrategy(OAMS_TRADITIONAL_GIS_ORDER);
  } else if (!options.assume_crs.empty()) {
    own = epsg_system(state, options.assume_crs);
  } else {
    fail(state, "Layer " + out.name + " of " + path +
                    " has no coordinate system. Give it one in a GIS, or name the system its coordinates are in with "
                    "--assume EPSG:n.");
  }
  if (model_crs.IsEmpty()) {
    if (own.IsGeographic()) {
      fail(state, "Layer " + out.name + " is in a geographic coordinate system (" + system_name(own) +
                      "), in degrees, in which cell spacings cannot be measured. Run the import again with --to "
                      "EPSG:n naming a projected system in metres, such as " +
                      utm_hint(*layer) + " (the UTM zone over the layer); every layer is reprojected into it.");
    }
    model_crs = own;
  }
  std::unique_ptr<OGRCoordinateTransformation> transform;
  if (!own.IsSame(&model_crs)) {
    transform.reset(OGRCreateCoordinateTransformation(&own, &model_crs));
    if (!transform) {
      fail(state, "Layer " + out.name + " cannot be reprojected from " + system_name(own) + " into " +
                      system_name(model_crs) + ".");
    }
  }

  const int field = layer->GetLayerDefn()->GetFieldIndex(options.spacing_field.c_str());
  if (field >= 0) {
    const OGRFieldType type = layer->GetLayerDefn()->GetFieldDefn(field)->GetType();
    if (type != OFTReal && type != OFTInteger && type != OFTInteger64) {
      fail(state, "Field " + options.spacing_field + " of layer " + out.name +
                      " is not numeric, so it cannot give spacings. Name a numeric field with --spacing-field.");
    }
  }
  layer->ResetReading();
  for (OGRFeatureUniquePtr feature(layer->GetNextFeature()); feature; feature.reset(layer->GetNextFeature())) {
    LayerFeature f;
    f.fid = feature->GetFID();
    f.spacing = spacing_of(state, *feature, field, options.spacing_field, out.name);
    OGRGeometry* g = feature->GetGeometryRef();
    if (g == nullptr || g->IsEmpty()) {
      fail(state, "Feature " + format_integer(f.fid) + " of layer " + out.name + " has no geometry.");
    }
    // Curves become line segments; Z and M go.
    f.geometry.reset(g->hasCurveGeometry() ? g->getLinearGeometry() : g->clone());
    f.geometry->flattenTo2D();
    f.geometry->setMeasured(FALSE);
    if (transform && f.geometry->transform(transform.get()) != OGRERR_NONE) {
      fail(state, "Feature " + format_integer(f.fid) + " of layer " + out.name + " cannot be reprojected into " +
                      system_name(model_crs) + ".");
    }
    out.features.push_back(std::move(f));
  }
  if (out.features.empty()) fail(state, "Layer " + out.name + " of " + path + " holds no features.");
  return out;
}

}  // namespace tesseramill
