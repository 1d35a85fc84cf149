#include <limits>

#include "common/correctly_rounded.h"
#include "common/maths_core.h"
#include "common/maths_tables.h"
#include "common/wide_functions.h"

namespace tesseramill {

namespace {

namespace t = maths_tables;

constexpr double kInfinity = std::numeric_limits<double>::infinity();

// exp(y) overflows beyond log(DBL_MAX (1 + 2^-54)) = 709.7827..., and
// rounds to zero below log(2^-1075) = -745.1332...; with a margin of 0.007
// for the error of y (below 2^-67 of it) nothing near these is cut off.
constexpr double kOverflowsAbove = 709.79;
constexpr double kVanishesBelow = -745.14;
// 1 + t rounds to 1 for |t| < 2^-54, and |y.hi| <= 2^-60 keeps |y| there.
constexpr double kRoundsToOne = 0x1p-60;

enum class Parity { not_integer, even, odd };

// Whether y is an integer, and which.  From the bits: |y| >= 2^53 is an
// even integer; below, the bits of weight below 1 decide.
Parity parity_of(double y) {
  const std::uint64_t bits = std::bit_cast<std::uint64_t>(y) & 0x7fffffffffffffffu;
  const int e = static_cast<int>(bits >> 52) - 1023;
  if (e >= 53) return Parity::even;
  if (bits == 0) return Parity::even;
  if (e < 0) return Parity::not_integer;
  const std::uint64_t mantissa = (bits & 0x000fffffffffffffu) | (std::uint64_t{1} << 52);
  const int fraction_bits = 52 - e;
  if (fraction_bits > 0 && (mantissa & ((std::uint64_t{1} << fraction_bits) - 1)) != 0) return Parity::not_integer;
  return ((mantissa >> fraction_bits) & 1u) ? Parity::odd : Parity::even;
}

// The values of pow that need no logarithm, per Annex F; `negative`
// tells a finite negative x with an integer y apart, whose result is
// pow(|x|, y) with the sign of (-1)^y.
bool pow_special(double x, double y, double& result, bool& negate) {
  negate = false;
  if (y == 0.0 || x == 1.0) {
    result = 1.0;
    return true;
  }
  if (x != x || y != y) {
    result = x + y;
    return true;
  }
  const double ax = magnitude(x);
  const double ay = magnitude(y);
  const Parity parity = parity_of(y);
  if (ay == kInfinity) {
    if (ax == 1.0) {
      result = 1.0;
    } else {
      result = ((ax > 1.0) == (y > 0.0)) ? kInfinity : 0.0;
    }
    return true;
  }
  if (x == 0.0 || ax == kInfinity) {
    // x = +-0 or +-inf: the sign survives only with an odd integer y.
    const bool large = (x == 0.0) == (y < 0.0);
    result = large ? kInfinity : 0.0;
    if (parity == Parity::odd && std::bit_cast<std::uint64_t>(x) >> 63) result = -result;
    return true;
  }
  if (x < 0.0) {
    if (parity == Parity::not_integer) {
      result = std::numeric_limits<double>::quiet_NaN();
      return true;
    }
    negate = parity == Parity::odd;
  }
  return false;
}

// exp(y log x) for x > 0, x != 1, finite, and y finite, nonzero, from
// log_x, a double-double within `log_error` (relative) of log(x): true when
// that decides the correctly rounded result, which is then `result`.
bool pow_from_log(DoubleDouble log_x, double y, double log_error, double& result) {
  const DoubleDouble e = dd_mul(log_x, y);
  // Far beyond either end, where the product may even have overflowed,
  // the signs alone decide.  The margins of the limits (7e-3 of 700 and
  // more) are far above any error of e.
  result = ((log_x.hi > 0.0) == (y > 0.0)) ? kInfinity : 0.0;
  if (!(magnitude(e.hi) <= 746.0)) return true;
  result = kInfinity;
  if (e.hi > kOverflowsAbove) return true;
  result = 0.0;
  if (e.hi < kVanishesBelow) return true;
  result = 1.0;
  if (magnitude(e.hi) <= kRoundsToOne) return true;
  int scale;
  const DoubleDouble v = exp_double_double(e, scale);
  // e is y log(x) within log_error |e| + 2^-102 |e| (the product), which
  // moves exp(e) by a relative |e| (log_error + 2^-101) at most, for |e|
  // up to 746; exp_double_double adds 2^-77.  The callers' log_error
  // (2^-77 for the precise logarithm's 2^-78, 2^-69 for the quick one's
  // 2^-69.5) already covers 2^-101 and more, and 2^-76 exceeds 2^-77 by
  // what rounds_surely needs.  Results that are subnormal, or near it, are
  // left to the slow path, which rounds on the subnormals' grid.
  const double bound = magnitude(v.hi) * (magnitude(e.hi) * log_error + 0x1p-76);
  if (binary_exponent(v.hi) + scale >= -1021 && rounds_surely(v, bound, result)) {
    result = scale_by_power_of_two(result, scale);
    return true;
  }
  return false;
}

// With the precise logarithm of x (within 2^-78), or else the slow path.
double pow_positive(double x, DoubleDouble log_x, double y) {
  double result;
  if (pow_from_log(log_x, y, 0x1p-77, result)) return result;
  return pow_slow(x, y);
}

}  // namespace

// exp(y) = 2^(n / 128) exp(r), n the nearest integer to y 128 / ln 2,
// r = y - n ln 2 / 128, |r| <= ln 2 / 256 (1 + 2^-40) < 2^-8.5.
//
// r: n ln2.hi / 128 is exact by two_prod (n < 2^17), and y.hi less it by
// two_sum; n ln2.lo / 128 and y.lo are added with errors below 2^-100, and
// ln 2 itself is within 2^-107, times n: in all r is within 2^-90.
//
// exp(r) = 1 + r + r^2/2 + r^3 G(r), G = 1/6 + r/24 + ... + r^5/8!, in
// doubles: the terms left out (r^9 / 9! on) are below 2^-95, G's rounding
// and that of r^3 (2^-51.4 of |r^3 / 6| <= 2^-28.1) give 2^-79.5, and the
// sum of the small terms in one double 2^-80.  1 + r + r^2/2 is exact in
// double-double but for r.lo's square.  Times the table value (within
// 2^-106) by dd_mul (2^-102): below 2^-78.7 <= 2^-77 in all.
DoubleDouble exp_double_double(DoubleDouble y, int& scale) {
  const double n = nearest_integer(y.hi * 0x1.71547652b82fep+7);  // 128 / ln 2
  const DoubleDouble step = two_prod(n, t::kLn2.hi * 0x1p-7);
  const DoubleDouble r0 = two_sum(y.hi, -step.hi);
  const DoubleDouble r = fast_two_sum(r0.hi, ((r0.lo - step.lo) + y.lo) - n * (t::kLn2.lo * 0x1p-7));

  const double rh = r.hi;
  const double g = 1.0 / 6.0 + rh * (1.0 / 24.0 + rh * (1.0 / 120.0 + rh * (1.0 / 720.0 + rh * (1.0 / 5040.0 + rh * (1.0 / 40320.0)))));
  const DoubleDouble square = two_prod(rh, rh);
  const double small = r.lo + (0.5 * square.lo + rh * r.lo) + (square.hi * rh) * g;
  const DoubleDouble s1 = fast_two_sum(1.0, rh);
  const DoubleDouble s2 = two_sum(s1.hi, 0.5 * square.hi);
  const DoubleDouble er = fast_two_sum(s2.hi, (s1.lo + s2.lo) + small);

  const std::int64_t ni = static_cast<std::int64_t>(n);
  const std::int64_t j = ni & 127;
  scale = static_cast<int>((ni - j) / 128);
  return dd_mul(t::kExp2[j], er);
}

// The slow path.  |y| lies in [2^-70, 2^63] here (outside it |y log x|
// would be below 2^-60 or above 746, since 2^-54 <= |log x| <= 745), so y
// is exact in wide fixed point, and y log(x) is within 2^-300 of its value.  A
// result within 2^-290 of a midpoint is taken to be one: pow has exact
// midpoints (x^n with 54 significant bits, for instance), and over all
// 2^128 pairs of doubles a value that is not a midpoint is expected no
// closer than about 2^-180 to one.
double pow_slow(double x, double y) {
  int exp_scale;
  const Wide w = wide_exp(wide_mul(wide_from_double(y), wide_log(x)), exp_scale);
  return wide_round(w, exp_scale, TieSide::exact);
}

double cr_pow(double x, double y) {
  double result;
  bool negate;
  if (pow_special(x, y, result, negate)) return result;
  const double ax = magnitude(x);
  // The quick logarithm (within 2^-69.5) decides all but about |y log x|
  // in 2^15 of the arguments; the precise one (2^-78) takes the rest.
  if (!pow_from_log(log_quick_double_double(ax), y, 0x1p-69, result)) result = pow_positive(ax, log_double_double(ax), y);
  return negate ? -result : result;
}

FixedBase fixed_base(double base) {
  FixedBase b{base, {0.0, 0.0}, false};
  if (base > 0.0 && base < kInfinity && base != 1.0) {
    b.log_base = log_double_double(base);
    b.usable = true;
  }
  return b;
}

double cr_pow(const FixedBase& b, double y) {
  if (!b.usable || y == 0.0 || y != y || magnitude(y) == kInfinity) return cr_pow(b.base, y);
  return pow_positive(b.base, b.log_base, y);
}

}  // namespace tesseramill
