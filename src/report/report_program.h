// The report program: after a finished run of the mesher, which cells each
// inner line, point and polygon touches, a picture of the grid, and the
// grid's quality and readiness for MODFLOW 6.
#pragma once

#include <iosfwd>

namespace tesseramill {

// Runs the report on the given command line, writing the screen text to
// `screen`.  As with the mesher, the result is always 0 and a failure shows
// only in the screen text.
int run_report(int argc, const char* const* argv, std::ostream& screen);

}  // namespace tesseramill
