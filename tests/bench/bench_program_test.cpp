// The benchmark program's answers to what it cannot run.
#include <gtest/gtest.h>

#include <filesystem>
#include <string>
#include <vector>

#include "common/platform.h"
#include "support/scratch.h"

namespace tesseramill_test {
namespace {

using tesseramill::ChildRun;
using tesseramill::run_child;

const std::string kHead =
    "Wall seconds per phase (read: control and BLN files and checks; bound: boundary chains;\n"
    "inter: interior emplacement; lloyd: the Lloyd passes with their map files; write: final\n"
    "and MODFLOW 6 files), peak memory per cell, and the reference path's time as a multiple.\n\n"
    "                     model    cells   read  bound   inter   lloyd  write   total  B/cell   ref x  same\n";

// A model whose files would not fit on the scratch disc is not run: its row
// says what is short, and the status says that not every model ran.  No
// disc holds the 3.3 million GB of a trillion cells.
TEST(BenchProgram, AModelTooLargeForTheDiscIsNotRun) {
  ScratchDir dir;
  const ChildRun run = run_child(dir.path(), TESSERAMILL_BENCH_BINARY, {"--sizes", "1e12"});
  EXPECT_EQ(run.status, 1);
  const std::string output = lf_line_ends(run.output);
  const std::string row = "     family 1e12, 3 passes  (not run: needs about 3300000.0 GB free in ";
  ASSERT_EQ(output.substr(0, kHead.size() + row.size()), kHead + row) << output;
  EXPECT_NE(output.find(" GB)\n", kHead.size() + row.size()), std::string::npos) << output;
  EXPECT_EQ(output.find('\n', kHead.size() + row.size()), output.size() - 1) << output;
}

const std::string kUsage =
    "usage: tesseramill-bench [--sizes 1e3,1e4,...,outline] [--binary PATH] | --targets [--rounds N] [--binary "
    "PATH] [--with-1e7] | --write SIZE|outline DIR [MAX_LLOYD] | --triangulation SIZE | --maths\n";

// A size is a number of cells above 0, or "gis" and a number of vertices
// above 0 within the range of an int; anything else is refused with the
// usage, before any model is written.
TEST(BenchProgram, ASizeThatIsNoCountOfCellsIsRefused) {
  ScratchDir dir;
  for (const std::string size : {"0", "-5", "abc", "inf", "1e999", "gis0", "gis-3", "gis", "gis12x",
                                 "gis2147483648", "gis99999999999"}) {
    const ChildRun run = run_child(dir.path(), TESSERAMILL_BENCH_BINARY, {"--sizes", size});
    EXPECT_EQ(run.status, 2) << size;
    EXPECT_EQ(lf_line_ends(run.output), kUsage) << size;
  }
}

// The rounds of the targets are a whole number from 1, and the Lloyd passes
// of a model written alone one from 0, within the range of an int; a word
// past that range was read as some other number.  The sizes of a model
// written alone and of the triangulation's model are checked as --sizes
// checks its own.
TEST(BenchProgram, ACountPastTheRangeOfAnIntIsRefused) {
  ScratchDir dir;
  const std::vector<std::vector<std::string>> refused = {
      {"--targets", "--rounds", "99999999999"}, {"--targets", "--rounds", "0"},
      {"--targets", "--rounds", "three"},       {"--write", "gis500", "model", "99999999999"},
      {"--write", "gis500", "model", "-1"},     {"--write", "gis500", "model", "3x"},
      {"--write", "gis99999999999", "model"},   {"--write", "1e999", "model"},
      {"--triangulation", "abc"},               {"--triangulation", "-1e6"}};
  for (const std::vector<std::string>& args : refused) {
    const ChildRun run = run_child(dir.path(), TESSERAMILL_BENCH_BINARY, args);
    EXPECT_EQ(run.status, 2) << args.back();
    EXPECT_EQ(lf_line_ends(run.output), kUsage) << args.back();
  }
  EXPECT_FALSE(std::filesystem::exists(dir.path() / "model"));
}

}  // namespace
}  // namespace tesseramill_test
