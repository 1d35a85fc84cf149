// Reading one GIS layer for the import: the source opened by GDAL, its
// coordinate system checked, and each feature's geometry in the model's
// system with Z and M dropped.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include <ogr_geometry.h>
#include <ogr_spatialref.h>

#include "common/run_state.h"
#include "gis/import_options.h"

namespace tesseramill {

struct LayerFeature {
  std::int64_t fid = 0;
  std::optional<double> spacing;  // the spacing field's value, when the feature has one
  OGRGeometryUniquePtr geometry;  // 2D, in the model's coordinate system
};

struct SourceLayer {
  std::string name;  // the layer's name, as messages give it
  std::vector<LayerFeature> features;
};

// Reads the layer named by `source` (a path, or path:layer for a source of
// several layers).  With `model_crs` empty it becomes the layer's own
// system, which must be projected; otherwise the features are reprojected
// into it when their system differs.  Any fault ends the run with a message
// naming the layer, and the feature where there is one.
SourceLayer read_source_layer(RunState& state, const std::string& source, const ImportOptions& options,
                              OGRSpatialReference& model_crs);

// The system named by EPSG:n, with x as easting whatever the authority's
// axis order.
OGRSpatialReference epsg_system(RunState& state, const std::string& code);

}  // namespace tesseramill
