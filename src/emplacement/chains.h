// Turning rings and lines into chains of populated points.
#pragma once

#include <cstdint>
#include <string>

#include "common/run_state.h"
#include "input/boundary_ring.h"

namespace tesseramill {

inline constexpr int kSubdivideDone = 0;
inline constexpr int kSubdivideZeroSegment = 1;
inline constexpr int kSubdivideNoMemory = 2;

// The most populated points that the chains of one pass may hold together.
// Every chain point is kept, indexed as a source of the separation field and
// mostly emplaced, so that a chain asking for more is refused as memory that
// cannot be obtained, the same on every machine, rather than filling the
// machine's memory first.  Realistic models stay far below it: a boundary of
// 10,000 km at a spacing of 1 m holds 1e7 points.
inline constexpr std::int64_t kChainPointBudget = std::int64_t{1} << 26;

// Cuts every segment into equal pieces no longer than the mean of its end
// separations; the vertices stay exactly where they are.  Each point records
// the step actually built on the segment that ends at it.  Returns one of
// the statuses above; a chain of more than `max_points` points is the
// memory status.
int subdivide_polyline(BoundaryRing& ring, std::int64_t max_points = kChainPointBudget);

// Samples an inner polygon's edge at 50 points a segment as a source of the
// separation field.  `polygon` is the 0-based number of the polygon; more
// than `max_points` samples end the run with the memory message.
void densify_inner_polygon(RunState& state, BoundaryRing& ring, std::int32_t polygon,
                           std::int64_t max_points = kChainPointBudget);

// Appends a ring chain to the mesh point list, all but its closing repeat.
void emplace_ring_points(RunState& state, BoundaryRing& ring, std::int32_t label);

// Appends one mesh point and gives back its number, or ends the run when the
// list is full.
std::int32_t append_mesh_point(RunState& state, double x, double y, std::int32_t label);

// Ends the run with the message for a mesh point list that is full.
[[noreturn]] void fail_mesh_capacity(RunState& state);

}  // namespace tesseramill
