#pragma once

// Wide fixed-point numbers for the slow paths of the correctly rounded
// functions: sign and magnitude, 64 bits of integer part and 384 bits of
// fraction in 32-bit limbs, worked with plain integer arithmetic so that
// every result is the same bits on every machine.  Each operation but
// addition and subtraction (which are exact while the integer part fits)
// truncates; its error is at most one unit of the last limb, 2^-384, unless
// said otherwise.

#include <array>
#include <cstdint>

namespace tesseramill {

constexpr int kWideLimbs = 14;         // limbs 0 and 1: integer part; 2..13: fraction
constexpr int kWideLowestBit = -384;   // weight of the last bit
constexpr int kWideHighestBit = 63;    // weight of the first bit

struct Wide {
  std::array<std::uint32_t, kWideLimbs> limb{};
  bool negative = false;
};

// Exact when x is a multiple of 2^-384 and |x| < 2^64; lower bits are cut.
Wide wide_from_double(double x);
Wide wide_from_int(std::int64_t n);
// The nearest double to v, or about it (for seeds of iterations only).
double wide_approximate(const Wide& v);

bool wide_is_zero(const Wide& v);
// Weight of the highest set bit (2^result), or kWideLowestBit - 1 for zero.
int wide_top_bit(const Wide& v);

Wide wide_add(const Wide& a, const Wide& b);
Wide wide_sub(const Wide& a, const Wide& b);
Wide wide_mul(const Wide& a, const Wide& b);
Wide wide_mul_small(const Wide& a, std::uint32_t m);
Wide wide_div_small(const Wide& a, std::uint32_t d);
Wide wide_shift_right(const Wide& a, int bits);
Wide wide_shift_left(const Wide& a, int bits);
Wide wide_negate(Wide a);

// 1 / b for b in [1/4, 4], and sqrt(a) for a in [1/4, 4], each by Newton's
// iteration from a double seed: the relative error squares at each step,
// from 2^-50 to below 2^-400 in four steps; what is left is the rounding
// of the last step, a few units of 2^-384.
Wide wide_reciprocal(const Wide& b);
Wide wide_sqrt(const Wide& a);

// How a value that lies within the slow paths' error of a midpoint between
// two doubles is rounded: the caller knows the true value is above it, below
// it, or exactly on it (then to even).
enum class TieSide { below = -1, exact = 0, above = 1 };

// |v| * 2^scale rounded to nearest double (to the grid of subnormals where
// the result is that small; infinity beyond the largest double), with the
// sign of v.  A value within 2^-290 of its own size of a midpoint counts as
// on it, and `tie` decides; every slow path is accurate to far below that.
double wide_round(const Wide& v, int scale, TieSide tie);

}  // namespace tesseramill
