// The program's command line, banner and usage text, run end to end.
#include <gtest/gtest.h>

#include "scratch.h"

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

TEST(Program, QuotesBelongToTheFileName) {
  ScratchDir dir;
  dir.write("\"q.in\"", "");
  RunResult result = run_binary(dir, {"\"q.in\""});
  EXPECT_EQ(result.screen, reading("\"q.in\"") + "\n No OUTER_BOUNDARY block found in file \"q.in\".\n");
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

}  // namespace
}  // namespace tesseramill_test
