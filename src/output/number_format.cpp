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
int significant_digits(double magnitude, int significant, char* digits) {
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
  char buffer[400];
  char* p = buffer;
  const bool negative = value < 0.0;
  if (negative) *p++ = '-';
  auto result =
      std::to_chars(p, buffer + sizeof buffer, std::fabs(value), std::chars_format::fixed, decimals);
  place(out, buffer, static_cast<std::size_t>(result.ptr - buffer), width);
}

void append_scientific(std::string& out, double value, int width, int decimals) {
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

void append_zero_led(std::string& out, double value, int width, int decimals) {
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
