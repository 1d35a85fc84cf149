#include "target_table.h"

#include <algorithm>
#include <cmath>

#include "text_columns.h"

namespace tesseramill_bench {

double median(std::vector<double> values) {
  if (values.empty()) return std::numeric_limits<double>::quiet_NaN();
  std::sort(values.begin(), values.end());
  const std::size_t middle = values.size() / 2;
  return values.size() % 2 == 1 ? values[middle] : (values[middle - 1] + values[middle]) / 2.0;
}

Target wall_ratio_target(const std::string& what, double measured_ratio, double limit_seconds, double then_seconds) {
  return {what, measured_ratio, limit_seconds / then_seconds, 3};
}

std::string target_table(const std::vector<Target>& targets) {
  std::size_t width = std::string("target").size();
  for (const Target& t : targets) width = std::max(width, t.what.size());
  std::string table = pad_left_aligned("target", width) + pad("measured", 11) + pad("limit", 10) + "  met\n";
  for (const Target& t : targets) {
    const char* met = std::isnan(t.measured) ? "not measured" : t.measured <= t.limit ? "yes" : "NO";
    table += pad_left_aligned(t.what, width) + pad(fixed_or_dash(t.measured, t.decimals), 11) +
             pad(fixed_or_dash(t.limit, t.decimals), 10) + "  " + met + "\n";
  }
  return table;
}

}  // namespace tesseramill_bench
