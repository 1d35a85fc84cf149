#include <limits>

#include "common/correctly_rounded.h"
#include "common/maths_core.h"
#include "common/maths_tables.h"
#include "common/wide_functions.h"

namespace tesseramill {

namespace {

namespace t = maths_tables;

constexpr double kSqrtHalf = 0x1.6a09e667f3bcdp-1;  // just above sqrt(1/2)

// Relative error bound of log_double_double, with the margin that
// rounds_surely asks for (derivation in log_double_double).
constexpr double kLogBound = 0x1p-77;
// log10 = log * (1/ln 10): the double-double product and the constant add
// 2^-101 and 2^-106 to log's 2^-78.
constexpr double kLog10Bound = 0x1p-76;

// The values of log and log10 that need no evaluation: NaN, zeros,
// negative numbers, infinity and 1.
bool log_special(double x, double& result) {
  if (!(x > 0.0) || x == std::numeric_limits<double>::infinity()) {
    if (x != x) {
      result = x + x;
    } else if (x == 0.0) {
      result = -std::numeric_limits<double>::infinity();
    } else if (x < 0.0) {
      result = std::numeric_limits<double>::quiet_NaN();
    } else {
      result = x;
    }
    return true;
  }
  if (x == 1.0) {
    result = 0.0;
    return true;
  }
  return false;
}

}  // namespace

int binary_exponent(double x) {
  const std::uint64_t bits = std::bit_cast<std::uint64_t>(x) & 0x7fffffffffffffffu;
  const int biased = static_cast<int>(bits >> 52);
  if (biased != 0) return biased - 1023;
  return -1011 - std::countl_zero(bits);  // subnormal: 2^-1074 is bit 0
}

double split_mantissa(double x, int& k) {
  int offset = 0;
  if (x < 0x1p-1022) {  // subnormal: scaled up exactly first
    x *= 0x1p64;
    offset = -64;
  }
  const std::uint64_t bits = std::bit_cast<std::uint64_t>(x);
  k = static_cast<int>(bits >> 52) - 1023 + offset;
  double m = std::bit_cast<double>((bits & 0x000fffffffffffffu) | 0x3ff0000000000000u);
  if (m > 2.0 * kSqrtHalf) {
    m *= 0.5;
    k += 1;
  }
  return m;
}

// log(x) = k ln 2 - log(r) + log(1 + z),  x = m 2^k,  z = m r - 1.
//
// r comes from the table entry of m (spacing 1/512 on [0.707, 1.415)), so
// |z| <= 2^-9.5, and |z| <= 2^-9 on the two entries next to 1, where r = 1
// and the table value is exactly 0.  z is exact: m r = p.hi + p.lo exactly,
// p.hi - 1 is exact (p.hi lies in [1/2, 2]) and two_sum keeps the rest.
//
// log(1 + z) = z + z^2 (-1/2 + z (1/3 + z P(z))), P(z) = -1/4 + z/5 - ...
// + z^5/9, in plain doubles.  Errors, relative to |z|: the terms left out
// (z^10/10 on) 2^-84.3; P's rounding (2^-52 of |z^4 / 4|) 2^-81; the
// rounding of z P added to 1/3 (2^-53 of 2^-11, times |z|^2) 2^-82; the
// double-double steps 2^-99.  In all below 2^-79.9.
//
// The sum k ln 2 + T + log(1 + z): k ln 2 is exact as two_prod(k, ln2.hi)
// plus k ln2.lo (ln 2 itself within 2^-107); k ln 2 and T (each within
// 2^-106) do not cancel (|T| <= 0.35 < ln 2 / 2), nor does T with log(1 + z)
// where T != 0 (|log(1 + z)| <= 2^-9.5 < |T| / 1.5 off the entries next to
// 1), so the additions lose at most 2^-101 of the sum, and |log(1 + z)| is
// never more than 1.5 times the sum.  The whole stays below 2^-79.3 <= 2^-78
// of |log(x)|.
DoubleDouble log_double_double(double x) {
  int k;
  const double m = split_mantissa(x, k);
  const t::LogEntry& e = t::kLog[static_cast<int>(m * 512.0) - t::kLogFirst];
  const DoubleDouble p = two_prod(m, e.r);
  const DoubleDouble z = two_sum(p.hi - 1.0, p.lo);

  const double zh = z.hi;
  const double poly = -0.25 + zh * (0.2 + zh * (-1.0 / 6.0 + zh * (1.0 / 7.0 + zh * (-0.125 + zh * (1.0 / 9.0)))));
  const DoubleDouble third = fast_two_sum(t::kThird.hi, zh * poly);
  const DoubleDouble inner = {third.hi, third.lo + t::kThird.lo};
  const DoubleDouble half = dd_add(dd_mul(z, inner), -0.5);
  DoubleDouble square = two_prod(zh, zh);
  square.lo += 2.0 * zh * z.lo;
  const DoubleDouble log1pz = dd_add(z, dd_mul(square, half));

  const double kd = static_cast<double>(k);
  DoubleDouble kln2 = two_prod(kd, t::kLn2.hi);
  kln2.lo += kd * t::kLn2.lo;
  const DoubleDouble table = {e.minus_log_hi, e.minus_log_lo};
  return dd_add(dd_add(kln2, table), log1pz);
}

double cr_log(double x) {
  double result;
  if (log_special(x, result)) return result;
  const DoubleDouble v = log_double_double(x);
  if (rounds_surely(v, magnitude(v.hi) * kLogBound, result)) return result;
  return log_slow(x);
}

// log(x) is never within 2^-290 of a midpoint: it is transcendental for
// x != 1, and the known worst cases come no closer than 2^-120.
double log_slow(double x) { return wide_round(wide_log(x), 0, TieSide::exact); }

// log10(x) is an integer (representable, never a midpoint) for powers of
// ten and irrational otherwise.
double log10_slow(double x) { return wide_round(wide_mul(wide_log(x), wide_inverse_ln10()), 0, TieSide::exact); }

double cr_log10(double x) {
  double result;
  if (log_special(x, result)) return result;
  const DoubleDouble v = dd_mul(log_double_double(x), t::kInverseLn10);
  if (rounds_surely(v, magnitude(v.hi) * kLog10Bound, result)) return result;
  return log10_slow(x);
}

}  // namespace tesseramill
