// The near list of a seed laid out by ascending x, ties by number, in the
// four arrays the strikes and the choice read.
#pragma once

#include <cstdint>
#include <vector>

#include "emplacement/mesh_point_index.h"

namespace tesseramill {

// The arrays a seed's strikes and choice read, one place per listed point,
// by ascending x and, among equal x, ascending number.  A point's strike
// limit is kept only where the run's slope holds (`sloped`), else 0.
struct NearArrays {
  std::vector<std::int32_t>& numbers;
  std::vector<double>& xs;
  std::vector<double>& ys;
  std::vector<double>& strikes;
};

// The points dealt into buckets of x and put in order within them;
// `near` stays as it is.  Long lists, and lists whose x are not all
// numbers spread over a finite width, are sorted (lay_out_near_by_sort).
void lay_out_near_by_x(const MeshPointIndex::EntryList& near, bool sloped, NearArrays out);

// The same arrays from `near` sorted in place and copied in its order.
void lay_out_near_by_sort(MeshPointIndex::EntryList& near, bool sloped, NearArrays out);

}  // namespace tesseramill
