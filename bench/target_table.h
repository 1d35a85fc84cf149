// The speed targets the benchmark checks, and the table that says whether
// each is met.
#pragma once

#include <limits>
#include <string>
#include <vector>

namespace tesseramill_bench {

// One target: met when the measured value is at most the limit.
struct Target {
  std::string what;
  double measured = std::numeric_limits<double>::quiet_NaN();  // NaN: not measured
  double limit = 0.0;
  int decimals = 2;
};

// A wall-time target read as a ratio to another build run in turn in the
// same round: a limit of `limit_seconds` set when that build took
// `then_seconds` on this machine becomes their quotient, which holds
// whatever the shared machine's speed on the day of the run.
Target wall_ratio_target(const std::string& what, double measured_ratio, double limit_seconds, double then_seconds);

// The median of `values`: the middle one, or the mean of the middle two for
// an even count; NaN for none.
double median(std::vector<double> values);

// One line per target: what it is, the measured value, the limit and
// "yes", "NO" or "not measured", in columns.
std::string target_table(const std::vector<Target>& targets);

}  // namespace tesseramill_bench
