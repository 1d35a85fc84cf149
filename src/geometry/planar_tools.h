// Planar routines on the run's shifted geometry.
#pragma once

#include <cstdint>
#include <vector>

#include "common/run_state.h"
#include "input/boundary_ring.h"

namespace tesseramill {

// True when (x, y) lies strictly inside the outer boundary and strictly
// outside every inner boundary.  Decided through the domain index once it is
// built; point_in_domain_reference walks the angle sum of every ring.
bool point_in_domain(const RunState& state, double x, double y);
bool point_in_domain_reference(const RunState& state, double x, double y);

// point_in_domain for every point of a rectangle at once: kInside when all
// are in the domain, kOutside when none is, kMixed when the index cannot tell.
int rectangle_in_domain(const RunState& state, double xlo, double xhi, double ylo, double yhi);

// Whether (x, y) lies inside or on inner polygon `polygon` (0-based), so
// that its cap applies.
bool in_inner_polygon(const RunState& state, std::size_t polygon, double x, double y);

// The outer boundary and then each hole: their x,y pairs and how many.
struct BoundaryRings {
  std::vector<const double*> rings;
  std::vector<std::int32_t> counts;
};
BoundaryRings boundary_rings(const RunState& state);

// Indexes the edges of the outer and inner boundaries and inner polygons.
// The rings must not change afterwards.
void build_domain_index(RunState& state);

// Distance from (x, y) to the segment from (x1, y1) to (x2, y2).
double distance_to_segment(double x, double y, double x1, double y1, double x2, double y2);

// True when a populated point of inner line `line_number` (1-based) may become
// a mesh point: inside the domain, at least `clearance` from every boundary
// segment and from every accepted point of an earlier line.
bool line_point_clear(const RunState& state, double x, double y, double clearance,
                      std::int32_t line_number);

}  // namespace tesseramill
