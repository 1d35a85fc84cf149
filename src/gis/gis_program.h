// The GIS program: `import` builds a model folder from GIS layers, `export`
// turns a finished run into a GeoPackage.
#pragma once

#include <iosfwd>

namespace tesseramill {

// Runs the program on the command line, writing the screen text to
// `screen`.  The result is 0 on success and 1 when a failure stopped it, so
// that scripts of GIS work can tell.
int run_gis(int argc, const char* const* argv, std::ostream& screen);

}  // namespace tesseramill
