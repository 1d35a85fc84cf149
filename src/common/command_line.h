// The command line as the programs read it: one file name, cut to the length
// of a file name field and left-adjusted.
#pragma once

#include <string>

namespace tesseramill {

// The first argument of the command line, cut to the length of a file
// name and left-adjusted; empty when there is none or it is blank.
std::string command_line_argument(int argc, const char* const* argv);

}  // namespace tesseramill
