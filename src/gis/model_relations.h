// The relations a model must keep for the mesher: simple rings, holes
// inside the boundary and apart, wells inside the domain and apart by
// their spacings; and, while thinning, lines and zones that lay inside the
// boundary staying inside.
#pragma once

#include <string>
#include <vector>

#include "gis/model_pieces.h"

namespace tesseramill {

// Pieces that thinning may change, numbered: 0 the boundary, then the
// holes, the lines and the zones in order.
struct Breach {
  std::string message;
  std::vector<std::size_t> pieces;
};

// Which lines and zones lie inside the boundary, to be kept so.
struct InsideFlags {
  std::vector<char> lines;
  std::vector<char> zones;
};
InsideFlags inside_flags(const ImportModel& model);

// Every relation the model breaks.  With `kept` the lines and zones it
// marks must still lie inside the boundary.
std::vector<Breach> model_breaches(const ImportModel& model, const InsideFlags* kept);

// The gaps the mesher needs: rings (boundary and holes) at least half the
// smaller of their spacings apart, and each well at least its spacing from
// every ring.  Judged on the shaped model, whose rings have few vertices:
// the distance of two outlines costs GEOS the product of their vertices.
std::vector<Breach> gap_breaches(const ImportModel& model);

}  // namespace tesseramill
