// Reading grid files back: the layout the mesher writes, numbers that run
// together in their columns, and files of other layouts.
#include <gtest/gtest.h>

#include <sstream>

#include "common/failure.h"
#include "output/number_format.h"
#include "report/disv_grid.h"
#include "report/grid_quality.h"
#include "support/grid_text.h"
#include "support/scratch.h"

namespace tesseramill_test {
namespace {


TEST(DisvGridReader, ReadsTheMeshersLayout) {
  std::string failure;
  const tesseramill::DisvGrid grid =
      read_grid(grid_file(4, {{1, {0, 0}}, {2, {0, 1}}, {3, {1, 1}}, {4, {1, 0}}}, {{1, 2, 3, 4}}), failure);
  EXPECT_EQ(failure, "");
  EXPECT_EQ(grid.ncpl, 1);
  EXPECT_EQ(grid.nvert, 4);
  EXPECT_EQ(grid.cell_vertices, (std::vector<std::int32_t>{1, 2, 3, 4}));
  EXPECT_EQ(grid.first_joined_cell, 0);
  EXPECT_EQ(grid.vertices[4], 1.0);
}

// A grid file of more than a million vertices: the cell lines' numbers of
// seven digits fill their columns and run together.  The reader tells them
// apart by the columns, and the readiness check names the first such cell.
TEST(DisvGridReader, TellsSevenDigitNumbersApartByTheirColumns) {
  const int nvert = 1000004;
  std::string failure;
  const std::string text = grid_file(
      nvert, {{999999, {0, 0}}, {1000000, {0, 1}}, {1000001, {1, 1}}, {1000002, {1, 0}}, {1000003, {2, 1}}, {1000004, {2, 0}}},
      {{999999, 1000000, 1000001, 1000002}, {1000002, 1000001, 1000003, 1000004}});
  ASSERT_NE(text.find("    4 99999910000001000001"), std::string::npos);
  const tesseramill::DisvGrid grid = read_grid(text, failure);
  EXPECT_EQ(failure, "");
  EXPECT_EQ(grid.cell_vertices, (std::vector<std::int32_t>{999999, 1000000, 1000001, 1000002, 1000002, 1000001,
                                                           1000003, 1000004}));
  EXPECT_EQ(grid.first_joined_cell, 1);
  tesseramill::DomainRings rings;
  rings.outer = {0, 0, 2, 0, 2, 1, 0, 1, 0, 0};
  const tesseramill::GridQuality q = tesseramill::assess_grid(grid, rings, 1.2);
  EXPECT_FALSE(q.checks[tesseramill::kNumbersApart].passed);
  EXPECT_EQ(q.checks[tesseramill::kNumbersApart].first_cell, 1);
  EXPECT_TRUE(q.checks[tesseramill::kClockwiseCells].passed);
  EXPECT_TRUE(q.checks[tesseramill::kFacesShared].passed);
  const std::string report = tesseramill::quality_text(q, "g.disv");
  EXPECT_NE(report.find("   FAIL  every vertex number on the cell lines set apart by a blank: first at cell 1\n"
                        "\n Vertex numbers of seven digits fill their seven columns and run together, and\n"
                        " MODFLOW 6 cannot read them: set them apart with the command\n"
                        " \"tesseramill-report --fix-grid infile\", which keeps the file as the mesher\n"
                        " wrote it beside it, or keep the grid below 1,000,000 vertices (about 500,000\n"
                        " cells).\n"),
            std::string::npos)
      << report;
}

// Found on a grid of a million cells: a count that runs into a first number
// of seven digits reads as a count of millions, which the numbers behind it
// on the line do not make up; the columns tell them apart.
TEST(DisvGridReader, CountRunTogetherWithTheFirstNumber) {
  std::string failure;
  const tesseramill::DisvGrid grid =
      read_grid(grid_file(1000560, {}, {{1000560, 999742, 998662, 998448, 997655}, {5, 6, 7}}), failure);
  EXPECT_EQ(failure, "");
  EXPECT_EQ(grid.cell_vertices, (std::vector<std::int32_t>{1000560, 999742, 998662, 998448, 997655, 5, 6, 7}));
  EXPECT_EQ(grid.first_joined_cell, 1);
}

TEST(DisvGridReader, ReadsNumbersBetweenBlanksInAnyColumns) {
  std::string failure;
  const tesseramill::DisvGrid grid = read_grid(
      "begin dimensions\n ncpl 1\n nvert 3\nend dimensions\nbegin vertices\n3 1 0\n1 0 0\n2 0 1\nend vertices\n"
      "begin cell2d\n 1 0.3 0.3   3 1  2     3\nend cell2d\n",
      failure);
  EXPECT_EQ(failure, "");
  EXPECT_EQ(grid.cell_vertices, (std::vector<std::int32_t>{1, 2, 3}));
  EXPECT_EQ(grid.first_joined_cell, 0);
  EXPECT_EQ(grid.vertices[4], 1.0);
}

TEST(DisvGridReader, RefusesWhatIsNeitherLayout) {
  std::string failure;
  read_grid("BEGIN DIMENSIONS\n NCPL 1\n NVERT 3\nEND DIMENSIONS\nBEGIN VERTICES\n 1 0 0\n 2 0 1\n 3 1 1\nEND VERTICES\n"
            "BEGIN CELL2D\n 1 0.3 0.6 3 1 2 x\nEND CELL2D\n",
            failure);
  const std::string start = "Error reading line 11 of file ";
  EXPECT_EQ(failure.substr(0, start.size()), start) << failure;
  // The file is named by its path in the scratch folder, with the system's separator.
  const std::string separator(1, static_cast<char>(std::filesystem::path::preferred_separator));
  EXPECT_EQ(failure.substr(failure.size() - 8), separator + "g.disv.") << failure;
}

// Counts that no file of this size could hold are refused where the lines
// run out, and cost no memory before: 2,000,000,000 vertices or cells would
// need 32 GB of tables.
TEST(DisvGridReader, CountsBeyondTheFileEndWhereItsLinesDo) {
  const std::string vertices = "BEGIN VERTICES\n 1 0 0\n 2 0 1\n 3 1 1\nEND VERTICES\n";
  std::string failure;
  read_grid("BEGIN DIMENSIONS\n NCPL 1\n NVERT 2000000000\nEND DIMENSIONS\n" + vertices +
                "BEGIN CELL2D\n 1 0.3 0.6 3 1 2 3\nEND CELL2D\n",
            failure);
  const std::string path = (std::filesystem::temp_directory_path() / "tesseramill_test_").string();
  EXPECT_EQ(failure.substr(0, 29 + path.size()), "Error reading line 9 of file " + path) << failure;
  failure.clear();
  read_grid("BEGIN DIMENSIONS\n NCPL 2000000000\n NVERT 3\nEND DIMENSIONS\n" + vertices +
                "BEGIN CELL2D\n 1 0.3 0.6 3 1 2 3\nEND CELL2D\n",
            failure);
  EXPECT_EQ(failure.substr(0, 30 + path.size()), "Error reading line 12 of file " + path) << failure;
}

// Found by fuzzing: a second DIMENSIONS block after the CELL2D block changed
// NCPL, and the cell tables, read with the old count, were then indexed by
// the new one.  Tables and counts are now checked once every block is in.
TEST(DisvGridReader, DimensionsChangedAfterTheirBlocks) {
  const std::string square =
      "BEGIN VERTICES\n 1 0 0\n 2 0 1\n 3 1 1\n 4 1 0\nEND VERTICES\n"
      "BEGIN CELL2D\n 1 0.5 0.5 4 1 2 3 4\nEND CELL2D\n";
  const std::string dimensions = "BEGIN DIMENSIONS\n NCPL 1\n NVERT 4\nEND DIMENSIONS\n";
  const std::string mismatch =
      " holds no complete grid: its VERTICES and CELL2D blocks do not hold the NVERT 4 vertices and NCPL 28 "
      "cells that its DIMENSIONS give.";
  std::string failure;
  read_grid(dimensions + square + "BEGIN DIMENSIONS\n NCPL 28\nEND DIMENSIONS\n", failure);
  ASSERT_GT(failure.size(), mismatch.size()) << failure;
  EXPECT_EQ(failure.substr(failure.size() - mismatch.size()), mismatch);

  failure.clear();
  read_grid(dimensions + square + "BEGIN DIMENSIONS\n NVERT 70\nEND DIMENSIONS\n", failure);
  EXPECT_NE(failure.find("do not hold the NVERT 70 vertices and NCPL 1 cells"), std::string::npos) << failure;

  // Vertex numbers are checked against the vertices finally read: a cell
  // read while NVERT was larger may not name a vertex that is not there.
  failure.clear();
  read_grid("BEGIN DIMENSIONS\n NCPL 1\n NVERT 9\nEND DIMENSIONS\n"
            "BEGIN CELL2D\n 1 0.5 0.5 4 1 2 3 9\nEND CELL2D\n"
            "BEGIN DIMENSIONS\n NVERT 4\nEND DIMENSIONS\n"
            "BEGIN VERTICES\n 1 0 0\n 2 0 1\n 3 1 1\n 4 1 0\nEND VERTICES\n",
            failure);
  const std::string names = " names vertex 9, which the file does not hold.";
  EXPECT_EQ(failure.substr(0, 13), "Cell 1 of fil") << failure;
  ASSERT_GT(failure.size(), names.size()) << failure;
  EXPECT_EQ(failure.substr(failure.size() - names.size()), names);

  // The same blocks with their counts unchanged read as one square.
  failure.clear();
  const tesseramill::DisvGrid grid = read_grid(dimensions + square, failure);
  EXPECT_EQ(failure, "");
  EXPECT_EQ(grid.ncpl, 1);
  EXPECT_EQ(corner_count(grid, 0), 4);
}

// Found by fuzzing: a keyword whose value was on the next line was compared
// with the next keywords after that line had replaced its own.  Under the
// sanitizers this read freed memory; now each keyword is told before its
// value is read.
TEST(DisvGridReader, ValueOnTheLineAfterItsKeyword) {
  std::string failure;
  const tesseramill::DisvGrid grid =
      read_grid("BEGIN OPTIONS\n XORIGIN\n 42 7\nEND OPTIONS\n"
                "BEGIN DIMENSIONS\n NCPL\n 1\n NVERT\n 4\nEND DIMENSIONS\n"
                "BEGIN VERTICES\n 1 0 0\n 2 0 1\n 3 1 1\n 4 1 0\nEND VERTICES\n"
                "BEGIN CELL2D\n 1 0.5 0.5 4 1 2 3 4\nEND CELL2D\n",
                failure);
  EXPECT_EQ(failure, "");
  EXPECT_EQ(grid.xorigin, 42.0);
  EXPECT_EQ(grid.yorigin, 0.0);
  EXPECT_EQ(grid.ncpl, 1);
  EXPECT_EQ(grid.nvert, 4);
}

}  // namespace
}  // namespace tesseramill_test
