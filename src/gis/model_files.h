// The files of an imported model: the control file, one BLN file per set
// of lines and points and per ring, and the coordinate system as WKT.
#pragma once

#include <cstdint>
#include <filesystem>
#include <string>
#include <vector>

#include "gis/import_options.h"
#include "gis/model_pieces.h"

namespace tesseramill {

// A number as the shortest text that reads back as the same double.
std::string exact_text(double value);

// MAX_CELLS for a model: the cells its spacings ask for, estimated from
// above, with a margin.
std::int32_t estimated_max_cells(const ImportModel& model, const ImportOptions& options);

// The corner that XORIGIN and YORIGIN name: the boundary's lower left
// corner rounded down to a multiple of the power of ten below the
// boundary's larger side.
void round_origin(const ImportModel& model, double& x, double& y);

struct ModelFile {
  std::string name;
  std::string text;
};

// Every file of the model folder, the control file NAME.in first.
std::vector<ModelFile> model_files(const ImportModel& model, const ImportOptions& options, std::int32_t max_cells,
                                   double xorigin, double yorigin, const std::string& crs_wkt);

}  // namespace tesseramill
