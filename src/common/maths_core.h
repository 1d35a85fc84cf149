#pragma once

// The pieces the correctly rounded functions share: taking doubles apart,
// the double-double logarithm and exponential of the fast paths, and the
// rounding test that decides whether a double-double value with a known
// error bound has one correctly rounded double.

#include <bit>
#include <cstdint>

#include "common/double_double.h"

namespace tesseramill {

// x = m * 2^k with m in [sqrt(1/2), sqrt(2)), for finite x > 0 (subnormals
// too).  Exact.
double split_mantissa(double x, int& k);

// The exponent e of 2^e <= |x| < 2^(e+1) for finite nonzero x.
int binary_exponent(double x);

// The nearest integer to x (ties to even) for |x| < 2^51: adding and taking
// away 1.5 * 2^52 leaves no fraction bits, each step rounded to nearest.
inline double nearest_integer(double x) {
  constexpr double kShifter = 0x1.8p52;
  return (x + kShifter) - kShifter;
}

// log(x) for finite x > 0, with relative error below 2^-78 (derivation
// where it is worked out).
DoubleDouble log_double_double(double x);

// exp(y) = (hi + lo) * 2^scale for |y.hi| <= 746, with relative error below
// 2^-77.
DoubleDouble exp_double_double(DoubleDouble y, int& scale);

// True when every value within `bound` of v.hi + v.lo rounds to the same
// double, which is then `result`.  `bound` must exceed the true error by
// 2^-104 |v.hi| at least: the additions l +- bound are then exact enough
// (each within 2^-105 |v.hi|) that v.hi + (l - bound) and v.hi + (l + bound)
// enclose the true value, and rounding to nearest is monotonic.
inline bool rounds_surely(DoubleDouble v, double bound, double& result) {
  const double up = v.hi + (v.lo + bound);
  const double down = v.hi + (v.lo - bound);
  result = up;
  return up == down;
}

// The slow paths on their own, for the tests: log and log10 of finite
// x > 0, x != 1; pow of finite x > 0, x != 1, with finite y whose product
// with log(x) lies within [2^-60, 746] in magnitude; atan2 of finite nonzero
// y and x.
double log_slow(double x);
double log10_slow(double x);
double pow_slow(double x, double y);
double atan2_slow(double y, double x);

inline double magnitude(double x) { return std::bit_cast<double>(std::bit_cast<std::uint64_t>(x) & 0x7fffffffffffffffu); }

}  // namespace tesseramill
