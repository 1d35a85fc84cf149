#include "output/number_format.h"

#include <charconv>
#include <cmath>
#include <cstdlib>
#include <cstring>
#include <string>

namespace tesseramill {

namespace {

// Puts `body` into the field: right-aligned in `width` columns, or as it is
// for width 0, or asterisks when it is too long.
void place(std::string& out, const char* body, std::size_t length, int width) {
  if (width <= 0) {
    out.append(body, length);
    return;
  }
  const std::size_t w = static_cast<std::size_t>(width);
  // The field is made up here and appended at once: the writers of large
  // files spend much of their time in these appends.
  char field[128];
  if (w > sizeof field) {
    out.append(length > w ? w : w - length, length > w ? '*' : ' ');
    if (length <= w) out.append(body, length);
    return;
  }
  if (length > w) {
    std::memset(field, '*', w);
  } else {
    std::memset(field, ' ', w - length);
    std::memcpy(field + (w - length), body, length);
  }
  out.append(field, w);
}

// Writes the exponent part "E+xx" (at least two digits) into `p`.
char* write_exponent(char* p, int exponent) {
  *p++ = 'E';
  *p++ = exponent < 0 ? '-' : '+';
  int magnitude = std::abs(exponent);
  if (magnitude >= 100) {
    *p++ = static_cast<char>('0' + magnitude / 100);
    magnitude %= 100;
  }
  *p++ = static_cast<char>('0' + magnitude / 10);
  *p++ = static_cast<char>('0' + magnitude % 10);
  return p;
}

// Digits of |value| rounded to `significant` digits, with the decimal exponent
// of the first digit: |value| ~ d.ddd * 10^exponent.  Zero gives zeros and 0.
// By the standard library's conversion, which rounds the exact binary value
// to nearest, ties to even.
int significant_digits_reference(double magnitude, int significant, char* digits) {
  if (magnitude == 0.0) {
    for (int k = 0; k < significant; ++k) digits[k] = '0';
    return 0;
  }
  char buffer[512];
  auto result = std::to_chars(buffer, buffer + sizeof buffer, magnitude,
                              std::chars_format::scientific, significant - 1);
  // buffer holds d[.ddd]e[+-]xx
  char* p = buffer;
  int k = 0;
  for (; p < result.ptr && *p != 'e'; ++p) {
    if (*p != '.') digits[k++] = *p;
  }
  int exponent = 0;
  std::from_chars(p + 1 + (p[1] == '+' ? 1 : 0), result.ptr, exponent);
  return exponent;
}

// A finite, non-negative double as m * 2^e, exactly.
struct Binary {
  std::uint64_t m;
  int e;
};

Binary binary_of(double magnitude) {
  std::uint64_t bits = 0;
  std::memcpy(&bits, &magnitude, sizeof bits);
  const int biased = static_cast<int>((bits >> 52) & 0x7ff);
  const std::uint64_t fraction = bits & ((std::uint64_t{1} << 52) - 1);
  if (biased == 0) return {fraction, -1074};
  return {fraction | (std::uint64_t{1} << 52), biased - 1075};
}

using Wide = unsigned __int128;

// m * 2^e * scale rounded to an integer, to nearest with ties to even, as
// the exact product: no step below rounds but the one at the end, which
// looks at the exact remainder.  False when the result could pass 2^64
// (the caller then takes the standard library's conversion).
bool scaled_to_integer(Binary b, std::uint64_t scale, std::uint64_t& q) {
  // m < 2^53 and scale < 2^64 keep the product below 2^117.
  const Wide product = static_cast<Wide>(b.m) * scale;
  if (b.e >= 0) {
    if (b.e >= 64 || (product >> (64 - b.e)) != 0) return false;
    q = static_cast<std::uint64_t>(product << b.e);
    return true;
  }
  const int k = -b.e;
  if (k >= 120) {
    // The product is below 2^117, under half of 2^k: it rounds to 0.
    q = 0;
    return true;
  }
  const Wide whole = product >> k;
  const Wide remainder = product - (whole << k);
  const Wide half = static_cast<Wide>(1) << (k - 1);
  Wide rounded = whole;
  if (remainder > half || (remainder == half && (whole & 1) != 0)) rounded += 1;
  if ((rounded >> 64) != 0) return false;
  q = static_cast<std::uint64_t>(rounded);
  return true;
}

constexpr std::uint64_t kPowersOfTen[] = {1ULL,
                                          10ULL,
                                          100ULL,
                                          1000ULL,
                                          10000ULL,
                                          100000ULL,
                                          1000000ULL,
                                          10000000ULL,
                                          100000000ULL,
                                          1000000000ULL,
                                          10000000000ULL,
                                          100000000000ULL,
                                          1000000000000ULL,
                                          10000000000000ULL,
                                          100000000000000ULL,
                                          1000000000000000ULL,
                                          10000000000000000ULL,
                                          100000000000000000ULL,
                                          1000000000000000000ULL,
                                          10000000000000000000ULL};

// Writes the `count` decimal digits of q, with leading zeros, at `out`.
void put_digits(std::uint64_t q, int count, char* out) {
  for (int k = count - 1; k >= 0; --k) {
    out[k] = static_cast<char>('0' + q % 10);
    q /= 10;
  }
}

// significant_digits by integer arithmetic on the exact binary value, for
// values from 1 up to 10^19 and up to 18 digits, which is where the output
// files' coordinates and areas lie; others go to the reference.  The
// decimal exponent comes from comparisons with powers of ten, which are
// exact doubles up to 10^22; the digits are the exact value times
// 10^(significant - 1 - exponent), rounded once, ties to even, as the
// standard library rounds it.
int significant_digits(double magnitude, int significant, char* digits) {
  if (!(magnitude >= 1.0) || !(magnitude < 1e19) || significant < 1 || significant > 18) {
    return significant_digits_reference(magnitude, significant, digits);
  }
  int exponent = 0;
  while (exponent < 19 && static_cast<double>(kPowersOfTen[exponent + 1]) <= magnitude) ++exponent;
  const int shift = significant - 1 - exponent;
  if (shift < 0) return significant_digits_reference(magnitude, significant, digits);
  std::uint64_t q = 0;
  if (!scaled_to_integer(binary_of(magnitude), kPowersOfTen[shift], q)) {
    return significant_digits_reference(magnitude, significant, digits);
  }
  // Rounding up may carry into one more digit: 9.99..96 gives 10.00..0.
  if (q == kPowersOfTen[significant]) {
    q = kPowersOfTen[significant - 1];
    ++exponent;
  }
  put_digits(q, significant, digits);
  return exponent;
}

// The digits of |value| with `decimals` digits behind the point, "i.ddd",
// by integer arithmetic on the exact binary value, rounded once, ties to
// even; false where the scaled value could pass 2^64 or decimals is over 18
// (the reference then writes it).
bool fixed_digits(double magnitude, int decimals, char* out, std::size_t& length) {
  if (decimals < 0 || decimals > 18 || !(magnitude < 1e18)) return false;
  std::uint64_t q = 0;
  if (!scaled_to_integer(binary_of(magnitude), kPowersOfTen[decimals], q)) return false;
  const std::uint64_t whole = q / kPowersOfTen[decimals];
  const std::uint64_t fraction = q % kPowersOfTen[decimals];
  auto result = std::to_chars(out, out + 24, whole);
  char* p = result.ptr;
  if (decimals > 0) {
    *p++ = '.';
    put_digits(fraction, decimals, p);
    p += decimals;
  }
  length = static_cast<std::size_t>(p - out);
  return true;
}

// Infinities and not-a-numbers have no digits to lay out; they are written
// as words so that a damaged value is seen rather than hidden.
bool place_non_finite(std::string& out, double value, int width) {
  if (std::isfinite(value)) return false;
  const char* word = std::isnan(value) ? "NaN" : (value < 0.0 ? "-Infinity" : "Infinity");
  place(out, word, std::char_traits<char>::length(word), width);
  return true;
}

}  // namespace

void append_integer(std::string& out, std::int64_t value) { append_integer(out, value, 0); }

void append_integer(std::string& out, std::int64_t value, int width) {
  char buffer[24];
  auto result = std::to_chars(buffer, buffer + sizeof buffer, value);
  place(out, buffer, static_cast<std::size_t>(result.ptr - buffer), width);
}

void append_fixed(std::string& out, double value, int width, int decimals) {
  if (place_non_finite(out, value, width)) return;
  char buffer[64];
  char* p = buffer;
  if (value < 0.0) *p++ = '-';
  std::size_t length = 0;
  if (!fixed_digits(std::fabs(value), decimals, p, length)) {
    append_fixed_reference(out, value, width, decimals);
    return;
  }
  place(out, buffer, static_cast<std::size_t>(p - buffer) + length, width);
}

void append_fixed_reference(std::string& out, double value, int width, int decimals) {
  if (place_non_finite(out, value, width)) return;
  char buffer[400];
  char* p = buffer;
  const bool negative = value < 0.0;
  if (negative) *p++ = '-';
  auto result =
      std::to_chars(p, buffer + sizeof buffer, std::fabs(value), std::chars_format::fixed, decimals);
  place(out, buffer, static_cast<std::size_t>(result.ptr - buffer), width);
}

namespace {

using DigitsOf = int (*)(double, int, char*);

void scientific(std::string& out, double value, int width, int decimals, DigitsOf significant_digits) {
  if (place_non_finite(out, value, width)) return;
  char digits[64];
  int exponent = significant_digits(std::fabs(value), decimals + 1, digits);
  char buffer[96];
  char* p = buffer;
  if (value < 0.0) *p++ = '-';
  *p++ = digits[0];
  *p++ = '.';
  for (int k = 1; k <= decimals; ++k) *p++ = digits[k];
  p = write_exponent(p, exponent);
  place(out, buffer, static_cast<std::size_t>(p - buffer), width);
}

void zero_led(std::string& out, double value, int width, int decimals, DigitsOf significant_digits) {
  if (place_non_finite(out, value, width)) return;
  if (decimals < 1) decimals = 1;
  char digits[64];
  int exponent = significant_digits(std::fabs(value), decimals, digits);
  if (value != 0.0) ++exponent;
  char buffer[96];
  char* p = buffer;
  if (value < 0.0) *p++ = '-';
  *p++ = '0';
  *p++ = '.';
  for (int k = 0; k < decimals; ++k) *p++ = digits[k];
  p = write_exponent(p, exponent);
  place(out, buffer, static_cast<std::size_t>(p - buffer), width);
}

}  // namespace

void append_scientific(std::string& out, double value, int width, int decimals) {
  scientific(out, value, width, decimals, significant_digits);
}

void append_scientific_reference(std::string& out, double value, int width, int decimals) {
  scientific(out, value, width, decimals, significant_digits_reference);
}

void append_zero_led(std::string& out, double value, int width, int decimals) {
  zero_led(out, value, width, decimals, significant_digits);
}

void append_zero_led_reference(std::string& out, double value, int width, int decimals) {
  zero_led(out, value, width, decimals, significant_digits_reference);
}

std::string format_integer(std::int64_t value, int width) {
  std::string out;
  append_integer(out, value, width);
  return out;
}

std::string format_fixed(double value, int width, int decimals) {
  std::string out;
  append_fixed(out, value, width, decimals);
  return out;
}

std::string format_scientific(double value, int width, int decimals) {
  std::string out;
  append_scientific(out, value, width, decimals);
  return out;
}

std::string format_zero_led(double value, int width, int decimals) {
  std::string out;
  append_zero_led(out, value, width, decimals);
  return out;
}

}  // namespace tesseramill
