#include "geometry/sources_in_lanes.h"

#include <algorithm>
#include <cmath>
#include <limits>

namespace tesseramill {

// Every branch of the steps is written as a choice of values, which the
// compiler turns into masks across the lanes.  This file is built without
// errno for the square root (CMakeLists.txt): the root of a negative
// operand then leaves errno as it was, and the program reads errno only
// straight after the calls that set it.

void bound_sources_over(const Growth& g, std::size_t n, const double* __restrict xs, const double* __restrict ys,
                        const double* __restrict separations, double xlo, double xhi, double ylo, double yhi,
                        double* __restrict lowers, double* __restrict uppers) {
  constexpr double kInfinity = std::numeric_limits<double>::infinity();
  for (std::size_t k = 0; k < n; ++k) {
    const double sx = xs[k];
    const double sy = ys[k];
    const double s = separations[k];
    // std::max({a, 0.0, b}) is max(max(a, 0.0), b), NaN included: each
    // keeps its left operand unless that is below the right one.
    const double ex = std::max(std::max(xlo - sx, 0.0), sx - xhi);
    const double ey = std::max(std::max(ylo - sy, 0.0), sy - yhi);
    lowers[k] = lower_size(g, std::sqrt(ex * ex + ey * ey), s);
    const double fx = std::max(std::fabs(sx - xlo), std::fabs(sx - xhi));
    const double fy = std::max(std::fabs(sy - ylo), std::fabs(sy - yhi));
    const double d = std::sqrt(fx * fx + fy * fy);
    // upper_size without its early returns: out of range it is infinite;
    // in range max(-inf, w) is w itself, which is then no NaN (a NaN size
    // fails the range test).
    const double size = algebraic_size(g, d, s);
    const bool in_range = (d * g.less_one / s <= kLargestSafeA) & (size <= kLargestSafeA);
    uppers[k] = std::max(in_range ? -kInfinity : kInfinity, widened_up(size));
  }
}

}  // namespace tesseramill
