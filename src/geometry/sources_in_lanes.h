// The bounds of many sources of the separation field at once: each
// source's steps are those of size_bounds.h, worked out for every source
// apart from the others, so that the compiler may run them two or more
// lanes at a time.  A lane gives the very bits a scalar step gives: each
// step is one correctly rounded operation (a sum, a product, a quotient,
// a square root) or an exact one (a comparison, max, a sign taken off),
// and vector units round them as scalar units do; with contraction off
// no two steps are fused into one.
#pragma once

#include <cstddef>

#include "geometry/size_bounds.h"

namespace tesseramill {

// Sources taken at a time by the callers, so that their working rooms can
// lie on the stack.
inline constexpr std::size_t kSourcesInLanes = 32;

// For each of the n sources: lowers[k], its lower_size at the point of
// [xlo, xhi] x [ylo, yhi] nearest to it, and uppers[k], its upper_size at
// the rectangle's corner farthest from it.
void bound_sources_over(const Growth& g, std::size_t n, const double* xs, const double* ys,
                        const double* separations, double xlo, double xhi, double ylo, double yhi, double* lowers,
                        double* uppers);

}  // namespace tesseramill
