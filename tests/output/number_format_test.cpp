#include <gtest/gtest.h>

#include <cmath>
#include <limits>

#include "output/number_format.h"

namespace tesseramill {
namespace {

TEST(NumberFormat, OneDigitScientific) {
  EXPECT_EQ(format_scientific(-10.0, 16, 9), "-1.000000000E+01");
  EXPECT_EQ(format_scientific(-10.0, 0, 7), "-1.0000000E+01");
  EXPECT_EQ(format_scientific(1500.0, 16, 9), " 1.500000000E+03");
  EXPECT_EQ(format_scientific(0.0123456789, 0, 5), "1.23457E-02");
  EXPECT_EQ(format_scientific(0.0, 0, 7), "0.0000000E+00");
}

TEST(NumberFormat, ZeroLedScientific) {
  EXPECT_EQ(format_zero_led(10.0, 16, 9), " 0.100000000E+02");
  EXPECT_EQ(format_zero_led(20.0, 14, 7), " 0.2000000E+02");
  EXPECT_EQ(format_zero_led(10.0, 14, 7), " 0.1000000E+02");
  EXPECT_EQ(format_zero_led(0.0, 0, 7), "0.0000000E+00");
  EXPECT_EQ(format_zero_led(0.0, 16, 9), " 0.000000000E+00");
  EXPECT_EQ(format_zero_led(1000.0, 16, 9), " 0.100000000E+04");
  EXPECT_EQ(format_zero_led(-0.05, 16, 9), "-0.500000000E-01");
}

TEST(NumberFormat, ZeroNeverCarriesAMinus) {
  EXPECT_EQ(format_scientific(-0.0, 0, 7), "0.0000000E+00");
  EXPECT_EQ(format_zero_led(-0.0, 0, 7), "0.0000000E+00");
  EXPECT_EQ(format_fixed(-0.0, 8, 3), "   0.000");
}

TEST(NumberFormat, FixedPoint) {
  EXPECT_EQ(format_fixed(513250.5, 15, 3), "     513250.500");
  EXPECT_EQ(format_fixed(-6234000.125, 15, 4), "  -6234000.1250");
  EXPECT_EQ(format_fixed(12.3456, 12, 3), "      12.346");
  EXPECT_EQ(format_fixed(0.5, 6, 3), " 0.500");
  EXPECT_EQ(format_fixed(123456789012.0, 15, 4), "***************");
}

TEST(NumberFormat, Integers) {
  EXPECT_EQ(format_integer(10000000, 7), "*******");
  EXPECT_EQ(format_integer(9999999, 7), "9999999");
  EXPECT_EQ(format_integer(1234, 10), "      1234");
  EXPECT_EQ(format_integer(-5, 6), "    -5");
  EXPECT_EQ(format_integer(-123456), "-123456");
  EXPECT_EQ(format_integer(1000000, 6), "******");
}

TEST(NumberFormat, RoundingCarriesIntoTheNextPowerOfTen) {
  EXPECT_EQ(format_scientific(9.9999999999, 0, 5), "1.00000E+01");
  EXPECT_EQ(format_scientific(-9.999996, 0, 5), "-1.00000E+01");
  EXPECT_EQ(format_zero_led(0.99999999999, 14, 7), " 0.1000000E+01");
  EXPECT_EQ(format_fixed(9.99951, 6, 3), "10.000");
  // 9.9995 is held as 9.99949999..., so it rounds down.
  EXPECT_EQ(format_fixed(9.9995, 6, 3), " 9.999");
  EXPECT_EQ(format_fixed(99.9996, 6, 3), "******");
}

TEST(NumberFormat, FieldTooNarrowForScientificIsAsterisks) {
  EXPECT_EQ(format_zero_led(-20.0, 13, 7), "*************");
  EXPECT_EQ(format_zero_led(20.0, 13, 7), "0.2000000E+02");
  EXPECT_EQ(format_scientific(-1.0, 5, 3), "*****");
}

TEST(NumberFormat, LongFixedFieldsKeepEveryDigit) {
  EXPECT_EQ(format_scientific(1234.5678, 0, 15), "1.234567800000000E+03");
  EXPECT_EQ(format_scientific(0.1, 0, 15), "1.000000000000000E-01");
}

TEST(NumberFormat, SmallAndLargeExponents) {
  EXPECT_EQ(format_scientific(1.5e-7, 0, 3), "1.500E-07");
  EXPECT_EQ(format_zero_led(1.5e-7, 0, 3), "0.150E-06");
  EXPECT_EQ(format_scientific(2.5e120, 0, 2), "2.50E+120");
}

TEST(NumberFormat, NonFiniteValuesAreWords) {
  EXPECT_EQ(format_scientific(std::numeric_limits<double>::quiet_NaN(), 8, 3), "     NaN");
  EXPECT_EQ(format_fixed(-std::numeric_limits<double>::infinity(), 0, 3), "-Infinity");
  EXPECT_EQ(format_fixed(std::numeric_limits<double>::infinity(), 4, 3), "****");
}

TEST(NumberFormat, AppendsToAnExistingLine) {
  std::string line = "x=";
  append_fixed(line, 1.25, 6, 2);
  append_integer(line, 7, 3);
  EXPECT_EQ(line, "x=  1.25  7");
}

}  // namespace
}  // namespace tesseramill
