// The benchmarks' tables: numbers with a set count of decimals, and text
// aligned in columns.
#pragma once

#include <cstddef>
#include <string>

namespace tesseramill_bench {

// `value` with `decimals` digits after the point.
std::string fixed(double value, int decimals);

// The same, or "-" for a value that is no number (nothing measured).
std::string fixed_or_dash(double value, int decimals);

// `text` right-aligned, or left-aligned, in a column of `width`; text as
// wide or wider is left as it is.
std::string pad(const std::string& text, std::size_t width);
std::string pad_left_aligned(const std::string& text, std::size_t width);

}  // namespace tesseramill_bench
