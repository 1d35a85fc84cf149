// Every failure of the control file, end to end: the built program runs in a
// scratch folder on a small control file, and its whole screen text and its
// exit status are compared.
#include <gtest/gtest.h>

#include "scratch.h"

namespace tesseramill_test {
namespace {

// `message_lines` is the failure text as the screen shows it, wrapped.
void expect_failure(const std::string& message_lines, const std::string& control) {
  RunResult result = run_on_control(control);
  EXPECT_EQ(result.screen, reading("t.in") + "\n" + message_lines);
  EXPECT_EQ(result.status, 0);
}

TEST(ControlFileFailure, UnknownKeyword) {
  expect_failure(" Unknown keyword at line 6 of file t.in.\n",
      "START CONTROL\n"
      "  MAX_CENTROID_SEPARATION 100\n"
      "  POLY_GROWTH_RATE 1.2\n"
      "  OUT_FILE_BASE m1\n"
      "  MAX_CELLS 2000\n"
      "  FOO 3\n"
      "END CONTROL\n"
      "START OUTER_BOUNDARY\n"
      "  BLN_FILE outer.bln\n"
      "END OUTER_BOUNDARY\n"
      "START MF6\n"
      "  MF6_BASENAME m1\n"
      "  NLAY 1\n"
      "END MF6\n");
}

TEST(ControlFileFailure, LineOfTabsIsAnUnknownKeyword) {
  expect_failure(" Unknown keyword at line 6 of file t.in.\n",
      "START CONTROL\n"
      "  MAX_CENTROID_SEPARATION 100\n"
      "  POLY_GROWTH_RATE 1.2\n"
      "  OUT_FILE_BASE m1\n"
      "  MAX_CELLS 2000\n"
      "\t\t\n"
      "END CONTROL\n"
      "START OUTER_BOUNDARY\n"
      "  BLN_FILE outer.bln\n"
      "END OUTER_BOUNDARY\n"
      "START MF6\n"
      "  MF6_BASENAME m1\n"
      "  NLAY 1\n"
      "END MF6\n");
}

TEST(ControlFileFailure, StartInsideABlock) {
  expect_failure(" Unexpected START encountered at line 3 of file t.in.\n",
      "START CONTROL\n"
      "  MAX_CENTROID_SEPARATION 100\n"
      "START MF6\n"
      "  POLY_GROWTH_RATE 1.2\n"
      "  OUT_FILE_BASE m1\n"
      "  MAX_CELLS 2000\n"
      "END CONTROL\n");
}

TEST(ControlFileFailure, UnknownBlockType) {
  expect_failure(" Unknown block type \"foo bar\" encountered at line 1 of file t.in.\n",
      "START Foo Bar\n");
}

TEST(ControlFileFailure, StartingIsAStartWithBlockWordIng) {
  expect_failure(" Unknown block type \"ing\" encountered at line 1 of file t.in.\n",
      "STARTING\n");
}

TEST(ControlFileFailure, StartWithoutWord) {
  expect_failure(" Unknown block type \"\" encountered at line 2 of file t.in.\n",
      "# first\n"
      "START\n");
}

TEST(ControlFileFailure, SecondOuterBoundaryBlock) {
  expect_failure(" Maximum of 1 OUTER_BOUNDARY blocks allowed in file t.in.\n",
      "START CONTROL\n"
      "  MAX_CENTROID_SEPARATION 100\n"
      "  POLY_GROWTH_RATE 1.2\n"
      "  OUT_FILE_BASE m1\n"
      "  MAX_CELLS 2000\n"
      "END CONTROL\n"
      "START OUTER_BOUNDARY\n"
      "  BLN_FILE outer.bln\n"
      "END OUTER_BOUNDARY\n"
      "START MF6\n"
      "  MF6_BASENAME m1\n"
      "  NLAY 1\n"
      "END MF6\n"
      "START OUTER_BOUNDARY\n"
      "  BLN_FILE outer.bln\n"
      "END OUTER_BOUNDARY\n");
}

TEST(ControlFileFailure, SixthInnerBoundaryBlock) {
  expect_failure(" Maximum of 5 INNER_BOUNDARY blocks allowed in file t.in.\n",
      "START CONTROL\n  MAX_CENTROID_SEPARATION 100\n  POLY_GROWTH_RATE 1.2\n  OUT_FILE_BASE m1\n  MAX_CELLS 2000\nEND CONTROL\nSTART OUTER_BOUNDARY\n  BLN_FILE outer.bln\nEND OUTER_BOUNDARY\nSTART MF6\n  MF6_BASENAME m1\n  NLAY 1\nEND MF6\nSTART INNER_BOUNDARY\n  BLN_FILE ib0.bln\nEND INNER_BOUNDARY\nSTART INNER_BOUNDARY\n  BLN_FILE ib1.bln\nEND INNER_BOUNDARY\nSTART INNER_BOUNDARY\n  BLN_FILE ib2.bln\nEND INNER_BOUNDARY\nSTART INNER_BOUNDARY\n  BLN_FILE ib3.bln\nEND INNER_BOUNDARY\nSTART INNER_BOUNDARY\n  BLN_FILE ib4.bln\nEND INNER_BOUNDARY\nSTART INNER_BOUNDARY\n  BLN_FILE ib5.bln\nEND INNER_BOUNDARY\n");
}

TEST(ControlFileFailure, SecondInnerPointsBlock) {
  expect_failure(" Maximum of 1 INNER_POINTS blocks allowed in file t.in.\n",
      "START CONTROL\n"
      "  MAX_CENTROID_SEPARATION 100\n"
      "  POLY_GROWTH_RATE 1.2\n"
      "  OUT_FILE_BASE m1\n"
      "  MAX_CELLS 2000\n"
      "END CONTROL\n"
      "START OUTER_BOUNDARY\n"
      "  BLN_FILE outer.bln\n"
      "END OUTER_BOUNDARY\n"
      "START MF6\n"
      "  MF6_BASENAME m1\n"
      "  NLAY 1\n"
      "END MF6\n"
      "START INNER_POINTS\n"
      "  BLN_FILE ip0.bln\n"
      "END INNER_POINTS\n"
      "START INNER_POINTS\n"
      "  BLN_FILE ip1.bln\n"
      "END INNER_POINTS\n");
}

TEST(ControlFileFailure, SixteenthInnerPolygonBlock) {
  expect_failure(" Maximum of 15 INNER_POLYGON blocks allowed in file t.in.\n",
      "START CONTROL\n  MAX_CENTROID_SEPARATION 100\n  POLY_GROWTH_RATE 1.2\n  OUT_FILE_BASE m1\n  MAX_CELLS 2000\nEND CONTROL\nSTART OUTER_BOUNDARY\n  BLN_FILE outer.bln\nEND OUTER_BOUNDARY\nSTART MF6\n  MF6_BASENAME m1\n  NLAY 1\nEND MF6\nSTART INNER_POLYGON\n  BLN_FILE pg0.bln\n  MAX_CENTROID_SEPARATION 50\nEND INNER_POLYGON\nSTART INNER_POLYGON\n  BLN_FILE pg1.bln\n  MAX_CENTROID_SEPARATION 50\nEND INNER_POLYGON\nSTART INNER_POLYGON\n  BLN_FILE pg2.bln\n  MAX_CENTROID_SEPARATION 50\nEND INNER_POLYGON\nSTART INNER_POLYGON\n  BLN_FILE pg3.bln\n  MAX_CENTROID_SEPARATION 50\nEND INNER_POLYGON\nSTART INNER_POLYGON\n  BLN_FILE pg4.bln\n  MAX_CENTROID_SEPARATION 50\nEND INNER_POLYGON\nSTART INNER_POLYGON\n  BLN_FILE pg5.bln\n  MAX_CENTROID_SEPARATION 50\nEND INNER_POLYGON\nSTART INNER_POLYGON\n  BLN_FILE pg6.bln\n  MAX_CENTROID_SEPARATION 50\nEND INNER_POLYGON\nSTART INNER_POLYGON\n  BLN_FILE pg7.bln\n  MAX_CENTROID_SEPARATION 50\nEND INNER_POLYGON\nSTART INNER_POLYGON\n  BLN_FILE pg8.bln\n  MAX_CENTROID_SEPARATION 50\nEND INNER_POLYGON\nSTART INNER_POLYGON\n  BLN_FILE pg9.bln\n  MAX_CENTROID_SEPARATION 50\nEND INNER_POLYGON\nSTART INNER_POLYGON\n  BLN_FILE pg10.bln\n  MAX_CENTROID_SEPARATION 50\nEND INNER_POLYGON\nSTART INNER_POLYGON\n  BLN_FILE pg11.bln\n  MAX_CENTROID_SEPARATION 50\nEND INNER_POLYGON\nSTART INNER_POLYGON\n  BLN_FILE pg12.bln\n  MAX_CENTROID_SEPARATION 50\nEND INNER_POLYGON\nSTART INNER_POLYGON\n  BLN_FILE pg13.bln\n  MAX_CENTROID_SEPARATION 50\nEND INNER_POLYGON\nSTART INNER_POLYGON\n  BLN_FILE pg14.bln\n  MAX_CENTROID_SEPARATION 50\nEND INNER_POLYGON\nSTART INNER_POLYGON\n  BLN_FILE pg15.bln\n  MAX_CENTROID_SEPARATION 50\nEND INNER_POLYGON\n");
}

TEST(ControlFileFailure, SecondControlBlock) {
  expect_failure(" Maximum of 1 CONTROL blocks allowed in file t.in.\n",
      "START CONTROL\n"
      "  MAX_CENTROID_SEPARATION 100\n"
      "  POLY_GROWTH_RATE 1.2\n"
      "  OUT_FILE_BASE m1\n"
      "  MAX_CELLS 2000\n"
      "END CONTROL\n"
      "START OUTER_BOUNDARY\n"
      "  BLN_FILE outer.bln\n"
      "END OUTER_BOUNDARY\n"
      "START MF6\n"
      "  MF6_BASENAME m1\n"
      "  NLAY 1\n"
      "END MF6\n"
      "START CONTROL\n"
      "  MAX_CENTROID_SEPARATION 100\n"
      "  POLY_GROWTH_RATE 1.2\n"
      "  OUT_FILE_BASE m1\n"
      "  MAX_CELLS 2000\n"
      "END CONTROL\n");
}

TEST(ControlFileFailure, SecondMf6Block) {
  expect_failure(" Maximum of 1 MF6 blocks allowed in file t.in.\n",
      "START CONTROL\n"
      "  MAX_CENTROID_SEPARATION 100\n"
      "  POLY_GROWTH_RATE 1.2\n"
      "  OUT_FILE_BASE m1\n"
      "  MAX_CELLS 2000\n"
      "END CONTROL\n"
      "START OUTER_BOUNDARY\n"
      "  BLN_FILE outer.bln\n"
      "END OUTER_BOUNDARY\n"
      "START MF6\n"
      "  MF6_BASENAME m1\n"
      "  NLAY 1\n"
      "END MF6\n"
      "START MF6\n"
      "  MF6_BASENAME m1\n"
      "  NLAY 1\n"
      "END MF6\n");
}

TEST(ControlFileFailure, FiftyFirstInnerLineBlock) {
  expect_failure(" Maximum of 50 inner lines can be collectively defined using INNER_LINE \n"
                 "   blocks cited in file t.in.\n",
      "START CONTROL\n  MAX_CENTROID_SEPARATION 100\n  POLY_GROWTH_RATE 1.2\n  OUT_FILE_BASE m1\n  MAX_CELLS 2000\nEND CONTROL\nSTART OUTER_BOUNDARY\n  BLN_FILE outer.bln\nEND OUTER_BOUNDARY\nSTART MF6\n  MF6_BASENAME m1\n  NLAY 1\nEND MF6\nSTART INNER_LINE\n  BLN_FILE il0.bln\n  NUMLINES 1\nEND INNER_LINE\nSTART INNER_LINE\n  BLN_FILE il1.bln\n  NUMLINES 1\nEND INNER_LINE\nSTART INNER_LINE\n  BLN_FILE il2.bln\n  NUMLINES 1\nEND INNER_LINE\nSTART INNER_LINE\n  BLN_FILE il3.bln\n  NUMLINES 1\nEND INNER_LINE\nSTART INNER_LINE\n  BLN_FILE il4.bln\n  NUMLINES 1\nEND INNER_LINE\nSTART INNER_LINE\n  BLN_FILE il5.bln\n  NUMLINES 1\nEND INNER_LINE\nSTART INNER_LINE\n  BLN_FILE il6.bln\n  NUMLINES 1\nEND INNER_LINE\nSTART INNER_LINE\n  BLN_FILE il7.bln\n  NUMLINES 1\nEND INNER_LINE\nSTART INNER_LINE\n  BLN_FILE il8.bln\n  NUMLINES 1\nEND INNER_LINE\nSTART INNER_LINE\n  BLN_FILE il9.bln\n  NUMLINES 1\nEND INNER_LINE\nSTART INNER_LINE\n  BLN_FILE il10.bln\n  NUMLINES 1\nEND INNER_LINE\nSTART INNER_LINE\n  BLN_FILE il11.bln\n  NUMLINES 1\nEND INNER_LINE\nSTART INNER_LINE\n  BLN_FILE il12.bln\n  NUMLINES 1\nEND INNER_LINE\nSTART INNER_LINE\n  BLN_FILE il13.bln\n  NUMLINES 1\nEND INNER_LINE\nSTART INNER_LINE\n  BLN_FILE il14.bln\n  NUMLINES 1\nEND INNER_LINE\nSTART INNER_LINE\n  BLN_FILE il15.bln\n  NUMLINES 1\nEND INNER_LINE\nSTART INNER_LINE\n  BLN_FILE il16.bln\n  NUMLINES 1\nEND INNER_LINE\nSTART INNER_LINE\n  BLN_FILE il17.bln\n  NUMLINES 1\nEND INNER_LINE\nSTART INNER_LINE\n  BLN_FILE il18.bln\n  NUMLINES 1\nEND INNER_LINE\nSTART INNER_LINE\n  BLN_FILE il19.bln\n  NUMLINES 1\nEND INNER_LINE\nSTART INNER_LINE\n  BLN_FILE il20.bln\n  NUMLINES 1\nEND INNER_LINE\nSTART INNER_LINE\n  BLN_FILE il21.bln\n  NUMLINES 1\nEND INNER_LINE\nSTART INNER_LINE\n  BLN_FILE il22.bln\n  NUMLINES 1\nEND INNER_LINE\nSTART INNER_LINE\n  BLN_FILE il23.bln\n  NUMLINES 1\nEND INNER_LINE\nSTART INNER_LINE\n  BLN_FILE il24.bln\n  NUMLINES 1\nEND INNER_LINE\nSTART INNER_LINE\n  BLN_FILE il25.bln\n  NUMLINES 1\nEND INNER_LINE\nSTART INNER_LINE\n  BLN_FILE il26.bln\n  NUMLINES 1\nEND INNER_LINE\nSTART INNER_LINE\n  BLN_FILE il27.bln\n  NUMLINES 1\nEND INNER_LINE\nSTART INNER_LINE\n  BLN_FILE il28.bln\n  NUMLINES 1\nEND INNER_LINE\nSTART INNER_LINE\n  BLN_FILE il29.bln\n  NUMLINES 1\nEND INNER_LINE\nSTART INNER_LINE\n  BLN_FILE il30.bln\n  NUMLINES 1\nEND INNER_LINE\nSTART INNER_LINE\n  BLN_FILE il31.bln\n  NUMLINES 1\nEND INNER_LINE\nSTART INNER_LINE\n  BLN_FILE il32.bln\n  NUMLINES 1\nEND INNER_LINE\nSTART INNER_LINE\n  BLN_FILE il33.bln\n  NUMLINES 1\nEND INNER_LINE\nSTART INNER_LINE\n  BLN_FILE il34.bln\n  NUMLINES 1\nEND INNER_LINE\nSTART INNER_LINE\n  BLN_FILE il35.bln\n  NUMLINES 1\nEND INNER_LINE\nSTART INNER_LINE\n  BLN_FILE il36.bln\n  NUMLINES 1\nEND INNER_LINE\nSTART INNER_LINE\n  BLN_FILE il37.bln\n  NUMLINES 1\nEND INNER_LINE\nSTART INNER_LINE\n  BLN_FILE il38.bln\n  NUMLINES 1\nEND INNER_LINE\nSTART INNER_LINE\n  BLN_FILE il39.bln\n  NUMLINES 1\nEND INNER_LINE\nSTART INNER_LINE\n  BLN_FILE il40.bln\n  NUMLINES 1\nEND INNER_LINE\nSTART INNER_LINE\n  BLN_FILE il41.bln\n  NUMLINES 1\nEND INNER_LINE\nSTART INNER_LINE\n  BLN_FILE il42.bln\n  NUMLINES 1\nEND INNER_LINE\nSTART INNER_LINE\n  BLN_FILE il43.bln\n  NUMLINES 1\nEND INNER_LINE\nSTART INNER_LINE\n  BLN_FILE il44.bln\n  NUMLINES 1\nEND INNER_LINE\nSTART INNER_LINE\n  BLN_FILE il45.bln\n  NUMLINES 1\nEND INNER_LINE\nSTART INNER_LINE\n  BLN_FILE il46.bln\n  NUMLINES 1\nEND INNER_LINE\nSTART INNER_LINE\n  BLN_FILE il47.bln\n  NUMLINES 1\nEND INNER_LINE\nSTART INNER_LINE\n  BLN_FILE il48.bln\n  NUMLINES 1\nEND INNER_LINE\nSTART INNER_LINE\n  BLN_FILE il49.bln\n  NUMLINES 1\nEND INNER_LINE\nSTART INNER_LINE\n  BLN_FILE il50.bln\n  NUMLINES 1\nEND INNER_LINE\n");
}

TEST(ControlFileFailure, FurtherInnerLineBlockAfterNumlinesFifty) {
  expect_failure(" Maximum of 50 inner lines can be collectively defined using INNER_LINE \n"
                 "   blocks cited in file t.in.\n",
      "START CONTROL\n"
      "  MAX_CENTROID_SEPARATION 100\n"
      "  POLY_GROWTH_RATE 1.2\n"
      "  OUT_FILE_BASE m1\n"
      "  MAX_CELLS 2000\n"
      "END CONTROL\n"
      "START OUTER_BOUNDARY\n"
      "  BLN_FILE outer.bln\n"
      "END OUTER_BOUNDARY\n"
      "START MF6\n"
      "  MF6_BASENAME m1\n"
      "  NLAY 1\n"
      "END MF6\n"
      "START INNER_LINE\n"
      "  NUMLINES 50\n"
      "  BLN_FILE many.bln\n"
      "END INNER_LINE\n"
      "START INNER_LINE\n");
}

TEST(ControlFileFailure, NumlinesExpansionPastFifty) {
  expect_failure(" Maximum of 50 inner lines can be collectively defined using INNER_LINE \n"
                 "   blocks cited in file t.in.\n",
      "START CONTROL\n"
      "  MAX_CENTROID_SEPARATION 100\n"
      "  POLY_GROWTH_RATE 1.2\n"
      "  OUT_FILE_BASE m1\n"
      "  MAX_CELLS 2000\n"
      "END CONTROL\n"
      "START OUTER_BOUNDARY\n"
      "  BLN_FILE outer.bln\n"
      "END OUTER_BOUNDARY\n"
      "START MF6\n"
      "  MF6_BASENAME m1\n"
      "  NLAY 1\n"
      "END MF6\n"
      "START INNER_LINE\n"
      "  NUMLINES 2\n"
      "  BLN_FILE two.bln\n"
      "END INNER_LINE\n"
      "START INNER_LINE\n"
      "  NUMLINES 49\n"
      "  BLN_FILE many.bln\n"
      "END INNER_LINE\n");
}

TEST(ControlFileFailure, EndWithNoBlockOpen) {
  expect_failure(" Unexpected END statement encountered at line 2 of file t.in.\n",
      "\n"
      "END CONTROL\n");
}

TEST(ControlFileFailure, OuterBoundaryWithoutBlnFile) {
  expect_failure(" OUTER_BOUNDARY block that finishes on line 8 of file t.in does not contain a \n"
                 "   BLN_FILE keyword.\n",
      "START CONTROL\n"
      "  MAX_CENTROID_SEPARATION 100\n"
      "  POLY_GROWTH_RATE 1.2\n"
      "  OUT_FILE_BASE m1\n"
      "  MAX_CELLS 2000\n"
      "END CONTROL\n"
      "START OUTER_BOUNDARY\n"
      "END OUTER_BOUNDARY\n");
}

TEST(ControlFileFailure, InnerBoundaryWithoutBlnFile) {
  expect_failure(" INNER_BOUNDARY block that finishes on line 15 of file t.in does not contain \n"
                 "   a BLN_FILE keyword.\n",
      "START CONTROL\n"
      "  MAX_CENTROID_SEPARATION 100\n"
      "  POLY_GROWTH_RATE 1.2\n"
      "  OUT_FILE_BASE m1\n"
      "  MAX_CELLS 2000\n"
      "END CONTROL\n"
      "START OUTER_BOUNDARY\n"
      "  BLN_FILE outer.bln\n"
      "END OUTER_BOUNDARY\n"
      "START MF6\n"
      "  MF6_BASENAME m1\n"
      "  NLAY 1\n"
      "END MF6\n"
      "START INNER_BOUNDARY\n"
      "END\n");
}

TEST(ControlFileFailure, InnerPointsWithoutBlnFile) {
  expect_failure(" INNER_POINTS block that finishes on line 15 of file t.in does not contain a \n"
                 "   BLN_FILE keyword.\n",
      "START CONTROL\n"
      "  MAX_CENTROID_SEPARATION 100\n"
      "  POLY_GROWTH_RATE 1.2\n"
      "  OUT_FILE_BASE m1\n"
      "  MAX_CELLS 2000\n"
      "END CONTROL\n"
      "START OUTER_BOUNDARY\n"
      "  BLN_FILE outer.bln\n"
      "END OUTER_BOUNDARY\n"
      "START MF6\n"
      "  MF6_BASENAME m1\n"
      "  NLAY 1\n"
      "END MF6\n"
      "START INNER_POINTS\n"
      "END\n");
}

TEST(ControlFileFailure, InnerLineWithoutBlnFileIsTestedBeforeNumlines) {
  expect_failure(" INNER_LINE block that finishes on line 15 of file t.in does not contain a \n"
                 "   BLN_FILE keyword.\n",
      "START CONTROL\n"
      "  MAX_CENTROID_SEPARATION 100\n"
      "  POLY_GROWTH_RATE 1.2\n"
      "  OUT_FILE_BASE m1\n"
      "  MAX_CELLS 2000\n"
      "END CONTROL\n"
      "START OUTER_BOUNDARY\n"
      "  BLN_FILE outer.bln\n"
      "END OUTER_BOUNDARY\n"
      "START MF6\n"
      "  MF6_BASENAME m1\n"
      "  NLAY 1\n"
      "END MF6\n"
      "START INNER_LINE\n"
      "END\n");
}

TEST(ControlFileFailure, InnerLineWithoutNumlines) {
  expect_failure(" INNER_LINE block that finishes on line 16 of file t.in does not contain a \n"
                 "   NUMLINES keyword.\n",
      "START CONTROL\n"
      "  MAX_CENTROID_SEPARATION 100\n"
      "  POLY_GROWTH_RATE 1.2\n"
      "  OUT_FILE_BASE m1\n"
      "  MAX_CELLS 2000\n"
      "END CONTROL\n"
      "START OUTER_BOUNDARY\n"
      "  BLN_FILE outer.bln\n"
      "END OUTER_BOUNDARY\n"
      "START MF6\n"
      "  MF6_BASENAME m1\n"
      "  NLAY 1\n"
      "END MF6\n"
      "START INNER_LINE\n"
      "BLN_FILE r.bln\n"
      "END\n");
}

TEST(ControlFileFailure, InnerPolygonWithoutBlnFile) {
  expect_failure(" INNER_POLYGON block that finishes on line 15 of file t.in does not contain a \n"
                 "   BLN_FILE keyword.\n",
      "START CONTROL\n"
      "  MAX_CENTROID_SEPARATION 100\n"
      "  POLY_GROWTH_RATE 1.2\n"
      "  OUT_FILE_BASE m1\n"
      "  MAX_CELLS 2000\n"
      "END CONTROL\n"
      "START OUTER_BOUNDARY\n"
      "  BLN_FILE outer.bln\n"
      "END OUTER_BOUNDARY\n"
      "START MF6\n"
      "  MF6_BASENAME m1\n"
      "  NLAY 1\n"
      "END MF6\n"
      "START INNER_POLYGON\n"
      "END\n");
}

TEST(ControlFileFailure, InnerPolygonWithoutSeparationEvenWhenControlHasOne) {
  expect_failure(" INNER_POLYGON block that finishes on line 16 of file t.in does not contain a \n"
                 "   MAX_CENTROID_SEPARATION keyword.\n",
      "START CONTROL\n"
      "  MAX_CENTROID_SEPARATION 100\n"
      "  POLY_GROWTH_RATE 1.2\n"
      "  OUT_FILE_BASE m1\n"
      "  MAX_CELLS 2000\n"
      "END CONTROL\n"
      "START OUTER_BOUNDARY\n"
      "  BLN_FILE outer.bln\n"
      "END OUTER_BOUNDARY\n"
      "START MF6\n"
      "  MF6_BASENAME m1\n"
      "  NLAY 1\n"
      "END MF6\n"
      "START INNER_POLYGON\n"
      "BLN_FILE p.bln\n"
      "END\n");
}

TEST(ControlFileFailure, Mf6WithoutBasename) {
  expect_failure(" MF6 block that finishes on line 3 of file t.in does not contain a \n"
                 "   MF6_BASENAME keyword.\n",
      "START MF6\n"
      "NLAY 1\n"
      "END MF6\n");
}

TEST(ControlFileFailure, Mf6WithoutNlay) {
  expect_failure(" MF6 block that finishes on line 3 of file t.in does not contain a NLAY \n"
                 "   keyword.\n",
      "START MF6\n"
      "MF6_BASENAME m\n"
      "END MF6\n");
}

TEST(ControlFileFailure, ControlFirstBlockHasNoBlockName) {
  expect_failure("  block that finishes on line 3 of file t.in does not contain a \n"
                 "    POLY_GROWTH_RATE keyword.\n",
      "START CONTROL\n"
      "  MAX_CENTROID_SEPARATION 100\n"
      "END\n");
}

TEST(ControlFileFailure, ControlShowsTheBlockClosedBeforeIt) {
  expect_failure(" OUTER_BOUNDARY block that finishes on line 8 of file t.in does not contain a \n"
                 "   MAX_CELLS keyword.\n",
      "START OUTER_BOUNDARY\n"
      "  BLN_FILE outer.bln\n"
      "END OUTER_BOUNDARY\n"
      "START CONTROL\n"
      "  MAX_CENTROID_SEPARATION 100\n"
      "  POLY_GROWTH_RATE 1.2\n"
      "  OUT_FILE_BASE m1\n"
      "END CONTROL\n");
}

TEST(ControlFileFailure, ControlWithoutSeparation) {
  expect_failure(" MF6 block that finishes on line 7 of file t.in does not contain a \n"
                 "   MAX_CENTROID_SEPARATION keyword.\n",
      "START MF6\n"
      "  MF6_BASENAME m1\n"
      "  NLAY 1\n"
      "END MF6\n"
      "START CONTROL\n"
      "  POLY_GROWTH_RATE 1.2\n"
      "END\n");
}

TEST(ControlFileFailure, ControlWithoutOutFileBase) {
  expect_failure(" MF6 block that finishes on line 9 of file t.in does not contain a \n"
                 "   OUT_FILE_BASE keyword.\n",
      "START MF6\n"
      "  MF6_BASENAME m1\n"
      "  NLAY 1\n"
      "END MF6\n"
      "START CONTROL\n"
      "  POLY_GROWTH_RATE 1.2\n"
      "MAX_CENTROID_SEPARATION 3\n"
      "MAX_CELLS 2000\n"
      "END\n");
}

TEST(ControlFileFailure, KeywordOutsideAnyBlock) {
  expect_failure(" MAX_CELLS keyword is not allowed in  block.\n",
      "MAX_CELLS 2000\n");
}

TEST(ControlFileFailure, MaxCentroidInMf6Block) {
  expect_failure(" MAX_CENTROID_SEPARATION keyword is not allowed in MF6 block.\n",
      "START CONTROL\n"
      "  MAX_CENTROID_SEPARATION 100\n"
      "  POLY_GROWTH_RATE 1.2\n"
      "  OUT_FILE_BASE m1\n"
      "  MAX_CELLS 2000\n"
      "END CONTROL\n"
      "START OUTER_BOUNDARY\n"
      "  BLN_FILE outer.bln\n"
      "END OUTER_BOUNDARY\n"
      "START MF6\n"
      "  MF6_BASENAME m1\n"
      "  NLAY 1\n"
      "  MAX_CENTROID 100\n"
      "END MF6\n");
}

TEST(ControlFileFailure, XoriginInControlBlockUsesItsLabel) {
  expect_failure(" X0RIGIN keyword is not allowed in CONTROL block.\n",
      "START CONTROL\n"
      "  MAX_CENTROID_SEPARATION 100\n"
      "  POLY_GROWTH_RATE 1.2\n"
      "  OUT_FILE_BASE m1\n"
      "  MAX_CELLS 2000\n"
      "  XORIGIN 10\n"
      "END CONTROL\n"
      "START OUTER_BOUNDARY\n"
      "  BLN_FILE outer.bln\n"
      "END OUTER_BOUNDARY\n"
      "START MF6\n"
      "  MF6_BASENAME m1\n"
      "  NLAY 1\n"
      "END MF6\n");
}

TEST(ControlFileFailure, NumlinesInOuterBoundary) {
  expect_failure(" NUMLINES keyword is not allowed in OUTER_BOUNDARY block.\n",
      "START CONTROL\n"
      "  MAX_CENTROID_SEPARATION 100\n"
      "  POLY_GROWTH_RATE 1.2\n"
      "  OUT_FILE_BASE m1\n"
      "  MAX_CELLS 2000\n"
      "END CONTROL\n"
      "START OUTER_BOUNDARY\n"
      "NUMLINES 2\n");
}

TEST(ControlFileFailure, NlayRepeated) {
  expect_failure(" NLAY keyword repeated in MF6 block at line 13 of file t.in.\n",
      "START CONTROL\n"
      "  MAX_CENTROID_SEPARATION 100\n"
      "  POLY_GROWTH_RATE 1.2\n"
      "  OUT_FILE_BASE m1\n"
      "  MAX_CELLS 2000\n"
      "END CONTROL\n"
      "START OUTER_BOUNDARY\n"
      "  BLN_FILE outer.bln\n"
      "END OUTER_BOUNDARY\n"
      "START MF6\n"
      "  MF6_BASENAME m1\n"
      "  NLAY 1\n"
      "  NLAY 2\n"
      "END MF6\n");
}

TEST(ControlFileFailure, MaxLloydZeroIsSetAndCannotBeRepeated) {
  expect_failure(" MAX_LLOYD keyword repeated in CONTROL block at line 7 of file t.in.\n",
      "START CONTROL\n"
      "  MAX_CENTROID_SEPARATION 100\n"
      "  POLY_GROWTH_RATE 1.2\n"
      "  OUT_FILE_BASE m1\n"
      "  MAX_CELLS 2000\n"
      "  MAX_LLOYD 0\n"
      "  max_loyd 4\n"
      "END CONTROL\n"
      "START OUTER_BOUNDARY\n"
      "  BLN_FILE outer.bln\n"
      "END OUTER_BOUNDARY\n"
      "START MF6\n"
      "  MF6_BASENAME m1\n"
      "  NLAY 1\n"
      "END MF6\n");
}

TEST(ControlFileFailure, SafetyZeroIsSetAndCannotBeRepeated) {
  expect_failure(" SAFETY keyword repeated in CONTROL block at line 7 of file t.in.\n",
      "START CONTROL\n"
      "  MAX_CENTROID_SEPARATION 100\n"
      "  POLY_GROWTH_RATE 1.2\n"
      "  OUT_FILE_BASE m1\n"
      "  MAX_CELLS 2000\n"
      "  SAFETY 0\n"
      "  SAFETY 1\n"
      "END CONTROL\n"
      "START OUTER_BOUNDARY\n"
      "  BLN_FILE outer.bln\n"
      "END OUTER_BOUNDARY\n"
      "START MF6\n"
      "  MF6_BASENAME m1\n"
      "  NLAY 1\n"
      "END MF6\n");
}

TEST(ControlFileFailure, BlnFileRepeatedInInnerBoundary) {
  expect_failure(" BLN_FILE keyword repeated in INNER_BOUNDARY block at line 16 of file t.in.\n",
      "START CONTROL\n"
      "  MAX_CENTROID_SEPARATION 100\n"
      "  POLY_GROWTH_RATE 1.2\n"
      "  OUT_FILE_BASE m1\n"
      "  MAX_CELLS 2000\n"
      "END CONTROL\n"
      "START OUTER_BOUNDARY\n"
      "  BLN_FILE outer.bln\n"
      "END OUTER_BOUNDARY\n"
      "START MF6\n"
      "  MF6_BASENAME m1\n"
      "  NLAY 1\n"
      "END MF6\n"
      "START INNER_BOUNDARY\n"
      "BLN_FILE a.bln\n"
      "BLN_FILE b.bln\n");
}

TEST(ControlFileFailure, XoriginRepeatedUsesItsLabel) {
  expect_failure(" X0RIGIN keyword repeated in MF6 block at line 14 of file t.in.\n",
      "START CONTROL\n"
      "  MAX_CENTROID_SEPARATION 100\n"
      "  POLY_GROWTH_RATE 1.2\n"
      "  OUT_FILE_BASE m1\n"
      "  MAX_CELLS 2000\n"
      "END CONTROL\n"
      "START OUTER_BOUNDARY\n"
      "  BLN_FILE outer.bln\n"
      "END OUTER_BOUNDARY\n"
      "START MF6\n"
      "  MF6_BASENAME m1\n"
      "  NLAY 1\n"
      "  XORIGIN 1\n"
      "  XORIG 2\n"
      "END MF6\n");
}

TEST(ControlFileFailure, MaxCentroidRepeatedInControl) {
  expect_failure(" MAX_CENTROID_SEPARATION keyword repeated in CONTROL block at line 6 of file \n"
                 "   t.in.\n",
      "START CONTROL\n"
      "  MAX_CENTROID_SEPARATION 100\n"
      "  POLY_GROWTH_RATE 1.2\n"
      "  OUT_FILE_BASE m1\n"
      "  MAX_CELLS 2000\n"
      "  MAX_CENTROID_SEPARATION 100\n"
      "END CONTROL\n"
      "START OUTER_BOUNDARY\n"
      "  BLN_FILE outer.bln\n"
      "END OUTER_BOUNDARY\n"
      "START MF6\n"
      "  MF6_BASENAME m1\n"
      "  NLAY 1\n"
      "END MF6\n");
}

TEST(ControlFileFailure, KeywordWithoutValue) {
  expect_failure(" Cannot read value following YORIGIN keyword at line 13 of file t.in.\n",
      "START CONTROL\n"
      "  MAX_CENTROID_SEPARATION 100\n"
      "  POLY_GROWTH_RATE 1.2\n"
      "  OUT_FILE_BASE m1\n"
      "  MAX_CELLS 2000\n"
      "END CONTROL\n"
      "START OUTER_BOUNDARY\n"
      "  BLN_FILE outer.bln\n"
      "END OUTER_BOUNDARY\n"
      "START MF6\n"
      "  MF6_BASENAME m1\n"
      "  NLAY 1\n"
      "  YORIGIN\n"
      "END MF6\n");
}

TEST(ControlFileFailure, NlayAsRealCannotBeRead) {
  expect_failure(" Cannot read value following NLAY keyword at line 12 of file t.in.\n",
      "START CONTROL\n"
      "  MAX_CENTROID_SEPARATION 100\n"
      "  POLY_GROWTH_RATE 1.2\n"
      "  OUT_FILE_BASE m1\n"
      "  MAX_CELLS 2000\n"
      "END CONTROL\n"
      "START OUTER_BOUNDARY\n"
      "  BLN_FILE outer.bln\n"
      "END OUTER_BOUNDARY\n"
      "START MF6\n"
      "  MF6_BASENAME m1\n"
      "  NLAY 2.5\n");
}

TEST(ControlFileFailure, RealThatCannotBeRead) {
  expect_failure(" Cannot read value following MAX_CENTROID_SEPARATION keyword at line 2 of \n"
                 "   file t.in.\n",
      "START CONTROL\n"
      "  MAX_CENTROID_SEPARATION 1O0\n");
}

TEST(ControlFileFailure, ValueBeyondColumn500IsDropped) {
  expect_failure(" Cannot read value following NLAY keyword at line 2 of file t.in.\n",
      "START MF6\n"
      "  NLAY                                                                                                                                                                                                                                                                                                                                                                                                                                                                                                               3\n");
}

TEST(ControlFileFailure, KeywordWithOnlyEqualsSign) {
  expect_failure(" Cannot read value following NLAY keyword at line 2 of file t.in.\n",
      "START MF6\n"
      "  NLAY = \n");
}

TEST(ControlFileFailure, EmptyQuotedFileName) {
  expect_failure(" Cannot read filename following BLN_FILE keyword at line 2 of file t.in.\n",
      "START OUTER_BOUNDARY\n"
      "  BLN_FILE \"\"\n");
}

TEST(ControlFileFailure, UnclosedQuoteInFileName) {
  expect_failure(" Cannot read filename following OUT_FILE_BASE keyword at line 2 of file t.in.\n",
      "START CONTROL\n"
      "  OUT_FILE_BASE \"abc\n");
}

TEST(ControlFileFailure, FileNameWithUnopenedQuote) {
  expect_failure(" Cannot read filename following MF6_BASENAME keyword at line 2 of file t.in.\n",
      "START MF6\n"
      "  MF6_BASENAME abc'\n");
}

TEST(ControlFileFailure, SeparationNotAboveZero) {
  expect_failure(" Value for MAX_CENTROID_SEPARATION keyword must be greater than zero at line \n"
                 "   2 of file t.in.\n",
      "START CONTROL\n"
      "  MAX_CENTROID_SEPARATION 0.0\n");
}

TEST(ControlFileFailure, PolygonSeparationNotAboveZero) {
  expect_failure(" Value for MAX_CENTROID_SEPARATION keyword must be greater than zero at line \n"
                 "   2 of file t.in.\n",
      "START INNER_POLYGON\n"
      "  MAX_CENTROID_SEPARATION -1\n");
}

TEST(ControlFileFailure, EpsLloydNotAboveZero) {
  expect_failure(" Value for EPS_LLOYD keyword must be greater than zero at line 2 of file t.in.\n",
      "START CONTROL\n"
      "  EPS_LOYD 0\n");
}

TEST(ControlFileFailure, LloydFacNotAboveZero) {
  expect_failure(" Value for LLOYD_FAC keyword must be greater than zero at line 2 of file t.in.\n",
      "START CONTROL\n"
      "  LLOYD_FAC 0\n");
}

TEST(ControlFileFailure, NumlinesNotAboveZero) {
  expect_failure(" Value for NUMLINES keyword must be greater than zero at line 2 of file t.in.\n",
      "START INNER_LINE\n"
      "  NUMLINES 0\n");
}

TEST(ControlFileFailure, GrowthRateNotAboveOne) {
  expect_failure(" Value for POLY_GROWTH_RATE keyword must be greater than one at line 2 of \n"
                 "   file t.in.\n",
      "START CONTROL\n"
      "  POLY_GROWTH_RATE 1.0\n");
}

TEST(ControlFileFailure, Mf6BasenameWithSlash) {
  expect_failure(" As presently programmed, MF6_BASENAME cannot include a path in the filename \n"
                 "   base. This is violated at line 2 of file t.in.\n",
      "START MF6\n"
      "  MF6_BASENAME out/m1\n");
}

TEST(ControlFileFailure, Mf6BasenameWithBackslash) {
  expect_failure(" As presently programmed, MF6_BASENAME cannot include a path in the filename \n"
                 "   base. This is violated at line 2 of file t.in.\n",
      "START MF6\n"
      "  MF6_BASENAME out\\m1\n");
}

TEST(ControlFileFailure, Nlay101) {
  expect_failure(" Value for NLAY must be less than 100 at line 2 of file t.in.\n",
      "START MF6\n"
      "  NLAY 101\n");
}

TEST(ControlFileFailure, NlayZero) {
  expect_failure(" Value for NLAY must be greater than zero at line 2 of file t.in.\n",
      "START MF6\n"
      "  NLAY 0\n");
}

TEST(ControlFileFailure, MaxCells1000) {
  expect_failure(" Value for MAX_CELLS must be greater than 1000 at line 2 of file t.in.\n",
      "START CONTROL\n"
      "  MAX_CELLS 1000\n");
}

TEST(ControlFileFailure, SafetyNegative) {
  expect_failure(" Value supplied for SAFETY keyword must be zero or greater at line 2 of file \n"
                 "   t.in.\n",
      "START CONTROL\n"
      "  SAFETY -1\n");
}

TEST(ControlFileFailure, MaxLloydNegative) {
  expect_failure(" Value supplied for MAX_LLOYD keyword must be zero or greater at line 2 of \n"
                 "   file t.in.\n",
      "START CONTROL\n"
      "  MAX_LLOYD -1\n");
}

TEST(ControlFileFailure, Nsdim4) {
  expect_failure(" Value for NSDIM must be at least 5 at line 2 of file t.in.\n",
      "START CONTROL\n"
      "  NSDIM 4\n");
}

TEST(ControlFileFailure, Nsdim6) {
  expect_failure(" Value for NSDIM must be a positive odd integer at line 2 of file t.in.\n",
      "START CONTROL\n"
      "  NSDIM 6\n");
}

TEST(ControlFileFailure, NsdimZeroFailsTheLowerBound) {
  expect_failure(" Value for NSDIM must be at least 5 at line 2 of file t.in.\n",
      "START CONTROL\n"
      "  NSDIM 0\n");
}

TEST(ControlFileFailure, NumericTokenIsCutAtThirtyCharacters) {
  expect_failure(" Value for NSDIM must be at least 5 at line 2 of file t.in.\n",
      "START CONTROL\n"
      "  NSDIM 000000000000000000000000000000000007\n");
}

TEST(ControlFileFailure, LloydFac101) {
  expect_failure(" LLOYD_FAC should be less than 1.0 at line 2 of file t.in.\n",
      "START CONTROL\n"
      "  LLOYD_FAC 1.01\n");
}

TEST(ControlFileFailure, EndOfFileWithBlockOpen) {
  expect_failure(" End encountered to file t.in before closure of INNER_POLYGON block.\n",
      "START CONTROL\n"
      "  MAX_CENTROID_SEPARATION 100\n"
      "  POLY_GROWTH_RATE 1.2\n"
      "  OUT_FILE_BASE m1\n"
      "  MAX_CELLS 2000\n"
      "END CONTROL\n"
      "START INNER_POLYGON\n"
      "  BLN_FILE p.bln\n");
}

TEST(ControlFileFailure, EmptyInputFile) {
  expect_failure(" No OUTER_BOUNDARY block found in file t.in.\n",
      "");
}

TEST(ControlFileFailure, NoControlBlockIsReportedAsInnerPolygon) {
  expect_failure(" No INNER_POLYGON block found in file t.in.\n",
      "START OUTER_BOUNDARY\n"
      "  BLN_FILE outer.bln\n"
      "END OUTER_BOUNDARY\n"
      "START MF6\n"
      "  MF6_BASENAME m1\n"
      "  NLAY 1\n"
      "END MF6\n");
}

TEST(ControlFileFailure, NoMf6Block) {
  expect_failure(" No MF6 block found in file t.in.\n",
      "START CONTROL\n"
      "  MAX_CENTROID_SEPARATION 100\n"
      "  POLY_GROWTH_RATE 1.2\n"
      "  OUT_FILE_BASE m1\n"
      "  MAX_CELLS 2000\n"
      "END CONTROL\n"
      "START OUTER_BOUNDARY\n"
      "  BLN_FILE outer.bln\n"
      "END OUTER_BOUNDARY\n");
}

TEST(ControlFileFailure, OuterAndInnerBoundaryShareAFile) {
  expect_failure(" BLN filename \"outer.bln\" duplicated in file t.in.\n",
      "START CONTROL\n"
      "  MAX_CENTROID_SEPARATION 100\n"
      "  POLY_GROWTH_RATE 1.2\n"
      "  OUT_FILE_BASE m1\n"
      "  MAX_CELLS 2000\n"
      "END CONTROL\n"
      "START OUTER_BOUNDARY\n"
      "  BLN_FILE outer.bln\n"
      "END OUTER_BOUNDARY\n"
      "START MF6\n"
      "  MF6_BASENAME m1\n"
      "  NLAY 1\n"
      "END MF6\n"
      "START INNER_BOUNDARY\n"
      "  BLN_FILE outer.bln\n"
      "END\n");
}

TEST(ControlFileFailure, CaseCountsAndTheFirstEqualPairInOrderWins) {
  expect_failure(" BLN filename \"p.bln\" duplicated in file t.in.\n",
      "START CONTROL\n"
      "  MAX_CENTROID_SEPARATION 100\n"
      "  POLY_GROWTH_RATE 1.2\n"
      "  OUT_FILE_BASE m1\n"
      "  MAX_CELLS 2000\n"
      "END CONTROL\n"
      "START OUTER_BOUNDARY\n"
      "  BLN_FILE outer.bln\n"
      "END OUTER_BOUNDARY\n"
      "START MF6\n"
      "  MF6_BASENAME m1\n"
      "  NLAY 1\n"
      "END MF6\n"
      "START INNER_BOUNDARY\n"
      "  BLN_FILE OUTER.bln\n"
      "END\n"
      "START INNER_POLYGON\n"
      "BLN_FILE p.bln\n"
      "MAX_CENTROID_SEPARATION 10\n"
      "END\n"
      "START INNER_POLYGON\n"
      "BLN_FILE Outer.bln\n"
      "MAX_CENTROID_SEPARATION 10\n"
      "END\n"
      "START INNER_BOUNDARY\n"
      "  BLN_FILE p.bln\n"
      "END\n");
}

TEST(ControlFileFailure, TwoInnerLineBlocksShareAFile) {
  expect_failure(" BLN filename \"rivers.bln\" duplicated in file t.in.\n",
      "START CONTROL\n"
      "  MAX_CENTROID_SEPARATION 100\n"
      "  POLY_GROWTH_RATE 1.2\n"
      "  OUT_FILE_BASE m1\n"
      "  MAX_CELLS 2000\n"
      "END CONTROL\n"
      "START OUTER_BOUNDARY\n"
      "  BLN_FILE outer.bln\n"
      "END OUTER_BOUNDARY\n"
      "START MF6\n"
      "  MF6_BASENAME m1\n"
      "  NLAY 1\n"
      "END MF6\n"
      "START INNER_LINE\n"
      "  NUMLINES 3\n"
      "  BLN_FILE rivers.bln\n"
      "END INNER_LINE\n"
      "START INNER_LINE\n"
      "  BLN_FILE rivers.bln\n"
      "  NUMLINES 1\n"
      "END INNER_LINE\n");
}

TEST(ControlFileFailure, TwoInnerPolygonsShareAFile) {
  expect_failure(" BLN filename \"zone.bln\" duplicated in file t.in.\n",
      "START CONTROL\n"
      "  MAX_CENTROID_SEPARATION 100\n"
      "  POLY_GROWTH_RATE 1.2\n"
      "  OUT_FILE_BASE m1\n"
      "  MAX_CELLS 2000\n"
      "END CONTROL\n"
      "START OUTER_BOUNDARY\n"
      "  BLN_FILE outer.bln\n"
      "END OUTER_BOUNDARY\n"
      "START MF6\n"
      "  MF6_BASENAME m1\n"
      "  NLAY 1\n"
      "END MF6\n"
      "START INNER_POLYGON\n"
      "BLN_FILE zone.bln\n"
      "MAX_CENTROID_SEPARATION 10\n"
      "END\n"
      "START INNER_POLYGON\n"
      "BLN_FILE zone.bln\n"
      "MAX_CENTROID_SEPARATION 20\n"
      "END\n");
}

TEST(ControlFileFailure, InnerLineAndInnerPointsShareAFile) {
  expect_failure(" BLN filename \"a\" duplicated in file t.in.\n",
      "START CONTROL\n"
      "  MAX_CENTROID_SEPARATION 100\n"
      "  POLY_GROWTH_RATE 1.2\n"
      "  OUT_FILE_BASE m1\n"
      "  MAX_CELLS 2000\n"
      "END CONTROL\n"
      "START OUTER_BOUNDARY\n"
      "  BLN_FILE outer.bln\n"
      "END OUTER_BOUNDARY\n"
      "START MF6\n"
      "  MF6_BASENAME m1\n"
      "  NLAY 1\n"
      "END MF6\n"
      "START INNER_LINE\n"
      "  NUMLINES 2\n"
      "  BLN_FILE a b.bln\n"
      "END INNER_LINE\n"
      "START INNER_POINTS\n"
      "  BLN_FILE a\n"
      "END\n");
}

TEST(ControlFileFailure, QuotedNameWithBlankDuplicated) {
  expect_failure(" BLN filename \"my hole.bln\" duplicated in file t.in.\n",
      "START CONTROL\n"
      "  MAX_CENTROID_SEPARATION 100\n"
      "  POLY_GROWTH_RATE 1.2\n"
      "  OUT_FILE_BASE m1\n"
      "  MAX_CELLS 2000\n"
      "END CONTROL\n"
      "START OUTER_BOUNDARY\n"
      "  BLN_FILE outer.bln\n"
      "END OUTER_BOUNDARY\n"
      "START MF6\n"
      "  MF6_BASENAME m1\n"
      "  NLAY 1\n"
      "END MF6\n"
      "START INNER_BOUNDARY\n"
      "  BLN_FILE = \"my hole.bln\"\n"
      "END\n"
      "START INNER_POLYGON\n"
      "  BLN_FILE='my hole.bln' # same file\n"
      "MAX_CENTROID_SEPARATION 10\n"
      "END\n");
}

TEST(ControlFileFailure, PolygonSeparationAboveControl) {
  expect_failure(" Value for MAX_CENTROID_SEPARATION provided in the CONTROL block must be \n"
                 "   greater than values provided for MAX_CENTROID_SEPARATION in INNER_POLYGON \n"
                 "   blocks.\n",
      "START CONTROL\n"
      "  MAX_CENTROID_SEPARATION 100\n"
      "  POLY_GROWTH_RATE 1.2\n"
      "  OUT_FILE_BASE m1\n"
      "  MAX_CELLS 2000\n"
      "END CONTROL\n"
      "START OUTER_BOUNDARY\n"
      "  BLN_FILE outer.bln\n"
      "END OUTER_BOUNDARY\n"
      "START MF6\n"
      "  MF6_BASENAME m1\n"
      "  NLAY 1\n"
      "END MF6\n"
      "START INNER_POLYGON\n"
      "BLN_FILE zone.bln\n"
      "MAX_CENTROID_SEPARATION 100.001\n"
      "END\n");
}

TEST(ControlFileFailure, XoriginWithoutYorigin) {
  expect_failure(" Values must be supplied for BOTH of XORIGIN and YORIGIN in CONTROL block of \n"
                 "   file t.in or for NEITHER of these variables.\n",
      "START CONTROL\n"
      "  MAX_CENTROID_SEPARATION 100\n"
      "  POLY_GROWTH_RATE 1.2\n"
      "  OUT_FILE_BASE m1\n"
      "  MAX_CELLS 2000\n"
      "END CONTROL\n"
      "START OUTER_BOUNDARY\n"
      "  BLN_FILE outer.bln\n"
      "END OUTER_BOUNDARY\n"
      "START MF6\n"
      "  MF6_BASENAME m1\n"
      "  NLAY 1\n"
      "  XORIGIN 0.0\n"
      "END MF6\n");
}

TEST(ControlFileFailure, YoriginWithoutXorigin) {
  expect_failure(" Values must be supplied for BOTH of XORIGIN and YORIGIN in CONTROL block of \n"
                 "   file t.in or for NEITHER of these variables.\n",
      "START CONTROL\n"
      "  MAX_CENTROID_SEPARATION 100\n"
      "  POLY_GROWTH_RATE 1.2\n"
      "  OUT_FILE_BASE m1\n"
      "  MAX_CELLS 2000\n"
      "END CONTROL\n"
      "START OUTER_BOUNDARY\n"
      "  BLN_FILE outer.bln\n"
      "END OUTER_BOUNDARY\n"
      "START MF6\n"
      "  MF6_BASENAME m1\n"
      "  NLAY 1\n"
      "  YORIGIN = -5\n"
      "END MF6\n");
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
                 "START MF6\r\n  NLAY 101\r\nEND MF6\r\n");
}

}  // namespace
}  // namespace tesseramill_test
