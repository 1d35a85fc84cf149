#include "common/mpfr_oracle.h"

#include <mpfr.h>

#include <bit>
#include <cmath>
#include <cstdint>

namespace tesseramill_test {

namespace {

// Doubles' exponent range in MPFR's terms (mantissa in [1/2, 1)); set once
// per thread before the first evaluation.
void use_double_range() {
  thread_local bool done = false;
  if (done) return;
  mpfr_set_emin(-1073);
  mpfr_set_emax(1024);
  done = true;
}

struct Number {
  mpfr_t v;
  explicit Number(mpfr_prec_t bits) { mpfr_init2(v, bits); }
  Number(const Number&) = delete;
  Number& operator=(const Number&) = delete;
  ~Number() { mpfr_clear(v); }
};

void evaluate(OracleFunction f, mpfr_t r, double a, double b, mpfr_rnd_t mode) {
  Number x(53), y(53);
  mpfr_set_d(x.v, a, MPFR_RNDN);
  mpfr_set_d(y.v, b, MPFR_RNDN);
  switch (f) {
    case OracleFunction::log: mpfr_log(r, x.v, mode); break;
    case OracleFunction::log10: mpfr_log10(r, x.v, mode); break;
    case OracleFunction::pow: mpfr_pow(r, x.v, y.v, mode); break;
    case OracleFunction::atan2: mpfr_atan2(r, x.v, y.v, mode); break;
    case OracleFunction::hypot: mpfr_hypot(r, x.v, y.v, mode); break;
  }
}

double oracle(OracleFunction f, double a, double b) {
  use_double_range();
  Number r(53);
  Number x(53), y(53);
  mpfr_set_d(x.v, a, MPFR_RNDN);
  mpfr_set_d(y.v, b, MPFR_RNDN);
  int inexact = 0;
  switch (f) {
    case OracleFunction::log: inexact = mpfr_log(r.v, x.v, MPFR_RNDN); break;
    case OracleFunction::log10: inexact = mpfr_log10(r.v, x.v, MPFR_RNDN); break;
    case OracleFunction::pow: inexact = mpfr_pow(r.v, x.v, y.v, MPFR_RNDN); break;
    case OracleFunction::atan2: inexact = mpfr_atan2(r.v, x.v, y.v, MPFR_RNDN); break;
    case OracleFunction::hypot: inexact = mpfr_hypot(r.v, x.v, y.v, MPFR_RNDN); break;
  }
  inexact = mpfr_subnormalize(r.v, inexact, MPFR_RNDN);
  return mpfr_get_d(r.v, MPFR_RNDN);
}

}  // namespace

double oracle_log(double x) { return oracle(OracleFunction::log, x, 0.0); }
double oracle_log10(double x) { return oracle(OracleFunction::log10, x, 0.0); }
double oracle_pow(double x, double y) { return oracle(OracleFunction::pow, x, y); }
double oracle_atan2(double y, double x) { return oracle(OracleFunction::atan2, y, x); }
double oracle_hypot(double x, double y) { return oracle(OracleFunction::hypot, x, y); }

double midpoint_closeness(OracleFunction f, double a, double b) {
  use_double_range();
  Number r(300);
  evaluate(f, r.v, a, b, MPFR_RNDN);
  if (!mpfr_number_p(r.v) || mpfr_zero_p(r.v)) return 0.0;
  // Scaled so that the unit in the last place is 1: the fraction less 1/2.
  Number scaled(300);
  mpfr_mul_2si(scaled.v, r.v, 53 - mpfr_get_exp(r.v), MPFR_RNDN);
  mpfr_abs(scaled.v, scaled.v, MPFR_RNDN);
  Number whole(300);
  mpfr_floor(whole.v, scaled.v);
  mpfr_sub(scaled.v, scaled.v, whole.v, MPFR_RNDN);
  mpfr_sub_d(scaled.v, scaled.v, 0.5, MPFR_RNDN);
  mpfr_abs(scaled.v, scaled.v, MPFR_RNDN);
  if (mpfr_zero_p(scaled.v)) return -300.0;
  mpfr_log2(scaled.v, scaled.v, MPFR_RNDN);
  return mpfr_get_d(scaled.v, MPFR_RNDN);
}

double relative_error(OracleFunction f, double a, double b, double hi, double lo, int scale) {
  use_double_range();
  Number exact(300), value(300);
  evaluate(f, exact.v, a, b, MPFR_RNDN);
  mpfr_set_d(value.v, hi, MPFR_RNDN);
  mpfr_add_d(value.v, value.v, lo, MPFR_RNDN);
  mpfr_mul_2si(value.v, value.v, scale, MPFR_RNDN);
  mpfr_sub(value.v, value.v, exact.v, MPFR_RNDN);
  mpfr_div(value.v, value.v, exact.v, MPFR_RNDN);
  mpfr_abs(value.v, value.v, MPFR_RNDN);
  if (mpfr_zero_p(value.v)) return -1000.0;
  mpfr_log2(value.v, value.v, MPFR_RNDN);
  return mpfr_get_d(value.v, MPFR_RNDN);
}

bool same_double(double a, double b) {
  if (a != a && b != b) return true;
  return std::bit_cast<std::uint64_t>(a) == std::bit_cast<std::uint64_t>(b);
}

}  // namespace tesseramill_test
