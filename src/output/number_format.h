// The one place where numbers are given their fixed layouts for the screen and
// the output files.
//
// Every layout is right-aligned in a field of `width` columns, filled with
// blanks on the left.  A width of 0 gives exactly the columns the number
// needs.  A number that does not fit its field fills the field with
// asterisks.  The sign is written only for negative values, so a zero never
// carries a minus sign.  Decimal digits are correctly rounded from the exact
// binary value (ties to even), which makes the text the same on every build.
#pragma once

#include <cstdint>
#include <string>

namespace tesseramill {

// Plain integer: the digits and, if negative, a minus sign; no blanks.
void append_integer(std::string& out, std::int64_t value);
// Integer right-aligned in `width` columns.
void append_integer(std::string& out, std::int64_t value, int width);

// Fixed point with `decimals` digits behind the point; a value below 1 in
// magnitude keeps its 0 before the point.
void append_fixed(std::string& out, double value, int width, int decimals);

// One-digit scientific form: d.ddddE+xx, where the digit before the point is
// not 0 unless the value is 0.
void append_scientific(std::string& out, double value, int width, int decimals);

// Zero-led scientific form: 0.ddddE+xx, where the first decimal is not 0
// unless the value is 0.
void append_zero_led(std::string& out, double value, int width, int decimals);

// The integer and fixed-point layouts written straight into a line being
// made up, for the writers of the large files: exactly `width` columns
// (at least 1) at `at`, the same characters as append_integer and
// append_fixed give; returns the end of the field.
char* put_integer(char* at, std::int64_t value, int width);
char* put_fixed(char* at, double value, int width, int decimals);
// The one-digit scientific layout likewise; a width of 0 gives the columns
// the number needs.  The line must have room for the larger of `width` and
// decimals + 9 characters.
char* put_scientific(char* at, double value, int width, int decimals);

// The same layouts with every digit from the standard library's conversion
// (std::to_chars), which the layouts above give bit for bit by integer
// arithmetic where the value allows; for tests and benchmarks.
void append_fixed_reference(std::string& out, double value, int width, int decimals);
void append_scientific_reference(std::string& out, double value, int width, int decimals);
void append_zero_led_reference(std::string& out, double value, int width, int decimals);

std::string format_integer(std::int64_t value, int width = 0);
std::string format_fixed(double value, int width, int decimals);
std::string format_scientific(double value, int width, int decimals);
std::string format_zero_led(double value, int width, int decimals);

}  // namespace tesseramill
