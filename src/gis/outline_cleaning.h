// Cleaning of a ring at a radius: a closing (grow, then shrink) fills
// inlets and gaps narrower than twice the radius, and an opening (shrink,
// then grow) cuts off spikes and necks as narrow; what is left has no part
// the mesher would have to squeeze cells into.
#pragma once

#include <vector>

namespace tesseramill {

struct CleanedRing {
  std::vector<double> ring;  // the largest part, closed; empty when nothing is left
  double added = 0.0;        // area inside the cleaned ring and outside the original
  double removed = 0.0;      // area inside the original and outside the cleaned ring
  std::vector<double> left_out;  // areas of the other parts the opening split off
};

CleanedRing clean_ring(const std::vector<double>& ring, double radius);

}  // namespace tesseramill
