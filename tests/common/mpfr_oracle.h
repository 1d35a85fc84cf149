#pragma once

// MPFR as the oracle of the correctly rounded functions: each value is the
// exact result rounded to nearest on the double format's grid, subnormals
// included (MPFR's exponent range narrowed to that of doubles).

namespace tesseramill_test {

double oracle_log(double x);
double oracle_log10(double x);
double oracle_pow(double x, double y);
double oracle_atan2(double y, double x);
double oracle_hypot(double x, double y);

// How near the exact value comes to a midpoint between two doubles, as a
// power of two of one unit in the last place (-30: 2^-30 units), from a
// 300-bit evaluation; for the search of hard cases.
enum class OracleFunction { log, log10, pow, atan2, hypot };
double midpoint_closeness(OracleFunction f, double a, double b);

// log2 of the relative error of (hi + lo) * 2^scale against the exact
// value of the function, from a 300-bit evaluation.
double relative_error(OracleFunction f, double a, double b, double hi, double lo, int scale);

// Same bits, or both NaN.
bool same_double(double a, double b);

}  // namespace tesseramill_test
