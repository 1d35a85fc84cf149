#include "gis/boundary_cell_rings.h"

#include <fstream>

#include "common/failure.h"
#include "common/text_tools.h"

namespace tesseramill {

namespace {

// A row of the table holds the cell number in columns 3 to 10 and the
// ring's label from column 111 on.
constexpr std::size_t kCellColumn = 2;
constexpr std::size_t kCellWidth = 8;
constexpr std::size_t kLabelColumn = 110;

}  // namespace

std::vector<std::int32_t> boundary_cell_rings(RunState& state, const std::string& name, std::int32_t ncpl,
                                              const std::string& command) {
  std::ifstream in(name);
  if (!in) {
    fail(state, "Cannot open file " + name + ". It is the boundary cell table that the command \"" + command +
                    "\" writes: run that command in this folder first.");
  }
  std::vector<std::int32_t> rings(static_cast<std::size_t>(ncpl), 0);
  std::string line;
  std::int32_t number = 1;
  std::getline(in, line);  // the head line
  while (std::getline(in, line)) {
    ++number;
    if (!line.empty() && line.back() == '\r') line.pop_back();
    if (trimmed(line).empty()) continue;
    std::int32_t cell = 0;
    const std::string label = line.size() > kLabelColumn ? trimmed(line.substr(kLabelColumn)) : "";
    std::string token = line.size() > kCellColumn ? line.substr(kCellColumn, kCellWidth) : "";
    left_adjust(token);
    token = trimmed(token);
    std::int32_t ring = 0;
    if (label == "outer_boundary") {
      ring = 1;
    } else if (label.rfind("inner_boundary_", 0) == 0 && read_integer(label.substr(15), ring) == 0 && ring > 0) {
      ring += 1;
    } else {
      ring = 0;
    }
    if (read_integer(token, cell) != 0 || cell < 1 || cell > ncpl || ring == 0) {
      fail(state, "Error reading line " + int_to_text(number) + " of file " + name + ".");
    }
    rings[static_cast<std::size_t>(cell - 1)] = ring;
  }
  return rings;
}

}  // namespace tesseramill
