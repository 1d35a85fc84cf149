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
// The quick logarithm's bound (2^-69.5), and for log10 with the product's
// 2^-101 besides, with the margin of rounds_surely; about one argument in
// 2^14 falls through to the precise double-double logarithm.
constexpr double kQuickBound = 0x1p-68;
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
namespace {

struct Reduced {
  int k;
  DoubleDouble z;
  const t::LogEntry* entry;
};

Reduced reduce(double x) {
  Reduced r;
  const double m = split_mantissa(x, r.k);
  r.entry = &t::kLog[static_cast<int>(m * 512.0) - t::kLogFirst];
  const DoubleDouble p = two_prod(m, r.entry->r);
  r.z = two_sum(p.hi - 1.0, p.lo);
  return r;
}

// k ln 2 exactly as two_prod(k, ln2.hi) plus k ln2.lo (ln 2 itself within
// 2^-107, k ln2.lo within 2^-53 of a term 2^-53 of the whole).
DoubleDouble k_ln2(int k) {
  const double kd = static_cast<double>(k);
  DoubleDouble kln2 = two_prod(kd, t::kLn2.hi);
  kln2.lo += kd * t::kLn2.lo;
  return kln2;
}

}  // namespace

// The quick logarithm of cr_log and cr_log10, within 2^-69.5 of log(x).
//
// log(1 + z) = z - z^2/2 + c,  c = z^3 Q(z),  Q = 1/3 - z/4 + ... + z^6/9.
// z^2 is exact by two_prod (z.hi^2) less z.hi z.lo (z.lo's share, to
// 2^-53 of it), c is worked out from z.hi in plain doubles: |c| <= 2^-19.6
// |z|, and its roundings (three units of 2^-53 of c at most) give 2^-71
// |z|; the terms left out (z^10/10 on, z.lo^2, z.lo z^2) 2^-84 |z|.  The sum
// k ln 2 + T + z - z.hi^2/2: the leading parts are added exactly with
// two_sum; the rest (k ln2.lo, T.lo, z.lo, the low half of z.hi^2, c and
// the errors of the two_sums) in plain doubles, each term at most 2^-53 of
// the sum or 2^-19 |z|, which loses 2^-104 of the sum and 2^-72 |z|.  The
// same absence of cancellation as in log_double_double below (|z| is at
// most 1.5 times the sum where T != 0) keeps the total within 2^-69.5 of
// |log(x)|.
DoubleDouble log_quick_double_double(double x) {
  const Reduced r = reduce(x);
  const double zh = r.z.hi;
  const double q = 1.0 / 3.0 + zh * (-0.25 + zh * (0.2 + zh * (-1.0 / 6.0 + zh * (1.0 / 7.0 + zh * (-0.125 + zh * (1.0 / 9.0))))));
  const DoubleDouble square = two_prod(zh, zh);
  const double c = (zh * square.hi) * q;
  const DoubleDouble kln2 = k_ln2(r.k);
  const DoubleDouble a = two_sum(kln2.hi, r.entry->minus_log_hi);
  const DoubleDouble b = two_sum(a.hi, zh);
  const DoubleDouble d = two_sum(b.hi, -0.5 * square.hi);
  const double low = (r.z.lo - zh * r.z.lo) - 0.5 * square.lo;
  const double rest = (((kln2.lo + r.entry->minus_log_lo) + (a.lo + b.lo + d.lo)) + low) + c;
  return fast_two_sum(d.hi, rest);
}

// The precise logarithm of pow and of the second try of cr_log and
// cr_log10, from the same reduction.
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
  const Reduced r = reduce(x);
  const DoubleDouble z = r.z;

  const double zh = z.hi;
  const double poly = -0.25 + zh * (0.2 + zh * (-1.0 / 6.0 + zh * (1.0 / 7.0 + zh * (-0.125 + zh * (1.0 / 9.0)))));
  const DoubleDouble third = fast_two_sum(t::kThird.hi, zh * poly);
  const DoubleDouble inner = {third.hi, third.lo + t::kThird.lo};
  const DoubleDouble half = dd_add(dd_mul(z, inner), -0.5);
  DoubleDouble square = two_prod(zh, zh);
  square.lo += 2.0 * zh * z.lo;
  const DoubleDouble log1pz = dd_add(z, dd_mul(square, half));

  const DoubleDouble table = {r.entry->minus_log_hi, r.entry->minus_log_lo};
  return dd_add(dd_add(k_ln2(r.k), table), log1pz);
}

double cr_log(double x) {
  double result;
  if (log_special(x, result)) return result;
  const DoubleDouble quick = log_quick_double_double(x);
  if (rounds_surely(quick, magnitude(quick.hi) * kQuickBound, result)) return result;
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
  const DoubleDouble quick = dd_mul(log_quick_double_double(x), t::kInverseLn10);
  if (rounds_surely(quick, magnitude(quick.hi) * kQuickBound, result)) return result;
  const DoubleDouble v = dd_mul(log_double_double(x), t::kInverseLn10);
  if (rounds_surely(v, magnitude(v.hi) * kLog10Bound, result)) return result;
  return log10_slow(x);
}

}  // namespace tesseramill
