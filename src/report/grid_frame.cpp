#include "report/grid_frame.h"

namespace tesseramill {

GridFrame grid_frame(const RunState& state) {
  GridFrame frame;
  if (real_is_set(state.control.xorigin)) {
    frame.xorigin = state.control.xorigin;
    frame.yorigin = state.control.yorigin;
  }
  frame.x_offset = state.x_offset;
  frame.y_offset = state.y_offset;
  return frame;
}

std::vector<double> in_grid_frame(const GridFrame& frame, const std::vector<double>& xy, std::int32_t count) {
  std::vector<double> out(2 * static_cast<std::size_t>(count));
  for (std::size_t k = 0; k < out.size(); k += 2) {
    out[k] = frame.x(xy[k]);
    out[k + 1] = frame.y(xy[k + 1]);
  }
  return out;
}

std::vector<double> without_closing_vertex(std::vector<double> ring) {
  const std::size_t n = ring.size();
  if (n >= 4 && ring[0] == ring[n - 2] && ring[1] == ring[n - 1]) ring.resize(n - 2);
  return ring;
}

}  // namespace tesseramill
