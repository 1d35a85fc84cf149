#pragma once

// Runs one function of the module, the system's maths library and the MPFR
// oracle over a list of arguments and counts the misroundings of each.

#include <cstdint>
#include <functional>
#include <string>
#include <vector>

namespace tesseramill_test {

// Random arguments per function and range: a short run in the test suite,
// the long one in the maths-check program.
#ifndef TESSERAMILL_MATHS_ARGUMENTS
#define TESSERAMILL_MATHS_ARGUMENTS 100000
#endif
constexpr std::int64_t kMathsArguments = TESSERAMILL_MATHS_ARGUMENTS;

struct Arguments {
  double a;
  double b;
};

struct Tally {
  std::int64_t tested = 0;
  std::int64_t ours_wrong = 0;
  std::int64_t library_wrong = 0;
  std::string first_wrong;  // the first argument we misround, with the values
};

using Binary = std::function<double(double, double)>;

// Checks `ours` and `library` against `oracle` on `count` arguments drawn
// by `draw`, and prints one line: name, range, counts.
Tally tally(const std::string& name, const std::string& range, const Binary& ours, const Binary& library,
            const Binary& oracle, const std::function<Arguments()>& draw, std::int64_t count);

// A seeded generator whose values do not depend on the standard library.
struct Bits {
  std::uint64_t state;
  std::uint64_t next();
  double uniform(double lo, double hi);           // uniform in [lo, hi)
  double any_finite();                             // any finite double, uniform in its bits
  double any_positive();                           // any finite positive double
  double spread(double lo, double hi);             // uniform in the binary exponent, within [lo, hi]
};

}  // namespace tesseramill_test
