// Turns rings and lines into chains of mesh points, keeping the spacing along
// them within what the growth rate allows.
#include <algorithm>
#include <limits>
#include <ostream>

#include "common/failure.h"
#include "common/text_tools.h"
#include "emplacement/chains.h"
#include "emplacement/fixed_points.h"
#include "emplacement/growth_limit.h"
#include "geometry/planar_tools.h"
#include "geometry/source_index.h"
#include "run/phases.h"

namespace tesseramill {

namespace {

// `budget` is what the chains of this pass may still hold; each chain built
// takes its points from it.
void subdivide_or_fail(RunState& state, BoundaryRing& ring, const std::string& file,
                       std::int64_t& budget) {
  switch (subdivide_polyline(ring, budget)) {
    case kSubdivideZeroSegment:
      fail(state, "Two neighbouring points in BLN line file " + trimmed(file) +
                      " have the same coordinates.");
    case kSubdivideNoMemory:
      fail(state, "Unable to allocate sufficient memory to continue execution.");
    default:
      break;
  }
  budget -= ring.point_count;
}

void populate_chains(RunState& state) {
  const ControlData& c = state.control;
  std::int64_t budget = kChainPointBudget;
  subdivide_or_fail(state, state.outer_boundary, c.outer_boundary_file, budget);
  for (std::size_t i = 0; i < state.inner_boundaries.size(); ++i) {
    subdivide_or_fail(state, state.inner_boundaries[i], c.inner_boundary_files[i], budget);
  }
  for (std::size_t i = 0; i < state.inner_lines.size(); ++i) {
    subdivide_or_fail(state, state.inner_lines[i], c.inner_line_files[i], budget);
  }
  for (std::size_t i = 0; i < state.inner_polygons.size(); ++i) {
    densify_inner_polygon(state, state.inner_polygons[i], static_cast<std::int32_t>(i), budget);
    budget -= state.inner_polygons[i].point_count;
  }
  state.smallest_max_separation = c.max_centroid_separation;
  for (std::int32_t i = 0; i < c.inner_polygon_count; ++i) {
    state.smallest_max_separation =
        std::min(state.smallest_max_separation, c.inner_polygon_max_separation[static_cast<std::size_t>(i)]);
  }
  // The chains are the sources of the separation field from here on.
  build_source_index(state);
}

bool lower_separations(RunState& state) {
  bool changed = false;
  changed = enforce_growth_limit(state, state.outer_boundary) || changed;
  for (BoundaryRing& ring : state.inner_boundaries) changed = enforce_growth_limit(state, ring) || changed;
  for (BoundaryRing& line : state.inner_lines) changed = enforce_growth_limit(state, line) || changed;
  return changed;
}

}  // namespace

void populate_boundaries(RunState& state) {
  std::ostream& screen = *state.screen;
  screen << "\n - populating user-supplied boundaries/lines with mesh points...\n";
  // The rings are final from here on; every later domain test uses their index.
  build_domain_index(state);
  bool repopulated = false;
  for (;;) {
    populate_chains(state);
    const bool changed = lower_separations(state);
    if (!changed || repopulated) break;
    screen << " - repopulating user-supplied boundaries/lines with mesh points...\n";
    repopulated = true;
  }
  emplace_fixed_points(state);
}

}  // namespace tesseramill
