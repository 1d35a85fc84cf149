// Setting apart the vertex numbers of a grid file: hand-made grids whose
// numbers touch, stand apart already, fill their columns with asterisks or
// stop short, cells of many numbers, and what the fix keeps and changes.
#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <map>
#include <sstream>

#include "common/failure.h"
#include "report/disv_grid.h"
#include "report/grid_fix.h"
#include "report/grid_quality.h"
#include "support/grid_text.h"
#include "support/scratch.h"

namespace tesseramill_test {
namespace {

namespace fs = std::filesystem;

const std::string kBanner = "\n TESSERAMILL-REPORT version 1.21 by Larkspur Analytics.\n";
const std::string kReadingControl = "\n - reading file catchment.in...\n - file catchment.in read ok.\n";
const std::string kReadingGrid = "\n - reading file catchment.disv...\n - file catchment.disv read ok.\n";

// Two unit squares side by side over [0, 2] x [0, 1] whose corners carry
// numbers of seven digits: in the mesher's layout they fill their columns
// and run together, and into the count before them.
std::string touching_grid() {
  return grid_file(1000004,
                   {{999999, {0, 0}}, {1000000, {0, 1}}, {1000001, {1, 1}}, {1000002, {1, 0}}, {1000003, {2, 1}},
                    {1000004, {2, 0}}},
                   {{999999, 1000000, 1000001, 1000002}, {1000002, 1000001, 1000003, 1000004}});
}

const std::string kTouchingCells =
    "         1  5.000000000000000E-01  5.000000000000000E-01    4 999999100000010000011000002\n"
    "         2  5.000000000000000E-01  5.000000000000000E-01    41000002100000110000031000004\n";
const std::string kFixedCells =
    "         1  5.000000000000000E-01  5.000000000000000E-01    4  999999 1000000 1000001 1000002\n"
    "         2  5.000000000000000E-01  5.000000000000000E-01    4 1000002 1000001 1000003 1000004\n";

// A folder with the catchment example's control file and `grid` as its
// grid file.
void prepare(const ScratchDir& dir, const std::string& grid) {
  copy_folder(source_path("examples/catchment"), dir.path());
  dir.write("catchment.disv", grid);
}

std::vector<std::string> names_in(const ScratchDir& dir) {
  std::vector<std::string> names;
  for (const auto& entry : fs::directory_iterator(dir.path())) names.push_back(entry.path().filename().string());
  std::sort(names.begin(), names.end());
  return names;
}

// The fixed text of `text`, or the failure message.
std::string fixed_text(const std::string& text, std::string& failure) {
  const tesseramill::DisvGrid grid = read_grid(text, failure);
  if (!failure.empty()) return "";
  std::ostringstream screen;
  tesseramill::RunState state;
  state.screen = &screen;
  std::string out;
  try {
    tesseramill::set_numbers_apart(state, "g.disv", text, grid, out);
  } catch (const tesseramill::RunFailure&) {
    failure = state.message_buffer;
  }
  return out;
}

TEST(FixGrid, SetsTouchingNumbersApartAndKeepsTheOriginal) {
  const std::string original = touching_grid();
  ASSERT_NE(original.find(kTouchingCells), std::string::npos);
  ScratchDir dir;
  prepare(dir, original);
  const std::vector<std::string> before = names_in(dir);
  const RunResult result = run_report_binary(dir, {"--fix-grid", "catchment.in"});
  EXPECT_EQ(result.screen, kBanner + kReadingControl + kReadingGrid +
                               "\n - setting apart the vertex numbers of file catchment.disv...\n"
                               " - file catchment.disv.orig written ok: the grid as the mesher wrote it.\n"
                               " - file catchment.disv written ok: every vertex number of its 2 cells set apart"
                               " by a blank.\n");
  EXPECT_EQ(result.status, 0);
  // Only the cell lines change; the original stands beside the fixed file,
  // and no temporary file is left.
  std::string expected = original;
  expected.replace(expected.find(kTouchingCells), kTouchingCells.size(), kFixedCells);
  EXPECT_EQ(dir.read("catchment.disv"), expected);
  EXPECT_EQ(dir.read("catchment.disv.orig"), original);
  std::vector<std::string> after = before;
  after.push_back("catchment.disv.orig");
  std::sort(after.begin(), after.end());
  EXPECT_EQ(names_in(dir), after);

  // Read back: the same numbers in the same order, and every readiness
  // check passes.
  std::string failure;
  const tesseramill::DisvGrid grid = read_grid(expected, failure);
  EXPECT_EQ(failure, "");
  EXPECT_EQ(grid.cell_vertices, (std::vector<std::int32_t>{999999, 1000000, 1000001, 1000002, 1000002, 1000001,
                                                           1000003, 1000004}));
  EXPECT_EQ(grid.first_joined_cell, 0);
  tesseramill::DomainRings rings;
  rings.outer = {0, 0, 2, 0, 2, 1, 0, 1, 0, 0};
  const tesseramill::GridQuality q = tesseramill::assess_grid(grid, rings, 1.2);
  for (const tesseramill::ReadinessCheck& check : q.checks) EXPECT_TRUE(check.passed) << check.what;

  // A second call finds nothing to do and changes nothing.
  const RunResult again = run_report_binary(dir, {"--fix-grid", "catchment.in"});
  EXPECT_EQ(again.screen, kBanner + kReadingControl + kReadingGrid +
                              " - vertex numbers of file catchment.disv already set apart: the file is left as it"
                              " is.\n");
  EXPECT_EQ(dir.read("catchment.disv"), expected);
  EXPECT_EQ(dir.read("catchment.disv.orig"), original);

  // A new grid from a later run is fixed, but the first original is kept.
  std::string later = original;
  later.replace(later.find("         2  5.0"), 15, "         2  7.0");
  dir.write("catchment.disv", later);
  const RunResult third = run_report_binary(dir, {"--fix-grid", "catchment.in"});
  EXPECT_NE(third.screen.find(" - file catchment.disv.orig kept as it was, from an earlier fix.\n"
                              " - file catchment.disv written ok:"),
            std::string::npos)
      << third.screen;
  EXPECT_EQ(dir.read("catchment.disv.orig"), original);
  EXPECT_NE(dir.read("catchment.disv").find("         2  7.000000000000000E-01  5.000000000000000E-01    4 1000002"),
            std::string::npos);
}

TEST(FixGrid, LeavesAGridWhoseNumbersStandApart) {
  const std::string grid = grid_file(4, {{1, {0, 0}}, {2, {0, 1}}, {3, {1, 1}}, {4, {1, 0}}}, {{1, 2, 3, 4}});
  ScratchDir dir;
  prepare(dir, grid);
  const std::vector<std::string> before = names_in(dir);
  const RunResult result = run_report_binary(dir, {"--fix-grid", "catchment.in"});
  EXPECT_EQ(result.screen, kBanner + kReadingControl + kReadingGrid +
                               " - vertex numbers of file catchment.disv already set apart: the file is left as it"
                               " is.\n");
  EXPECT_EQ(dir.read("catchment.disv"), grid);
  EXPECT_EQ(names_in(dir), before);
}

// The fix goes by the cell's numbers, not by a width: a cell of 150 numbers
// stays on one line, one of 1200 goes on over a second line after 1000, as
// the mesher would write it, and the reader takes both back.
TEST(FixGrid, CellsOfManyNumbers) {
  std::vector<int> hundred_fifty;
  std::vector<int> twelve_hundred;
  for (int v = 1; v <= 150; ++v) hundred_fifty.push_back(v);
  for (int v = 1200; v >= 1; --v) twelve_hundred.push_back(v);
  const std::string text = grid_file(1200, {}, {hundred_fifty, {1, 2, 3}, twelve_hundred});
  std::string failure;
  const std::string out = fixed_text(text, failure);
  ASSERT_EQ(failure, "");
  std::string first = "         1  5.000000000000000E-01  5.000000000000000E-01  150";
  for (int v : hundred_fifty) first += std::string(8 - std::to_string(v).size(), ' ') + std::to_string(v);
  std::string third = "         3  5.000000000000000E-01  5.000000000000000E-01 1200";
  for (std::size_t i = 0; i < twelve_hundred.size(); ++i) {
    if (i == 1000) third += "\n";
    const std::string digits = std::to_string(twelve_hundred[i]);
    third += std::string(8 - digits.size(), ' ') + digits;
  }
  EXPECT_EQ(out.substr(out.find("BEGIN CELL2D\n")),
            "BEGIN CELL2D\n" + first +
                "\n         2  5.000000000000000E-01  5.000000000000000E-01    3       1       2       3\n" +
                third + "\nEND CELL2D\n");
  EXPECT_EQ(out.substr(0, out.find("BEGIN CELL2D\n")), text.substr(0, text.find("BEGIN CELL2D\n")));
  const tesseramill::DisvGrid back = read_grid(out, failure);
  EXPECT_EQ(failure, "");
  const tesseramill::DisvGrid original = read_grid(text, failure);
  EXPECT_EQ(back.cell_vertices, original.cell_vertices);
  EXPECT_EQ(back.cell_start, original.cell_start);
}

// Lines that end in CR LF keep their line ends; blank lines in the block
// stay where they are.
TEST(FixGrid, KeepsLineEndsAndBlankLines) {
  std::string failure;
  const std::string out = fixed_text(
      "BEGIN DIMENSIONS\r\n NCPL 2\r\n NVERT 4\r\nEND DIMENSIONS\r\nBEGIN VERTICES\r\n 1 0 0\r\n 2 0 1\r\n 3 1 1\r\n"
      " 4 1 0\r\nEND VERTICES\r\nBEGIN CELL2D\r\n 1 0.3 0.6 3 1 2 3\r\n \r\n 2 0.6 0.3 3\t1 3 4\r\nEND CELL2D\r\n",
      failure);
  ASSERT_EQ(failure, "");
  EXPECT_EQ(out.substr(out.find("BEGIN CELL2D")),
            "BEGIN CELL2D\r\n 1 0.3 0.6    3       1       2       3\r\n \r\n 2 0.6 0.3    3       1       3       4\r\n"
            "END CELL2D\r\n");
}

// The reader accepts a cell whose centre stands on the line after its
// number, but such a line cannot keep its bytes and gain blanks.
TEST(FixGrid, RefusesACellSpreadOverLines) {
  std::string failure;
  fixed_text("BEGIN DIMENSIONS\n NCPL 1\n NVERT 3\nEND DIMENSIONS\nBEGIN VERTICES\n 1 0 0\n 2 0 1\n 3 1 1\n"
             "END VERTICES\nBEGIN CELL2D\n 1\n 0.3 0.6 3 1 2 3\nEND CELL2D\n",
             failure);
  EXPECT_EQ(failure,
            "Cell 1 of file g.disv does not stand on a line of its own with its centre and count, as the mesher"
            " writes it, so its vertex numbers cannot be set apart. Run the mesher again to write the grid afresh.");
}

// Numbers of 10,000,000 or more fill their seven columns with asterisks:
// both the fix and the report say the numbers are lost, and change nothing.
TEST(FixGrid, AsterisksMeanTheNumbersAreLost) {
  std::string grid = grid_file(4, {{1, {0, 0}}, {2, {0, 1}}, {3, {1, 1}}, {4, {1, 0}}}, {{1, 2, 3, 4}});
  grid.replace(grid.find("      3      4\n"), 14, "*******      4");
  ScratchDir dir;
  prepare(dir, grid);
  const std::vector<std::string> before = names_in(dir);
  const std::string message =
      "\n - reading file catchment.disv...\n"
      "\n Cell 1 of file catchment.disv has vertex numbers of 10,000,000 or more, \n"
      "   which the seven columns of the grid file fill with asterisks: the numbers \n"
      "   are lost. Make a grid of fewer than 10,000,000 vertices (about 5,000,000 \n"
      "   cells) and run the mesher again.\n";
  const RunResult fix = run_report_binary(dir, {"--fix-grid", "catchment.in"});
  EXPECT_EQ(fix.screen, kBanner + kReadingControl + message);
  const RunResult report = run_report_binary(dir, {"catchment.in"});
  EXPECT_EQ(screen_tail(report.screen, message.size()), message);
  EXPECT_EQ(dir.read("catchment.disv"), grid);
  EXPECT_EQ(names_in(dir), before);
}

// A grid file cut short gets the report's own message, and is left as it is.
TEST(FixGrid, GridCutShort) {
  std::string grid = touching_grid();
  grid.resize(grid.find("         2  5.0"));
  ScratchDir dir;
  prepare(dir, grid);
  const std::vector<std::string> before = names_in(dir);
  const RunResult result = run_report_binary(dir, {"--fix-grid", "catchment.in"});
  EXPECT_EQ(result.screen, kBanner + kReadingControl + "\n - reading file catchment.disv...\n"
                                                       "\n Error reading line 1000016 of file catchment.disv.\n");
  EXPECT_EQ(dir.read("catchment.disv"), grid);
  EXPECT_EQ(names_in(dir), before);
}

TEST(FixGrid, NamesTheCommandWhenTheGridIsMissing) {
  ScratchDir dir;
  copy_folder(source_path("examples/catchment"), dir.path());
  const RunResult result = run_report_binary(dir, {"--fix-grid", "catchment.in"});
  EXPECT_EQ(result.screen, kBanner + kReadingControl +
                               "\n - reading file catchment.disv...\n"
                               "\n Cannot open file catchment.disv. It is the MODFLOW 6 grid that the command \n"
                               "   \"tesseramill catchment.in\" writes: run that command in this folder first.\n");
}

TEST(FixGrid, UnknownOption) {
  ScratchDir dir;
  const RunResult result = run_report_binary(dir, {"--fix", "catchment.in"});
  EXPECT_EQ(result.screen, kBanner +
                               "\n Option --fix is not known: the report takes --fix-grid or no option before \n"
                               "   the name of the input file.\n");
  EXPECT_EQ(result.status, 0);
  EXPECT_TRUE(names_in(dir).empty());
}

// A whole run of the mesher: its grid is small enough for its numbers to
// stand apart, and neither the fix nor the report changes a file of the run.
TEST(FixGrid, NoFileOfTheRunChangesWithoutTheOption) {
  ScratchDir dir;
  copy_folder(source_path("examples/catchment"), dir.path());
  run_binary(dir, {"catchment.in"});
  std::map<std::string, std::string> run_files;
  for (const std::string& name : names_in(dir)) run_files[name] = dir.read(name);
  ASSERT_GT(run_files.count("catchment.disv"), 0U);
  const RunResult fix = run_report_binary(dir, {"--fix-grid", "catchment.in"});
  EXPECT_NE(fix.screen.find(" - vertex numbers of file catchment.disv already set apart"), std::string::npos);
  run_report_binary(dir, {"catchment.in"});
  for (const auto& [name, content] : run_files) EXPECT_EQ(dir.read(name), content) << name;
  std::vector<std::string> expected;
  for (const auto& entry : run_files) expected.push_back(entry.first);
  for (const char* suffix : {"_reaches.csv", "_points.csv", "_zones.csv", "_grid.svg", "_quality.txt"}) {
    expected.push_back(std::string("catchment") + suffix);
  }
  std::sort(expected.begin(), expected.end());
  EXPECT_EQ(names_in(dir), expected);
}

}  // namespace
}  // namespace tesseramill_test
