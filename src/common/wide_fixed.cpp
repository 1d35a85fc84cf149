#include "common/wide_fixed.h"

#include <algorithm>
#include <bit>
#include <cmath>

namespace tesseramill {

namespace {

constexpr std::uint64_t kMask = 0xffffffffu;

// Limb k holds the bits of weight 2^(32 (1 - k)) to 2^(32 (1 - k) + 31).
int limb_of_bit(int b) { return 1 - (b >= 0 ? b / 32 : -((-b + 31) / 32)); }
int offset_of_bit(int b) { return b - 32 * (1 - limb_of_bit(b)); }

bool bit_at(const Wide& v, int b) {
  if (b < kWideLowestBit || b > kWideHighestBit) return false;
  return (v.limb[static_cast<std::size_t>(limb_of_bit(b))] >> offset_of_bit(b)) & 1u;
}

void set_bit(Wide& v, int b) {
  if (b < kWideLowestBit || b > kWideHighestBit) return;
  v.limb[static_cast<std::size_t>(limb_of_bit(b))] |= 1u << offset_of_bit(b);
}

// Clears every bit of weight below 2^b.
Wide cut_below(Wide v, int b) {
  for (int k = kWideLimbs - 1; k >= 0; --k) {
    const int low = 32 * (1 - k);  // weight of the limb's lowest bit
    const std::size_t at = static_cast<std::size_t>(k);
    if (low + 32 <= b) {
      v.limb[at] = 0;
    } else if (low < b) {
      v.limb[at] &= static_cast<std::uint32_t>(kMask << (b - low));
    }
  }
  return v;
}

int compare_magnitude(const Wide& a, const Wide& b) {
  for (std::size_t k = 0; k < kWideLimbs; ++k) {
    if (a.limb[k] != b.limb[k]) return a.limb[k] < b.limb[k] ? -1 : 1;
  }
  return 0;
}

Wide add_magnitude(const Wide& a, const Wide& b) {
  Wide r;
  std::uint64_t carry = 0;
  for (int k = kWideLimbs - 1; k >= 0; --k) {
    const std::size_t at = static_cast<std::size_t>(k);
    const std::uint64_t s = std::uint64_t{a.limb[at]} + b.limb[at] + carry;
    r.limb[at] = static_cast<std::uint32_t>(s & kMask);
    carry = s >> 32;
  }
  return r;
}

// a - b for |a| >= |b|.
Wide sub_magnitude(const Wide& a, const Wide& b) {
  Wide r;
  std::int64_t borrow = 0;
  for (int k = kWideLimbs - 1; k >= 0; --k) {
    const std::size_t at = static_cast<std::size_t>(k);
    std::int64_t d = static_cast<std::int64_t>(a.limb[at]) - b.limb[at] - borrow;
    borrow = d < 0 ? 1 : 0;
    if (d < 0) d += std::int64_t{1} << 32;
    r.limb[at] = static_cast<std::uint32_t>(d);
  }
  return r;
}

}  // namespace

Wide wide_from_double(double x) {
  Wide v;
  if (x == 0.0 || !std::isfinite(x)) return v;
  v.negative = x < 0.0;
  const std::uint64_t bits = std::bit_cast<std::uint64_t>(x);
  const int biased = static_cast<int>((bits >> 52) & 0x7ff);
  std::uint64_t mantissa = bits & ((std::uint64_t{1} << 52) - 1);
  int lowest = biased == 0 ? -1074 : biased - 1075;
  if (biased != 0) mantissa |= std::uint64_t{1} << 52;
  for (int i = 0; i < 53; ++i) {
    if ((mantissa >> i) & 1u) set_bit(v, lowest + i);
  }
  return v;
}

Wide wide_from_int(std::int64_t n) {
  Wide v;
  v.negative = n < 0;
  const std::uint64_t m = n < 0 ? 0 - static_cast<std::uint64_t>(n) : static_cast<std::uint64_t>(n);
  v.limb[0] = static_cast<std::uint32_t>(m >> 32);
  v.limb[1] = static_cast<std::uint32_t>(m & kMask);
  return v;
}

double wide_approximate(const Wide& v) {
  double r = 0.0;
  for (int k = kWideLimbs - 1; k >= 0; --k) {
    r += std::ldexp(static_cast<double>(v.limb[static_cast<std::size_t>(k)]), 32 * (1 - k));
  }
  return v.negative ? -r : r;
}

bool wide_is_zero(const Wide& v) {
  for (std::uint32_t l : v.limb) {
    if (l != 0) return false;
  }
  return true;
}

int wide_top_bit(const Wide& v) {
  for (int k = 0; k < kWideLimbs; ++k) {
    const std::uint32_t l = v.limb[static_cast<std::size_t>(k)];
    if (l != 0) return 32 * (1 - k) + 31 - std::countl_zero(l);
  }
  return kWideLowestBit - 1;
}

Wide wide_add(const Wide& a, const Wide& b) {
  if (a.negative == b.negative) {
    Wide r = add_magnitude(a, b);
    r.negative = a.negative;
    return r;
  }
  if (compare_magnitude(a, b) >= 0) {
    Wide r = sub_magnitude(a, b);
    r.negative = a.negative && !wide_is_zero(r);
    return r;
  }
  Wide r = sub_magnitude(b, a);
  r.negative = b.negative;
  return r;
}

Wide wide_negate(Wide a) {
  a.negative = !a.negative && !wide_is_zero(a);
  return a;
}

Wide wide_sub(const Wide& a, const Wide& b) { return wide_add(a, wide_negate(b)); }

// Schoolbook product of the limbs.  The product of limbs i and j has weight
// 2^(32 (1 - (i + j - 1))): it belongs to limb i + j - 1, its upper half to
// the limb before.  Column c of `column` is limb c - 2, so columns 0 and 1
// would be integer bits above 2^63, which the callers never reach.  Each
// column sums at most 28 halves below 2^32, so no column overflows.  The
// columns beyond limb 13 are carried and then dropped: the truncation error
// is below 2^-384.
Wide wide_mul(const Wide& a, const Wide& b) {
  std::array<std::uint64_t, 2 * kWideLimbs + 1> column{};
  for (std::size_t i = 0; i < kWideLimbs; ++i) {
    if (a.limb[i] == 0) continue;
    for (std::size_t j = 0; j < kWideLimbs; ++j) {
      const std::uint64_t p = std::uint64_t{a.limb[i]} * b.limb[j];
      column[i + j + 1] += p & kMask;
      column[i + j] += p >> 32;
    }
  }
  std::uint64_t carry = 0;
  for (std::size_t c = column.size(); c-- > 0;) {
    const std::uint64_t s = column[c] + carry;
    column[c] = s & kMask;
    carry = s >> 32;
  }
  Wide r;
  for (std::size_t k = 0; k < kWideLimbs; ++k) r.limb[k] = static_cast<std::uint32_t>(column[k + 2]);
  r.negative = (a.negative != b.negative) && !wide_is_zero(r);
  return r;
}

Wide wide_mul_small(const Wide& a, std::uint32_t m) {
  Wide r;
  std::uint64_t carry = 0;
  for (int k = kWideLimbs - 1; k >= 0; --k) {
    const std::size_t at = static_cast<std::size_t>(k);
    const std::uint64_t p = std::uint64_t{a.limb[at]} * m + carry;
    r.limb[at] = static_cast<std::uint32_t>(p & kMask);
    carry = p >> 32;
  }
  r.negative = a.negative && !wide_is_zero(r);
  return r;
}

Wide wide_div_small(const Wide& a, std::uint32_t d) {
  Wide r;
  std::uint64_t rest = 0;
  for (std::size_t k = 0; k < kWideLimbs; ++k) {
    const std::uint64_t cur = (rest << 32) | a.limb[k];
    r.limb[k] = static_cast<std::uint32_t>(cur / d);
    rest = cur % d;
  }
  r.negative = a.negative && !wide_is_zero(r);
  return r;
}

Wide wide_shift_right(const Wide& a, int bits) {
  Wide r;
  if (bits >= 32 * kWideLimbs) return r;
  const int limbs = bits / 32;
  const int rest = bits % 32;
  for (int k = kWideLimbs - 1; k >= limbs; --k) {
    const std::size_t from = static_cast<std::size_t>(k - limbs);
    std::uint64_t v = std::uint64_t{a.limb[from]} >> rest;
    if (rest != 0 && from > 0) v |= (std::uint64_t{a.limb[from - 1]} << (32 - rest)) & kMask;
    r.limb[static_cast<std::size_t>(k)] = static_cast<std::uint32_t>(v);
  }
  r.negative = a.negative && !wide_is_zero(r);
  return r;
}

Wide wide_shift_left(const Wide& a, int bits) {
  Wide r;
  if (bits >= 32 * kWideLimbs) return r;
  const int limbs = bits / 32;
  const int rest = bits % 32;
  for (int k = 0; k + limbs < kWideLimbs; ++k) {
    const std::size_t from = static_cast<std::size_t>(k + limbs);
    std::uint64_t v = (std::uint64_t{a.limb[from]} << rest) & kMask;
    if (rest != 0 && from + 1 < kWideLimbs) v |= std::uint64_t{a.limb[from + 1]} >> (32 - rest);
    r.limb[static_cast<std::size_t>(k)] = static_cast<std::uint32_t>(v);
  }
  r.negative = a.negative && !wide_is_zero(r);
  return r;
}

Wide wide_reciprocal(const Wide& b) {
  const Wide one = wide_from_int(1);
  Wide r = wide_from_double(1.0 / wide_approximate(b));
  for (int step = 0; step < 4; ++step) r = wide_add(r, wide_mul(r, wide_sub(one, wide_mul(b, r))));
  return r;
}

// Newton's iteration for 1 / sqrt(a): r += r (1 - a r^2) / 2; then
// sqrt(a) = a r.
Wide wide_sqrt(const Wide& a) {
  const Wide one = wide_from_int(1);
  Wide r = wide_from_double(1.0 / std::sqrt(wide_approximate(a)));
  for (int step = 0; step < 4; ++step) {
    const Wide residual = wide_sub(one, wide_mul(a, wide_mul(r, r)));
    r = wide_add(r, wide_shift_right(wide_mul(r, residual), 1));
  }
  return wide_mul(a, r);
}

// The double is built from the 53 (or, for subnormal results, fewer) bits
// from the top bit down to `lowest`, and the rest is compared with half a
// unit of the last kept bit.
double wide_round(const Wide& v, int scale, TieSide tie) {
  const double sign = v.negative ? -1.0 : 1.0;
  const int top = wide_top_bit(v);
  if (top < kWideLowestBit) return sign * 0.0;
  // The last kept bit: 53 bits in all, but none below 2^-1074 once scaled.
  const int lowest = std::max(top - 52, -1074 - scale);
  // All of v lies below half a unit of the last kept bit: the result is zero.
  if (lowest - 1 > top) return sign * 0.0;
  std::uint64_t mantissa = 0;
  for (int b = top; b >= lowest; --b) mantissa = (mantissa << 1) | (bit_at(v, b) ? 1u : 0u);
  Wide magnitude = v;
  magnitude.negative = false;
  Wide midpoint = cut_below(magnitude, lowest);
  set_bit(midpoint, lowest - 1);
  const Wide above_midpoint = wide_sub(magnitude, midpoint);
  bool up;
  if (wide_top_bit(above_midpoint) < top - 290) {
    up = tie == TieSide::above || (tie == TieSide::exact && (mantissa & 1u));
  } else {
    up = !above_midpoint.negative;
  }
  if (up) ++mantissa;
  return sign * std::ldexp(static_cast<double>(mantissa), lowest + scale);
}

}  // namespace tesseramill
