// Searches for arguments whose exact results lie closest to a midpoint
// between two doubles, the cases the fast paths of the correctly rounded
// functions cannot decide, and writes the closest of each function as
// tests/common/searched_cases.inc:
//   build/rounding-search CANDIDATES > tests/common/searched_cases.inc
// Candidates are drawn over the programs' ranges and over all doubles with
// the tests' seeded generator; MPFR measures each to 300 bits.
#include <algorithm>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <vector>

#include "common/maths_core.h"
#include "common/maths_tables.h"
#include "common/maths_tally.h"
#include "common/mpfr_oracle.h"

namespace {

using tesseramill_test::Arguments;
using tesseramill_test::Bits;
using tesseramill_test::OracleFunction;

struct Found {
  double closeness;
  Arguments args;
};

Arguments draw(OracleFunction f, Bits& b, bool program_range) {
  switch (f) {
    case OracleFunction::log:
      return {program_range ? b.spread(0.01, 1e4) : b.any_positive(), 0.0};
    case OracleFunction::log10:
      return {program_range ? b.spread(1e-6, 1e12) : b.any_positive(), 0.0};
    case OracleFunction::pow: {
      if (program_range) return {b.uniform(1.01, 3.0), b.uniform(-1.5, 40.0)};
      const double x = b.spread(1e-300, 1e300);
      return {x, b.uniform(-1000.0, 1000.0) / std::log2(x)};
    }
    case OracleFunction::atan2:
      if (program_range) return {b.uniform(-1.0, 1.0), b.uniform(-1.0, 1.0)};
      return {b.spread(1e-300, 1e300), b.spread(1e-300, 1e300)};
    case OracleFunction::hypot:
      if (program_range) return {b.uniform(-1e4, 1e4), b.uniform(-1e4, 1e4)};
      return {b.spread(1e-300, 1e300), b.spread(1e-300, 1e300)};
  }
  return {0.0, 0.0};
}

const char* name_of(OracleFunction f) {
  switch (f) {
    case OracleFunction::log: return "log";
    case OracleFunction::log10: return "log10";
    case OracleFunction::pow: return "pow";
    case OracleFunction::atan2: return "atan2";
    case OracleFunction::hypot: return "hypot";
  }
  return "";
}

// For log, log10 and pow the module's own double-double value screens the
// candidates, so that MPFR measures only those within 2^-12 units of a
// midpoint: a hundred times more candidates in the same time.
bool worth_measuring(OracleFunction f, const Arguments& a) {
  using namespace tesseramill;
  DoubleDouble v;
  int scale = 0;
  switch (f) {
    case OracleFunction::log: v = log_double_double(a.a); break;
    case OracleFunction::log10: v = dd_mul(log_double_double(a.a), maths_tables::kInverseLn10); break;
    case OracleFunction::pow: {
      if (!(a.a > 0.0) || !std::isfinite(a.b)) return true;
      const DoubleDouble e = dd_mul(log_double_double(a.a), a.b);
      if (!(std::fabs(e.hi) < 700.0) || std::fabs(e.hi) < 1e-15) return true;
      v = exp_double_double(e, scale);
      break;
    }
    default: return true;
  }
  if (!std::isfinite(v.hi) || v.hi == 0.0) return true;
  const double unit = std::ldexp(1.0, binary_exponent(v.hi) - 52);
  const double from_midpoint = std::fabs(std::fabs(v.lo) - 0.5 * unit) / unit;
  return from_midpoint < 0x1p-12;
}

}  // namespace

int main(int argc, char** argv) {
  // Candidates per function and range: the first number for log, log10 and
  // pow (screened), the second for atan2 and hypot.
  const long screened = argc > 1 ? std::atol(argv[1]) : 1000000;
  const long measured = argc > 2 ? std::atol(argv[2]) : 100000;
  constexpr std::size_t kKeep = 25;
  std::printf("// Written by tools/rounding_search.cpp from %ld candidates per function and range\n", screened);
  std::printf("// for log, log10 and pow, %ld for atan2 and hypot;\n", measured);
  std::printf("// the exponent is how close the exact result lies to a midpoint, in units\n");
  std::printf("// in the last place.\n");
  for (OracleFunction f : {OracleFunction::log, OracleFunction::log10, OracleFunction::pow, OracleFunction::atan2,
                           OracleFunction::hypot}) {
    for (bool program_range : {true, false}) {
      Bits b{program_range ? 1000u + static_cast<unsigned>(f) : 2000u + static_cast<unsigned>(f)};
      std::vector<Found> best;
      const bool screen = f == OracleFunction::log || f == OracleFunction::log10 || f == OracleFunction::pow;
      const long candidates = screen ? screened : measured;
      for (long i = 0; i < candidates; ++i) {
        const Arguments a = draw(f, b, program_range);
        if (!worth_measuring(f, a)) continue;
        const double c = tesseramill_test::midpoint_closeness(f, a.a, a.b);
        if (c > -14.0) continue;
        best.push_back({c, a});
        if (best.size() > 4 * kKeep) {
          std::sort(best.begin(), best.end(), [](const Found& p, const Found& q) { return p.closeness < q.closeness; });
          best.resize(kKeep);
        }
      }
      std::sort(best.begin(), best.end(), [](const Found& p, const Found& q) { return p.closeness < q.closeness; });
      if (best.size() > kKeep) best.resize(kKeep);
      for (const Found& found : best) {
        std::printf("{tesseramill_test::OracleFunction::%s, %a, %a},  // 2^%.1f\n", name_of(f), found.args.a,
                    found.args.b, found.closeness);
      }
    }
  }
  return 0;
}
