// What the control file reader stores, and the order in which the run
// resolves the defaults.
#include <gtest/gtest.h>

#include <sstream>

#include "common/failure.h"
#include "run/phases.h"
#include "support/scratch.h"

namespace tesseramill {
namespace {

using tesseramill_test::ScratchDir;

// A square outer boundary that later phases accept.
const char* const kSquareBln =
    "5\n"
    "0 0 10\n"
    "100 0 10\n"
    "100 100 10\n"
    "0 100 10\n"
    "0 0 10\n";

struct Loaded {
  ScratchDir dir;
  std::ostringstream screen;
  RunState state;
  std::string failure;  // message_buffer of a failed read, empty when the read passed
};

// Reads `control` (with every {dir} replaced by the scratch folder) as the
// control file of a fresh run.
void load(Loaded& run, std::string control) {
  const std::string dir = run.dir.path().string();
  for (std::size_t p = control.find("{dir}"); p != std::string::npos; p = control.find("{dir}")) {
    control.replace(p, 5, dir);
  }
  run.dir.write("t.in", control);
  run.dir.write("outer.bln", kSquareBln);
  run.state.screen = &run.screen;
  initialise_run_state(run.state);
  run.state.control_file_name = dir + "/t.in";
  try {
    read_control_file(run.state);
  } catch (const RunFailure&) {
    run.failure = run.state.message_buffer;
  }
}

std::string control_block(const std::string& extra = "") {
  return "START CONTROL\n"
         "  MAX_CENTROID_SEPARATION 100\n"
         "  POLY_GROWTH_RATE 1.2\n"
         "  OUT_FILE_BASE m1\n"
         "  MAX_CELLS 2000\n" +
         extra + "END CONTROL\n";
}

std::string outer_block() { return "START OUTER_BOUNDARY\n  BLN_FILE \"{dir}/outer.bln\"\nEND\n"; }

std::string mf6_block(const std::string& extra = "") {
  return "START MF6\n  MF6_BASENAME m1\n  NLAY 1\n" + extra + "END MF6\n";
}

std::string minimal(const std::string& control_extra = "", const std::string& mf6_extra = "",
                    const std::string& more = "") {
  return control_block(control_extra) + outer_block() + mf6_block(mf6_extra) + more;
}

TEST(ControlFile, MinimalFileIsReadWithItsScreenLines) {
  Loaded run;
  load(run, minimal());
  ASSERT_EQ(run.failure, "");
  const std::string name = run.dir.path().string() + "/t.in";
  EXPECT_EQ(run.screen.str(), "\n - reading file " + name + "...\n - file " + name + " read ok.\n");
  const ControlData& c = run.state.control;
  EXPECT_EQ(c.max_centroid_separation, 100.0);
  EXPECT_EQ(c.poly_growth_rate, 1.2);
  EXPECT_EQ(c.out_file_base, "m1");
  EXPECT_EQ(c.max_cells, 2000);
  EXPECT_EQ(c.mf6_basename, "m1");
  EXPECT_EQ(c.nlay, 1);
  EXPECT_EQ(c.outer_boundary_file, run.dir.path().string() + "/outer.bln");
  EXPECT_EQ(c.control_count, 1);
  EXPECT_EQ(c.mf6_count, 1);
  EXPECT_EQ(c.outer_boundary_count, 1);
  EXPECT_EQ(c.inner_line_count, 0);
}

TEST(ControlFile, KeywordsAndBlockNamesMatchInAnyCaseAndFileNamesKeepTheirs) {
  Loaded run;
  load(run,
       "start Control\n max_centroid_separation 100\n Poly_Growth_Rate 1.2\n"
       " out_file_base Model/Run1\n mAx_CeLLs 2000\nend control\n" +
           outer_block() + "Start mf6\n mf6_basename Grid_A\n nlay 2\nEnd\n");
  ASSERT_EQ(run.failure, "");
  EXPECT_EQ(run.state.control.out_file_base, "Model/Run1");
  EXPECT_EQ(run.state.control.mf6_basename, "Grid_A");
  EXPECT_EQ(run.state.control.nlay, 2);
}

TEST(ControlFile, StartLinesOpenTheirBlockWhateverFollowsTheWord) {
  for (const char* start : {"start control", "START   CONTROL", "STARTCONTROL", "START CONTROL_1"}) {
    Loaded run;
    std::string control = control_block();
    control.replace(0, 13, start);
    load(run, control + outer_block() + mf6_block());
    EXPECT_EQ(run.failure, "") << start;
    EXPECT_EQ(run.state.control.control_count, 1) << start;
  }
}

TEST(ControlFile, EndAloneOrNamingAnotherBlockClosesAnyBlock) {
  Loaded run;
  load(run, control_block() + "START OUTER_BOUNDARY\n BLN_FILE o.bln\nEND\n" +
                "START MF6\n MF6_BASENAME m\n NLAY 1\nEND FOO\n");
  EXPECT_EQ(run.failure, "");
  EXPECT_EQ(run.state.control.mf6_count, 1);
}

TEST(ControlFile, UpperBoundsAreAcceptedDespiteTheirMessages) {
  Loaded run;
  load(run, minimal("  LLOYD_FAC 1.0\n  NSDIM 5\n", "", ""));
  ASSERT_EQ(run.failure, "");
  EXPECT_EQ(run.state.control.lloyd_fac, 1.0);
  EXPECT_EQ(run.state.control.nsdim, 5);

  Loaded run2;
  load(run2, control_block() + outer_block() + "START MF6\n MF6_BASENAME m\n NLAY 100\nEND\n");
  ASSERT_EQ(run2.failure, "");
  EXPECT_EQ(run2.state.control.nlay, 100);
}

TEST(ControlFile, MaxCells1001Passes) {
  Loaded run;
  std::string control = minimal();
  control.replace(control.find("2000"), 4, "1001");
  load(run, control);
  ASSERT_EQ(run.failure, "");
  EXPECT_EQ(run.state.control.max_cells, 1001);
}

TEST(ControlFile, NumlinesFiftyInOneBlockPasses) {
  Loaded run;
  load(run, minimal("", "", "START INNER_LINE\n NUMLINES 50\n BLN_FILE r.bln\nEND\n"));
  ASSERT_EQ(run.failure, "");
  const ControlData& c = run.state.control;
  EXPECT_EQ(c.inner_line_count, 50);
  EXPECT_EQ(c.inner_line_block_count, 1);
  for (int k = 0; k < 50; ++k) {
    EXPECT_EQ(c.inner_line_files[k], "r.bln");
    EXPECT_EQ(c.inner_line_block[k], 1);
  }
  EXPECT_EQ(c.numlines, -1);
}

TEST(ControlFile, NumlinesExpandsEachBlockWithItsBlockNumber) {
  Loaded run;
  load(run, minimal("", "",
                    "START INNER_LINE\n BLN_FILE a.bln\n NUMLINES 2\nEND\n"
                    "START INNER_LINE\n NUMLINE 3\n BLN_FILE b.bln\nEND\n"
                    "START INNER_LINE\n NUMLINES = 1\n BLN_FILE c.bln\nEND\n"));
  ASSERT_EQ(run.failure, "");
  const ControlData& c = run.state.control;
  ASSERT_EQ(c.inner_line_count, 6);
  EXPECT_EQ(c.inner_line_block_count, 3);
  const char* files[] = {"a.bln", "a.bln", "b.bln", "b.bln", "b.bln", "c.bln"};
  const int blocks[] = {1, 1, 2, 2, 2, 3};
  for (int k = 0; k < 6; ++k) {
    EXPECT_EQ(c.inner_line_files[k], files[k]);
    EXPECT_EQ(c.inner_line_block[k], blocks[k]);
  }
}

TEST(ControlFile, PolygonSeparationEqualToControlPasses) {
  Loaded run;
  load(run, minimal("", "",
                    "START INNER_POLYGON\n BLN_FILE p.bln\n MAX_CENTROID_SEPARATION 100.0\nEND\n"));
  ASSERT_EQ(run.failure, "");
  EXPECT_EQ(run.state.control.inner_polygon_count, 1);
  EXPECT_EQ(run.state.control.inner_polygon_max_separation[0], 100.0);
  EXPECT_EQ(run.state.control.inner_polygon_files[0], "p.bln");
}

TEST(ControlFile, SecondTokenIsTheValueAndLaterTokensAreIgnored) {
  Loaded run;
  load(run, control_block() + outer_block() + "START MF6\n MF6_BASENAME m\n NLAY 2 3\nEND\n");
  ASSERT_EQ(run.failure, "");
  EXPECT_EQ(run.state.control.nlay, 2);
}

TEST(ControlFile, EqualsSignCommaAndTabAllSeparateKeywordAndValue) {
  for (const char* line : {"NLAY 3", "NLAY=3", "NLAY = 3", "NLAY,3", "NLAY\t3", "NLAYERS 3"}) {
    Loaded run;
    load(run, control_block() + outer_block() + "START MF6\n MF6_BASENAME m\n " + line + "\nEND\n");
    ASSERT_EQ(run.failure, "") << line;
    EXPECT_EQ(run.state.control.nlay, 3) << line;
  }
}

TEST(ControlFile, HashInAFileName) {
  Loaded run;
  load(run, minimal("", "",
                    "START INNER_BOUNDARY\n BLN_FILE a#b.bln\nEND\n"
                    "START INNER_BOUNDARY\n BLN_FILE c.bln #the lake\nEND\n"
                    "START INNER_BOUNDARY\n BLN_FILE \"d #e.bln\"\nEND\n"
                    "START INNER_BOUNDARY\n BLN_FILE=f=g.bln\nEND\n"));
  ASSERT_EQ(run.failure, "");
  const ControlData& c = run.state.control;
  EXPECT_EQ(c.inner_boundary_files[0], "a#b.bln");
  EXPECT_EQ(c.inner_boundary_files[1], "c.bln");
  EXPECT_EQ(c.inner_boundary_files[2], "d #e.bln");
  EXPECT_EQ(c.inner_boundary_files[3], "f=g.bln");
}

TEST(ControlFile, FileNameIsCutAt256Characters) {
  Loaded run;
  const std::string long_name(300, 'n');
  load(run, minimal("", "", "START INNER_POINTS\n BLN_FILE " + long_name + "\nEND\n"));
  ASSERT_EQ(run.failure, "");
  EXPECT_EQ(run.state.control.inner_points_files[0], std::string(256, 'n'));
}

TEST(ControlFile, BothSpellingsOfTheIterationKeywords) {
  Loaded run;
  load(run, minimal("  MAX_LOYD 12\n  EPS_LOYD 0.01\n"));
  ASSERT_EQ(run.failure, "");
  EXPECT_EQ(run.state.control.max_lloyd, 12);
  EXPECT_EQ(run.state.control.eps_lloyd, 0.01);

  Loaded run2;
  load(run2, minimal("  MAX_LLOYD 7\n  EPS_LLOYD 2.5d-3\n"));
  ASSERT_EQ(run2.failure, "");
  EXPECT_EQ(run2.state.control.max_lloyd, 7);
  EXPECT_EQ(run2.state.control.eps_lloyd, 0.0025);
}

TEST(ControlFile, KeywordIsRecognisedByItsStartAlone) {
  Loaded run;
  load(run, minimal("", "", "START INNER_LINE\n BLN_FILE r.bln\n NUMLINESX 2\nEND\n"));
  ASSERT_EQ(run.failure, "");
  EXPECT_EQ(run.state.control.inner_line_count, 2);
  std::string control = minimal();
  control.replace(control.find("MAX_CELLS"), 9, "MAX_CELLS_X");
  Loaded run2;
  load(run2, control);
  ASSERT_EQ(run2.failure, "");
  EXPECT_EQ(run2.state.control.max_cells, 2000);
}

TEST(ControlFile, CommentsAndBlankLinesAreLegalEverywhere) {
  Loaded run;
  load(run, "# heading\n\n++ note\n" + control_block("  # inside\n\n  SAFETY 2 # two\n") +
                "   \n" + outer_block() + mf6_block());
  ASSERT_EQ(run.failure, "");
  EXPECT_EQ(run.state.control.safety, 2);
}

TEST(ControlFile, XoriginAndYoriginTogether) {
  Loaded run;
  load(run, minimal("", "  XORIGIN 1000.0\n  YORIGIN -2.5e3\n"));
  ASSERT_EQ(run.failure, "");
  EXPECT_EQ(run.state.control.xorigin, 1000.0);
  EXPECT_EQ(run.state.control.yorigin, -2500.0);
}

// Runs the phases up to the end of check_boundaries on an accepted file.
void run_to_checked_boundaries(Loaded& run) {
  ASSERT_EQ(run.failure, "");
  try {
    read_boundary_files(run.state);
    check_boundaries(run.state);
  } catch (const RunFailure&) {
    FAIL() << run.state.message_buffer;
  }
}

TEST(Defaults, AreResolvedInTheirWrittenOrder) {
  Loaded run;
  load(run, minimal());
  ASSERT_EQ(run.failure, "");
  ControlData& c = run.state.control;
  // At the end of the control file only SAFETY has its default.
  EXPECT_EQ(c.safety, 0);
  EXPECT_EQ(c.max_lloyd, kUnsetInteger);
  EXPECT_EQ(c.nsdim, kUnsetInteger);
  EXPECT_EQ(c.lloyd_fac, kUnsetReal);
  EXPECT_EQ(c.eps_lloyd, kUnsetReal);
  EXPECT_EQ(c.xorigin, kUnsetReal);
  read_boundary_files(run.state);
  EXPECT_EQ(c.max_lloyd, 30);
  EXPECT_EQ(c.nsdim, 31);
  EXPECT_EQ(c.lloyd_fac, kUnsetReal);
  check_boundaries(run.state);
  EXPECT_EQ(c.lloyd_fac, 0.20000000298023224);
  EXPECT_NE(c.lloyd_fac, 0.2);
  EXPECT_EQ(c.eps_lloyd, 0.001);
  EXPECT_EQ(c.xorigin, 0.0);
  EXPECT_EQ(c.yorigin, 0.0);
}

TEST(Defaults, GivenZerosStayZero) {
  Loaded run;
  load(run, minimal("  SAFETY 0\n  MAX_LLOYD 0\n"));
  run_to_checked_boundaries(run);
  EXPECT_EQ(run.state.control.safety, 0);
  EXPECT_EQ(run.state.control.max_lloyd, 0);
}

TEST(Defaults, GivenValuesAreKept) {
  Loaded run;
  load(run, minimal("  SAFETY 3\n  MAX_LLOYD 5\n  NSDIM 7\n  EPS_LLOYD 0.5\n  LLOYD_FAC 0.75\n",
                    "  XORIGIN 10\n  YORIGIN 20\n"));
  run_to_checked_boundaries(run);
  const ControlData& c = run.state.control;
  EXPECT_EQ(c.safety, 3);
  EXPECT_EQ(c.max_lloyd, 5);
  EXPECT_EQ(c.nsdim, 7);
  EXPECT_EQ(c.eps_lloyd, 0.5);
  EXPECT_EQ(c.lloyd_fac, 0.75);
  EXPECT_EQ(c.xorigin, 10.0);
  EXPECT_EQ(c.yorigin, 20.0);
}

}  // namespace
}  // namespace tesseramill
