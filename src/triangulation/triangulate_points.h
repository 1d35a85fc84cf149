#pragma once

#include <cstdint>

#include "common/run_state.h"

namespace tesseramill {

struct Circumcircle {
  int status = 0;  // 1 when the triangle has collapsed
  double radius = 0.0;
  double centre_x = 0.0;
  double centre_y = 0.0;
};

// The circle through the three corners; a radius of -1 marks a degenerate
// triangle, status 1 a collapsed one.
Circumcircle triangle_circumcentre(double x1, double y1, double x2, double y2, double x3, double y3);

// Whether triangle_circumcentre gives status 1 for these corners, worked
// out without the circle where it can be: see there.
bool triangle_collapsed(double x1, double y1, double x2, double y2, double x3, double y3);

// Triangulates the mesh points of the pass, classifies the triangles and
// counts the internal triangles at each point.
void triangulate_points(RunState& state);

// For the library's tests alone: when set, it is called on the run state
// between DTRIS2 and the measuring of the triangles, so that a test can put
// the corners of a triangle where rounding collapses it, which no
// triangulation of real points builds.  The program never sets it.
inline void (*after_dtris2_for_tests)(RunState& state) = nullptr;

// Lists the internal triangles of every mesh point, in ascending order.
void build_connected_triangles(RunState& state);

}  // namespace tesseramill
