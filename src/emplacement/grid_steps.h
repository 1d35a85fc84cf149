// The columns and rows of a seed's grid of candidates that a span of
// coordinates reaches, in steps of the grid from the seed.
#pragma once

#include <cstdint>

namespace tesseramill {

// The first column or row at or after t steps from the seed, within the
// grid (-half to half) or just past it (half + 1) when t is; a value that is
// no number gives the grid's edge, -half.  Rounding up by the integer
// conversion spares the platform's ceil.  Points lie inside the grid and
// outside it in no pattern, so t is held to the grid by a larger and a
// smaller of two values rather than by branches: a t at or below -half (or
// no number, which the larger of t and -half drops) becomes -half, and one
// above half + 0.5 becomes half + 0.5; every value above half then rounds
// up to half + 1, as the test gives.  Each selection is one instruction
// (maxsd, minsd: their second operand where the first is no number); the
// results are those of the tests one by one (first_step_by_tests).
inline std::int32_t first_step(double t, std::int32_t half) {
  const double lowest = -half;
  const double beyond = half + 0.5;
  double c = t > lowest ? t : lowest;
  c = c < beyond ? c : beyond;
  const std::int32_t i = static_cast<std::int32_t>(c);
  return i < c ? i + 1 : i;
}

// The last column or row at or before t steps from the seed, within the
// grid or just before it (-half - 1) when t is; no number gives half.  The
// same selections: at or above half (or no number) gives half, below
// -half - 0.5 gives -half - 0.5, and every value below -half rounds down
// to -half - 1.
inline std::int32_t last_step(double t, std::int32_t half) {
  const double highest = half;
  const double before = -half - 0.5;
  double c = t < highest ? t : highest;
  c = c > before ? c : before;
  const std::int32_t i = static_cast<std::int32_t>(c);
  return i > c ? i - 1 : i;
}

// The same, by one test after another: the reference for first_step and
// last_step, kept for the tests.
inline std::int32_t first_step_by_tests(double t, std::int32_t half) {
  if (!(t > -half)) return -half;
  if (t > half) return half + 1;
  const std::int32_t i = static_cast<std::int32_t>(t);
  return i < t ? i + 1 : i;
}

inline std::int32_t last_step_by_tests(double t, std::int32_t half) {
  if (!(t < half)) return half;
  if (t < -half) return -half - 1;
  const std::int32_t i = static_cast<std::int32_t>(t);
  return i > t ? i - 1 : i;
}

}  // namespace tesseramill
