// The command line of `tesseramill-gis import`: where the layers come from,
// the spacings and the choices of the import, each with its default.
#pragma once

#include <optional>
#include <string>
#include <vector>

#include "common/run_state.h"

namespace tesseramill {

// The five kinds of feature a model is made of, in the order the import
// reads them.
enum class FeatureSet { kBoundary, kHoles, kLines, kPoints, kZones };
inline constexpr int kFeatureSetCount = 5;

// The word the screen and the messages use for a set ("boundary", "holes", ...).
const char* feature_set_word(FeatureSet set);

struct ImportOptions {
  std::string out_dir;
  // The sources as typed (path or path:layer); empty when not given.
  std::string sources[kFeatureSetCount];
  // Spacing of a set's features that carry no value in the spacing field.
  std::optional<double> set_spacing[kFeatureSetCount];
  std::string spacing_field = "spacing";
  double max_spacing = 0.0;
  double growth = 1.2;
  std::optional<std::int32_t> max_cells;
  std::optional<std::int32_t> max_lloyd;
  std::int32_t nlay = 1;
  std::string name = "model";
  std::optional<double> xorigin;
  std::optional<double> yorigin;
  // "EPSG:n" of the system every layer is reprojected into; empty: the boundary's.
  std::string to_crs;
  // "EPSG:n" of the system of layers that carry none; empty: such layers are refused.
  std::string assume_crs;
  bool keep_vertices = false;
  std::optional<double> simplify;  // tolerance of thinning; default a tenth of the local spacing
  std::optional<double> clean;     // radius of cleaning; default half the local spacing; 0 off
  bool make_valid = false;
  bool force = false;
};

// Reads the arguments after the word "import".  A wrong or missing argument
// ends the run with a message naming it.
ImportOptions parse_import_options(RunState& state, const std::vector<std::string>& args);

}  // namespace tesseramill
