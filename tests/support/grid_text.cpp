#include "support/grid_text.h"

#include <sstream>

#include "common/failure.h"
#include "output/number_format.h"
#include "support/scratch.h"

namespace tesseramill_test {

using tesseramill::append_integer;
using tesseramill::append_scientific;

std::string grid_file(int nvert, const std::vector<std::pair<int, std::pair<double, double>>>& places,
                      const std::vector<std::vector<int>>& cells) {
  std::vector<std::pair<double, double>> at(static_cast<std::size_t>(nvert) + 1);
  for (int v = 1; v <= nvert; ++v) at[static_cast<std::size_t>(v)] = {v, -1.0};
  for (const auto& [v, place] : places) at[static_cast<std::size_t>(v)] = place;
  std::string text = "BEGIN DIMENSIONS\n  NLAY 1\n  NCPL " + std::to_string(cells.size()) + "\n  NVERT " +
                     std::to_string(nvert) + "\nEND DIMENSIONS\n \nBEGIN VERTICES\n";
  for (int v = 1; v <= nvert; ++v) {
    append_integer(text, v, 10);
    text += "  ";
    append_scientific(text, at[static_cast<std::size_t>(v)].first, 16, 9);
    text += "  ";
    append_scientific(text, at[static_cast<std::size_t>(v)].second, 16, 9);
    text += '\n';
  }
  text += "END VERTICES\n \nBEGIN CELL2D\n";
  for (std::size_t c = 0; c < cells.size(); ++c) {
    append_integer(text, static_cast<std::int64_t>(c + 1), 10);
    text += "  ";
    append_scientific(text, 0.5, 0, 15);
    text += "  ";
    append_scientific(text, 0.5, 0, 15);
    append_integer(text, static_cast<std::int64_t>(cells[c].size()), 5);
    for (int v : cells[c]) append_integer(text, v, 7);
    text += '\n';
  }
  return text + "END CELL2D\n";
}

tesseramill::DisvGrid read_grid(const std::string& text, std::string& failure) {
  ScratchDir dir;
  dir.write("g.disv", text);
  std::ostringstream screen;
  tesseramill::RunState state;
  state.screen = &screen;
  tesseramill::DisvGrid grid;
  try {
    tesseramill::read_disv_grid(state, (dir.path() / "g.disv").string(), "tesseramill t.in", grid);
  } catch (const tesseramill::RunFailure&) {
    failure = state.message_buffer;
  }
  return grid;
}

}  // namespace tesseramill_test
