#pragma once

// Correctly rounded elementary functions: each returns the exact value
// rounded to the nearest double (ties to even), so that every machine and
// compiler gives the same bits.  Special values follow C's Annex F: signed
// zeros, infinities, NaN, subnormal results, overflow and underflow.

#include "common/double_double.h"

namespace tesseramill {

double cr_log(double x);
double cr_log10(double x);
double cr_pow(double x, double y);
double cr_atan2(double y, double x);
double cr_hypot(double x, double y);

// pow with one base for many exponents: the base's logarithm is worked out
// once.  cr_pow(fixed_base(b), y) is cr_pow(b, y), bit for bit.
struct FixedBase {
  double base;
  DoubleDouble log_base;  // log(base) within 2^-78, when `usable`
  bool usable;            // base finite, positive, not 1
};
FixedBase fixed_base(double base);
double cr_pow(const FixedBase& b, double y);

}  // namespace tesseramill
