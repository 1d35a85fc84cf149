// The Lloyd loop end to end on a small square model.
#include <gtest/gtest.h>

#include "support/scratch.h"

namespace tesseramill_test {
namespace {

std::string square_control(const std::string& extra) {
  return "START CONTROL\n MAX_CENTROID_SEPARATION 20\n POLY_GROWTH_RATE 1.2\n OUT_FILE_BASE m\n"
         " MAX_CELLS 2000\n" + extra + "END\nSTART MF6\n MF6_BASENAME m\n NLAY 1\nEND\n"
         "START OUTER_BOUNDARY\n BLN_FILE outer.bln\nEND\n";
}

struct SquareRun {
  std::string screen;
  std::vector<std::string> stamped;  // the stamped triangle files written
};

SquareRun run_square(const std::string& extra, const std::string& more_blocks = "",
                     const std::vector<std::pair<std::string, std::string>>& files = {}) {
  ScratchDir dir;
  dir.write("outer.bln", "5\n0 0 20\n100 0 20\n100 100 20\n0 100 20\n0 0 20\n");
  for (const auto& [name, text] : files) dir.write(name, text);
  dir.write("t.in", square_control(extra) + more_blocks);
  SquareRun run{run_binary(dir, {"t.in"}).screen, {}};
  for (const std::string& name : dir.listing()) {
    if (name.rfind("m_triangles_", 0) == 0) run.stamped.push_back(name);
  }
  return run;
}

// The screen from " - generating triangles..." to the end of the Lloyd loop.
std::string from_triangles(const std::string& screen) {
  const std::size_t p = screen.find("\n - generating triangles...\n");
  if (p == std::string::npos) return screen;
  const std::size_t end = screen.find(" - files ", p);
  return screen.substr(p, end == std::string::npos ? std::string::npos : end - p);
}

const char* const kFirstPass =
    "\n - generating triangles...\n"
    " - 50 triangles generated\n"
    " - 0 of these are external to domain\n"
    " - maximum number of internal triangles associated with any point = 7\n"
    " - minimum number of internal triangles associated with any point = 1\n"
    "\n - commencing Lloyd iterations...\n"
    "   itn 0: max/ave normalized pt-to-centroid dist = [1.99211E-01,1.04274E-01]\n";

TEST(LloydLoop, MaxLloydZeroMakesOnePassWithoutMoving) {
  SquareRun r = run_square(" MAX_LLOYD 0\n");
  EXPECT_EQ(from_triangles(r.screen), std::string(kFirstPass) + "\n - Lloyd iteration count of 0 reached\n\n");
  EXPECT_EQ(r.stamped, (std::vector<std::string>{"m_triangles_0.mid", "m_triangles_0.mif"}));
  EXPECT_NE(r.screen.find(" - 36 points emplaced\n"), std::string::npos);
}

TEST(LloydLoop, CountEndsTheLoop) {
  SquareRun r = run_square(" MAX_LLOYD 3\n");
  EXPECT_EQ(r.stamped, (std::vector<std::string>{"m_triangles_0.mid", "m_triangles_0.mif",
                                                 "m_triangles_3.mid", "m_triangles_3.mif"}));
  EXPECT_EQ(from_triangles(r.screen),
            std::string(kFirstPass) +
                "   itn 1: max/ave normalized pt-to-centroid dist = [1.73433E-01,9.05034E-02]\n"
                "   itn 2: max/ave normalized pt-to-centroid dist = [1.51550E-01,7.88545E-02]\n"
                "   itn 3: max/ave normalized pt-to-centroid dist = [1.32985E-01,6.89992E-02]\n"
                "\n - Lloyd iteration count of 3 reached\n\n");
}

TEST(LloydLoop, ConvergenceEndsTheNextPass) {
  SquareRun r = run_square(" MAX_LLOYD 5\n EPS_LLOYD 1.0\n");
  // Met in pass 0, so pass 1 is the last and writes the last stamp.
  EXPECT_EQ(r.stamped, (std::vector<std::string>{"m_triangles_0.mid", "m_triangles_0.mif",
                                                 "m_triangles_1.mid", "m_triangles_1.mif"}));
  EXPECT_EQ(from_triangles(r.screen),
            std::string(kFirstPass) +
                "   itn 1: max/ave normalized pt-to-centroid dist = [1.73433E-01,9.05034E-02]\n"
                "\n - Lloyd convergence criterion reached.\n\n");
}

TEST(LloydLoop, CountWinsOverConvergenceInTheSamePass) {
  SquareRun r = run_square(" MAX_LLOYD 1\n EPS_LLOYD 1.0\n");
  EXPECT_EQ(from_triangles(r.screen),
            std::string(kFirstPass) +
                "   itn 1: max/ave normalized pt-to-centroid dist = [1.73433E-01,9.05034E-02]\n"
                "\n - Lloyd iteration count of 1 reached\n\n");
}

TEST(LloydLoop, DuplicateMeshPointsStopTheTriangulation) {
  // An inner point on an outer vertex passes the boundary checks, but it is
  // the same point as the ring's first mesh point.
  SquareRun r = run_square(" MAX_LLOYD 0\n", "START INNER_POINTS\n BLN_FILE wells.bln\nEND\n",
                           {{"wells.bln", "1\n0 0 20\n"}});
  const std::string tail =
      "\n - generating triangles...\n"
      " \nDTRIS2 - Fatal error!\n  Consecutive points are too close.\n"
      "\n Exit from subroutine DTRIS2: IERROR=224.\n";
  EXPECT_EQ(screen_tail(r.screen, tail.size()), tail);
}

TEST(LloydLoop, HoleGivesExternalTriangles) {
  SquareRun r = run_square(" MAX_LLOYD 0\n", "START INNER_BOUNDARY\n BLN_FILE hole.bln\nEND\n",
                           {{"hole.bln", "5\n40 40 20\n60 40 20\n60 60 20\n40 60 20\n40 40 20\n"}});
  EXPECT_NE(r.screen.find(" - 2 of these are external to domain\n"), std::string::npos) << r.screen;
}

}  // namespace
}  // namespace tesseramill_test
