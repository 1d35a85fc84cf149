// The module's functions against MPFR: random arguments over the ranges the
// programs use and over all doubles, hard cases, the special values of C's
// Annex F and the slow paths on their own; no misrounding is allowed.  The
// system's maths library is run on the same arguments and its misroundings
// are printed beside ours.
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <limits>
#include <string>
#include <vector>

#include "common/correctly_rounded.h"
#include "common/maths_core.h"
#include "common/maths_tally.h"
#include "common/mpfr_oracle.h"

namespace tesseramill {
namespace {

using tesseramill_test::Arguments;
using tesseramill_test::Binary;
using tesseramill_test::Bits;
using tesseramill_test::kMathsArguments;
using tesseramill_test::same_double;

constexpr double kInf = std::numeric_limits<double>::infinity();
constexpr double kNaN = std::numeric_limits<double>::quiet_NaN();
constexpr double kMax = std::numeric_limits<double>::max();
constexpr double kMinNormal = 0x1p-1022;
constexpr double kMinSubnormal = 0x1p-1074;

struct Function {
  const char* name;
  Binary ours;
  Binary library;
  Binary oracle;
};

const Function kLog{"log", [](double x, double) { return cr_log(x); }, [](double x, double) { return std::log(x); },
                    [](double x, double) { return tesseramill_test::oracle_log(x); }};
const Function kLog10{"log10", [](double x, double) { return cr_log10(x); },
                      [](double x, double) { return std::log10(x); },
                      [](double x, double) { return tesseramill_test::oracle_log10(x); }};
const Function kPow{"pow", [](double x, double y) { return cr_pow(x, y); },
                    [](double x, double y) { return std::pow(x, y); },
                    [](double x, double y) { return tesseramill_test::oracle_pow(x, y); }};
const Function kAtan2{"atan2", [](double y, double x) { return cr_atan2(y, x); },
                      [](double y, double x) { return std::atan2(y, x); },
                      [](double y, double x) { return tesseramill_test::oracle_atan2(y, x); }};
const Function kHypot{"hypot", [](double x, double y) { return cr_hypot(x, y); },
                      [](double x, double y) { return std::hypot(x, y); },
                      [](double x, double y) { return tesseramill_test::oracle_hypot(x, y); }};

void expect_no_misrounding(const Function& f, const std::string& range, std::uint64_t seed,
                           const std::function<Arguments(Bits&)>& draw) {
  Bits bits{seed};
  const tesseramill_test::Tally t =
      tesseramill_test::tally(f.name, range, f.ours, f.library, f.oracle, [&] { return draw(bits); }, kMathsArguments);
  EXPECT_EQ(t.ours_wrong, 0) << t.first_wrong;
}

void expect_all_correct(const Function& f, const std::string& range, const std::vector<Arguments>& cases) {
  std::size_t at = 0;
  const tesseramill_test::Tally t = tesseramill_test::tally(
      f.name, range, f.ours, f.library, f.oracle, [&] { return cases[at++]; }, static_cast<std::int64_t>(cases.size()));
  EXPECT_EQ(t.ours_wrong, 0) << t.first_wrong;
}

// ---- Random arguments ------------------------------------------------------

TEST(CorrectlyRounded, LogOverTheProgramsRatios) {
  expect_no_misrounding(kLog, "ratios 0.01 to 1e4", 11, [](Bits& b) {
    return Arguments{(b.next() & 1) ? b.uniform(0.01, 1e4) : b.spread(0.01, 1e4), 0.0};
  });
}

TEST(CorrectlyRounded, LogOverAllDoubles) {
  expect_no_misrounding(kLog, "all positive doubles", 12, [](Bits& b) { return Arguments{b.any_positive(), 0.0}; });
}

TEST(CorrectlyRounded, Log10OverTheReportsValues) {
  expect_no_misrounding(kLog10, "areas and steps 1e-6 to 1e12", 13,
                        [](Bits& b) { return Arguments{b.spread(1e-6, 1e12), 0.0}; });
}

TEST(CorrectlyRounded, Log10OverAllDoubles) {
  expect_no_misrounding(kLog10, "all positive doubles", 14, [](Bits& b) { return Arguments{b.any_positive(), 0.0}; });
}

TEST(CorrectlyRounded, PowOverTheProgramsGrowthRates) {
  expect_no_misrounding(kPow, "growth 1.01 to 3, exponent -1.5 to 40", 15,
                        [](Bits& b) { return Arguments{b.uniform(1.01, 3.0), b.uniform(-1.5, 40.0)}; });
}

// Exponents are drawn so that the results spread over the whole range of
// doubles, from underflow to overflow, for bases of either sign; one draw
// in four takes both at random from all doubles.
TEST(CorrectlyRounded, PowOverAllDoubles) {
  expect_no_misrounding(kPow, "all doubles, results over all", 16, [](Bits& b) {
    const double x = b.any_finite();
    if (b.next() % 4 == 0) return Arguments{x, b.any_finite()};
    const double ax = std::fabs(x);
    if (ax == 1.0 || ax == 0.0) return Arguments{x, b.uniform(-100.0, 100.0)};
    double y = b.uniform(-1080.0, 1030.0) / std::log2(ax);
    // A negative base needs an integer exponent to give a number.
    if (x < 0.0) y = std::floor(y);
    return Arguments{x, y};
  });
}

TEST(CorrectlyRounded, Atan2OverTheUnitSquare) {
  expect_no_misrounding(kAtan2, "unit square, all quadrants", 17,
                        [](Bits& b) { return Arguments{b.uniform(-1.0, 1.0), b.uniform(-1.0, 1.0)}; });
}

TEST(CorrectlyRounded, Atan2OverAllDoubles) {
  expect_no_misrounding(kAtan2, "all doubles", 18, [](Bits& b) { return Arguments{b.any_finite(), b.any_finite()}; });
}

TEST(CorrectlyRounded, HypotOverCoordinateDifferences) {
  expect_no_misrounding(kHypot, "coordinate differences to 1e5", 19, [](Bits& b) {
    if (b.next() & 1) return Arguments{b.uniform(-1e5, 1e5), b.uniform(-1e5, 1e5)};
    return Arguments{b.spread(1e-6, 1e5) * ((b.next() & 1) ? 1 : -1), b.spread(1e-6, 1e5)};
  });
}

TEST(CorrectlyRounded, HypotOverAllDoubles) {
  expect_no_misrounding(kHypot, "all doubles", 20, [](Bits& b) { return Arguments{b.any_finite(), b.any_finite()}; });
}

// ---- Hard cases ------------------------------------------------------------

// Arguments next to 1, powers of two and ten, the ends of the range and
// subnormals.
std::vector<Arguments> logarithm_hard_cases() {
  std::vector<Arguments> c;
  for (int k = 1; k <= 2000; ++k) {
    c.push_back({1.0 + k * 0x1p-52, 0.0});
    c.push_back({1.0 - k * 0x1p-53, 0.0});
    c.push_back({1.0 + k * 0x1p-30, 0.0});
    c.push_back({1.0 - k * 0x1p-30, 0.0});
  }
  for (int e = -1074; e <= 1023; ++e) c.push_back({std::ldexp(1.0, e), 0.0});
  for (int e = -323; e <= 308; ++e) c.push_back({std::strtod(("1e" + std::to_string(e)).c_str(), nullptr), 0.0});
  for (double x : {kMax, kMinNormal, kMinSubnormal, std::nextafter(kMinNormal, 0.0), std::nextafter(kMax, 0.0),
                   std::nextafter(kMinNormal, 1.0), 0x1.6a09e667f3bcdp-1, 0x1.6a09e667f3bccp-1, 0x1.6a09e667f3bcdp+0,
                   0x1.6a09e667f3bccp+0, 10.0, 2.718281828459045, 2.7182818284590455}) {
    c.push_back({x, 0.0});
  }
  Bits b{21};
  for (int i = 0; i < 2000; ++i) c.push_back({std::bit_cast<double>(b.next() >> 12), 0.0});  // subnormals
  return c;
}

TEST(CorrectlyRounded, LogHardCases) { expect_all_correct(kLog, "hard cases", logarithm_hard_cases()); }
TEST(CorrectlyRounded, Log10HardCases) { expect_all_correct(kLog10, "hard cases", logarithm_hard_cases()); }

// Exact results and midpoints (integer powers, squares of 27-bit and cubes
// of 18-bit mantissas, roots), bases next to 1 with huge exponents,
// results next to overflow and underflow and subnormal ones, and negative
// bases with integer exponents.
std::vector<Arguments> pow_hard_cases() {
  std::vector<Arguments> c;
  for (int x = 2; x <= 40; ++x) {
    for (int y = -40; y <= 40; ++y) {
      c.push_back({static_cast<double>(x), static_cast<double>(y)});
      c.push_back({-static_cast<double>(x), static_cast<double>(y)});
    }
  }
  for (int y = -330; y <= 330; ++y) c.push_back({10.0, static_cast<double>(y)});
  Bits b{22};
  for (int i = 0; i < 3000; ++i) {
    const double m27 = std::ldexp(static_cast<double>((b.next() >> 37) | 1), -26);  // 27 significant bits, odd
    const double m18 = std::ldexp(static_cast<double>((b.next() >> 46) | 1), -17);  // 18 significant bits, odd
    c.push_back({m27, 2.0});
    c.push_back({m27, -2.0});
    c.push_back({m18, 3.0});
    c.push_back({m27 * m27, 0.5});
    c.push_back({m27 * m27, 1.5});
    c.push_back({m18 * m18 * m18, 1.0 / 3.0});
    c.push_back({std::ldexp(m27, static_cast<int>(b.next() % 64) - 32), 2.0});
    c.push_back({1.0 + static_cast<double>(b.next() % 1000 + 1) * 0x1p-52, std::ldexp(b.uniform(1.0, 2.0), 50 + static_cast<int>(b.next() % 12))});
    c.push_back({1.0 - static_cast<double>(b.next() % 1000 + 1) * 0x1p-53, -std::ldexp(b.uniform(1.0, 2.0), 50 + static_cast<int>(b.next() % 12))});
    // Results next to overflow and underflow, and subnormal ones.
    const double x = b.uniform(1.01, 100.0);
    c.push_back({x, 1024.0 / std::log2(x) + b.uniform(-1e-9, 1e-9)});
    c.push_back({x, -1022.0 / std::log2(x) + b.uniform(-1e-3, 1e-3)});
    c.push_back({x, -1074.0 / std::log2(x) + b.uniform(-30.0 / std::log2(x), 1.0 / std::log2(x))});
    c.push_back({0.5, 1022.0 + b.uniform(0.0, 53.0)});
  }
  for (double y : {0.5, -0.5, 1.5, 2.5, 0.25, -0.25, 0.125}) {
    for (int x = 1; x <= 300; ++x) c.push_back({static_cast<double>(x * x), y});
  }
  for (int e = -1074; e <= 1023; e += 7) {
    c.push_back({std::ldexp(1.0, e), 0.5});
    c.push_back({std::ldexp(1.0, e), -1.0});
    c.push_back({std::ldexp(1.0, e), 1.0});
    c.push_back({std::ldexp(1.0, e), 3.0});
  }
  return c;
}

TEST(CorrectlyRounded, PowHardCases) { expect_all_correct(kPow, "hard cases", pow_hard_cases()); }

// The axes, the diagonals and next to them, tiny and huge quotients, and
// subnormal angles.
std::vector<Arguments> atan2_hard_cases() {
  std::vector<Arguments> c;
  const std::vector<double> sizes = {kMinSubnormal, 0x1p-1060, kMinNormal, 1e-300, 1e-20, 0.5, 1.0, 3.0, 1e20, 1e300, kMax};
  for (double y : sizes) {
    for (double x : sizes) {
      for (double sy : {1.0, -1.0}) {
        for (double sx : {1.0, -1.0}) c.push_back({sy * y, sx * x});
      }
    }
  }
  Bits b{23};
  for (int i = 0; i < 3000; ++i) {
    const double x = b.spread(1e-10, 1e10);
    c.push_back({x, x});
    c.push_back({std::nextafter(x, kInf), x});
    c.push_back({x, std::nextafter(x, kInf)});
    c.push_back({-x, -std::nextafter(x, 0.0)});
    c.push_back({std::bit_cast<double>(b.next() >> 12), b.uniform(0.5, 4.0)});
    c.push_back({-std::bit_cast<double>(b.next() >> 12), -b.uniform(0.5, 4.0)});
    c.push_back({b.uniform(0.5, 4.0), std::bit_cast<double>(b.next() >> 12)});
    c.push_back({x * 1e-200, x});
    c.push_back({x * 1e-12, -x});
  }
  return c;
}

TEST(CorrectlyRounded, Atan2HardCases) { expect_all_correct(kAtan2, "hard cases", atan2_hard_cases()); }

// Pythagorean triples, exact and halfway (a hypotenuse of 54 odd bits),
// subnormals, and results next to overflow.
std::vector<Arguments> hypot_hard_cases() {
  std::vector<Arguments> c;
  for (int e = -1074; e <= 1020; e += 3) {
    c.push_back({std::ldexp(3.0, e), std::ldexp(4.0, e)});
    c.push_back({std::ldexp(5.0, e), std::ldexp(12.0, e)});
  }
  Bits b{24};
  for (int i = 0; c.size() < 40000 && i < 1000000; ++i) {
    // a = u^2 - v^2, b = 2uv, c = u^2 + v^2, with c odd of 54 bits.
    const std::uint64_t u = (std::uint64_t{1} << 26) + (b.next() >> 39);
    const std::uint64_t v = (b.next() >> 38) | 1;
    if (v >= u) continue;
    const std::uint64_t a = u * u - v * v;
    const std::uint64_t bb = 2 * u * v;
    const std::uint64_t h = u * u + v * v;
    if (a >= (std::uint64_t{1} << 53) || bb >= (std::uint64_t{1} << 53) || h < (std::uint64_t{1} << 53)) continue;
    const int e = static_cast<int>(b.next() % 2000) - 1000;
    c.push_back({std::ldexp(static_cast<double>(a), e), std::ldexp(static_cast<double>(bb), e)});
  }
  for (int i = 0; i < 3000; ++i) {
    c.push_back({std::bit_cast<double>(b.next() >> 12), std::bit_cast<double>(b.next() >> 12)});
    c.push_back({b.uniform(0.5, 1.0) * kMax, b.uniform(0.0, 1.0) * kMax});
    const double x = b.spread(1e-300, 1e300);
    c.push_back({x, x});
    c.push_back({x, x * 0x1p-30});
    c.push_back({x, x * 0x1p-61});
    c.push_back({x, std::nextafter(x, 0.0)});
  }
  return c;
}

TEST(CorrectlyRounded, HypotHardCases) { expect_all_correct(kHypot, "hard cases", hypot_hard_cases()); }

// Arguments that a search (tools/rounding_search.cpp) found to lie closest
// to a midpoint, where the fast paths cannot decide.
struct SearchedCase {
  tesseramill_test::OracleFunction function;
  double a;
  double b;
};
const SearchedCase kSearched[] = {
#include "common/searched_cases.inc"
};

TEST(CorrectlyRounded, SearchedWorstCases) {
  int tested = 0;
  for (const SearchedCase& s : kSearched) {
    const Function* f = nullptr;
    switch (s.function) {
      case tesseramill_test::OracleFunction::log: f = &kLog; break;
      case tesseramill_test::OracleFunction::log10: f = &kLog10; break;
      case tesseramill_test::OracleFunction::pow: f = &kPow; break;
      case tesseramill_test::OracleFunction::atan2: f = &kAtan2; break;
      case tesseramill_test::OracleFunction::hypot: f = &kHypot; break;
    }
    EXPECT_TRUE(same_double(f->ours(s.a, s.b), f->oracle(s.a, s.b))) << f->name << std::hexfloat << "(" << s.a << ", " << s.b << ")";
    ++tested;
  }
  EXPECT_GT(tested, 0);
}

// ---- Special values (C's Annex F) -----------------------------------------

struct Special {
  const Function* f;
  double a;
  double b;
  double expected;
};

TEST(CorrectlyRounded, SpecialValues) {
  const double pi = 0x1.921fb54442d18p+1;
  const double half_pi = 0x1.921fb54442d18p+0;
  const std::vector<Special> table = {
      {&kLog, 1.0, 0, 0.0},          {&kLog, 0.0, 0, -kInf},         {&kLog, -0.0, 0, -kInf},
      {&kLog, -1.0, 0, kNaN},        {&kLog, kInf, 0, kInf},         {&kLog, -kInf, 0, kNaN},
      {&kLog, kNaN, 0, kNaN},        {&kLog10, 1.0, 0, 0.0},         {&kLog10, 0.0, 0, -kInf},
      {&kLog10, -0.0, 0, -kInf},     {&kLog10, -2.0, 0, kNaN},       {&kLog10, kInf, 0, kInf},
      {&kLog10, 1000.0, 0, 3.0},     {&kLog10, 1e22, 0, 22.0},       {&kLog10, kNaN, 0, kNaN},
      {&kPow, kNaN, 0.0, 1.0},       {&kPow, kNaN, -0.0, 1.0},       {&kPow, 1.0, kNaN, 1.0},
      {&kPow, -1.0, kInf, 1.0},      {&kPow, -1.0, -kInf, 1.0},      {&kPow, 2.0, kNaN, kNaN},
      {&kPow, kNaN, 2.0, kNaN},      {&kPow, 0.0, -3.0, kInf},       {&kPow, -0.0, -3.0, -kInf},
      {&kPow, -0.0, -2.0, kInf},     {&kPow, -0.0, -0.5, kInf},      {&kPow, 0.0, -kInf, kInf},
      {&kPow, 0.0, 3.0, 0.0},        {&kPow, -0.0, 3.0, -0.0},       {&kPow, -0.0, 2.0, 0.0},
      {&kPow, -0.0, 0.5, 0.0},       {&kPow, 0.5, -kInf, kInf},      {&kPow, 2.0, -kInf, 0.0},
      {&kPow, 0.5, kInf, 0.0},       {&kPow, -2.0, kInf, kInf},      {&kPow, -kInf, -3.0, -0.0},
      {&kPow, -kInf, -2.0, 0.0},     {&kPow, -kInf, 3.0, -kInf},     {&kPow, -kInf, 2.5, kInf},
      {&kPow, kInf, -1.0, 0.0},      {&kPow, kInf, 0.5, kInf},       {&kPow, -2.0, 0.5, kNaN},
      {&kPow, -8.0, 1.0 / 3.0, kNaN},{&kPow, -2.0, 3.0, -8.0},       {&kPow, -2.0, -3.0, -0.125},
      {&kPow, -2.0, 0x1p53, kInf},   {&kPow, -0.5, 0x1p53 + 2, 0.0}, {&kPow, -1.0, 0x1p60, 1.0},
      {&kPow, -1.0, 3.0, -1.0},      {&kPow, 2.0, 1024.0, kInf},     {&kPow, -2.0, 1025.0, -kInf},
      {&kPow, 2.0, -1074.0, kMinSubnormal}, {&kPow, 2.0, -1075.0, 0.0}, {&kPow, -2.0, -1075.0, -0.0},
      {&kPow, 2.0, -1074.5, kMinSubnormal}, {&kPow, 2.0, -1075.5, 0.0},    {&kPow, 2.0, -1073.5, kMinSubnormal}, {&kPow, 2.0, 0.5, 0x1.6a09e667f3bcdp+0},
      {&kAtan2, 0.0, -0.0, pi},      {&kAtan2, -0.0, -0.0, -pi},     {&kAtan2, 0.0, 0.0, 0.0},
      {&kAtan2, -0.0, 0.0, -0.0},    {&kAtan2, 0.0, -1.0, pi},       {&kAtan2, -0.0, -1.0, -pi},
      {&kAtan2, 0.0, 1.0, 0.0},      {&kAtan2, -0.0, 1.0, -0.0},     {&kAtan2, -1.0, 0.0, -half_pi},
      {&kAtan2, -1.0, -0.0, -half_pi}, {&kAtan2, 1.0, 0.0, half_pi}, {&kAtan2, 1.0, -kInf, pi},
      {&kAtan2, -1.0, -kInf, -pi},   {&kAtan2, 1.0, kInf, 0.0},      {&kAtan2, -1.0, kInf, -0.0},
      {&kAtan2, kInf, 5.0, half_pi}, {&kAtan2, -kInf, -5.0, -half_pi}, {&kAtan2, kInf, -kInf, 0x1.2d97c7f3321d2p+1},
      {&kAtan2, -kInf, kInf, -0x1.921fb54442d18p-1}, {&kAtan2, kNaN, 1.0, kNaN}, {&kAtan2, 1.0, kNaN, kNaN},
      {&kAtan2, 1.0, 1.0, 0x1.921fb54442d18p-1}, {&kAtan2, 1e-320, 1e10, 0.0}, {&kAtan2, -kMinSubnormal, 4.0, -0.0},
      {&kHypot, kInf, kNaN, kInf},   {&kHypot, kNaN, -kInf, kInf},   {&kHypot, kNaN, 1.0, kNaN},
      {&kHypot, -0.0, 0.0, 0.0},     {&kHypot, -3.0, 4.0, 5.0},      {&kHypot, kMax, kMax, kInf},
      {&kHypot, kMinSubnormal, kMinSubnormal, kMinSubnormal}, {&kHypot, 0x1p-1074, 0x1p-1073, 0x1p-1073},
      {&kHypot, -0.0, -7.5, 7.5},
  };
  for (const Special& s : table) {
    const double got = s.f->ours(s.a, s.b);
    EXPECT_TRUE(same_double(got, s.expected))
        << s.f->name << std::hexfloat << "(" << s.a << ", " << s.b << ") = " << got << ", expected " << s.expected;
    EXPECT_TRUE(same_double(s.f->oracle(s.a, s.b), s.expected)) << s.f->name << std::hexfloat << "(" << s.a << ", " << s.b << ")";
  }
}

// ---- The slow paths on their own -------------------------------------------

// The fast paths decide almost every argument, so the slow paths are run
// here directly over the programs' ranges and beyond.
TEST(CorrectlyRounded, SlowPathsAloneAreCorrectlyRounded) {
  Bits b{25};
  int wrong = 0;
  const int count = kMathsArguments >= 1000000 ? 100000 : 2000;
  for (int i = 0; i < count; ++i) {
    const double x = (i % 2) ? b.spread(0.01, 1e4) : b.any_positive();
    if (x == 1.0) continue;
    if (!same_double(log_slow(x), tesseramill_test::oracle_log(x))) ++wrong;
    if (!same_double(log10_slow(x), tesseramill_test::oracle_log10(x))) ++wrong;
    const double g = b.uniform(1.01, 3.0);
    const double e = b.uniform(-1.5, 40.0);
    if (!same_double(pow_slow(g, e), tesseramill_test::oracle_pow(g, e))) ++wrong;
    const double p = b.spread(1e-300, 1e300);
    const double q = b.uniform(-1080.0, 1020.0) / std::log2(p);
    if (std::fabs(q * std::log(p)) > 1e-15 && std::fabs(q * std::log(p)) < 745.0 && p != 1.0 &&
        !same_double(pow_slow(p, q), tesseramill_test::oracle_pow(p, q))) {
      ++wrong;
    }
    const double ay = (i % 3) ? b.uniform(-1.0, 1.0) : b.any_finite();
    const double ax = (i % 3) ? b.uniform(-1.0, 1.0) : b.any_finite();
    if (ay != 0.0 && ax != 0.0 && !same_double(atan2_slow(ay, ax), tesseramill_test::oracle_atan2(ay, ax))) ++wrong;
  }
  EXPECT_EQ(wrong, 0);
}

// ---- The error bounds of the fast paths -----------------------------------

// The quick and the precise double-double logarithms stay within 2^-69.5
// and 2^-78 of log(x), and the double-double power from them within
// |y log x| 2^-69.4 + 2^-77 and |y log x| 2^-77.9 + 2^-77 of pow(x, y), the
// bounds that the rounding tests rely on; the largest errors met are printed.
TEST(CorrectlyRounded, FastPathsKeepTheirErrorBounds) {
  Bits b{27};
  double worst_log = -1000.0;
  double worst_quick = -1000.0;
  double worst_pow = -1000.0;
  double worst_quick_pow = -1000.0;
  const int count = kMathsArguments >= 1000000 ? 1000000 : 20000;
  for (int i = 0; i < count; ++i) {
    const double x = (i % 4 == 0) ? b.any_positive() : (i % 4 == 1) ? 1.0 + b.uniform(-0x1p-9, 0x1p-9) : b.spread(0.01, 1e4);
    if (x == 1.0) continue;
    const DoubleDouble l = log_double_double(x);
    const double el = tesseramill_test::relative_error(tesseramill_test::OracleFunction::log, x, 0.0, l.hi, l.lo, 0);
    worst_log = std::max(worst_log, el);
    EXPECT_LT(el, -78.0) << std::hexfloat << x;
    const DoubleDouble q = log_quick_double_double(x);
    const double eq = tesseramill_test::relative_error(tesseramill_test::OracleFunction::log, x, 0.0, q.hi, q.lo, 0);
    worst_quick = std::max(worst_quick, eq);
    EXPECT_LT(eq, -69.5) << std::hexfloat << x;

    const double g = (i % 2) ? b.uniform(1.01, 3.0) : b.spread(1e-300, 1e300);
    const double y = (i % 2) ? b.uniform(-1.5, 40.0) : b.uniform(-740.0, 705.0) / std::log(g);
    const DoubleDouble e = dd_mul(log_double_double(g), y);
    if (g == 1.0 || !(std::fabs(e.hi) > 0x1p-60 && std::fabs(e.hi) < 709.0)) continue;
    int scale;
    const DoubleDouble p = exp_double_double(e, scale);
    const double ep = tesseramill_test::relative_error(tesseramill_test::OracleFunction::pow, g, y, p.hi, p.lo, scale);
    const double allowed = std::log2(std::fabs(e.hi) * 0x1.12p-78 + 0x1p-77);
    worst_pow = std::max(worst_pow, ep - allowed);
    EXPECT_LT(ep, allowed) << std::hexfloat << g << " " << y;
    // And from the quick logarithm, within |y log x| 2^-69.4 + 2^-77.
    const DoubleDouble e_quick = dd_mul(log_quick_double_double(g), y);
    int quick_scale;
    const DoubleDouble pq = exp_double_double(e_quick, quick_scale);
    const double epq =
        tesseramill_test::relative_error(tesseramill_test::OracleFunction::pow, g, y, pq.hi, pq.lo, quick_scale);
    const double allowed_quick = std::log2(std::fabs(e_quick.hi) * 0x1.86p-70 + 0x1p-77);
    worst_quick_pow = std::max(worst_quick_pow, epq - allowed_quick);
    EXPECT_LT(epq, allowed_quick) << std::hexfloat << g << " " << y;
  }
  std::printf("largest errors: quick log 2^%.2f, log 2^%.2f; pow 2^%.2f and 2^%.2f (from the quick log) of its bound\n",
              worst_quick, worst_log, worst_pow, worst_quick_pow);
}

// ---- The one-base power ----------------------------------------------------

TEST(CorrectlyRounded, FixedBasePowerIsPowBitForBit) {
  Bits b{26};
  for (double base : {1.01, 1.2, 1.5, 2.0, 3.0, 0.5, 1.0, 0.0, -2.0, kInf, kNaN, 1e300, 1e-300}) {
    const FixedBase fb = fixed_base(base);
    for (double y : {0.0, -0.0, 1.0, -1.0, 1.5, -1.5, 0.5, 3.0, 40.0, 1e10, -1e10, kInf, -kInf, kNaN, 1e-300}) {
      EXPECT_TRUE(same_double(cr_pow(fb, y), cr_pow(base, y))) << std::hexfloat << base << " " << y;
    }
    for (int i = 0; i < 2000; ++i) {
      const double y = b.uniform(-1.5, 40.0);
      EXPECT_TRUE(same_double(cr_pow(fb, y), cr_pow(base, y))) << std::hexfloat << base << " " << y;
    }
  }
}

}  // namespace
}  // namespace tesseramill
