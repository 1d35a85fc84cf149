#include "common/maths_tally.h"

#include <bit>
#include <cstdio>
#include <sstream>

#include "common/mpfr_oracle.h"

namespace tesseramill_test {

Tally tally(const std::string& name, const std::string& range, const Binary& ours, const Binary& library,
            const Binary& oracle, const std::function<Arguments()>& draw, std::int64_t count) {
  Tally t;
  for (std::int64_t i = 0; i < count; ++i) {
    const Arguments args = draw();
    const double want = oracle(args.a, args.b);
    const double got = ours(args.a, args.b);
    ++t.tested;
    if (!same_double(got, want)) {
      if (t.ours_wrong++ == 0) {
        std::ostringstream text;
        text << std::hexfloat << name << "(" << args.a << ", " << args.b << ") = " << got << ", correctly rounded "
             << want;
        t.first_wrong = text.str();
      }
    }
    if (!same_double(library(args.a, args.b), want)) ++t.library_wrong;
  }
  std::printf("%-6s %-34s %10lld arguments: misrounded by the module %lld, by the system library %lld\n",
              name.c_str(), range.c_str(), static_cast<long long>(t.tested), static_cast<long long>(t.ours_wrong),
              static_cast<long long>(t.library_wrong));
  std::fflush(stdout);
  return t;
}

// splitmix64.
std::uint64_t Bits::next() {
  state += 0x9e3779b97f4a7c15u;
  std::uint64_t z = state;
  z = (z ^ (z >> 30)) * 0xbf58476d1ce4e5b9u;
  z = (z ^ (z >> 27)) * 0x94d049bb133111ebu;
  return z ^ (z >> 31);
}

double Bits::uniform(double lo, double hi) {
  const double u = static_cast<double>(next() >> 11) * 0x1p-53;
  return lo + (hi - lo) * u;
}

double Bits::any_finite() {
  for (;;) {
    const double x = std::bit_cast<double>(next());
    if (x - x == 0.0) return x;
  }
}

double Bits::any_positive() {
  const double x = any_finite();
  return x < 0.0 ? -x : (x == 0.0 ? 0x1p-1074 : x);
}

double Bits::spread(double lo, double hi) {
  for (;;) {
    // A random mantissa and a random exponent over lo's to hi's binade.
    const int elo = std::bit_cast<std::uint64_t>(lo) >> 52 & 0x7ff;
    const int ehi = std::bit_cast<std::uint64_t>(hi) >> 52 & 0x7ff;
    const std::uint64_t e = static_cast<std::uint64_t>(elo) + next() % static_cast<std::uint64_t>(ehi - elo + 1);
    const double x = std::bit_cast<double>((e << 52) | (next() >> 12));
    if (x >= lo && x <= hi) return x;
  }
}

}  // namespace tesseramill_test
