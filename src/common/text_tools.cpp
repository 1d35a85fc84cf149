#include "common/text_tools.h"

#include <cerrno>
#include <charconv>
#include <cmath>
#include <cstdlib>
#include <ostream>

namespace tesseramill {

namespace {

bool is_token_delimiter(char c) { return c == ' ' || c == ','; }

bool is_name_delimiter(char c) { return c == ' ' || c == ',' || c == '\t'; }

bool is_digit(char c) { return c >= '0' && c <= '9'; }

}  // namespace

void trim_right(std::string& text) {
  std::size_t n = text.find_last_not_of(' ');
  text.resize(n == std::string::npos ? 0 : n + 1);
}

std::string trimmed(std::string_view text) {
  std::string result(text);
  trim_right(result);
  return result;
}

void left_adjust(std::string& text) {
  std::size_t p = text.find_first_not_of(' ');
  if (p == std::string::npos) {
    text.clear();
  } else if (p > 0) {
    text.erase(0, p);
  }
}

std::string fit_field(std::string_view text, std::size_t width) {
  return trimmed(text.substr(0, width));
}

bool is_comment_line(std::string& text) {
  left_adjust(text);
  trim_right(text);
  if (text.empty()) return true;
  if (text.size() >= 2 && text[0] == '+' && text[1] == '+') return true;
  std::size_t p = text.find('#');
  if (p == std::string::npos) return false;
  if (p == 0) return true;
  bool in_single = false;
  bool in_double = false;
  for (std::size_t i = 0; i < text.size(); ++i) {
    char c = text[i];
    if (c == '\'') {
      in_single = !in_single;
    } else if (c == '"') {
      in_double = !in_double;
    } else if (c == '#' && i > 0 && (text[i - 1] == ' ' || text[i - 1] == '\t') && !in_single &&
               !in_double) {
      text.resize(i);
      trim_right(text);
      return false;
    }
  }
  return false;
}

int split_line(int count, std::string& text, int* first, int* last) {
  for (char& c : text) {
    if (c == '\t') c = ' ';
  }
  trim_right(text);
  const int n = static_cast<int>(text.size());
  if (n == 0) return -1;
  int pos = 0;
  for (int t = 0; t < count; ++t) {
    while (pos < n && is_token_delimiter(text[pos])) ++pos;
    if (pos >= n) return 1;
    first[t] = pos;
    int end = pos;
    while (end < n && !is_token_delimiter(text[end])) ++end;
    last[t] = end - 1;
    if (end == n && t < count - 1) return 1;
    pos = end;
  }
  return 0;
}

int read_file_name(std::string_view text, int first, int& last, std::string& name,
                   std::size_t field_length) {
  if (last >= static_cast<int>(text.size())) last = static_cast<int>(text.size()) - 1;
  if (last < first) return 1;
  int p = first;
  while (p <= last && is_name_delimiter(text[p])) ++p;
  if (p > last) return 1;
  char c = text[p];
  if (c == '"' || c == '\'') {
    if (p >= last) return 1;
    int q = p + 1;
    while (q <= last && text[q] != c) ++q;
    if (q > last) return 1;
    last = q;
    if (q == p + 1) return 1;
    // The text between the quotes is left-adjusted before it is cut to the field.
    std::string inner(text.substr(p + 1, q - p - 1));
    left_adjust(inner);
    name = fit_field(inner, field_length);
    return 0;
  }
  int end = p;
  while (end + 1 <= last && !is_name_delimiter(text[end + 1])) ++end;
  last = end;
  if (text[end] == '"' || text[end] == '\'') return 1;
  name = fit_field(text.substr(p, end - p + 1), field_length);
  return 0;
}

namespace {

enum class Decimal { kHeld, kOutOfRange, kUnreadable };

// The double nearest to the decimal number text[0 .. length), which is
// digits with at most one point and an optional exponent, NUL-terminated.
// Both ways below round correctly, ties to even, so that every build reads
// the same bits: the standard's from_chars where the library has it for
// floating point, and otherwise the C library's strtod in the "C" locale
// that the programs never leave (libc++ before version 20 lacks the former;
// on glibc, where such builds run, strtod rounds correctly too).  A result
// that is 0 or infinite although the text is not is out of range, as
// from_chars says; a subnormal result is held.
Decimal decimal_to_double(const char* text, std::size_t length, double& value) {
#if defined(__cpp_lib_to_chars) && __cpp_lib_to_chars >= 201611L
  auto [ptr, ec] = std::from_chars(text, text + length, value, std::chars_format::general);
  if (ptr != text + length) return Decimal::kUnreadable;
  if (ec == std::errc::result_out_of_range) return Decimal::kOutOfRange;
  return ec == std::errc() ? Decimal::kHeld : Decimal::kUnreadable;
#else
  char* end = nullptr;
  errno = 0;
  value = std::strtod(text, &end);
  if (end != text + length) return Decimal::kUnreadable;
  if (errno == ERANGE && (value == 0.0 || std::isinf(value))) return Decimal::kOutOfRange;
  return Decimal::kHeld;
#endif
}

}  // namespace

int read_real(std::string_view token, double& value) {
  std::string_view t = token.substr(0, token.find_last_not_of(' ') + 1);
  if (token.find_last_not_of(' ') == std::string_view::npos) return 1;
  std::size_t i = 0;
  const std::size_t n = t.size();
  // The token in the form from_chars reads, at most one character longer
  // than the token; held on the stack for the tokens of any real file, since
  // the report reads millions of them.
  char small[64];
  std::string large;
  char* normal = small;
  if (n + 2 > sizeof small) {
    large.resize(n + 2);
    normal = large.data();
  }
  std::size_t length = 0;
  auto push = [&](char c) { normal[length++] = c; };
  if (t[i] == '+' || t[i] == '-') {
    if (t[i] == '-') push('-');
    ++i;
  }
  int digits = 0;
  bool point = false;
  while (i < n && (is_digit(t[i]) || (t[i] == '.' && !point))) {
    if (t[i] == '.') {
      point = true;
    } else {
      ++digits;
    }
    push(t[i]);
    ++i;
  }
  if (digits == 0) return 1;
  if (i < n) {
    char c = t[i];
    bool letter = c == 'e' || c == 'E' || c == 'd' || c == 'D' || c == 'q' || c == 'Q';
    if (!letter && c != '+' && c != '-') return 1;
    push('e');
    if (letter) ++i;
    if (i < n && (t[i] == '+' || t[i] == '-')) {
      push(t[i]);
      ++i;
    } else if (!letter) {
      return 1;
    }
    int exponent_digits = 0;
    while (i < n && is_digit(t[i])) {
      push(t[i]);
      ++i;
      ++exponent_digits;
    }
    if (exponent_digits == 0 || i != n) return 1;
  }
  normal[length] = '\0';
  double result = 0.0;
  // Too large or too small for a double: the value the user wrote cannot be
  // held, so it counts as unreadable rather than silently becoming something
  // else.
  if (decimal_to_double(normal, length, result) != Decimal::kHeld) return 1;
  value = result;
  return 0;
}

int read_integer(std::string_view token, std::int32_t& value) {
  std::size_t end = token.find_last_not_of(' ');
  if (end == std::string_view::npos) return 1;
  std::string_view t = token.substr(0, end + 1);
  std::size_t i = 0;
  bool negative = false;
  if (t[0] == '+' || t[0] == '-') {
    negative = t[0] == '-';
    i = 1;
  }
  if (i == t.size()) return 1;
  std::int64_t magnitude = 0;
  for (; i < t.size(); ++i) {
    if (!is_digit(t[i])) return 1;
    magnitude = magnitude * 10 + (t[i] - '0');
    if (magnitude > 2147483648LL) return 1;
  }
  std::int64_t signed_value = negative ? -magnitude : magnitude;
  if (signed_value > 2147483647LL || signed_value < -2147483648LL) return 1;
  value = static_cast<std::int32_t>(signed_value);
  return 0;
}

std::string int_to_text(std::int32_t value) { return std::to_string(value); }

void to_lower(std::string& text) {
  for (char& c : text) {
    if (c >= 'A' && c <= 'Z') c = static_cast<char>(c - 'A' + 'a');
  }
}

void blank_out_char(std::string& text, char c) {
  for (char& ch : text) {
    if (ch == c) ch = ' ';
  }
}

void print_message(std::ostream& screen, std::string_view text) {
  std::size_t last_non_blank = text.find_last_not_of(' ');
  if (last_non_blank == std::string_view::npos) {
    screen << '\n';
    return;
  }
  screen << '\n';
  // 1-based positions as in the layout rules: lead is the first non-blank
  // among the first 20 columns, or 21 when those are all blank.
  int lead = 21;
  for (int k = 0; k < 20 && k < static_cast<int>(text.size()); ++k) {
    if (text[k] != ' ') {
      lead = k + 1;
      break;
    }
  }
  const int indent = lead + 1;
  const int n = static_cast<int>(last_non_blank) + 1;
  auto piece = [&](int from, int to) {  // 1-based, inclusive
    return text.substr(static_cast<std::size_t>(from - 1), static_cast<std::size_t>(to - from + 1));
  };
  if (n < 79) {
    screen << piece(1, n) << '\n';
    return;
  }
  int begin = 0;
  int end = 78;
  int current_indent = 0;
  do {
    int found = 0;
    for (int i = end; i >= begin + 1; --i) {
      if (text[i - 1] == ' ') {
        found = i;
        break;
      }
    }
    int stop = found ? found : end;
    screen << std::string(current_indent, ' ') << piece(begin + 1, stop) << '\n';
    begin = stop;
    current_indent = indent;
    end = begin - indent + 78;
  } while (end < n);
  screen << std::string(current_indent, ' ') << piece(begin + 1, n) << '\n';
}

}  // namespace tesseramill
