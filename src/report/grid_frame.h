// Places read from the BLN files as the grid file holds them, and back to
// the world.
#pragma once

#include <cstdint>
#include <vector>

#include "common/run_state.h"

namespace tesseramill {

// The vertices of the grid are the world position less the origin,
// computed as (internal - origin) + offset.  The origin is the control
// file's, which the grid's vertices were computed with; the grid file's
// option line keeps only nine of its digits.
struct GridFrame {
  double xorigin = 0.0;
  double yorigin = 0.0;
  double x_offset = 0.0;
  double y_offset = 0.0;

  double x(double internal) const { return (internal - xorigin) + x_offset; }
  double y(double internal) const { return (internal - yorigin) + y_offset; }
};

// The frame of a run whose control and BLN files are read: the origin as
// the mesher resolves it, both given or both 0.0.
GridFrame grid_frame(const RunState& state);

std::vector<double> in_grid_frame(const GridFrame& frame, const std::vector<double>& xy, std::int32_t count);

// A ring held closed in memory, without its repeated last vertex.
std::vector<double> without_closing_vertex(std::vector<double> ring);

}  // namespace tesseramill
