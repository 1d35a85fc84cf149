// Fills the model domain with free mesh points by cycles of candidate grids.
#include <algorithm>
#include <cmath>
#include <ostream>

#include "common/failure.h"
#include "common/parallel.h"
#include "common/text_tools.h"
#include "emplacement/fast_emplacement.h"
#include "emplacement/interior_emplacement.h"
#include "emplacement/minimum_separation.h"
#include "emplacement/shared_cycle.h"
#include "output/number_format.h"
#include "run/phases.h"

namespace tesseramill {

namespace {

// Fewer mesh points than this can never fill a seed's near list.
constexpr std::int32_t kMinimumNearPoints = 5;

}  // namespace

void populate_interior(RunState& state) {
  std::ostream& screen = *state.screen;
  screen << " - populating internal model domain with mesh points...\n";
  if (state.mesh.mesh_point_count < kMinimumNearPoints) {
    // No seed could ever gather five neighbours, so its search box would
    // grow without end.
    fail(state, "Only " + int_to_text(state.mesh.mesh_point_count) +
                    " mesh points were placed on the boundaries, lines and points of the model; "
                    "at least 5 are needed to populate the model domain. Reduce the centroid "
                    "separations provided in the BLN files.");
  }
  if (!state.reference_paths) start_fast_emplacement(state);
  std::int32_t seed_after = 0;
  for (std::int32_t cycle = 1;; ++cycle) {
    screen << " - points emplacement cycle " << cycle << "\n";
    const std::int32_t n = state.mesh.mesh_point_count;
    seed_after = seed_range_start(state, cycle, seed_after);
    if (n <= seed_after) break;
    std::int32_t added = 0;
    const std::size_t seeds = static_cast<std::size_t>(n - seed_after);
    if (state.fast_emplacement.ready && !state.reference_paths && seeds >= smallest_shared_cycle.load(std::memory_order_relaxed)) {
      added = propose_in_parts(state, seed_after + 1, n, cycle);
    } else {
      for (std::int32_t seed = seed_after + 1; seed <= n; ++seed) {
        if (propose_from_seed(state, seed, cycle)) ++added;
      }
    }
    if (added == 0) break;
  }
  // The index of the mesh points holds a copy of every point: it goes
  // before the passes that need the memory.
  finish_fast_emplacement(state);
  screen << " - " << state.mesh.mesh_point_count << " points emplaced\n";
  screen << " - minimum points separation = " << format_fixed(state.reference_paths ? minimum_separation_reference(state.mesh)
                                                               : minimum_separation(state.mesh),
                      12, 3)
         << "\n";
}

}  // namespace tesseramill
