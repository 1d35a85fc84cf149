// The working state of the fast proposal: the mesh points and the boundary
// segments by place, and scratch tables reused from seed to seed.
#pragma once

#include <cstdint>
#include <vector>

#include "emplacement/mesh_point_index.h"
#include "geometry/field_bounds.h"
#include "geometry/segment_index.h"

namespace tesseramill {

struct RunState;

struct FastEmplacement {
  bool ready = false;
  MeshPointIndex mesh_index;
  SegmentIndex segments;
  FieldBounds field;
  // The grid cut into tiles of kTileSide x kTileSide candidates, each with
  // the field's sources that matter in it, kept when first needed.
  std::vector<TileSources> tiles;
  std::vector<std::uint8_t> tile_kept;
  // The near list in ascending order, and its points sorted by x.
  std::vector<std::int32_t> near;
  std::vector<std::int32_t> near_number;
  std::vector<double> near_x;
  std::vector<double> near_y;
  // One row's points that can strike a candidate of the row.
  std::vector<double> row_x;
  std::vector<double> row_dy2;
  // Per candidate: still open, and the exact separation once worked out.
  std::vector<std::uint8_t> open;
  std::vector<double> exact;
  std::vector<std::int32_t> close_segments;
  std::vector<std::int32_t> open_list;
  std::vector<double> seed_term;
};

// Builds the indexes the fast proposal needs from the mesh points placed so
// far and the boundaries.
void start_fast_emplacement(RunState& state);

// The candidate that the literal steps of seed `seed` choose, worked out
// with indexes and bounds; false when none is left.
bool choose_from_seed_fast(RunState& state, std::int32_t seed, double& x, double& y);

}  // namespace tesseramill
