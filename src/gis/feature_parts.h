// The features of a layer split into their parts: each polygon of a
// multi-polygon, each line of a multi-line, each point of a multi-point,
// with consecutive vertices closer than a millimetre merged and rings
// closed.  Polygons are tested for validity here, and repaired when asked.
#pragma once

#include <cstdint>
#include <iosfwd>
#include <optional>
#include <vector>

#include "gis/import_options.h"
#include "gis/layer_source.h"

namespace tesseramill {

// Consecutive vertices closer than this are one vertex.  Map units of a
// projected system are metres (or feet): a millimetre is far below any
// cell spacing, yet far above the 1e-6 at which the mesher's ring test
// takes two vertices to coincide.
inline constexpr double kMergeDistance = 1e-3;

struct PolygonPart {
  std::int64_t fid = 0;
  std::optional<double> spacing;
  std::vector<double> outer;               // closed ring, x,y pairs
  std::vector<std::vector<double>> inner;  // closed rings
  int part = 0;  // from 1 when the feature has several parts, else 0
};

struct OutlinePart {
  std::int64_t fid = 0;
  std::optional<double> spacing;
  std::vector<double> xy;  // a line's vertices, or one point
  int part = 0;            // from 1 when the feature has several parts, else 0
};

std::vector<PolygonPart> polygon_parts(RunState& state, const SourceLayer& layer, FeatureSet set, bool make_valid,
                                       std::ostream& screen);
std::vector<OutlinePart> line_parts(RunState& state, const SourceLayer& layer, std::ostream& screen);
std::vector<OutlinePart> point_parts(RunState& state, const SourceLayer& layer);

// Numbers the parts of each feature that gave more than one, from 1.
template <typename Part>
void number_parts(std::vector<Part>& parts, std::size_t first) {
  for (std::size_t k = first; k < parts.size(); ++k) parts[k].part = parts.size() - first > 1 ? static_cast<int>(k - first + 1) : 0;
}

}  // namespace tesseramill
