// The smallest distance between two mesh points, reported at the end of
// interior emplacement.
#pragma once

#include "emplacement/mesh_point_list.h"

namespace tesseramill {

// The square root of the smallest squared distance over all pairs, found by
// a sweep over the points sorted by x.
double minimum_separation(const MeshPointList& mesh);

// The same by the literal loop over every pair.
double minimum_separation_reference(const MeshPointList& mesh);

}  // namespace tesseramill
