#pragma once

// Double-double arithmetic: a value held as the unevaluated sum hi + lo of
// two doubles with |lo| <= ulp(hi) / 2.  Every operation here uses only
// IEEE 754 additions, multiplications and divisions, each rounded to
// nearest, so that the results are the same bits on every machine.

namespace tesseramill {

struct DoubleDouble {
  double hi;
  double lo;
};

// a + b exactly, for any a and b (no overflow): 6 operations.
inline DoubleDouble two_sum(double a, double b) {
  const double s = a + b;
  const double bb = s - a;
  const double err = (a - (s - bb)) + (b - bb);
  return {s, err};
}

// a + b exactly, when a == 0 or |a| >= |b| (the exponent of a is not below b's).
inline DoubleDouble fast_two_sum(double a, double b) {
  const double s = a + b;
  return {s, b - (s - a)};
}

// Veltkamp's split: a = hi + lo exactly, each half of at most 26
// significant bits (and a sign), for |a| below 2^995 (a * 134217729 must
// not overflow).
inline DoubleDouble split(double a) {
  constexpr double kSplitter = 134217729.0;  // 2^27 + 1
  const double t = kSplitter * a;
  const double hi = t - (t - a);
  return {hi, a - hi};
}

// a * b exactly (Dekker's product): the halves' products are exact, and the
// rounding error of a * b is the sum of their differences from it.  Holds
// for |a|, |b| below 2^995 when no partial product underflows; with an
// underflow the error term is off by at most 2^-1074 or so, far below what
// any bound here counts.  Plain multiplications and additions only: a fused
// multiply-add would give the same, but where the processor lacks one the
// library emulates it at many times the cost.
inline DoubleDouble two_prod(double a, double b) {
  const double p = a * b;
  const DoubleDouble x = split(a);
  const DoubleDouble y = split(b);
  const double err = ((x.hi * y.hi - p) + x.hi * y.lo + x.lo * y.hi) + x.lo * y.lo;
  return {p, err};
}

// (a.hi + a.lo) + (b.hi + b.lo), with relative error at most 2^-103 when no
// cancellation beyond a factor 2 takes place (the lo parts' sum and the
// last renormalisation each lose at most 2^-106 of the larger operand).
inline DoubleDouble dd_add(DoubleDouble a, DoubleDouble b) {
  const DoubleDouble s = two_sum(a.hi, b.hi);
  return fast_two_sum(s.hi, s.lo + (a.lo + b.lo));
}

inline DoubleDouble dd_add(DoubleDouble a, double b) {
  const DoubleDouble s = two_sum(a.hi, b);
  return fast_two_sum(s.hi, s.lo + a.lo);
}

// (a.hi + a.lo) * (b.hi + b.lo) with relative error at most 2^-102: the
// exact product of the hi parts, plus the two cross terms rounded (each
// within 2^-53 of a term at most 2^-53 of the product); a.lo * b.lo, at
// most 2^-106 of the product, is left out.
inline DoubleDouble dd_mul(DoubleDouble a, DoubleDouble b) {
  const DoubleDouble p = two_prod(a.hi, b.hi);
  return fast_two_sum(p.hi, p.lo + (a.hi * b.lo + a.lo * b.hi));
}

inline DoubleDouble dd_mul(DoubleDouble a, double b) {
  const DoubleDouble p = two_prod(a.hi, b);
  return fast_two_sum(p.hi, p.lo + a.lo * b);
}

// (a.hi + a.lo) / (b.hi + b.lo) with relative error at most 2^-100: q is
// the quotient of the hi parts; the remainder a - q b, formed from the
// exact product q * b.hi, gives the correction.
inline DoubleDouble dd_div(DoubleDouble a, DoubleDouble b) {
  const double q = a.hi / b.hi;
  const DoubleDouble p = two_prod(q, b.hi);
  const double r = ((a.hi - p.hi) - p.lo + a.lo) - q * b.lo;
  return fast_two_sum(q, r / b.hi);
}

}  // namespace tesseramill
