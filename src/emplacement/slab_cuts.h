// Where a shared emplacement cycle cuts its seeds into slabs.
#pragma once

#include <cstddef>
#include <span>
#include <vector>

namespace tesseramill {

// Where to cut `values` for slabs holding the given shares of them, in
// order: cut k is the value of rank (shares[0] + ... + shares[k - 1]) count
// / total among the count values, for k = 1 .. shares.size() - 1, or of
// the last rank where only shares of none follow, the value a full
// ascending sort would put at that place (of two zeros, either sign may
// come, as no comparison tells them apart).  None when there are no values
// or the shares are all none.  The values must be numbers; their order in
// `values` is left changed.
std::vector<double> slab_cuts(std::vector<double>& values, std::span<const std::size_t> shares);

}  // namespace tesseramill
