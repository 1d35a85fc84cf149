#include <algorithm>
#include <limits>
#include <utility>

#include "common/correctly_rounded.h"
#include "common/maths_core.h"

namespace tesseramill {

namespace {

// An exact sum of up to 16 doubles as a nonoverlapping expansion: each new
// term is carried through the parts from the smallest up with two_sum, which
// leaves the sum unchanged and the parts nonoverlapping, so the sign of the
// sum is the sign of the largest nonzero part.
struct Expansion {
  double part[16];
  int count = 0;
};

void grow(Expansion& e, double b) {
  Expansion grown;
  double carry = b;
  for (int i = 0; i < e.count; ++i) {
    const DoubleDouble s = two_sum(carry, e.part[i]);
    if (s.lo != 0.0) grown.part[grown.count++] = s.lo;
    carry = s.hi;
  }
  if (carry != 0.0) grown.part[grown.count++] = carry;
  e = grown;
}

int sign_of(const Expansion& e) {
  if (e.count == 0) return 0;
  return e.part[e.count - 1] > 0.0 ? 1 : -1;
}

// The sign of a^2 + b^2 - (c + h)^2, exactly: each square is an exact
// two_prod, and (c + h)^2 = c^2 + 2ch + h^2 with h a power of two, so that
// 2ch and h^2 are exact doubles (no underflow at the sizes used here).
int compare_with_square(DoubleDouble a2, DoubleDouble b2, double c, double h) {
  const DoubleDouble c2 = two_prod(c, c);
  Expansion e;
  grow(e, a2.hi);
  grow(e, a2.lo);
  grow(e, b2.hi);
  grow(e, b2.lo);
  grow(e, -c2.hi);
  grow(e, -c2.lo);
  grow(e, -2.0 * c * h);
  grow(e, -h * h);
  return sign_of(e);
}

// The nearest integer to x in [0, 2^52] (ties to even): x + 2^52 lies in
// [2^52, 2^53], where the doubles are the integers.
double round_to_integer(double x) { return (x + 0x1p52) - 0x1p52; }

}  // namespace

// sqrt(x^2 + y^2), rounded by deciding exactly on which side of the
// midpoints next to a first estimate the sum of squares lies.  The larger
// magnitude is scaled to [1, 2) (exact: a power of two), so the squares
// neither overflow nor underflow; a smaller one below 2^-60 of the larger
// changes the result by less than 2^-120 of it, which rounds to the larger
// (hypot(a, b) = a (1 + d) with 0 < d < 2^-120, never a midpoint).
// Results that are subnormal are rounded on the subnormals' grid: `unit`
// is the spacing of representable results at the estimate's size.
double cr_hypot(double x, double y) {
  constexpr double kInfinity = std::numeric_limits<double>::infinity();
  double a = magnitude(x);
  double b = magnitude(y);
  if (a == kInfinity || b == kInfinity) return kInfinity;
  if (a != a || b != b) return x + y;
  if (a < b) std::swap(a, b);
  if (b == 0.0) return a;
  if (b < a * 0x1p-60) return a;
  const int scale = binary_exponent(a);
  a = scale_by_power_of_two(a, -scale);
  b = scale_by_power_of_two(b, -scale);
  const DoubleDouble a2 = two_prod(a, a);
  const DoubleDouble b2 = two_prod(b, b);
  // Fast path, for results well above the subnormals: c + d is sqrt(S),
  // S = a^2 + b^2, within 2^-100 of it.  S as a double-double is within
  // 2^-103 (two positive sums); c = sqrt(S.hi), and d the Newton correction
  // (S - c^2) / 2c, whose numerator is exact but for S.lo's rounding (c^2
  // by two_prod, S.hi - c^2 by Sterbenz's lemma); the step leaves
  // (d / c)^2 / 2 <= 2^-106, and the rounding of d 2^-105 of c.  A bound of
  // 2^-98 covers it with the margin rounds_surely needs.  Exact results
  // (Pythagorean triples) and midpoints are left to the exact test below.
  if (scale > -1000) {
    const DoubleDouble sum = dd_add(a2, b2);
    const double root = std::sqrt(sum.hi);
    const DoubleDouble root2 = two_prod(root, root);
    const double d = (((sum.hi - root2.hi) - root2.lo) + sum.lo) / (2.0 * root);
    double result;
    if (rounds_surely({root, d}, root * 0x1p-98, result)) return scale_by_power_of_two(result, scale);
  }
  // The estimate, within 2^-52 or so of the result; then put on the grid.
  const int floor_grid = -1074 - scale;
  double c = std::sqrt(a2.hi + b2.hi);
  double unit = scale_by_power_of_two(1.0, std::max(binary_exponent(c) - 52, floor_grid));
  c = round_to_integer(c / unit) * unit;
  // The estimate moves at most a step or two; a few rounds suffice.
  for (int round = 0; round < 4; ++round) {
    unit = scale_by_power_of_two(1.0, std::max(binary_exponent(c) - 52, floor_grid));
    // Below a power of two the grid is finer, unless the floor holds.
    const bool power_of_two = (std::bit_cast<std::uint64_t>(c) & 0x000fffffffffffffu) == 0;
    const double unit_below = power_of_two ? std::max(0.5 * unit, scale_by_power_of_two(1.0, floor_grid)) : unit;
    if (compare_with_square(a2, b2, c, 0.5 * unit) > 0) {
      c += unit;
    } else if (compare_with_square(a2, b2, c, -0.5 * unit_below) < 0) {
      c -= unit_below;
    } else {
      // On a midpoint exactly: to the even neighbour, when c is odd.
      const bool odd = static_cast<std::uint64_t>(c / unit) & 1u;
      if (odd && compare_with_square(a2, b2, c, 0.5 * unit) == 0) c += unit;
      if (odd && compare_with_square(a2, b2, c, -0.5 * unit_below) == 0) c -= unit_below;
      break;
    }
  }
  return scale_by_power_of_two(c, scale);
}

}  // namespace tesseramill
