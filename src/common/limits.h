// Hard limits of the system; every one of them is visible to the user.
#pragma once

#include <cstddef>

namespace tesseramill {

inline constexpr int kMaxInnerBoundaryBlocks = 5;
inline constexpr int kMaxInnerPointsBlocks = 1;
inline constexpr int kMaxInnerLines = 50;
inline constexpr int kMaxInnerPolygonBlocks = 15;

inline constexpr std::size_t kInputLineLength = 500;
inline constexpr std::size_t kBlnLineLength = 100;
inline constexpr std::size_t kFileNameLength = 256;
inline constexpr std::size_t kNumericTokenLength = 30;
inline constexpr std::size_t kMessageLength = 1500;
inline constexpr std::size_t kBlockLabelLength = 30;

inline constexpr int kMaxPolyVert = 100;
inline constexpr int kMaxNlay = 100;
inline constexpr int kMinMaxCells = 1001;
inline constexpr int kMinNsdim = 5;

}  // namespace tesseramill
