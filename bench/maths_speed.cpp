#include "maths_speed.h"

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <ctime>
#include <functional>
#include <vector>

#include "common/correctly_rounded.h"
#include "model_family.h"

namespace tesseramill_bench {

namespace {

constexpr int kCalls = 1000000;
constexpr int kRounds = 11;

struct Pair {
  double a;
  double b;
};

// Median nanoseconds per call of f over the arguments.
double nanoseconds_per_call(const std::vector<Pair>& args, const std::function<double(double, double)>& f) {
  std::vector<double> rounds;
  volatile double sink = 0.0;
  for (int r = 0; r < kRounds; ++r) {
    // Processor time, not wall time: on a shared machine the process is
    // often waiting for a processor, and that must not count.
    const std::clock_t start = std::clock();
    double sum = 0.0;
    for (const Pair& p : args) sum += f(p.a, p.b);
    const std::clock_t stop = std::clock();
    sink = sink + sum;
    rounds.push_back(static_cast<double>(stop - start) / CLOCKS_PER_SEC * 1e9 / static_cast<double>(args.size()));
  }
  std::sort(rounds.begin(), rounds.end());
  return rounds[kRounds / 2];
}

std::vector<Pair> draw(std::uint64_t seed, double alo, double ahi, double blo, double bhi) {
  Random random(seed);
  std::vector<Pair> args(kCalls);
  for (Pair& p : args) p = {random.uniform(alo, ahi), random.uniform(blo, bhi)};
  return args;
}

void row(const char* name, const char* range, const std::vector<Pair>& args,
         const std::function<double(double, double)>& ours, const std::function<double(double, double)>& system) {
  const double o = nanoseconds_per_call(args, ours);
  const double s = nanoseconds_per_call(args, system);
  std::printf("%-16s %-38s %8.1f %8.1f %7.2f\n", name, range, o, s, o / s);
}

}  // namespace

int time_maths() {
  using namespace tesseramill;
  std::printf("Processor nanoseconds per call, median of %d rounds of %d calls (a std::function call included in both)\n\n",
              kRounds, kCalls);
  std::printf("%-16s %-38s %8s %8s %7s\n", "function", "arguments", "module", "system", "ratio");
  const std::vector<Pair> ratios = draw(1, 0.01, 1e4, 0.0, 0.0);
  row("log", "ratios 0.01 to 1e4", ratios, [](double a, double) { return cr_log(a); },
      [](double a, double) { return std::log(a); });
  const std::vector<Pair> near_one = draw(2, 1.0, 1.3, 0.0, 0.0);
  row("log", "ratios 1 to 1.3 (the field's start)", near_one, [](double a, double) { return cr_log(a); },
      [](double a, double) { return std::log(a); });
  const std::vector<Pair> sizes = draw(3, 1e-6, 1e12, 0.0, 0.0);
  row("log10", "1e-6 to 1e12", sizes, [](double a, double) { return cr_log10(a); },
      [](double a, double) { return std::log10(a); });
  const std::vector<Pair> powers = draw(4, 1.01, 3.0, -1.5, 40.0);
  row("pow", "growth 1.01 to 3, exponent -1.5 to 40", powers, [](double a, double b) { return cr_pow(a, b); },
      [](double a, double b) { return std::pow(a, b); });
  const FixedBase growth = fixed_base(1.2);
  const std::vector<Pair> exponents = draw(5, 0.0, 0.0, 0.0, 40.0);
  row("pow, one base", "growth 1.2, exponent 0 to 40", exponents,
      [&growth](double, double b) { return cr_pow(growth, b); }, [](double, double b) { return std::pow(1.2, b); });
  const std::vector<Pair> square = draw(6, -1.0, 1.0, -1.0, 1.0);
  row("atan2", "unit square", square, [](double a, double b) { return cr_atan2(a, b); },
      [](double a, double b) { return std::atan2(a, b); });
  const std::vector<Pair> differences = draw(7, -1e4, 1e4, -1e4, 1e4);
  row("hypot", "coordinate differences to 1e4", differences, [](double a, double b) { return cr_hypot(a, b); },
      [](double a, double b) { return std::hypot(a, b); });
  return 0;
}

}  // namespace tesseramill_bench
