#include "common/command_line.h"

#include "common/limits.h"
#include "common/text_tools.h"

namespace tesseramill {

std::string command_line_argument(int argc, const char* const* argv) {
  std::string argument = argc > 1 ? fit_field(argv[1], kFileNameLength) : std::string();
  left_adjust(argument);
  return argument;
}

}  // namespace tesseramill
