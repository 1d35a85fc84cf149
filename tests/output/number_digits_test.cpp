// The layouts of the output files work their digits out by integer
// arithmetic on the exact binary value where the value allows, and must give
// the very text of the standard library's conversion: on seeded values of
// every size, on the coordinates and areas the files hold, on exact ties
// at the last digit, on carries into the next power of ten and at the edges
// where the integer path hands over to the library.
#include <gtest/gtest.h>

#include <cmath>
#include <cstdint>
#include <cstring>
#include <random>
#include <string>
#include <vector>

#include "output/number_format.h"

namespace tesseramill {
namespace {

// The layouts the writers use, with the widths and digits they use, and
// some beyond.
struct Layout {
  char kind;  // 'f' fixed, 's' scientific, 'z' zero-led
  int width;
  int decimals;
};

const Layout kLayouts[] = {{'f', 15, 3}, {'f', 15, 4}, {'f', 12, 3}, {'f', 0, 0},  {'f', 0, 1},
                           {'f', 0, 8},  {'f', 0, 17}, {'f', 0, 18}, {'s', 0, 10}, {'s', 16, 9},
                           {'s', 0, 5},  {'s', 14, 7}, {'s', 0, 0},  {'s', 0, 16}, {'s', 0, 17},
                           {'z', 14, 7}, {'z', 0, 10}, {'z', 0, 1},  {'z', 0, 17}, {'z', 0, 18}};

std::string fast(const Layout& l, double v) {
  std::string out;
  if (l.kind == 'f') append_fixed(out, v, l.width, l.decimals);
  if (l.kind == 's') append_scientific(out, v, l.width, l.decimals);
  if (l.kind == 'z') append_zero_led(out, v, l.width, l.decimals);
  return out;
}

std::string reference(const Layout& l, double v) {
  std::string out;
  if (l.kind == 'f') append_fixed_reference(out, v, l.width, l.decimals);
  if (l.kind == 's') append_scientific_reference(out, v, l.width, l.decimals);
  if (l.kind == 'z') append_zero_led_reference(out, v, l.width, l.decimals);
  return out;
}

// Whether the layout can also be written straight into a line: the fixed
// one in a field of at least one column, the scientific one in any.
bool puttable(const Layout& l) { return (l.kind == 'f' && l.width >= 1) || l.kind == 's'; }

// The layout written straight into a line of '#'; a byte written past the
// field shows as a failure.
std::string put(const Layout& l, double v) {
  char line[128];
  std::memset(line, '#', sizeof line);
  char* end = line;
  if (l.kind == 'f') end = put_fixed(line, v, l.width, l.decimals);
  if (l.kind == 's') end = put_scientific(line, v, l.width, l.decimals);
  const std::size_t length = static_cast<std::size_t>(end - line);
  for (std::size_t k = length; k < sizeof line; ++k) {
    if (line[k] != '#') {
      ADD_FAILURE() << "written past the field at " << k << " of " << std::hexfloat << v;
      break;
    }
  }
  return std::string(line, length);
}

void expect_same_text(const std::vector<double>& values) {
  int differences = 0;
  for (double v : values) {
    for (const Layout& l : kLayouts) {
      const std::string a = fast(l, v);
      const std::string b = reference(l, v);
      if (a != b && ++differences <= 10) {
        ADD_FAILURE() << l.kind << " width " << l.width << " decimals " << l.decimals << " of "
                      << std::hexfloat << v << ": " << a << " against " << b;
      }
      if (!puttable(l)) continue;
      const std::string c = put(l, v);
      if (c != a && ++differences <= 10) {
        ADD_FAILURE() << "put " << l.kind << " width " << l.width << " decimals " << l.decimals << " of "
                      << std::hexfloat << v << ": " << c << " against " << a;
      }
    }
  }
  EXPECT_EQ(differences, 0);
}

TEST(NumberDigits, SeededValuesOfEverySize) {
  std::mt19937_64 random(20261125);
  std::vector<double> values;
  for (int i = 0; i < 200000; ++i) {
    // Any bit pattern of a finite double, half of them negative.
    std::uint64_t bits = random();
    double v = 0.0;
    std::memcpy(&v, &bits, sizeof v);
    if (std::isfinite(v)) values.push_back(v);
    // Sizes from 1e-12 to 1e22, evenly in the exponent.
    const double exponent = std::uniform_real_distribution<double>(-12.0, 22.0)(random);
    values.push_back(std::pow(10.0, exponent) * (i % 2 == 0 ? 1.0 : -1.0));
  }
  expect_same_text(values);
}

TEST(NumberDigits, CoordinatesAndAreasOfTheOutputFiles) {
  // UTM coordinates as the files hold them, with every last bit, and cell
  // areas from a square millimetre to a square kilometre.
  std::mt19937_64 random(7);
  std::vector<double> values;
  for (int i = 0; i < 200000; ++i) {
    values.push_back(std::uniform_real_distribution<double>(1000.0, 1e7)(random));
    values.push_back(std::uniform_real_distribution<double>(1e-6, 1e6)(random));
    values.push_back(std::nextafter(std::round(values.back() * 1000.0) / 1000.0, 0.0));
  }
  expect_same_text(values);
}

TEST(NumberDigits, ExactTiesAtTheLastDigitGoToEven) {
  std::vector<double> values;
  // n/16 times 1000 and n/32 times 10000 end in exactly .5 for odd n: ties
  // at the third and fourth decimal.
  for (int n = -4001; n <= 4001; n += 2) {
    values.push_back(n / 16.0);
    values.push_back(n / 32.0);
    values.push_back(n / 2.0);
    values.push_back(1048576.0 + n / 16.0);
  }
  // Integers of 12 and 11 digits ending in 5: ties at the eleventh and
  // tenth significant digit; and 0.5 steps of every size to 2^52.
  for (std::int64_t n = 100000000005; n < 100000000005 + 20000; n += 10) values.push_back(static_cast<double>(n));
  for (std::int64_t n = 98765432105; n < 98765432105 + 20000; n += 10) values.push_back(static_cast<double>(n));
  for (double p = 1.0; p < 4503599627370496.0; p *= 2.0) values.push_back(p + 0.5);
  EXPECT_EQ(fast({'f', 0, 3}, 0.0625), "0.062");
  EXPECT_EQ(fast({'f', 0, 3}, 0.1875), "0.188");
  EXPECT_EQ(fast({'s', 0, 10}, 100000000005.0), "1.0000000000E+11");
  EXPECT_EQ(fast({'s', 0, 10}, 100000000015.0), "1.0000000002E+11");
  expect_same_text(values);
}

TEST(NumberDigits, CarriesAndTheEdgesOfTheIntegerPath) {
  std::vector<double> values;
  for (int e = -30; e <= 30; ++e) {
    const double p = std::pow(10.0, e);
    for (double v : {p, std::nextafter(p, 0.0), std::nextafter(p, INFINITY), p * 0.99999999999999994,
                     p * 9.99999999999999, p * 9.9999999995, p * 9.99949999}) {
      values.push_back(v);
      values.push_back(-v);
    }
  }
  // Around 1, 2^53, 2^64, 1e18 and 1e19, where the integer path stops.
  for (double v : {1.0, 9007199254740992.0, 18446744073709551616.0, 1e18, 1e19, 0.5, 0.0, -0.0,
                   4.9406564584124654e-324, 2.2250738585072014e-308, 1.7976931348623157e308}) {
    values.push_back(v);
    values.push_back(std::nextafter(v, 0.0));
    values.push_back(std::nextafter(v, INFINITY));
  }
  // Every binary exponent from 2^-70 to 2^70, the lowest and highest
  // significands and a tie-maker, where the rounding works on one word of
  // the product (shifts of 1 to 63 bits) or on two.
  for (int e = -70; e <= 70; ++e) {
    const double p = std::ldexp(1.0, e);
    for (double v : {p, std::nextafter(2.0 * p, 0.0), p * 1.5, p * 1.25 + std::ldexp(1.0, e - 52)}) {
      values.push_back(v);
      values.push_back(-v);
    }
  }
  expect_same_text(values);
}

TEST(NumberDigits, WordsAndOverflowsWrittenStraightIntoALine) {
  const std::vector<double> values = {INFINITY, -INFINITY, NAN, 1e300, -1e300, 123456789012.5, -0.0, 1e-300};
  expect_same_text(values);
  EXPECT_EQ(put({'f', 15, 3}, INFINITY), "       Infinity");
  EXPECT_EQ(put({'f', 6, 3}, 123456.0), "******");
  EXPECT_EQ(put({'s', 0, 10}, -INFINITY), "-Infinity");
  EXPECT_EQ(put({'s', 16, 9}, NAN), "             NaN");
  EXPECT_EQ(put({'s', 0, 10}, -1.5e-300), "-1.5000000000E-300");
}

// A fixed layout written straight into a line decides whether the number
// fits its field from q and the columns left for the digits, where the
// other layouts count the digits: numbers that fill the field to its last
// column, or one column more, on either side of a power of ten and with the
// carry of the rounding into it, with and without their sign.
TEST(NumberDigits, FixedFieldsFilledToTheLastColumn) {
  int differences = 0;
  for (int width = 1; width <= 22; ++width) {
    for (int decimals = 0; decimals <= 6; ++decimals) {
      for (int e = 0; e <= 19; ++e) {
        const double p = std::pow(10.0, e);
        const double half_step = 0.5 * std::pow(10.0, -decimals);
        for (double v : {p, std::nextafter(p, 0.0), p - half_step, std::nextafter(p - half_step, 0.0), p - 1.0}) {
          for (double signed_v : {v, -v}) {
            const Layout l{'f', width, decimals};
            const std::string a = put(l, signed_v);
            const std::string b = reference(l, signed_v);
            if (a != b && ++differences <= 10) {
              ADD_FAILURE() << "width " << width << " decimals " << decimals << " of " << std::hexfloat << signed_v
                            << ": " << a << " against " << b;
            }
          }
        }
      }
    }
  }
  EXPECT_EQ(differences, 0);
  // 999.9995 is held as 999.99950000000001, which rounds up to 1000.000.
  EXPECT_EQ(put({'f', 7, 3}, 999.9995), "*******");
  EXPECT_EQ(put({'f', 8, 3}, 999.9995), "1000.000");
  EXPECT_EQ(put({'f', 8, 3}, -999.9995), "********");
  EXPECT_EQ(put({'f', 9, 3}, -999.9995), "-1000.000");
  EXPECT_EQ(put({'f', 6, 3}, -0.0004), "-0.000");
  EXPECT_EQ(put({'f', 5, 3}, -0.0004), "*****");
}

TEST(NumberDigits, IntegersWrittenStraightIntoALine) {
  const std::vector<std::int64_t> values = {0, 1, -1, 9, 10, 99999, 100000, 999999, 1000000, -99999, -100000,
                                            2147483647, -2147483647 - 1, INT64_MAX, INT64_MIN};
  for (std::int64_t v : values) {
    for (int width : {1, 5, 6, 7, 10, 20, 24}) {
      char line[64];
      std::memset(line, '#', sizeof line);
      char* end = put_integer(line, v, width);
      ASSERT_EQ(end - line, width) << v;
      EXPECT_EQ(std::string(line, end), format_integer(v, width)) << v << " in " << width;
      EXPECT_EQ(line[width], '#');
    }
  }
  char line[8];
  EXPECT_EQ(std::string(line, put_integer(line, 1234567, 6)), "******");
}

}  // namespace
}  // namespace tesseramill
