#pragma once

#include <cstdint>

namespace tesseramill {

struct PolygonLocation {
  int location = -1;  // -1 outside, 0 on the boundary, 1 inside
  int winding = 0;    // signed number of turns round the point
};

// Locates (x, y) against the polygon of `n` contiguous x,y pairs by the sum of
// the angles its edges subtend.  The ring may be given closed (first vertex
// repeated at the end) or open.
PolygonLocation point_in_polygon(double x, double y, const double* vertices, std::int32_t n);

}  // namespace tesseramill
