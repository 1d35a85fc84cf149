// The room a run's files need on the scratch disc, and the check that the
// benchmark's table reached its output.
#include <gtest/gtest.h>

#include <filesystem>
#include <sstream>
#include <string>
#include <vector>

#include "disc_room.h"

namespace tesseramill_test {
namespace {

using tesseramill_bench::room_shortfall;
using tesseramill_bench::room_shortfall_at;
using tesseramill_bench::status_after_output;

TEST(DiscRoom, WhatIsShortIsSaid) {
  struct Case {
    std::uintmax_t available;
    double cells;
    int folders;
    std::string said;
  };
  const std::vector<Case> cases = {
      {4000000000u, 1.1e6, 1, ""},
      {3300000000u, 1.1e6, 1, ""},  // room to the byte
      {3299999999u, 1.1e6, 1, "needs about 3.3 GB free in /scratch, has 3.3 GB"},
      {1000000000u, 1.1e6, 1, "needs about 3.3 GB free in /scratch, has 1.0 GB"},
      {4000000000u, 1.1e6, 2, "needs about 6.6 GB free in /scratch, has 4.0 GB"},
      {18200000000u, 1.1e7, 1, "needs about 33.0 GB free in /scratch, has 18.2 GB"},
      {0u, 0.0, 1, ""},
  };
  for (const Case& c : cases) {
    EXPECT_EQ(room_shortfall(c.available, c.cells, c.folders, "/scratch"), c.said) << c.available << " " << c.cells;
  }
}

// Where the system cannot tell the free space, the run goes ahead.
TEST(DiscRoom, AFolderTheSystemCannotMeasureStopsNothing) {
  EXPECT_EQ(room_shortfall_at(std::filesystem::path("no such folder") / "nor this", 1e9, 2), "");
}

TEST(DiscRoom, ATableWrittenInFullKeepsTheStatus) {
  std::ostringstream out;
  std::ostringstream err;
  out << "model  cells\n";
  EXPECT_EQ(status_after_output(out, err, 0), 0);
  EXPECT_EQ(status_after_output(out, err, 1), 1);
  EXPECT_EQ(err.str(), "");
}

// A table lost to its output (a full disc) fails the run with a word on the
// error stream, and a failure already given stands.
TEST(DiscRoom, ATableLostToItsOutputFailsTheRun) {
  for (int status : {0, 1, 2}) {
    std::ostringstream out;
    std::ostringstream err;
    out.setstate(std::ios::badbit);
    EXPECT_EQ(status_after_output(out, err, status), status == 0 ? 1 : status);
    EXPECT_EQ(err.str(),
              "tesseramill-bench: the table could not be written in full to its output (is the disc full?)\n");
  }
}

}  // namespace
}  // namespace tesseramill_test
