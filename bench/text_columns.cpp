#include "text_columns.h"

#include <cmath>
#include <cstdio>

namespace tesseramill_bench {

std::string fixed(double value, int decimals) {
  char text[48];
  std::snprintf(text, sizeof text, "%.*f", decimals, value);
  return text;
}

std::string fixed_or_dash(double value, int decimals) { return std::isnan(value) ? "-" : fixed(value, decimals); }

std::string pad(const std::string& text, std::size_t width) {
  return text.size() >= width ? text : std::string(width - text.size(), ' ') + text;
}

std::string pad_left_aligned(const std::string& text, std::size_t width) {
  return text.size() >= width ? text : text + std::string(width - text.size(), ' ');
}

}  // namespace tesseramill_bench
