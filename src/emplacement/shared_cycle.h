// One emplacement cycle's seeds proposed on two threads, with the points
// that seeds proposing one after another in order would place.
#pragma once

#include <cstdint>

namespace tesseramill {

struct RunState;

// Lets seeds `first` to `last` propose one new point each, as
// propose_from_seed does for them in ascending order, and appends the
// points with label `cycle`; returns how many it added.  The fast proposal
// must be started.  The seeds are cut into slabs across the wider side of
// the box that holds them; two threads take the slabs in turn, and the
// seeds of a slab propose seeing the points placed before the cycle and the
// slab's own new ones.  Then, in the order
// of the seeds, a proposal is taken as it stands when every point inside
// the box it searched is the same as in the sequential run at that moment,
// and made again otherwise.  Counts the seeds and those made again in the
// fast proposal's tally.
std::int32_t propose_in_parts(RunState& state, std::int32_t first, std::int32_t last, std::int32_t cycle);

}  // namespace tesseramill
