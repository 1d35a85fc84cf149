// Where a shared emplacement cycle cuts its seeds into slabs.
#pragma once

#include <cstddef>
#include <vector>

namespace tesseramill {

// The values of ranks k count / slabs, k = 1 .. slabs - 1, among the count
// values given, in that order: the values a full ascending sort would put
// at those places (of two zeros, either sign may come, as no comparison
// tells them apart).  The values must be numbers; their order in `values`
// is left changed.
std::vector<double> slab_cuts(std::vector<double>& values, std::size_t slabs);

}  // namespace tesseramill
