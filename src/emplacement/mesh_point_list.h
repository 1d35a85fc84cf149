// The run's list of mesh points.  A mesh point's number, counted from 1, is
// also the number of its cell.  The list keeps a fixed order that later
// phases rely on: inner points, outer ring points, inner ring points,
// accepted inner line points, six points round each inner point, then free
// points by emplacement cycle.
#pragma once

#include <cstdint>
#include <vector>

namespace tesseramill {

// Labels of mesh points; free points carry their emplacement cycle (1 or more).
inline constexpr std::int32_t kOuterRingLabel = -1;
inline constexpr std::int32_t kInnerRingLabel = -2;
inline constexpr std::int32_t kInnerPointLabel = -3;
inline constexpr std::int32_t kInnerLineLabel = -4;
inline constexpr std::int32_t kHexagonLabel = 1;

struct MeshPointList {
  std::vector<double> mesh_points;            // x,y pairs; entry k-1 holds point k
  std::vector<std::int32_t> mesh_point_label;
  std::int32_t mesh_point_count = 0;
  std::vector<std::int32_t> work_list;        // scratch: the near list of emplacement
};

// The candidate grid laid round each seed during interior emplacement.
struct EmplacementGrid {
  std::int32_t half = 0;
  std::vector<double> grid_x;            // column positions, index k + half
  std::vector<double> grid_y;            // row positions, index j + half
  std::vector<std::int32_t> grid_open;   // (j + half) * nsdim + (k + half)
  std::vector<double> candidate_separation;  // local separation per candidate, same index
};

}  // namespace tesseramill
