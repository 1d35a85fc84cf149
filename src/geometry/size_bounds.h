// Bounds of the size one source of the separation field asks for, without
// its logarithm and power.
#pragma once

#include <algorithm>
#include <cmath>

namespace tesseramill {

// Why the bounds hold.  A source of separation s asks, at distance d, for
//   size = growth^max(0, log(a) / log(growth) - 1.5) * s,  a = d (growth - 1) / s + 1,
// which in exact arithmetic is max(s, (s + d (growth - 1)) / growth^1.5):
// the algebraic size below, which needs no logarithm or power.  The run
// works it out with the correctly rounded cr_log and cr_pow, each within
// half an ulp; their errors, and those of the steps around them, change the
// exponent by at most about 2 ulp(log a) / log(growth) plus a few ulps,
// and the size by a relative 5e-13 at most while a stays below 1e300 (the
// bound was first worked out for a maths library of a few ulps, which it
// covers with room to spare).  The bounds widen the algebraic size by a
// relative 1e-9, far beyond that, and by 1e-300 in absolute terms for
// sizes so small that relative errors no longer hold.  Past a of 1e300 the
// run's size may overflow, and no upper bound is claimed.  The lower bound
// of a source always lies below its upper bound, as every size is at least
// the source's separation, which is above zero.
inline constexpr double kRelative = 1e-9;
inline constexpr double kAbsolute = 1e-300;
inline constexpr double kLargestSafeA = 1e300;

struct Growth {
  double less_one;      // growth - 1, as the run works it out
  double inverse_rise;  // 1 / growth^1.5
};

// The constants of `growth`, worked out once per growth rate and thread and
// kept (a power and a logarithm cost more than the bounds themselves);
// false when the growth rate leaves the algebraic size without meaning.
bool growth_for(double growth, Growth& g);

inline double algebraic_size(const Growth& g, double d, double s) {
  return std::max(s, (s + d * g.less_one) * g.inverse_rise);
}

// An algebraic size widened downwards by the margins of the bounds.
inline double lower_of_size(double size) { return std::max(0.0, size * (1.0 - kRelative) - kAbsolute); }

inline double lower_size(const Growth& g, double d, double s) { return lower_of_size(algebraic_size(g, d, s)); }

// An algebraic size widened upwards by the margins of the bounds.
inline double widened_up(double size) { return size * (1.0 + kRelative) + kAbsolute; }

inline double upper_size(const Growth& g, double d, double s) {
  if (!(d * g.less_one / s <= kLargestSafeA)) return INFINITY;
  const double size = algebraic_size(g, d, s);
  if (!(size <= kLargestSafeA)) return INFINITY;
  return widened_up(size);
}

}  // namespace tesseramill
