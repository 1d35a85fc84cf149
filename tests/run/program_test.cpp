// The program's command line, banner and usage text, run end to end.
#include <gtest/gtest.h>

#include "support/scratch.h"

namespace tesseramill_test {
namespace {

const char* const kUsage =
    "\n"
    " TESSERAMILL is run using the command:\n"
    "\n"
    "   tesseramill infile\n"
    "\n"
    " where\n"
    "\n"
    "   infile is the name of the TESSERAMILL input file.\n";

TEST(Program, NoArgumentPrintsBannerAndUsageAndTouchesNoFile) {
  ScratchDir dir;
  RunResult result = run_binary(dir, {});
  EXPECT_EQ(result.screen, banner() + kUsage);
  EXPECT_EQ(result.status, 0);
  EXPECT_TRUE(dir.listing().empty());
}

TEST(Program, BlankArgumentBehavesAsNoArgument) {
  ScratchDir dir;
  EXPECT_EQ(run_binary(dir, {"   "}).screen, banner() + kUsage);
  EXPECT_EQ(run_binary(dir, {""}).screen, banner() + kUsage);
}

TEST(Program, MissingInputFile) {
  ScratchDir dir;
  RunResult result = run_binary(dir, {"absent.in"});
  EXPECT_EQ(result.screen,
            banner() + "\n - reading file absent.in...\n\n Cannot open TESSERAMILL input file absent.in.\n");
  EXPECT_EQ(result.status, 0);
}

TEST(Program, SecondArgumentHasNoEffect) {
  ScratchDir dir;
  RunResult result = run_binary(dir, {"absent.in", "other.in"});
  EXPECT_EQ(result.screen,
            banner() + "\n - reading file absent.in...\n\n Cannot open TESSERAMILL input file absent.in.\n");
}

TEST(Program, LeadingBlanksOfTheArgumentAreDropped) {
  ScratchDir dir;
  dir.write("t.in", "");
  RunResult result = run_binary(dir, {"  t.in"});
  EXPECT_EQ(result.screen, reading("t.in") + "\n No OUTER_BOUNDARY block found in file t.in.\n");
}

// Quotes on the command line are part of the name: the file q.in beside
// it is not read.  Linux holds a file named "q.in" with its quotes and
// reads it; Windows allows no quote in a file name, so there the name
// cannot be opened.
TEST(Program, QuotesBelongToTheFileName) {
  ScratchDir dir;
  dir.write("q.in", "START CONTROL\n");
  dir.write("\"q.in\"", "");
  const bool quotes_in_names = std::filesystem::exists(dir.path() / "\"q.in\"");
  RunResult result = run_binary(dir, {"\"q.in\""});
  EXPECT_EQ(result.screen, reading("\"q.in\"") + (quotes_in_names
                                                    ? "\n No OUTER_BOUNDARY block found in file \"q.in\".\n"
                                                    : "\n Cannot open TESSERAMILL input file \"q.in\".\n"));
}

TEST(Program, ArgumentIsCutAt256Characters) {
  ScratchDir dir;
  const std::string name(300, 'a');
  RunResult result = run_binary(dir, {name});
  const std::string cut(256, 'a');
  // The failure text is wrapped at 78 columns; a 256-character name is one
  // word broken at the limit.
  const std::string message = " Cannot open TESSERAMILL input file " + cut + ".";
  std::string expected = "\n" + message.substr(0, 36) + "\n";
  std::size_t begin = 36;
  while (message.size() - begin > 75) {
    expected += "   " + message.substr(begin, 75) + "\n";
    begin += 75;
  }
  expected += "   " + message.substr(begin) + "\n";
  EXPECT_EQ(result.screen, banner() + "\n - reading file " + cut + "...\n" + expected);
}

TEST(Program, TableTooLargeForMemory) {
  // A candidate grid of NSDIM x NSDIM cannot be held for the largest NSDIM.
  RunResult result = run_on_control(
      "START CONTROL\n MAX_CENTROID_SEPARATION 20\n POLY_GROWTH_RATE 1.2\n OUT_FILE_BASE m\n"
      " MAX_CELLS 2000\n NSDIM 2147483647\nEND\nSTART MF6\n MF6_BASENAME m\n NLAY 1\nEND\n"
      "START OUTER_BOUNDARY\n BLN_FILE outer.bln\nEND\n");
  EXPECT_EQ(result.screen, reading("t.in") + " - file t.in read ok.\n"
                                             "\n Unable to allocate sufficient memory to continue execution.\n");
  EXPECT_EQ(result.status, 0);
}

}  // namespace
}  // namespace tesseramill_test
