// MODFLOW 6's binary grid file as the check reads it: well-formed files
// written here by the test, and files it must refuse.
#include <gtest/gtest.h>

#include <bit>
#include <cstdint>
#include <string>
#include <vector>

#include "binary_grid.h"
#include "support/grb_text.h"

namespace tesseramill_test {
namespace {

using tesseramill_mf6check::BinaryGrid;
using tesseramill_mf6check::read_binary_grid;

TEST(BinaryGrid, ReadsScalarsAndArraysInTheOrderOfTheirDefinitions) {
  GrbWriter w;
  w.integer("NCPL", 3);
  w.real("XORIGIN", 1000.5);
  w.integers("IA", {1, 3, 5, 6});
  w.reals("VERTICES", {0.0, -1.25, 2.0, 3.5}, {2, 2});
  BinaryGrid grid;
  std::string error;
  ASSERT_TRUE(read_binary_grid(w.bytes("DISV"), grid, error)) << error;
  EXPECT_EQ(grid.grid_type, "DISV");
  std::vector<std::int32_t> ints;
  std::vector<double> reals;
  ASSERT_TRUE(grb_integers(grid, "NCPL", ints));
  EXPECT_EQ(ints, std::vector<std::int32_t>{3});
  ASSERT_TRUE(grb_doubles(grid, "XORIGIN", reals));
  EXPECT_EQ(reals, std::vector<double>{1000.5});
  ASSERT_TRUE(grb_integers(grid, "IA", ints));
  EXPECT_EQ(ints, (std::vector<std::int32_t>{1, 3, 5, 6}));
  ASSERT_TRUE(grb_doubles(grid, "VERTICES", reals));
  EXPECT_EQ(reals, (std::vector<double>{0.0, -1.25, 2.0, 3.5}));
  // A name the file lacks, or of the other type, gives nothing.
  EXPECT_FALSE(grb_integers(grid, "XORIGIN", ints));
  EXPECT_FALSE(grb_doubles(grid, "JA", reals));
}

TEST(BinaryGrid, ReadsNegativeIntegers) {
  GrbWriter w;
  w.integers("IDOMAIN", {-1, 0, 2147483647, -2147483647 - 1});
  BinaryGrid grid;
  std::string error;
  ASSERT_TRUE(read_binary_grid(w.bytes("DISV"), grid, error)) << error;
  std::vector<std::int32_t> ints;
  ASSERT_TRUE(grb_integers(grid, "IDOMAIN", ints));
  EXPECT_EQ(ints, (std::vector<std::int32_t>{-1, 0, 2147483647, -2147483647 - 1}));
}

struct Refusal {
  const char* name;
  std::string bytes;
  std::string error;
};

class BinaryGridRefusals : public testing::TestWithParam<Refusal> {};

TEST_P(BinaryGridRefusals, SaysWhy) {
  BinaryGrid grid;
  std::string error;
  EXPECT_FALSE(read_binary_grid(GetParam().bytes, grid, error));
  EXPECT_EQ(error, GetParam().error);
}

std::string small_grid() {
  GrbWriter w;
  w.integer("NCPL", 2);
  w.integers("IA", {1, 2, 3});
  return w.bytes("DISV");
}

std::string with_record(std::string bytes, std::size_t at, std::size_t length, const std::string& text) {
  std::string record = text;
  record.resize(length, ' ');
  bytes.replace(at, length, record);
  return bytes;
}

INSTANTIATE_TEST_SUITE_P(
    Files, BinaryGridRefusals,
    testing::Values(
        Refusal{"Empty", "", "it is shorter than the header of a binary grid file"},
        Refusal{"CutShortByOneByte", small_grid().substr(0, small_grid().size() - 1),
                "it holds 415 bytes where its definitions need 416"},
        Refusal{"OneByteTooMany", small_grid() + "x", "it holds 417 bytes where its definitions need 416"},
        Refusal{"CutWithinTheDefinitions", small_grid().substr(0, 250), "it ends within its 2 definitions"},
        Refusal{"WrongFirstRecord", with_record(small_grid(), 0, 50, "HEADS DISV"),
                "its first record is not GRID and a grid type"},
        Refusal{"WrongVersionRecord", with_record(small_grid(), 50, 50, "VERSION"),
                "its header records are not VERSION, NTXT and LENTXT with their values"},
        Refusal{"NtxtNotANumber", with_record(small_grid(), 100, 50, "NTXT two"),
                "its header records are not VERSION, NTXT and LENTXT with their values"},
        Refusal{"UnknownType", with_record(small_grid(), 200, 100, "NCPL LOGICAL NDIM 0 # 2"),
                "definition 1 is not NAME TYPE NDIM n"},
        Refusal{"MissingDimension", with_record(small_grid(), 300, 100, "IA INTEGER NDIM 1"),
                "definition 2 (IA) does not give its 1 dimensions"},
        Refusal{"DimensionNotANumber", with_record(small_grid(), 300, 100, "IA INTEGER NDIM 1 three"),
                "definition 2 (IA) has a dimension that is no size"}),
    [](const testing::TestParamInfo<Refusal>& info) { return std::string(info.param.name); });

}  // namespace
}  // namespace tesseramill_test
