#include "output/number_format.h"

#include <algorithm>
#include <bit>
#include <charconv>
#include <cmath>
#include <cstdlib>
#include <cstring>
#include <string>

namespace tesseramill {

namespace {

// Lays `body` out in the `w` columns at `field`: right-aligned, or
// asterisks when it is too long.
void lay_out(char* field, const char* body, std::size_t length, std::size_t w) {
  if (length > w) {
    std::memset(field, '*', w);
  } else {
    std::memset(field, ' ', w - length);
    std::memcpy(field + (w - length), body, length);
  }
}

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
  lay_out(field, body, length, w);
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
  if (b.e < 0 && b.e > -64) {
    // The usual case of the files' coordinates and areas, a shift of less
    // than a word: the same exact steps on the product's two 64-bit halves,
    // which spares the shifts and comparisons of 128-bit values.
    const int k = -b.e;
    const std::uint64_t high = static_cast<std::uint64_t>(product >> 64);
    const std::uint64_t low = static_cast<std::uint64_t>(product);
    if ((high >> k) != 0) return false;  // the whole part alone passes 2^64
    const std::uint64_t whole = (high << (64 - k)) | (low >> k);
    const std::uint64_t remainder = low & ((std::uint64_t{1} << k) - 1);
    const std::uint64_t half = std::uint64_t{1} << (k - 1);
    // Whether to round up, worked out without a branch: the remainder of
    // a coordinate's digits is as good as random, so a branch on it would
    // be mispredicted half the time.  The same integer, by the same rule.
    const std::uint64_t up = static_cast<std::uint64_t>(remainder > half) |
                             (static_cast<std::uint64_t>(remainder == half) & whole & 1);
    if (whole == ~std::uint64_t{0} && up != 0) return false;
    q = whole + up;
    return true;
  }
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

// The last two decimal digits of q written before `p`, and q without them;
// gives the new start.  Digits go in pairs from a table, which halves the
// divisions by a constant.
constexpr char kDigitPairs[] =
    "00010203040506070809101112131415161718192021222324252627282930313233343536373839"
    "40414243444546474849505152535455565758596061626364656667686970717273747576777879"
    "8081828384858687888990919293949596979899";

char* put_two_digits(char* p, std::uint64_t& q) {
  const std::size_t pair = static_cast<std::size_t>(q % 100);
  q /= 100;
  p -= 2;
  std::memcpy(p, kDigitPairs + 2 * pair, 2);
  return p;
}

char* put_one_digit(char* p, std::uint64_t& q) {
  *--p = static_cast<char>('0' + q % 10);
  q /= 10;
  return p;
}

// Writes the last `count` decimal digits of q, leading zeros included,
// before `end`, and leaves q without them; gives the start.
char* put_low_digits(char* end, std::uint64_t& q, int count) {
  char* p = end;
  int k = 0;
  for (; k + 2 <= count; k += 2) p = put_two_digits(p, q);
  if (k < count) p = put_one_digit(p, q);
  return p;
}

// Writes the decimal digits of q before `end`, "0" for 0; gives the start.
char* put_whole_digits(char* end, std::uint64_t q) {
  char* p = end;
  while (q >= 100) p = put_two_digits(p, q);
  return q >= 10 ? put_two_digits(p, q) : put_one_digit(p, q);
}

// The number of decimal digits of q, 1 for 0.  A number of b bits has
// floor(b log10 2) digits or one more; 1233 / 4096 lies just under log10 2,
// close enough that the product gives that floor for every b up to 64, and
// one comparison with a power of ten settles the rest.
int digit_count(std::uint64_t q) {
  const std::uint64_t v = q | 1;  // the same count, and 1 for 0
  const int below = (static_cast<int>(std::bit_width(v)) * 1233) >> 12;
  return below + (v >= kPowersOfTen[below] ? 1 : 0);
}

// The first `significant` digits of magnitude as the integer q, and the
// decimal exponent of the first, by integer arithmetic on the exact binary
// value, for values from 1 up to 10^19 and up to 18 digits, which is where
// the output files' coordinates and areas lie; false for the others, which
// the standard library's conversion serves.  The decimal exponent comes
// from comparisons with powers of ten, which are exact doubles up to 10^22;
// the digits are the exact value times 10^(significant - 1 - exponent),
// rounded once, ties to even, as the standard library rounds it.
bool significant_integer(double magnitude, int significant, std::uint64_t& q, int& exponent) {
  if (!(magnitude >= 1.0) || !(magnitude < 1e19) || significant < 1 || significant > 18) return false;
  // The count starts from below the decimal exponent, floor(b log10 2) for
  // a value of at least 2^b, and steps up as far as the powers of ten allow.
  exponent = ((binary_of(magnitude).e + 52) * 1233) >> 12;
  while (exponent < 19 && static_cast<double>(kPowersOfTen[exponent + 1]) <= magnitude) ++exponent;
  const int shift = significant - 1 - exponent;
  if (shift < 0) return false;
  if (!scaled_to_integer(binary_of(magnitude), kPowersOfTen[shift], q)) return false;
  // Rounding up may carry into one more digit: 9.99..96 gives 10.00..0.
  if (q == kPowersOfTen[significant]) {
    q = kPowersOfTen[significant - 1];
    ++exponent;
  }
  return true;
}

// The digits of significant_integer as characters, or the standard
// library's where it does not serve.
int significant_digits(double magnitude, int significant, char* digits) {
  std::uint64_t q = 0;
  int exponent = 0;
  if (!significant_integer(magnitude, significant, q, exponent)) {
    return significant_digits_reference(magnitude, significant, digits);
  }
  put_low_digits(digits + significant, q, significant);
  return exponent;
}

// |value| times 10^decimals rounded once, ties to even, as the integer q,
// by the same integer arithmetic; false where the scaled value could pass
// 2^64 or decimals is over 18 (the standard library's conversion then
// writes it).
bool fixed_integer(double magnitude, int decimals, std::uint64_t& q) {
  if (decimals < 0 || decimals > 18 || !(magnitude < 1e18)) return false;
  return scaled_to_integer(binary_of(magnitude), kPowersOfTen[decimals], q);
}

// The digits of fixed_integer's q laid out "i.ddd" before `end`: from the
// right, the `decimals` digits of the fraction, leading zeros included, the
// point, then the whole part, "0" when it is 0.  Dividing by the constant
// 10 costs a multiplication, where splitting q at 10^decimals would cost a
// division.  Gives the start.
char* put_fixed_digits(char* end, std::uint64_t q, int decimals) {
  char* p = put_low_digits(end, q, decimals);
  if (decimals > 0) *--p = '.';
  return put_whole_digits(p, q);
}

// The columns of fixed_integer's q laid out: the digits, at least one
// before the point, and the point.
std::size_t fixed_length(std::uint64_t q, int decimals) {
  const int digits = std::max(digit_count(q), decimals + 1);
  return static_cast<std::size_t>(digits + (decimals > 0 ? 1 : 0));
}

bool fixed_digits(double magnitude, int decimals, char* out, std::size_t& length) {
  std::uint64_t q = 0;
  if (!fixed_integer(magnitude, decimals, q)) return false;
  length = fixed_length(q, decimals);
  put_fixed_digits(out + length, q, decimals);
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

char* put_integer(char* at, std::int64_t value, int width) {
  char buffer[24];
  auto result = std::to_chars(buffer, buffer + sizeof buffer, value);
  const std::size_t w = static_cast<std::size_t>(width < 1 ? 1 : width);
  lay_out(at, buffer, static_cast<std::size_t>(result.ptr - buffer), w);
  return at + w;
}

char* put_fixed(char* at, double value, int width, int decimals) {
  const std::size_t w = static_cast<std::size_t>(width < 1 ? 1 : width);
  std::uint64_t q = 0;
  if (std::isfinite(value) && fixed_integer(std::fabs(value), decimals, q)) {
    // The number fits when its digits (at least decimals + 1), its point
    // and its sign do: a comparison of q with the power of ten the columns
    // left for the digits allow, the same test as fixed_length's count
    // against the field.  The count itself is not worked out: its last
    // step is a comparison that goes either way for coordinates near a
    // power of two, a branch mispredicted as often as taken, and the
    // digits' start comes from writing them.
    const bool negative = value < 0.0;
    const int digit_columns = static_cast<int>(w) - (negative ? 1 : 0) - (decimals > 0 ? 1 : 0);
    const bool fits = decimals + 1 <= digit_columns &&
                      (digit_columns > 19 || q < kPowersOfTen[static_cast<std::size_t>(digit_columns)]);
    if (!fits) {
      std::memset(at, '*', w);
      return at + w;
    }
    // The digits go straight to the right end of the field, and the blanks
    // before them: no copy of the text on the way.
    char* p = put_fixed_digits(at + w, q, decimals);
    if (negative) *--p = '-';
    std::memset(at, ' ', static_cast<std::size_t>(p - at));
    return at + w;
  }
  // The rare values the integer path leaves (words, the very large) take
  // the long way; a field of w columns holds exactly w characters.
  std::string text;
  append_fixed(text, value, static_cast<int>(w), decimals);
  std::memcpy(at, text.data(), w);
  return at + w;
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

char* put_scientific(char* at, double value, int width, int decimals) {
  std::uint64_t q = 0;
  int exponent = 0;
  if (std::isfinite(value) && decimals >= 0 && significant_integer(std::fabs(value), decimals + 1, q, exponent)) {
    // "d.dddE+xx" straight into the line, right-aligned in a field of
    // `width` columns: the exponent here lies from 0 to 19, so its part is
    // always four columns.
    const bool negative = value < 0.0;
    const std::size_t length = (negative ? 1 : 0) + 2 + static_cast<std::size_t>(decimals) + 4;
    char* p = at;
    if (width > 0) {
      const std::size_t w = static_cast<std::size_t>(width);
      if (length > w) {
        std::memset(at, '*', w);
        return at + w;
      }
      std::memset(at, ' ', w - length);
      p = at + (w - length);
    }
    if (negative) *p++ = '-';
    char* const rest = p + 2;
    put_low_digits(rest + decimals, q, decimals);
    p[0] = static_cast<char>('0' + q);
    p[1] = '.';
    return write_exponent(rest + decimals, exponent);
  }
  std::string text;
  append_scientific(text, value, width, decimals);
  std::memcpy(at, text.data(), text.size());
  return at + text.size();
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
