// Every value of the control file, with the unset values that let the reader
// tell a first keyword from a repeated one, and the counters of its blocks.
#pragma once

#include <array>
#include <cstdint>
#include <string>

#include "common/limits.h"

namespace tesseramill {

inline constexpr double kUnsetReal = -1.1e31;
inline constexpr std::int32_t kUnsetInteger = -9999;
// The default of LLOYD_FAC is 0.2 held at single precision and widened.
inline constexpr double kDefaultLloydFac = 0.20000000298023224;
inline constexpr std::int32_t kDefaultMaxLloyd = 30;
inline constexpr std::int32_t kDefaultNsdim = 31;
inline constexpr double kDefaultEpsLloyd = 0.001;

// A real field counts as set once it is above this.
inline bool real_is_set(double value) { return value > -1e30; }

struct ControlData {
  // CONTROL block
  double max_centroid_separation = kUnsetReal;
  double poly_growth_rate = kUnsetReal;
  std::int32_t max_cells = kUnsetInteger;
  std::string out_file_base;
  std::int32_t safety = kUnsetInteger;
  std::int32_t max_lloyd = kUnsetInteger;
  double eps_lloyd = kUnsetReal;
  double lloyd_fac = kUnsetReal;
  std::int32_t nsdim = kUnsetInteger;

  // MF6 block
  std::string mf6_basename;
  std::int32_t nlay = kUnsetInteger;
  double xorigin = kUnsetReal;
  double yorigin = kUnsetReal;

  // Geometry blocks; entry k of a table belongs to the (k+1)th block or line.
  std::string outer_boundary_file;
  std::array<std::string, kMaxInnerBoundaryBlocks> inner_boundary_files{};
  std::array<std::string, kMaxInnerPointsBlocks> inner_points_files{};
  std::array<std::string, kMaxInnerLines> inner_line_files{};
  std::array<std::int32_t, kMaxInnerLines> inner_line_block{};
  std::array<std::string, kMaxInnerPolygonBlocks> inner_polygon_files{};
  std::array<double, kMaxInnerPolygonBlocks> inner_polygon_max_separation{};
  std::int32_t numlines = -1;

  // Counters of what the reader has met.
  std::int32_t outer_boundary_count = 0;
  std::int32_t inner_boundary_count = 0;
  std::int32_t inner_points_count = 0;
  std::int32_t inner_line_block_count = 0;
  std::int32_t inner_line_count = 0;
  std::int32_t inner_polygon_count = 0;
  std::int32_t control_count = 0;
  std::int32_t mf6_count = 0;

  ControlData() { inner_polygon_max_separation.fill(kUnsetReal); }
};

}  // namespace tesseramill
