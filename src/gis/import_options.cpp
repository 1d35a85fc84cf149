#include "gis/import_options.h"

#include <string_view>

#include "common/failure.h"
#include "common/text_tools.h"

namespace tesseramill {

namespace {

constexpr const char* kSetWords[kFeatureSetCount] = {"boundary", "holes", "lines", "points", "zones"};

// The options that name a source, and those that give a set's spacing.
constexpr const char* kSourceOptions[kFeatureSetCount] = {"--boundary", "--holes", "--lines", "--points", "--zones"};
constexpr const char* kSpacingOptions[kFeatureSetCount] = {"--boundary-spacing", "--hole-spacing", "--line-spacing",
                                                           "--point-spacing", "--zone-spacing"};

double positive_real(RunState& state, const std::string& option, const std::string& value, bool zero_allowed) {
  double number = 0.0;
  if (read_real(value, number) != 0 || !(zero_allowed ? number >= 0.0 : number > 0.0)) {
    fail(state, "Option " + option + " takes a number " + (zero_allowed ? "of zero or more" : "greater than zero") +
                    ", not \"" + value + "\".");
  }
  return number;
}

std::int32_t integer_at_least(RunState& state, const std::string& option, const std::string& value,
                              std::int32_t least, std::int32_t most) {
  std::int32_t number = 0;
  if (read_integer(value, number) != 0 || number < least || number > most) {
    fail(state, "Option " + option + " takes a whole number from " + int_to_text(least) + " to " +
                    int_to_text(most) + ", not \"" + value + "\".");
  }
  return number;
}

void check_epsg(RunState& state, const std::string& option, const std::string& value) {
  std::int32_t code = 0;
  if (value.size() < 6 || value.substr(0, 5) != "EPSG:" || read_integer(value.substr(5), code) != 0 || code <= 0) {
    fail(state, "Option " + option + " takes a coordinate system as EPSG:n, such as EPSG:32633, not \"" + value +
                    "\".");
  }
}

}  // namespace

const char* feature_set_word(FeatureSet set) { return kSetWords[static_cast<int>(set)]; }

ImportOptions parse_import_options(RunState& state, const std::vector<std::string>& args) {
  ImportOptions o;
  bool max_spacing_given = false;
  for (std::size_t k = 0; k < args.size(); ++k) {
    const std::string& arg = args[k];
    if (arg.substr(0, 2) != "--") {
      if (!o.out_dir.empty()) {
        fail(state, "The import writes one folder, but \"" + o.out_dir + "\" and \"" + arg +
                        "\" were both given. Name the folder once, before the options.");
      }
      o.out_dir = arg;
      continue;
    }
    // Switches that take no value.
    if (arg == "--keep-vertices") { o.keep_vertices = true; continue; }
    if (arg == "--make-valid") { o.make_valid = true; continue; }
    if (arg == "--force") { o.force = true; continue; }

    bool known = false;
    for (int s = 0; s < kFeatureSetCount; ++s) known = known || arg == kSourceOptions[s] || arg == kSpacingOptions[s];
    for (const char* option : {"--spacing-field", "--max-spacing", "--growth", "--max-cells", "--max-lloyd", "--nlay",
                               "--name", "--origin", "--to", "--assume", "--simplify", "--clean"}) {
      known = known || arg == option;
    }
    if (!known) fail(state, "Option " + arg + " is not known. Run tesseramill-gis without arguments to see the options.");
    if (k + 1 >= args.size()) fail(state, "Option " + arg + " needs a value after it.");
    const std::string value = args[++k];

    for (int s = 0; s < kFeatureSetCount; ++s) {
      if (arg == kSourceOptions[s]) o.sources[s] = value;
      if (arg == kSpacingOptions[s]) o.set_spacing[s] = positive_real(state, arg, value, false);
    }
    if (arg == "--spacing-field") o.spacing_field = value;
    if (arg == "--max-spacing") {
      o.max_spacing = positive_real(state, arg, value, false);
      max_spacing_given = true;
    }
    if (arg == "--growth") {
      o.growth = positive_real(state, arg, value, false);
      if (!(o.growth > 1.0)) fail(state, "Option --growth takes a number greater than one, not \"" + value + "\".");
    }
    // MAX_CELLS must be above 1000, NLAY from 1 to 100: the mesher's own bounds.
    if (arg == "--max-cells") o.max_cells = integer_at_least(state, arg, value, 1001, 2147483647);
    if (arg == "--max-lloyd") o.max_lloyd = integer_at_least(state, arg, value, 0, 2147483647);
    if (arg == "--nlay") o.nlay = integer_at_least(state, arg, value, 1, 100);
    if (arg == "--name") {
      if (value.empty() || value.find_first_of("/\\ ") != std::string::npos) {
        fail(state, "Option --name takes a plain name without a path or blanks, not \"" + value + "\".");
      }
      o.name = value;
    }
    if (arg == "--origin") {
      const std::size_t comma = value.find(',');
      double x = 0.0;
      double y = 0.0;
      if (comma == std::string::npos || read_real(value.substr(0, comma), x) != 0 ||
          read_real(value.substr(comma + 1), y) != 0) {
        fail(state, "Option --origin takes the corner as X,Y, such as 500000,4100000, not \"" + value + "\".");
      }
      o.xorigin = x;
      o.yorigin = y;
    }
    if (arg == "--to") {
      check_epsg(state, arg, value);
      o.to_crs = value;
    }
    if (arg == "--assume") {
      check_epsg(state, arg, value);
      o.assume_crs = value;
    }
    if (arg == "--simplify") o.simplify = positive_real(state, arg, value, true);
    if (arg == "--clean") o.clean = positive_real(state, arg, value, true);
  }
  if (o.out_dir.empty()) fail(state, "The import needs the folder to write the model into, before the options.");
  if (o.sources[0].empty()) fail(state, "The import needs the outer boundary of the model: --boundary SRC.");
  if (!max_spacing_given) fail(state, "The import needs the largest cell spacing of the model: --max-spacing S.");
  return o;
}

}  // namespace tesseramill
