// Turning rings and lines into chains of populated points.
#pragma once

#include <cstdint>
#include <string>

#include "input/boundary_ring.h"
#include "run/run_state.h"

namespace tesseramill {

inline constexpr int kSubdivideDone = 0;
inline constexpr int kSubdivideZeroSegment = 1;
inline constexpr int kSubdivideNoMemory = 2;

// Cuts every segment into equal pieces no longer than the mean of its end
// separations; the vertices stay exactly where they are.  Each point records
// the step actually built on the segment that ends at it.  Returns one of
// the statuses above.
int subdivide_polyline(BoundaryRing& ring);

// Samples an inner polygon's edge at 50 points a segment as a source of the
// separation field.  `polygon` is the 0-based number of the polygon.
void densify_inner_polygon(RunState& state, BoundaryRing& ring, std::int32_t polygon);

// Appends a ring chain to the mesh point list, all but its closing repeat.
void emplace_ring_points(RunState& state, BoundaryRing& ring, std::int32_t label);

// Appends one mesh point and gives back its number, or ends the run when the
// list is full.
std::int32_t append_mesh_point(RunState& state, double x, double y, std::int32_t label);

// Ends the run with the message for a mesh point list that is full.
[[noreturn]] void fail_mesh_capacity(RunState& state);

}  // namespace tesseramill
