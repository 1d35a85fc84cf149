#include <limits>

#include "common/correctly_rounded.h"
#include "common/maths_core.h"
#include "common/maths_tables.h"
#include "common/wide_functions.h"

namespace tesseramill {

namespace {

namespace t = maths_tables;

// pi, pi/2, pi/4 and 3pi/4 rounded to nearest.
constexpr double kPi = 0x1.921fb54442d18p+1;
constexpr double kHalfPi = 0x1.921fb54442d18p+0;
constexpr double kQuarterPi = 0x1.921fb54442d18p-1;
constexpr double kThreeQuarterPi = 0x1.2d97c7f3321d2p+1;

// The fast path keeps both magnitudes and their quotient well inside the
// normal range, so that the quotient's remainder is exact and no term of
// the series underflows into a loss that matters.
constexpr double kSmallest = 0x1p-960;
constexpr double kLargest = 0x1p960;
constexpr double kSmallestQuotient = 0x1p-500;

// Relative error bound of the fast path with the margin of rounds_surely
// (derivation in atan_double_double and cr_atan2).
constexpr double kAtan2Bound = 0x1p-77;

// Where the angle lies: atan(t), pi - atan(t), pi/2 - atan(t) or
// pi/2 + atan(t), t the smaller magnitude over the larger.
enum class Octant { first, from_pi, from_half_pi_down, from_half_pi_up };

Octant octant_of(bool swapped, bool x_negative) {
  if (!swapped) return x_negative ? Octant::from_pi : Octant::first;
  return x_negative ? Octant::from_half_pi_up : Octant::from_half_pi_down;
}

// atan(t) for t = th + tl in [0, 1]: atan(t) = atan(c) + atan(s),
// c = j/64 the nearest table point, s = (t - c) / (1 + t c), |s| <= 2^-7.
// t - c is exact for j >= 1 (Sterbenz: t lies within [c/2, 2c]) and for j = 0.
// atan(s) = s + s u G,  u = s^2,  G = -1/3 + u (1/5 - u/7 + u^2/9 - u^3/11):
// the terms left out (s^13 / 13 on) are below 2^-87 of |s|; the rounding of
// u times the bracket, 2^-53 of 2^-16.3, times |s u| <= 2^-14 |s|, 2^-83;
// the double-double steps and the quotient 2^-99.  atan(c) is within
// 2^-106 and, for j >= 1, at least twice |atan(s)|, so the sum loses
// 2^-102 at most: below 2^-82.5 of atan(t) in all.
DoubleDouble atan_double_double(DoubleDouble tt) {
  const int j = static_cast<int>(tt.hi * 64.0 + 0.5);
  const double c = j * 0x1p-6;
  const DoubleDouble num = two_sum(tt.hi - c, tt.lo);
  const DoubleDouble tc = two_prod(tt.hi, c);
  const DoubleDouble one_tc = fast_two_sum(1.0, tc.hi);
  const DoubleDouble den = fast_two_sum(one_tc.hi, one_tc.lo + (tc.lo + tt.lo * c));
  const DoubleDouble s = dd_div(num, den);

  DoubleDouble u = two_prod(s.hi, s.hi);
  u.lo += 2.0 * s.hi * s.lo;
  const double uh = u.hi;
  const double bracket = 0.2 + uh * (-1.0 / 7.0 + uh * (1.0 / 9.0 + uh * (-1.0 / 11.0)));
  const DoubleDouble g0 = fast_two_sum(-t::kThird.hi, uh * bracket);
  const DoubleDouble g = {g0.hi, g0.lo - t::kThird.lo};
  const DoubleDouble atan_s = dd_add(s, dd_mul(dd_mul(s, u), g));
  return dd_add(t::kAtan[j], atan_s);
}

// Slow path: the quotient t = u 2^d, u = m1 / m2 of the mantissas in
// [1/2, 2), found in wide fixed point.  From d >= -40, t itself is held
// (relative precision 2^-340) and wide_atan gives the angle.  Below,
// atan(t) = t F, F = 1 - t^2/3 + t^4/5 - ..., |t^2| < 2^-80, and the first
// octant's result u F is rounded with the scale 2^d directly, so that tiny
// and subnormal angles keep their precision; there atan(t) < t, and a value
// on a midpoint up to the slow path's error is t itself exactly on one (t
// is a quotient of doubles, which otherwise lies 2^-107 of t or more away
// from a midpoint), so the true angle lies just below it.
double atan2_wide(double small, double large, Octant octant, bool negative) {
  int k1, k2;
  const double m1 = split_mantissa(small, k1);
  const double m2 = split_mantissa(large, k2);
  const Wide u = wide_mul(wide_from_double(m1), wide_reciprocal(wide_from_double(m2)));
  const int d = k1 - k2;
  Wide angle;
  if (d >= -40) {
    angle = wide_atan(wide_shift_right(u, -d));
  } else {
    const Wide t2 = wide_shift_right(wide_mul(u, u), -2 * d > 1000 ? 1000 : -2 * d);
    Wide factor;
    Wide power = wide_from_int(1);
    for (std::uint32_t n = 0; n < 10 && !wide_is_zero(power); ++n) {
      const Wide term = wide_div_small(power, 2 * n + 1);
      factor = (n % 2 == 0) ? wide_add(factor, term) : wide_sub(factor, term);
      power = wide_mul(power, t2);
    }
    const Wide scaled = wide_mul(u, factor);
    if (octant == Octant::first) {
      Wide signed_scaled = scaled;
      signed_scaled.negative = negative;
      return wide_round(signed_scaled, d, TieSide::below);
    }
    angle = wide_shift_right(scaled, -d > 1000 ? 1000 : -d);
  }
  const Wide& pi = wide_pi();
  const Wide half_pi = wide_shift_right(pi, 1);
  switch (octant) {
    case Octant::first: break;
    case Octant::from_pi: angle = wide_sub(pi, angle); break;
    case Octant::from_half_pi_down: angle = wide_sub(half_pi, angle); break;
    case Octant::from_half_pi_up: angle = wide_add(half_pi, angle); break;
  }
  angle.negative = negative;
  // The angle is transcendental (the quotient is a nonzero rational), so
  // it is never on a midpoint.
  return wide_round(angle, 0, TieSide::exact);
}

}  // namespace

double atan2_slow(double y, double x) {
  const double ax = magnitude(x);
  const double ay = magnitude(y);
  const bool swapped = ay > ax;
  return atan2_wide(swapped ? ax : ay, swapped ? ay : ax, octant_of(swapped, x < 0.0), y < 0.0);
}

double cr_atan2(double y, double x) {
  if (x != x || y != y) return x + y;
  const bool y_negative = std::bit_cast<std::uint64_t>(y) >> 63;
  const bool x_negative = std::bit_cast<std::uint64_t>(x) >> 63;
  const double ax = magnitude(x);
  const double ay = magnitude(y);
  constexpr double kInfinity = std::numeric_limits<double>::infinity();
  double angle;
  if (ay == 0.0) {
    angle = x_negative ? kPi : 0.0;
  } else if (ax == 0.0) {
    angle = kHalfPi;
  } else if (ax == kInfinity && ay == kInfinity) {
    angle = x_negative ? kThreeQuarterPi : kQuarterPi;
  } else if (ax == kInfinity) {
    angle = x_negative ? kPi : 0.0;
  } else if (ay == kInfinity) {
    angle = kHalfPi;
  } else {
    const bool swapped = ay > ax;
    const double small = swapped ? ax : ay;
    const double large = swapped ? ay : ax;
    const Octant octant = octant_of(swapped, x_negative);
    const double q = small / large;
    if (small >= kSmallest && large <= kLargest && q >= kSmallestQuotient) {
      // t = small / large within 2^-105: the remainder small - q large is a
      // double, found exactly from the exact product q large (small - p.hi
      // is exact by Sterbenz's lemma, and so the last subtraction, whose
      // result is the remainder), and its quotient by large is the
      // correction.  No product underflows or overflows at these sizes.
      const DoubleDouble p = two_prod(q, large);
      const DoubleDouble tt = fast_two_sum(q, ((small - p.hi) - p.lo) / large);
      DoubleDouble v = atan_double_double(tt);
      // pi - atan(t) >= 3pi/4 and pi/2 -+ atan(t) >= pi/4: the offsets
      // (within 2^-106) cancel nothing, and the sums lose 2^-102.  With
      // atan's 2^-82.5 the angle is within 2^-82 of its size.
      switch (octant) {
        case Octant::first: break;
        case Octant::from_pi: v = dd_add(t::kPi, DoubleDouble{-v.hi, -v.lo}); break;
        case Octant::from_half_pi_down: v = dd_add(t::kHalfPi, DoubleDouble{-v.hi, -v.lo}); break;
        case Octant::from_half_pi_up: v = dd_add(t::kHalfPi, v); break;
      }
      double result;
      if (rounds_surely(v, v.hi * kAtan2Bound, result)) return y_negative ? -result : result;
    }
    return atan2_wide(small, large, octant, y_negative);
  }
  return y_negative ? -angle : angle;
}

}  // namespace tesseramill
