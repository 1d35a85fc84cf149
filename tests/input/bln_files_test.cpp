// Reading the BLN files and checking the boundaries, end to end on the built
// program: every screen line, warning and failure message.
#include <gtest/gtest.h>

#include "support/scratch.h"

namespace tesseramill_test {
namespace {

const char* const kControl =
    "START CONTROL\n"
    " MAX_CENTROID_SEPARATION 100\n"
    " POLY_GROWTH_RATE 1.2\n"
    " OUT_FILE_BASE m\n"
    " MAX_CELLS 5000\n"
    "END CONTROL\n"
    "START MF6\n"
    " MF6_BASENAME m\n"
    " NLAY 1\n"
    "END MF6\n"
    "START OUTER_BOUNDARY\n"
    " BLN_FILE outer.bln\n"
    "END\n";

const char* const kOuter =
    "5\n"
    "0 0 10\n"
    "100 0 10\n"
    "100 100 10\n"
    "0 100 10\n"
    "0 0 10\n";

std::string read_ok(const std::string& file) {
  return "\n - reading file " + file + "...\n - file " + file + " read ok.\n";
}

// Screen text up to the end of the outer boundary's reading.
std::string through_outer() { return reading("t.in") + " - file t.in read ok.\n" + read_ok("outer.bln"); }

std::string checking() { return "\n - checking integrity of boundary polygons...\n"; }

const std::string kPopulating = "\n - populating user-supplied boundaries/lines with mesh points...\n";

// The screen up to the first line of populating the boundaries; what the
// later phases print is tested elsewhere.
std::string upto_population(const std::string& screen) {
  const std::size_t p = screen.find(kPopulating);
  return p == std::string::npos ? screen : screen.substr(0, p + kPopulating.size());
}

struct Model {
  ScratchDir dir;
  std::string control = kControl;

  Model() { dir.write("outer.bln", kOuter); }
  void file(const std::string& name, const std::string& text) { dir.write(name, text); }
  RunResult run() {
    dir.write("t.in", control);
    RunResult result = run_binary(dir, {"t.in"});
    result.screen = upto_population(result.screen);
    return result;
  }
};

std::string failure(const std::string& lines) { return "\n" + lines; }

TEST(BlnFiles, OuterBoundaryOnlyPassesTheChecks) {
  Model m;
  RunResult r = m.run();
  EXPECT_EQ(r.screen, through_outer() + checking() + " - outer boundary ok.\n" + kPopulating);
  EXPECT_EQ(r.status, 0);
}

TEST(BlnFiles, MissingFile) {
  Model m;
  m.control += "START INNER_BOUNDARY\n BLN_FILE hole.bln\nEND\n";
  EXPECT_EQ(m.run().screen,
            through_outer() + "\n - reading file hole.bln...\n" + failure(" Cannot open file hole.bln.\n"));
}

TEST(BlnFiles, EmptyFileEndsPrematurely) {
  Model m;
  m.file("outer.bln", "\n\n");
  EXPECT_EQ(m.run().screen, reading("t.in") + " - file t.in read ok.\n\n - reading file outer.bln...\n" +
                                failure(" Premature end encountered to file outer.bln.\n"));
}

std::string outer_failure(Model& m, const std::string& outer) {
  m.file("outer.bln", outer);
  return m.run().screen;
}

std::string outer_read_then(const std::string& message) {
  return reading("t.in") + " - file t.in read ok.\n\n - reading file outer.bln...\n" + failure(message);
}

TEST(BlnFiles, HeaderWithAPointIsRefused) {
  Model m;
  EXPECT_EQ(outer_failure(m, "5.\n0 0 1\n"),
            outer_read_then(" Error reading integer on line 1 of file outer.bln.\n"));
  Model m2;
  EXPECT_EQ(outer_failure(m2, "5.0,1\n0 0 1\n"),
            outer_read_then(" Error reading integer on line 1 of file outer.bln.\n"));
  Model m3;
  EXPECT_EQ(outer_failure(m3, "five\n"),
            outer_read_then(" Error reading integer on line 1 of file outer.bln.\n"));
}

TEST(BlnFiles, HeaderFirstTokenOnlyCounts) {
  for (const char* header : {"5,1", "5 1", "  5\t1", "5"}) {
    Model m;
    m.file("outer.bln", std::string(header) + "\n0 0 10\n100 0 10\n100 100 10\n0 100 10\n0 0 10\n");
    EXPECT_EQ(m.run().screen, through_outer() + checking() + " - outer boundary ok.\n" + kPopulating) << header;
  }
}

TEST(BlnFiles, FewerThanTwoVertices) {
  Model m;
  EXPECT_EQ(outer_failure(m, "\n1\n0 0 1\n"),
            outer_read_then(" Illegal number of points provided on line 1 of file outer.bln.\n"));
}

TEST(BlnFiles, TwoTokensInASeparationFile) {
  Model m;
  EXPECT_EQ(outer_failure(m, "5\n0 0 10\n100 0\n"),
            outer_read_then(" Insufficient entries on line 3 of file outer.bln.\n"));
}

TEST(BlnFiles, NumberThatCannotBeRead) {
  Model m;
  EXPECT_EQ(outer_failure(m, "5\n0 0 10\n100 O 10\n"),
            outer_read_then(" Error reading line 3 of file outer.bln.\n"));
}

TEST(BlnFiles, SeparationMustBeAboveZero) {
  Model m;
  EXPECT_EQ(outer_failure(m, "5\n0 0 10\n100 0 0.0\n"),
            outer_read_then(" Centroid separation must be greater than zero at line 3 of file outer.bln.\n"));
}

TEST(BlnFiles, BlankLinesBetweenVerticesCountInLineNumbers) {
  Model m;
  EXPECT_EQ(outer_failure(m, "5\n0 0 10\n\n   \n100 0 -1\n"),
            outer_read_then(" Centroid separation must be greater than zero at line 5 of file outer.bln.\n"));
}

TEST(BlnFiles, PrematureEndInsideTheVertices) {
  Model m;
  EXPECT_EQ(outer_failure(m, "5\n0 0 10\n100 0 10\n"),
            outer_read_then(" Premature end encountered to file outer.bln.\n"));
}

TEST(BlnFiles, RingNotClosed) {
  Model m;
  EXPECT_EQ(outer_failure(m, "5\n0 0 10\n100 0 10\n100 100 10\n0 100 10\n0 0.0000101 10\n"),
            outer_read_then(" Coordinates of first and last points in file outer.bln must be the same.\n"));
}

TEST(BlnFiles, ClosureWithinTheToleranceIsAccepted) {
  Model m;
  m.file("outer.bln", "5\n0 0 10\n100 0 10\n100 100 10\n0 100 10\n0.00001 -0.00001 10\n");
  RunResult r = m.run();
  EXPECT_EQ(r.screen.substr(0, through_outer().size()), through_outer());
}

TEST(BlnFiles, DelimitersCrLfAndLongLines) {
  Model m;
  // Tabs and commas delimit; CR LF ends lines; only 100 characters of a
  // vertex line are looked at, so the fourth token far to the right is unseen.
  m.file("outer.bln", "5,1\r\n0\t0\t10\r\n100,0,10" + std::string(120, ' ') + "junk\r\n100 , 100 , 10\r\n"
                      "0 100 10\r\n0 0 10\r\n");
  EXPECT_EQ(m.run().screen, through_outer() + checking() + " - outer boundary ok.\n" + kPopulating);
}

TEST(BlnFiles, ThirdTokenBeyondColumn100IsUnseen) {
  Model m;
  EXPECT_EQ(outer_failure(m, "5\n0 0" + std::string(100, ' ') + "10\n"),
            outer_read_then(" Insufficient entries on line 2 of file outer.bln.\n"));
}

TEST(BlnFiles, ShortSegmentWarningCountsSegments) {
  Model m;
  // Segment 1 (length 100) is shorter than the 150 at its second end, and
  // segment 2 (length 100) than the 150 at its first end.  A segment exactly
  // as long as its separations is not counted.
  m.file("outer.bln", "5\n0 0 10\n100 0 150\n100 100 100\n0 100 10\n0 0 10\n");
  m.control = std::string(kControl);
  m.control.replace(m.control.find("SEPARATION 100"), 14, "SEPARATION 150");
  EXPECT_EQ(m.run().screen,
            reading("t.in") + " - file t.in read ok.\n\n - reading file outer.bln...\n"
            " *** 2 line vertex separations less than requested local centroid separations\n"
            " - file outer.bln read ok.\n" + checking() + " - outer boundary ok.\n" + kPopulating);
}

TEST(BlnFiles, InnerLinesOfOneFileShareItsOpening) {
  Model m;
  m.control += "START INNER_LINE\n NUMLINES 3\n BLN_FILE lines.bln\nEND\n"
               "START INNER_LINE\n NUMLINES 1\n BLN_FILE one.bln\nEND\n";
  // A blank line before a header is passed over and not counted, so the
  // line numbers of later messages of this file run short.
  m.file("lines.bln", "2\n10 10 5\n20 10 5\n\n3\n10 20 5\n20 20 5\n30 20 5\n2\n10 30 5\n20 30 5\n");
  m.file("one.bln", "2\n50 50 5\n60 60 5\n");
  EXPECT_EQ(m.run().screen, through_outer() + "\n - reading file lines.bln...\n"
                                              " - 3 inner lines read from file lines.bln.\n"
                                              "\n - reading file one.bln...\n"
                                              " - 1 inner line read from file one.bln.\n" +
                                checking() + " - outer boundary ok.\n" + kPopulating);
}

TEST(BlnFiles, LineNumbersRunShortAfterABlankLineBeforeAHeader) {
  Model m;
  m.control += "START INNER_LINE\n NUMLINES 2\n BLN_FILE lines.bln\nEND\n";
  // The bad separation stands on line 8 of the file; the blank line 4 is
  // not counted, so the message says 7.
  m.file("lines.bln", "2\n10 10 5\n20 10 5\n\n3\n10 20 5\n20 20 5\n30 20 0\n");
  EXPECT_EQ(m.run().screen, through_outer() + "\n - reading file lines.bln...\n" +
                                failure(" Centroid separation must be greater than zero at line 7 of "
                                        "file lines.bln.\n"));
}

TEST(BlnFiles, FewerLineGroupsThanNumlinesEndPrematurelyWithNoCountLine) {
  Model m;
  m.control += "START INNER_LINE\n NUMLINES 3\n BLN_FILE lines.bln\nEND\n";
  m.file("lines.bln", "2\n10 10 5\n20 10 5\n2\n10 20 5\n20 20 5\n");
  EXPECT_EQ(m.run().screen, through_outer() + "\n - reading file lines.bln...\n" +
                                failure(" Premature end encountered to file lines.bln.\n"));
}

TEST(BlnFiles, InnerPolygonFileNeedsOnlyTwoColumns) {
  Model m;
  m.control += "START INNER_POLYGON\n BLN_FILE zone.bln\n MAX_CENTROID_SEPARATION 20\nEND\n";
  m.file("zone.bln", "4\n10 10\n30 10 -5 ignored\n20 30\n10 10\n");
  EXPECT_EQ(m.run().screen, through_outer() + read_ok("zone.bln") + checking() + " - outer boundary ok.\n" + kPopulating);
}

TEST(BlnFiles, RingOfTwoEqualPointsAndRingOfThreeVerticesAreRead) {
  Model m;
  m.control += "START INNER_POLYGON\n BLN_FILE two.bln\n MAX_CENTROID_SEPARATION 20\nEND\n"
               "START INNER_POLYGON\n BLN_FILE three.bln\n MAX_CENTROID_SEPARATION 20\nEND\n";
  m.file("two.bln", "2\n10 10\n10 10\n");
  m.file("three.bln", "3\n10 10\n20 20\n10 10\n");
  EXPECT_EQ(m.run().screen, through_outer() + read_ok("two.bln") + read_ok("three.bln") + checking() +
                                " - outer boundary ok.\n" + kPopulating);
}

TEST(PointFile, OnePointIsLegal) {
  Model m;
  m.control += "START INNER_POINTS\n BLN_FILE wells.bln\nEND\n";
  m.file("wells.bln", "1\n50 50 5\nsurplus lines are not read\n");
  EXPECT_EQ(m.run().screen, through_outer() + read_ok("wells.bln") + checking() + " - outer boundary ok.\n" + kPopulating);
}

std::string points_failure(const std::string& content) {
  Model m;
  m.control += "START INNER_POINTS\n BLN_FILE wells.bln\nEND\n";
  m.file("wells.bln", content);
  return m.run().screen;
}

std::string points_read_then(const std::string& message) {
  return through_outer() + "\n - reading file wells.bln...\n" + failure(message);
}

TEST(PointFile, Failures) {
  EXPECT_EQ(points_failure("0\n"),
            points_read_then(" Illegal number of points provided on first line of file wells.bln.\n"));
  EXPECT_EQ(points_failure("2.\n"), points_read_then(" Error reading first line of file wells.bln.\n"));
  EXPECT_EQ(points_failure(""), points_read_then(" Premature end encountered to file wells.bln.\n"));
  EXPECT_EQ(points_failure("2\n50 50 5\n"),
            points_read_then(" Premature end encountered to file wells.bln.\n"));
  EXPECT_EQ(points_failure("1\n50 50\n"),
            points_read_then(" Insufficient entries on line 2 of file wells.bln.\n"));
  EXPECT_EQ(points_failure("1\n\n50 50 x\n"),
            points_read_then(" Error reading line 3 of file wells.bln.\n"));
  EXPECT_EQ(points_failure("1\n50 50 -2\n"),
            points_read_then(" Centroid separation must be greater than zero at line 2 of file wells.bln.\n"));
}

TEST(PointFile, MissingFile) {
  Model m;
  m.control += "START INNER_POINTS\n BLN_FILE wells.bln\nEND\n";
  EXPECT_EQ(m.run().screen, points_read_then(" Cannot open file wells.bln.\n"));
}

TEST(Separations, AboveTheMaximumIsRefusedWithoutAFileName) {
  Model m;
  m.file("outer.bln", "5\n0 0 10\n100 0 100.5\n100 100 10\n0 100 10\n0 0 10\n");
  EXPECT_EQ(m.run().screen,
            reading("t.in") + " - file t.in read ok.\n\n - reading file outer.bln...\n"
            " *** 2 line vertex separations less than requested local centroid separations\n"
            " - file outer.bln read ok.\n\n"
            " The value provided for MAXCENTSEP in the CONTROL block of the TESSERAMILL \n"
            "   input file should exceed the cell separation provided in any outer/inner \n"
            "   boundary BLN files, or in any inner line/point BLN files.\n");
}

TEST(Separations, EqualToTheMaximumPasses) {
  Model m;
  m.control += "START INNER_POINTS\n BLN_FILE wells.bln\nEND\n";
  m.file("wells.bln", "1\n50 50 100\n");
  EXPECT_EQ(m.run().screen, through_outer() + read_ok("wells.bln") + checking() + " - outer boundary ok.\n" + kPopulating);
}

TEST(CheckBoundaries, OuterRingSelfCrossing) {
  Model m;
  m.file("outer.bln", "5\n0 0 1\n20 20 1\n20 0 1\n0 20 1\n0 0 1\n");
  EXPECT_EQ(m.run().screen, through_outer() + checking() +
                                "\n Line segment joining points 1 and 2 crosses line segment joining points 3 \n"
                                "   and 4 in file outer.bln.\n");
}

TEST(CheckBoundaries, InnerBoundaryIntegrityAndLines) {
  Model m;
  m.control += "START INNER_BOUNDARY\n BLN_FILE a.bln\nEND\nSTART INNER_BOUNDARY\n BLN_FILE b.bln\nEND\n";
  m.file("a.bln", "5\n10 10 1\n20 10 1\n20 20 1\n10 20 1\n10 10 1\n");
  m.file("b.bln", "6\n50 50 1\n60 50 1\n55 50 1\n60 60 1\n50 60 1\n50 50 1\n");
  EXPECT_EQ(m.run().screen, through_outer() + read_ok("a.bln") + read_ok("b.bln") + checking() +
                                " - outer boundary ok.\n - inner boundary # 1 ok.\n"
                                "\n Polygon vertex 3 is on the line that joins vertices 1 and 2 in file b.bln.\n");
}

std::string containment(const std::string& blocks, const std::vector<std::pair<std::string, std::string>>& files,
                        const std::string& outer = kOuter) {
  Model m;
  m.file("outer.bln", outer);
  m.control += blocks;
  for (const auto& [name, text] : files) m.file(name, text);
  return m.run().screen;  // already cut at the population line
}

const char* const kHoleBlock = "START INNER_BOUNDARY\n BLN_FILE hole.bln\nEND\n";
const char* const kPointsBlock = "START INNER_POINTS\n BLN_FILE wells.bln\nEND\n";

TEST(CheckBoundaries, InnerBoundaryOutsideTheOuter) {
  std::string screen = containment(kHoleBlock, {{"hole.bln", "4\n90 90 5\n110 90 5\n90 95 5\n90 90 5\n"}});
  EXPECT_EQ(screen, through_outer() + read_ok("hole.bln") + checking() +
                        " - outer boundary ok.\n - inner boundary # 1 ok.\n"
                        "\n At least one point in file hole.bln lies outside the outer polygonal model \n"
                        "   boundary.\n");
}

TEST(CheckBoundaries, InnerBoundaryTouchingTheOuterAtAVertexPasses) {
  std::string screen = containment(kHoleBlock, {{"hole.bln", "4\n100 100 5\n90 95 5\n95 90 5\n100 100 5\n"}});
  EXPECT_EQ(screen, through_outer() + read_ok("hole.bln") + checking() +
                        " - outer boundary ok.\n - inner boundary # 1 ok.\n" + kPopulating);
}

TEST(CheckBoundaries, InnerPointOutsideTheOuter) {
  std::string screen = containment(kPointsBlock, {{"wells.bln", "2\n50 50 1\n-1 50 1\n"}});
  EXPECT_EQ(screen, through_outer() + read_ok("wells.bln") + checking() +
                        " - outer boundary ok.\n"
                        "\n At least one point in file wells.bln lies outside the outer polygonal model \n"
                        "   boundary.\n");
}

TEST(CheckBoundaries, InnerPointOnTheOuterBoundaryPasses) {
  std::string screen = containment(kPointsBlock, {{"wells.bln", "2\n0 50 5\n100 100 5\n"}});
  EXPECT_EQ(screen, through_outer() + read_ok("wells.bln") + checking() + " - outer boundary ok.\n" + kPopulating);
}

TEST(CheckBoundaries, OuterVertexInsideAnInnerBoundaryNamesTheOuterFileFirst) {
  std::string screen =
      containment(kHoleBlock, {{"hole.bln", "5\n90 90 5\n110 90 5\n110 110 5\n90 110 5\n90 90 5\n"}});
  // The hole's vertex 110,90 lies outside the outer ring: that test comes first.
  EXPECT_NE(screen.find("lies outside the outer"), std::string::npos);
  std::string outer = "6\n0 0 5\n100 0 5\n100 60 5\n100 100 5\n0 100 5\n0 0 5\n";
  screen = containment(kHoleBlock, {{"hole.bln", "5\n90 50 5\n99 50 5\n99 70 5\n90 70 5\n90 50 5\n"}}, outer);
  EXPECT_EQ(screen, through_outer() + read_ok("hole.bln") + checking() +
                        " - outer boundary ok.\n - inner boundary # 1 ok.\n" + kPopulating);
  // Outer vertex (95,60) is a notch; the hole's vertices all lie inside the
  // outer ring, and the hole holds the notch strictly.
  outer = "6\n0 0 5\n100 0 5\n95 60 5\n100 100 5\n0 100 5\n0 0 5\n";
  screen = containment(kHoleBlock, {{"hole.bln", "5\n90 55 5\n95.2 55 5\n95.2 65 5\n90 65 5\n90 55 5\n"}}, outer);
  EXPECT_EQ(screen, through_outer() + read_ok("hole.bln") + checking() +
                        " - outer boundary ok.\n - inner boundary # 1 ok.\n"
                        "\n At least one point in file outer.bln lies inside inner polygonal model \n"
                        "   boundary defined by file hole.bln.\n");
}

TEST(CheckBoundaries, OuterVertexExactlyOnAnInnerBoundaryPasses) {
  std::string outer = "6\n0 0 5\n100 0 5\n95 60 5\n100 100 5\n0 100 5\n0 0 5\n";
  std::string screen =
      containment(kHoleBlock, {{"hole.bln", "5\n90 50 5\n95 50 5\n95 70 5\n90 70 5\n90 50 5\n"}}, outer);
  EXPECT_EQ(screen, through_outer() + read_ok("hole.bln") + checking() +
                        " - outer boundary ok.\n - inner boundary # 1 ok.\n" + kPopulating);
}

TEST(CheckBoundaries, InnerBoundaryInsideAnotherNamesTheInnerRingFirst) {
  std::string blocks = std::string(kHoleBlock) + "START INNER_BOUNDARY\n BLN_FILE small.bln\nEND\n";
  std::string screen =
      containment(blocks, {{"hole.bln", "5\n20 20 5\n80 20 5\n80 80 5\n20 80 5\n20 20 5\n"},
                           {"small.bln", "4\n40 40 1\n50 40 1\n45 50 1\n40 40 1\n"}});
  EXPECT_EQ(screen, through_outer() + read_ok("hole.bln") + read_ok("small.bln") + checking() +
                        " - outer boundary ok.\n - inner boundary # 1 ok.\n - inner boundary # 2 ok.\n"
                        "\n At least one point in file small.bln lies inside inner polygonal model \n"
                        "   boundary defined by file hole.bln.\n");
}

TEST(CheckBoundaries, InnerPointInAHole) {
  std::string blocks = std::string(kHoleBlock) + kPointsBlock;
  std::string screen = containment(blocks, {{"hole.bln", "5\n20 20 5\n80 20 5\n80 80 5\n20 80 5\n20 20 5\n"},
                                            {"wells.bln", "2\n10 10 1\n50 50 1\n"}});
  EXPECT_EQ(screen, through_outer() + read_ok("hole.bln") + read_ok("wells.bln") + checking() +
                        " - outer boundary ok.\n - inner boundary # 1 ok.\n"
                        "\n At least one point in file wells.bln lies inside inner polygonal model \n"
                        "   boundary defined by file hole.bln.\n");
}

TEST(CheckBoundaries, InnerPointsTooCloseWhicheverWayRound) {
  const std::string expected = through_outer() + read_ok("wells.bln") + checking() +
                               " - outer boundary ok.\n"
                               "\n At least one point in file wells.bln coincides with another point, or is \n"
                               "   closer to another point than the intercell distance defined for that point.\n";
  EXPECT_EQ(containment(kPointsBlock, {{"wells.bln", "2\n50 50 10\n55 50 1\n"}}), expected);
  EXPECT_EQ(containment(kPointsBlock, {{"wells.bln", "2\n50 50 1\n55 50 10\n"}}), expected);
  EXPECT_EQ(containment(kPointsBlock, {{"wells.bln", "2\n50 50 5\n55 50 5\n"}}),
            through_outer() + read_ok("wells.bln") + checking() + " - outer boundary ok.\n" + kPopulating);
}

TEST(CheckBoundaries, LinesAndPolygonsAreNotTested) {
  std::string blocks =
      "START INNER_LINE\n NUMLINES 1\n BLN_FILE river.bln\nEND\n"
      "START INNER_POLYGON\n BLN_FILE zone.bln\n MAX_CENTROID_SEPARATION 50\nEND\n";
  std::string screen = containment(blocks, {{"river.bln", "2\n-50 50 5\n150 50 5\n"},
                                            {"zone.bln", "4\n500 500\n0 0\n800 0\n500 500\n"}});
  EXPECT_EQ(screen, through_outer() + "\n - reading file river.bln...\n"
                                      " - 1 inner line read from file river.bln.\n" +
                        read_ok("zone.bln") + checking() + " - outer boundary ok.\n" + kPopulating);
}

}  // namespace
}  // namespace tesseramill_test
