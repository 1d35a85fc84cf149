#pragma once

// The pieces the correctly rounded functions share: taking doubles apart,
// the double-double logarithm and exponential of the fast paths, and the
// rounding test that decides whether a double-double value with a known
// error bound has one correctly rounded double.

#include <bit>
#include <cmath>
#include <cstdint>

#include "common/double_double.h"

namespace tesseramill {

// x = m * 2^k with m in [sqrt(1/2), sqrt(2)), for finite x > 0 (subnormals
// too).  Exact.
double split_mantissa(double x, int& k);

// The exponent e of 2^e <= |x| < 2^(e+1) for finite nonzero x.
inline int binary_exponent(double x) {
  const std::uint64_t bits = std::bit_cast<std::uint64_t>(x) & 0x7fffffffffffffffu;
  const int biased = static_cast<int>(bits >> 52);
  if (biased != 0) return biased - 1023;
  return -1011 - std::countl_zero(bits);  // subnormal: 2^-1074 is bit 0
}

// x * 2^k rounded to nearest, as std::ldexp gives it: a product with the
// power of two is exact unless it overflows (then infinity) or is
// subnormal (then rounded once, as ldexp rounds).  Above 2^1023 the power
// is applied in two exact steps of which only the last can overflow; below
// 2^-1022 ldexp itself does it, so that nothing is rounded twice.
inline double scale_by_power_of_two(double x, int k) {
  if (k > 1023) {
    x *= 0x1p1023;
    k -= 1023;
    if (k > 1023) k = 1023;  // the result overflows anyway
  }
  if (k < -1022) return std::ldexp(x, k);
  return x * std::bit_cast<double>(static_cast<std::uint64_t>(k + 1023) << 52);
}

// The nearest integer to x (ties to even) for |x| < 2^51: adding and taking
// away 1.5 * 2^52 leaves no fraction bits, each step rounded to nearest.
inline double nearest_integer(double x) {
  constexpr double kShifter = 0x1.8p52;
  return (x + kShifter) - kShifter;
}

// log(x) for finite x > 0, with relative error below 2^-69.5: quicker,
// for cr_log and cr_log10 (derivation where it is worked out).
DoubleDouble log_quick_double_double(double x);

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
