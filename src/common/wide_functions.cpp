#include "common/wide_functions.h"

#include <cmath>

#include "common/maths_core.h"

namespace tesseramill {

namespace {

// atan(1/m) = sum (-1)^n / ((2n + 1) m^(2n + 1)), each power formed by
// dividing the last by m^2: with m >= 5 a term falls by 2^-4.6 or more, so
// 90 terms reach below 2^-400; each division cuts below 2^-384.
Wide atan_of_inverse(std::uint32_t m) {
  Wide power = wide_div_small(wide_from_int(1), m);
  Wide sum;
  for (std::uint32_t n = 0; !wide_is_zero(power); ++n) {
    const Wide term = wide_div_small(power, 2 * n + 1);
    sum = (n % 2 == 0) ? wide_add(sum, term) : wide_sub(sum, term);
    power = wide_div_small(power, m * m);
  }
  return sum;
}

// exp(r) for |r| <= 1/2: the Taylor series of r / 256 (terms below 2^-9
// of the last, 45 at most), squared eight times.  The series is within
// about 50 units of 2^-384; each squaring doubles the relative error, so
// exp(r) is within 2^-384 * 50 * 2^8 < 2^-370 of its value.
Wide exp_small(const Wide& r) {
  const Wide x = wide_shift_right(r, 8);
  Wide sum = wide_from_int(1);
  Wide term = sum;
  for (std::uint32_t n = 1; n < 60 && !wide_is_zero(term); ++n) {
    term = wide_div_small(wide_mul(term, x), n);
    sum = wide_add(sum, term);
  }
  for (int i = 0; i < 8; ++i) sum = wide_mul(sum, sum);
  return sum;
}

}  // namespace

// ln 2 = 2 atanh(1/3) = sum 2 / ((2n + 1) 3^(2n + 1)): 250 terms, each
// within 2^-383, reach below 2^-390 in all.
const Wide& wide_ln2() {
  static const Wide value = [] {
    Wide power = wide_div_small(wide_from_int(2), 3);
    Wide sum;
    for (std::uint32_t n = 0; !wide_is_zero(power); ++n) {
      sum = wide_add(sum, wide_div_small(power, 2 * n + 1));
      power = wide_div_small(power, 9);
    }
    return sum;
  }();
  return value;
}

// Machin's formula: pi = 16 atan(1/5) - 4 atan(1/239).
const Wide& wide_pi() {
  static const Wide value =
      wide_sub(wide_mul_small(atan_of_inverse(5), 16), wide_mul_small(atan_of_inverse(239), 4));
  return value;
}

const Wide& wide_inverse_ln10() {
  static const Wide value = wide_reciprocal(wide_log(10.0));
  return value;
}

// log(x) = k ln 2 + log(m), m in [sqrt(1/2), sqrt(2)).  log(m) by Newton's
// iteration on exp(y) = m, y += m exp(-y) - 1, from the double-double value
// (error below 2^-77): the error squares at each step (the next error is
// about half the square of the last), so three steps reach the accuracy of
// exp_small, 2^-370.  k ln 2 adds at most 1075 * 2^-383.
Wide wide_log(double x) {
  int k = 0;
  const double m = split_mantissa(x, k);
  const DoubleDouble seed = log_double_double(m);
  Wide y = wide_add(wide_from_double(seed.hi), wide_from_double(seed.lo));
  const Wide wm = wide_from_double(m);
  const Wide one = wide_from_int(1);
  for (int step = 0; step < 3; ++step) {
    y = wide_add(y, wide_sub(wide_mul(wm, exp_small(wide_negate(y))), one));
  }
  Wide kln2 = wide_mul_small(wide_ln2(), static_cast<std::uint32_t>(k < 0 ? -k : k));
  if (k < 0) kln2 = wide_negate(kln2);
  return wide_add(kln2, y);
}

// exp(z) = 2^n exp(z - n ln 2), n the nearest integer to z / ln 2, so that
// |z - n ln 2| <= 0.35 (the double estimate of n is off by at most one
// from the nearest).  n ln 2 is within 2^11 * 2^-383.
Wide wide_exp(const Wide& z, int& scale) {
  const double n = nearest_integer(wide_approximate(z) / 0.6931471805599453);
  scale = static_cast<int>(n);
  Wide nln2 = wide_mul_small(wide_ln2(), static_cast<std::uint32_t>(n < 0 ? -n : n));
  if (n < 0) nln2 = wide_negate(nln2);
  return exp_small(wide_sub(z, nln2));
}

// Four halvings, t -> t / (1 + sqrt(1 + t^2)) (atan(t) = 2 atan of the
// result), bring t from at most 1 to at most tan(pi / 64) < 0.05; the series
// t - t^3/3 + ... then falls by 2^-8.6 a term.  Each halving loses a few
// units of 2^-384, multiplied by 16 in the end: below 2^-370.
Wide wide_atan(const Wide& t) {
  const Wide one = wide_from_int(1);
  Wide u = t;
  for (int i = 0; i < 4; ++i) {
    const Wide root = wide_sqrt(wide_add(one, wide_mul(u, u)));
    u = wide_mul(u, wide_reciprocal(wide_add(one, root)));
  }
  const Wide u2 = wide_mul(u, u);
  Wide power = u;
  Wide sum;
  for (std::uint32_t n = 0; n < 200 && !wide_is_zero(power); ++n) {
    const Wide term = wide_div_small(power, 2 * n + 1);
    sum = (n % 2 == 0) ? wide_add(sum, term) : wide_sub(sum, term);
    power = wide_mul(power, u2);
  }
  return wide_shift_left(sum, 4);
}

}  // namespace tesseramill
