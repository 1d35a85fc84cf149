// Every failure of the control file, end to end: the built program runs in a
// scratch folder on a small control file, and its whole screen text and its
// exit status are compared.
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "support/scratch.h"

namespace tesseramill_test {
namespace {

using Lines = std::vector<std::string>;

// A valid file is these three blocks; the CONTROL block holds lines 1 to 6.
const Lines kControl = {"START CONTROL", "  MAX_CENTROID_SEPARATION 100", "  POLY_GROWTH_RATE 1.2",
                        "  OUT_FILE_BASE m1", "  MAX_CELLS 2000", "END CONTROL"};
const Lines kOuter = {"START OUTER_BOUNDARY", "  BLN_FILE outer.bln", "END OUTER_BOUNDARY"};
const Lines kMf6 = {"START MF6", "  MF6_BASENAME m1", "  NLAY 1", "END MF6"};

Lines joined(std::initializer_list<Lines> parts) {
  Lines all;
  for (const Lines& part : parts) all.insert(all.end(), part.begin(), part.end());
  return all;
}

// The valid file with `extra` lines behind MAX_CELLS, from line 6 on.
Lines with_control(const Lines& extra) {
  return joined({Lines(kControl.begin(), kControl.end() - 1), extra, {kControl.back()}, kOuter, kMf6});
}

// The valid file with `extra` lines behind NLAY, from line 13 on.
Lines with_mf6(const Lines& extra) {
  return joined({kControl, kOuter, Lines(kMf6.begin(), kMf6.end() - 1), extra, {kMf6.back()}});
}

// The valid file followed by `blocks`, from line 14 on.
Lines base_plus(const Lines& blocks) { return joined({kControl, kOuter, kMf6, blocks}); }

// `count` copies of `block`, with # in each replaced by the copy's number from 0.
Lines numbered_blocks(int count, const Lines& block) {
  Lines all;
  for (int k = 0; k < count; ++k) {
    for (std::string line : block) {
      const std::size_t p = line.find('#');
      if (p != std::string::npos) line.replace(p, 1, std::to_string(k));
      all.push_back(line);
    }
  }
  return all;
}

// `message_lines` is the failure text as the screen shows it, wrapped.
void expect_failure(const std::string& message_lines, const Lines& control) {
  std::string text;
  for (const std::string& line : control) text += line + "\n";
  RunResult result = run_on_control(text);
  EXPECT_EQ(result.screen, reading("t.in") + "\n" + message_lines);
  EXPECT_EQ(result.status, 0);
}

TEST(ControlFileFailure, UnknownKeyword) {
  expect_failure(" Unknown keyword at line 6 of file t.in.\n",
                 with_control({"  FOO 3"}));
}

TEST(ControlFileFailure, LineOfTabsIsAnUnknownKeyword) {
  expect_failure(" Unknown keyword at line 6 of file t.in.\n",
                 with_control({"\t\t"}));
}

TEST(ControlFileFailure, StartInsideABlock) {
  expect_failure(" Unexpected START encountered at line 3 of file t.in.\n",
                 {"START CONTROL",
                  "  MAX_CENTROID_SEPARATION 100",
                  "START MF6",
                  "  POLY_GROWTH_RATE 1.2",
                  "  OUT_FILE_BASE m1",
                  "  MAX_CELLS 2000",
                  "END CONTROL"});
}

TEST(ControlFileFailure, UnknownBlockType) {
  expect_failure(" Unknown block type \"foo bar\" encountered at line 1 of file t.in.\n",
                 {"START Foo Bar"});
}

TEST(ControlFileFailure, StartingIsAStartWithBlockWordIng) {
  expect_failure(" Unknown block type \"ing\" encountered at line 1 of file t.in.\n",
                 {"STARTING"});
}

TEST(ControlFileFailure, StartWithoutWord) {
  expect_failure(" Unknown block type \"\" encountered at line 2 of file t.in.\n",
                 {"# first",
                  "START"});
}

TEST(ControlFileFailure, SecondOuterBoundaryBlock) {
  expect_failure(" Maximum of 1 OUTER_BOUNDARY blocks allowed in file t.in.\n",
                 base_plus(kOuter));
}

TEST(ControlFileFailure, SixthInnerBoundaryBlock) {
  expect_failure(" Maximum of 5 INNER_BOUNDARY blocks allowed in file t.in.\n",
                 base_plus(numbered_blocks(6, {"START INNER_BOUNDARY", "  BLN_FILE ib#.bln", "END INNER_BOUNDARY"})));
}

TEST(ControlFileFailure, SecondInnerPointsBlock) {
  expect_failure(" Maximum of 1 INNER_POINTS blocks allowed in file t.in.\n",
                 base_plus(numbered_blocks(2, {"START INNER_POINTS", "  BLN_FILE ip#.bln", "END INNER_POINTS"})));
}

TEST(ControlFileFailure, SixteenthInnerPolygonBlock) {
  expect_failure(" Maximum of 15 INNER_POLYGON blocks allowed in file t.in.\n",
                 base_plus(numbered_blocks(16, {"START INNER_POLYGON", "  BLN_FILE pg#.bln", "  MAX_CENTROID_SEPARATION 50", "END INNER_POLYGON"})));
}

TEST(ControlFileFailure, SecondControlBlock) {
  expect_failure(" Maximum of 1 CONTROL blocks allowed in file t.in.\n",
                 base_plus(kControl));
}

TEST(ControlFileFailure, SecondMf6Block) {
  expect_failure(" Maximum of 1 MF6 blocks allowed in file t.in.\n",
                 base_plus(kMf6));
}

TEST(ControlFileFailure, FiftyFirstInnerLineBlock) {
  expect_failure(" Maximum of 50 inner lines can be collectively defined using INNER_LINE \n"
                 "   blocks cited in file t.in.\n",
                 base_plus(numbered_blocks(51, {"START INNER_LINE", "  BLN_FILE il#.bln", "  NUMLINES 1", "END INNER_LINE"})));
}

TEST(ControlFileFailure, FurtherInnerLineBlockAfterNumlinesFifty) {
  expect_failure(" Maximum of 50 inner lines can be collectively defined using INNER_LINE \n"
                 "   blocks cited in file t.in.\n",
                 base_plus({"START INNER_LINE", "  NUMLINES 50", "  BLN_FILE many.bln", "END INNER_LINE", "START INNER_LINE"}));
}

TEST(ControlFileFailure, NumlinesExpansionPastFifty) {
  expect_failure(" Maximum of 50 inner lines can be collectively defined using INNER_LINE \n"
                 "   blocks cited in file t.in.\n",
                 base_plus({"START INNER_LINE", "  NUMLINES 2", "  BLN_FILE two.bln", "END INNER_LINE", "START INNER_LINE", "  NUMLINES 49", "  BLN_FILE many.bln", "END INNER_LINE"}));
}

TEST(ControlFileFailure, EndWithNoBlockOpen) {
  expect_failure(" Unexpected END statement encountered at line 2 of file t.in.\n",
                 {"",
                  "END CONTROL"});
}

TEST(ControlFileFailure, OuterBoundaryWithoutBlnFile) {
  expect_failure(" OUTER_BOUNDARY block that finishes on line 8 of file t.in does not contain a \n"
                 "   BLN_FILE keyword.\n",
                 joined({kControl, {"START OUTER_BOUNDARY", "END OUTER_BOUNDARY"}}));
}

TEST(ControlFileFailure, InnerBoundaryWithoutBlnFile) {
  expect_failure(" INNER_BOUNDARY block that finishes on line 15 of file t.in does not contain \n"
                 "   a BLN_FILE keyword.\n",
                 base_plus({"START INNER_BOUNDARY", "END"}));
}

TEST(ControlFileFailure, InnerPointsWithoutBlnFile) {
  expect_failure(" INNER_POINTS block that finishes on line 15 of file t.in does not contain a \n"
                 "   BLN_FILE keyword.\n",
                 base_plus({"START INNER_POINTS", "END"}));
}

TEST(ControlFileFailure, InnerLineWithoutBlnFileIsTestedBeforeNumlines) {
  expect_failure(" INNER_LINE block that finishes on line 15 of file t.in does not contain a \n"
                 "   BLN_FILE keyword.\n",
                 base_plus({"START INNER_LINE", "END"}));
}

TEST(ControlFileFailure, InnerLineWithoutNumlines) {
  expect_failure(" INNER_LINE block that finishes on line 16 of file t.in does not contain a \n"
                 "   NUMLINES keyword.\n",
                 base_plus({"START INNER_LINE", "BLN_FILE r.bln", "END"}));
}

TEST(ControlFileFailure, InnerPolygonWithoutBlnFile) {
  expect_failure(" INNER_POLYGON block that finishes on line 15 of file t.in does not contain a \n"
                 "   BLN_FILE keyword.\n",
                 base_plus({"START INNER_POLYGON", "END"}));
}

TEST(ControlFileFailure, InnerPolygonWithoutSeparationEvenWhenControlHasOne) {
  expect_failure(" INNER_POLYGON block that finishes on line 16 of file t.in does not contain a \n"
                 "   MAX_CENTROID_SEPARATION keyword.\n",
                 base_plus({"START INNER_POLYGON", "BLN_FILE p.bln", "END"}));
}

TEST(ControlFileFailure, Mf6WithoutBasename) {
  expect_failure(" MF6 block that finishes on line 3 of file t.in does not contain a \n"
                 "   MF6_BASENAME keyword.\n",
                 {"START MF6",
                  "NLAY 1",
                  "END MF6"});
}

TEST(ControlFileFailure, Mf6WithoutNlay) {
  expect_failure(" MF6 block that finishes on line 3 of file t.in does not contain a NLAY \n"
                 "   keyword.\n",
                 {"START MF6",
                  "MF6_BASENAME m",
                  "END MF6"});
}

TEST(ControlFileFailure, ControlFirstBlockHasNoBlockName) {
  expect_failure("  block that finishes on line 3 of file t.in does not contain a \n"
                 "    POLY_GROWTH_RATE keyword.\n",
                 {"START CONTROL",
                  "  MAX_CENTROID_SEPARATION 100",
                  "END"});
}

TEST(ControlFileFailure, ControlShowsTheBlockClosedBeforeIt) {
  expect_failure(" OUTER_BOUNDARY block that finishes on line 8 of file t.in does not contain a \n"
                 "   MAX_CELLS keyword.\n",
                 joined({kOuter,
                         {"START CONTROL", "  MAX_CENTROID_SEPARATION 100", "  POLY_GROWTH_RATE 1.2",
                          "  OUT_FILE_BASE m1", "END CONTROL"}}));
}

TEST(ControlFileFailure, ControlWithoutSeparation) {
  expect_failure(" MF6 block that finishes on line 7 of file t.in does not contain a \n"
                 "   MAX_CENTROID_SEPARATION keyword.\n",
                 joined({kMf6, {"START CONTROL", "  POLY_GROWTH_RATE 1.2", "END"}}));
}

TEST(ControlFileFailure, ControlWithoutOutFileBase) {
  expect_failure(" MF6 block that finishes on line 9 of file t.in does not contain a \n"
                 "   OUT_FILE_BASE keyword.\n",
                 joined({kMf6, {"START CONTROL", "  POLY_GROWTH_RATE 1.2", "MAX_CENTROID_SEPARATION 3",
                                "MAX_CELLS 2000", "END"}}));
}

TEST(ControlFileFailure, KeywordOutsideAnyBlock) {
  expect_failure(" MAX_CELLS keyword is not allowed in  block.\n",
                 {"MAX_CELLS 2000"});
}

TEST(ControlFileFailure, MaxCentroidInMf6Block) {
  expect_failure(" MAX_CENTROID_SEPARATION keyword is not allowed in MF6 block.\n",
                 with_mf6({"  MAX_CENTROID 100"}));
}

TEST(ControlFileFailure, XoriginInControlBlockUsesItsLabel) {
  expect_failure(" X0RIGIN keyword is not allowed in CONTROL block.\n",
                 with_control({"  XORIGIN 10"}));
}

TEST(ControlFileFailure, NumlinesInOuterBoundary) {
  expect_failure(" NUMLINES keyword is not allowed in OUTER_BOUNDARY block.\n",
                 joined({kControl, {"START OUTER_BOUNDARY", "NUMLINES 2"}}));
}

TEST(ControlFileFailure, NlayRepeated) {
  expect_failure(" NLAY keyword repeated in MF6 block at line 13 of file t.in.\n",
                 with_mf6({"  NLAY 2"}));
}

TEST(ControlFileFailure, MaxLloydZeroIsSetAndCannotBeRepeated) {
  expect_failure(" MAX_LLOYD keyword repeated in CONTROL block at line 7 of file t.in.\n",
                 with_control({"  MAX_LLOYD 0", "  max_loyd 4"}));
}

TEST(ControlFileFailure, SafetyZeroIsSetAndCannotBeRepeated) {
  expect_failure(" SAFETY keyword repeated in CONTROL block at line 7 of file t.in.\n",
                 with_control({"  SAFETY 0", "  SAFETY 1"}));
}

TEST(ControlFileFailure, BlnFileRepeatedInInnerBoundary) {
  expect_failure(" BLN_FILE keyword repeated in INNER_BOUNDARY block at line 16 of file t.in.\n",
                 base_plus({"START INNER_BOUNDARY", "BLN_FILE a.bln", "BLN_FILE b.bln"}));
}

TEST(ControlFileFailure, XoriginRepeatedUsesItsLabel) {
  expect_failure(" X0RIGIN keyword repeated in MF6 block at line 14 of file t.in.\n",
                 with_mf6({"  XORIGIN 1", "  XORIG 2"}));
}

TEST(ControlFileFailure, MaxCentroidRepeatedInControl) {
  expect_failure(" MAX_CENTROID_SEPARATION keyword repeated in CONTROL block at line 6 of file \n"
                 "   t.in.\n",
                 with_control({"  MAX_CENTROID_SEPARATION 100"}));
}

TEST(ControlFileFailure, KeywordWithoutValue) {
  expect_failure(" Cannot read value following YORIGIN keyword at line 13 of file t.in.\n",
                 with_mf6({"  YORIGIN"}));
}

TEST(ControlFileFailure, NlayAsRealCannotBeRead) {
  expect_failure(" Cannot read value following NLAY keyword at line 12 of file t.in.\n",
                 joined({kControl, kOuter, {"START MF6", "  MF6_BASENAME m1", "  NLAY 2.5"}}));
}

TEST(ControlFileFailure, RealThatCannotBeRead) {
  expect_failure(" Cannot read value following MAX_CENTROID_SEPARATION keyword at line 2 of \n"
                 "   file t.in.\n",
                 {"START CONTROL",
                  "  MAX_CENTROID_SEPARATION 1O0"});
}

TEST(ControlFileFailure, ValueBeyondColumn500IsDropped) {
  expect_failure(" Cannot read value following NLAY keyword at line 2 of file t.in.\n",
                 {"START MF6",
                  "  NLAY                                                                                                                                                                                                                                                                                                                                                                                                                                                                                                               3"});
}

TEST(ControlFileFailure, KeywordWithOnlyEqualsSign) {
  expect_failure(" Cannot read value following NLAY keyword at line 2 of file t.in.\n",
                 {"START MF6",
                  "  NLAY = "});
}

TEST(ControlFileFailure, EmptyQuotedFileName) {
  expect_failure(" Cannot read filename following BLN_FILE keyword at line 2 of file t.in.\n",
                 {"START OUTER_BOUNDARY",
                  "  BLN_FILE \"\""});
}

TEST(ControlFileFailure, UnclosedQuoteInFileName) {
  expect_failure(" Cannot read filename following OUT_FILE_BASE keyword at line 2 of file t.in.\n",
                 {"START CONTROL",
                  "  OUT_FILE_BASE \"abc"});
}

TEST(ControlFileFailure, FileNameWithUnopenedQuote) {
  expect_failure(" Cannot read filename following MF6_BASENAME keyword at line 2 of file t.in.\n",
                 {"START MF6",
                  "  MF6_BASENAME abc'"});
}

TEST(ControlFileFailure, SeparationNotAboveZero) {
  expect_failure(" Value for MAX_CENTROID_SEPARATION keyword must be greater than zero at line \n"
                 "   2 of file t.in.\n",
                 {"START CONTROL",
                  "  MAX_CENTROID_SEPARATION 0.0"});
}

TEST(ControlFileFailure, PolygonSeparationNotAboveZero) {
  expect_failure(" Value for MAX_CENTROID_SEPARATION keyword must be greater than zero at line \n"
                 "   2 of file t.in.\n",
                 {"START INNER_POLYGON",
                  "  MAX_CENTROID_SEPARATION -1"});
}

TEST(ControlFileFailure, EpsLloydNotAboveZero) {
  expect_failure(" Value for EPS_LLOYD keyword must be greater than zero at line 2 of file t.in.\n",
                 {"START CONTROL",
                  "  EPS_LOYD 0"});
}

TEST(ControlFileFailure, LloydFacNotAboveZero) {
  expect_failure(" Value for LLOYD_FAC keyword must be greater than zero at line 2 of file t.in.\n",
                 {"START CONTROL",
                  "  LLOYD_FAC 0"});
}

TEST(ControlFileFailure, NumlinesNotAboveZero) {
  expect_failure(" Value for NUMLINES keyword must be greater than zero at line 2 of file t.in.\n",
                 {"START INNER_LINE",
                  "  NUMLINES 0"});
}

TEST(ControlFileFailure, GrowthRateNotAboveOne) {
  expect_failure(" Value for POLY_GROWTH_RATE keyword must be greater than one at line 2 of \n"
                 "   file t.in.\n",
                 {"START CONTROL",
                  "  POLY_GROWTH_RATE 1.0"});
}

TEST(ControlFileFailure, Mf6BasenameWithSlash) {
  expect_failure(" As presently programmed, MF6_BASENAME cannot include a path in the filename \n"
                 "   base. This is violated at line 2 of file t.in.\n",
                 {"START MF6",
                  "  MF6_BASENAME out/m1"});
}

TEST(ControlFileFailure, Mf6BasenameWithBackslash) {
  expect_failure(" As presently programmed, MF6_BASENAME cannot include a path in the filename \n"
                 "   base. This is violated at line 2 of file t.in.\n",
                 {"START MF6",
                  "  MF6_BASENAME out\\m1"});
}

TEST(ControlFileFailure, Nlay101) {
  expect_failure(" Value for NLAY must be less than 100 at line 2 of file t.in.\n",
                 {"START MF6",
                  "  NLAY 101"});
}

TEST(ControlFileFailure, NlayZero) {
  expect_failure(" Value for NLAY must be greater than zero at line 2 of file t.in.\n",
                 {"START MF6",
                  "  NLAY 0"});
}

TEST(ControlFileFailure, MaxCells1000) {
  expect_failure(" Value for MAX_CELLS must be greater than 1000 at line 2 of file t.in.\n",
                 {"START CONTROL",
                  "  MAX_CELLS 1000"});
}

TEST(ControlFileFailure, SafetyNegative) {
  expect_failure(" Value supplied for SAFETY keyword must be zero or greater at line 2 of file \n"
                 "   t.in.\n",
                 {"START CONTROL",
                  "  SAFETY -1"});
}

TEST(ControlFileFailure, MaxLloydNegative) {
  expect_failure(" Value supplied for MAX_LLOYD keyword must be zero or greater at line 2 of \n"
                 "   file t.in.\n",
                 {"START CONTROL",
                  "  MAX_LLOYD -1"});
}

TEST(ControlFileFailure, Nsdim4) {
  expect_failure(" Value for NSDIM must be at least 5 at line 2 of file t.in.\n",
                 {"START CONTROL",
                  "  NSDIM 4"});
}

TEST(ControlFileFailure, Nsdim6) {
  expect_failure(" Value for NSDIM must be a positive odd integer at line 2 of file t.in.\n",
                 {"START CONTROL",
                  "  NSDIM 6"});
}

TEST(ControlFileFailure, NsdimZeroFailsTheLowerBound) {
  expect_failure(" Value for NSDIM must be at least 5 at line 2 of file t.in.\n",
                 {"START CONTROL",
                  "  NSDIM 0"});
}

TEST(ControlFileFailure, NumericTokenIsCutAtThirtyCharacters) {
  expect_failure(" Value for NSDIM must be at least 5 at line 2 of file t.in.\n",
                 {"START CONTROL",
                  "  NSDIM 000000000000000000000000000000000007"});
}

TEST(ControlFileFailure, LloydFac101) {
  expect_failure(" LLOYD_FAC should be less than 1.0 at line 2 of file t.in.\n",
                 {"START CONTROL",
                  "  LLOYD_FAC 1.01"});
}

TEST(ControlFileFailure, EndOfFileWithBlockOpen) {
  expect_failure(" End encountered to file t.in before closure of INNER_POLYGON block.\n",
                 joined({kControl, {"START INNER_POLYGON", "  BLN_FILE p.bln"}}));
}

TEST(ControlFileFailure, EmptyInputFile) {
  expect_failure(" No OUTER_BOUNDARY block found in file t.in.\n",
                 {});
}

TEST(ControlFileFailure, NoControlBlockIsReportedAsInnerPolygon) {
  expect_failure(" No INNER_POLYGON block found in file t.in.\n",
                 joined({kOuter, kMf6}));
}

TEST(ControlFileFailure, NoMf6Block) {
  expect_failure(" No MF6 block found in file t.in.\n",
                 joined({kControl, kOuter}));
}

TEST(ControlFileFailure, OuterAndInnerBoundaryShareAFile) {
  expect_failure(" BLN filename \"outer.bln\" duplicated in file t.in.\n",
                 base_plus({"START INNER_BOUNDARY", "  BLN_FILE outer.bln", "END"}));
}

TEST(ControlFileFailure, CaseCountsAndTheFirstEqualPairInOrderWins) {
  expect_failure(" BLN filename \"p.bln\" duplicated in file t.in.\n",
                 base_plus({"START INNER_BOUNDARY", "  BLN_FILE OUTER.bln", "END", "START INNER_POLYGON", "BLN_FILE p.bln", "MAX_CENTROID_SEPARATION 10", "END", "START INNER_POLYGON", "BLN_FILE Outer.bln", "MAX_CENTROID_SEPARATION 10", "END", "START INNER_BOUNDARY", "  BLN_FILE p.bln", "END"}));
}

TEST(ControlFileFailure, TwoInnerLineBlocksShareAFile) {
  expect_failure(" BLN filename \"rivers.bln\" duplicated in file t.in.\n",
                 base_plus({"START INNER_LINE", "  NUMLINES 3", "  BLN_FILE rivers.bln", "END INNER_LINE", "START INNER_LINE", "  BLN_FILE rivers.bln", "  NUMLINES 1", "END INNER_LINE"}));
}

TEST(ControlFileFailure, TwoInnerPolygonsShareAFile) {
  expect_failure(" BLN filename \"zone.bln\" duplicated in file t.in.\n",
                 base_plus({"START INNER_POLYGON", "BLN_FILE zone.bln", "MAX_CENTROID_SEPARATION 10", "END", "START INNER_POLYGON", "BLN_FILE zone.bln", "MAX_CENTROID_SEPARATION 20", "END"}));
}

TEST(ControlFileFailure, InnerLineAndInnerPointsShareAFile) {
  expect_failure(" BLN filename \"a\" duplicated in file t.in.\n",
                 base_plus({"START INNER_LINE", "  NUMLINES 2", "  BLN_FILE a b.bln", "END INNER_LINE", "START INNER_POINTS", "  BLN_FILE a", "END"}));
}

TEST(ControlFileFailure, QuotedNameWithBlankDuplicated) {
  expect_failure(" BLN filename \"my hole.bln\" duplicated in file t.in.\n",
                 base_plus({"START INNER_BOUNDARY", "  BLN_FILE = \"my hole.bln\"", "END", "START INNER_POLYGON", "  BLN_FILE='my hole.bln' # same file", "MAX_CENTROID_SEPARATION 10", "END"}));
}

TEST(ControlFileFailure, PolygonSeparationAboveControl) {
  expect_failure(" Value for MAX_CENTROID_SEPARATION provided in the CONTROL block must be \n"
                 "   greater than values provided for MAX_CENTROID_SEPARATION in INNER_POLYGON \n"
                 "   blocks.\n",
                 base_plus({"START INNER_POLYGON", "BLN_FILE zone.bln", "MAX_CENTROID_SEPARATION 100.001", "END"}));
}

TEST(ControlFileFailure, XoriginWithoutYorigin) {
  expect_failure(" Values must be supplied for BOTH of XORIGIN and YORIGIN in CONTROL block of \n"
                 "   file t.in or for NEITHER of these variables.\n",
                 with_mf6({"  XORIGIN 0.0"}));
}

TEST(ControlFileFailure, YoriginWithoutXorigin) {
  expect_failure(" Values must be supplied for BOTH of XORIGIN and YORIGIN in CONTROL block of \n"
                 "   file t.in or for NEITHER of these variables.\n",
                 with_mf6({"  YORIGIN = -5"}));
}

TEST(ControlFileFailure, ReadFailureOnAFolder) {
  ScratchDir dir;
  std::filesystem::create_directory(dir.path() / "folder.in");
  RunResult result = run_binary(dir, {"folder.in"});
  EXPECT_EQ(result.screen, reading("folder.in") + "\n Error reading line 1 of file folder.in.\n");
  EXPECT_EQ(result.status, 0);
}

TEST(ControlFileFailure, LinesEndingInCarriageReturnLineFeed) {
  expect_failure(" Value for NLAY must be less than 100 at line 2 of file t.in.\n",
                 {"START MF6\r", "  NLAY 101\r", "END MF6\r"});
}

}  // namespace
}  // namespace tesseramill_test
