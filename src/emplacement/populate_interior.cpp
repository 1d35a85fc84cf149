// Fills the model domain with free mesh points by cycles of candidate grids.
#include <algorithm>
#include <cmath>
#include <ostream>

#include "emplacement/interior_emplacement.h"
#include "output/number_format.h"
#include "run/failure.h"
#include "run/phases.h"
#include "run/text_tools.h"

namespace tesseramill {

namespace {

// Fewer mesh points than this can never fill a seed's near list.
constexpr std::int32_t kMinimumNearPoints = 5;

double minimum_separation(const MeshPointList& mesh) {
  double min2 = 1.7976931348623157e+308;
  const double* p = mesh.mesh_points.data();
  for (std::int32_t a = 0; a < mesh.mesh_point_count; ++a) {
    for (std::int32_t b = a + 1; b < mesh.mesh_point_count; ++b) {
      const double dx = p[2 * a] - p[2 * b];
      const double dy = p[2 * a + 1] - p[2 * b + 1];
      min2 = std::min(min2, dx * dx + dy * dy);
    }
  }
  return std::sqrt(min2);
}

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
  std::int32_t seed_after = 0;
  for (std::int32_t cycle = 1;; ++cycle) {
    screen << " - points emplacement cycle " << cycle << "\n";
    const std::int32_t n = state.mesh.mesh_point_count;
    seed_after = seed_range_start(state, cycle, seed_after);
    if (n <= seed_after) break;
    std::int32_t added = 0;
    for (std::int32_t seed = seed_after + 1; seed <= n; ++seed) {
      if (propose_from_seed(state, seed, cycle)) ++added;
    }
    if (added == 0) break;
  }
  screen << " - " << state.mesh.mesh_point_count << " points emplaced\n";
  screen << " - minimum points separation = " << format_fixed(minimum_separation(state.mesh), 12, 3)
         << "\n";
}

}  // namespace tesseramill
