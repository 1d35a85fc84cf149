#pragma once

#include <iosfwd>

namespace tesseramill {

// Runs the whole program on the given command line, writing the screen text
// to `screen`.  The result is always 0: a caller tells success from failure
// only by the screen text and the files.
int run_program(int argc, const char* const* argv, std::ostream& screen);

}  // namespace tesseramill
