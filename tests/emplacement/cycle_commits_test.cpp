// The commits of a shared cycle, kept by the part that saw each, answer
// whether a box holds a point a part did not see exactly as a scan over
// every commit does.
#include <gtest/gtest.h>

#include <cmath>
#include <cstddef>
#include <limits>
#include <vector>

#include "emplacement/cycle_commits.h"
#include "support/random.h"

namespace tesseramill {
namespace {

using tesseramill_test::Random;

constexpr std::size_t kParts = 8;
constexpr double kNaN = std::numeric_limits<double>::quiet_NaN();

struct Commit {
  double x;
  double y;
  std::size_t seen_by;  // kParts: no part
};

bool scan(const std::vector<Commit>& commits, std::size_t part, double xlo, double xhi, double ylo, double yhi) {
  for (const Commit& c : commits) {
    if (c.seen_by != part && c.x >= xlo && c.x <= xhi && c.y >= ylo && c.y <= yhi) return true;
  }
  return false;
}

// Points in eight slabs across x, each mostly seen by its own slab's part,
// some reaching into the next slab, some seen by no part, with duplicates
// and points on the slabs' edges; boxes of many sizes, many with an edge
// exactly on a point, asked for every part after every few commits.
TEST(CycleCommits, AnswerAsAScanOfEveryCommit) {
  Random random(47);
  for (double offset : {0.0, 3e6}) {
    CycleCommits commits;
    start_cycle_commits(commits, kParts, offset, offset + 8000, offset, offset + 8000);
    std::vector<Commit> all;
    int unseen = 0;
    int seen = 0;
    for (int n = 0; n < 3000; ++n) {
      const std::size_t slab = static_cast<std::size_t>(random.uniform(0, kParts - 1e-9));
      double x = offset + 1000.0 * static_cast<double>(slab) + random.uniform(0, 1000);
      double y = offset + random.uniform(0, 8000);
      std::size_t seen_by = slab;
      const int kind = n % 10;
      if (kind == 0) {
        seen_by = kParts;  // proposed again at its turn
      } else if (kind == 1) {
        x += random.uniform(0, 300);  // placed across the slab's edge
      } else if (kind == 2) {
        x = offset + 1000.0 * static_cast<double>(slab);  // on the edge
      } else if (kind == 3 && !all.empty()) {
        const Commit& earlier = all[static_cast<std::size_t>(random.uniform(0, static_cast<double>(all.size()) - 1e-9))];
        x = earlier.x;
        y = earlier.y;
      } else if (kind == 4) {
        x = offset + random.uniform(-200, 8200);  // the region's rim and beyond
      }
      add_commit(commits, x, y, seen_by);
      all.push_back({x, y, seen_by});
      if (n % 25 != 0) continue;
      for (int q = 0; q < 16; ++q) {
        double xlo = offset + random.uniform(-100, 8100);
        double ylo = offset + random.uniform(-100, 8100);
        if (q % 3 == 0) {
          const Commit& at = all[static_cast<std::size_t>(random.uniform(0, static_cast<double>(all.size()) - 1e-9))];
          xlo = at.x;
          ylo = at.y;
        }
        const double width = q % 4 == 0 ? 0.0 : random.uniform(0, 600);
        for (std::size_t part = 0; part < kParts; ++part) {
          const bool expected = scan(all, part, xlo, xlo + width, ylo, ylo + width);
          ASSERT_EQ(unseen_in_box(commits, part, xlo, xlo + width, ylo, ylo + width), expected)
              << "part " << part << " box " << xlo << " " << ylo << " " << width;
          (expected ? unseen : seen) += 1;
        }
      }
    }
    // Both answers are common, so that a wrong one is not missed.
    EXPECT_GT(unseen, 1000);
    EXPECT_GT(seen, 1000);
  }
}

// A commit that is no number lies in no box, and a group that began with
// one is still asked, as are boxes whose bounds are no number.
TEST(CycleCommits, PointsAndBoxesThatAreNoNumber) {
  CycleCommits commits;
  start_cycle_commits(commits, kParts, 0, 100, 0, 100);
  add_commit(commits, kNaN, 5, 1);
  add_commit(commits, 50, 50, 1);
  add_commit(commits, 20, kNaN, kParts);
  add_commit(commits, 70, 10, kParts);
  EXPECT_TRUE(unseen_in_box(commits, 0, 40, 60, 40, 60));
  EXPECT_FALSE(unseen_in_box(commits, 1, 40, 60, 40, 60));
  EXPECT_TRUE(unseen_in_box(commits, 1, 60, 80, 0, 20));
  EXPECT_FALSE(unseen_in_box(commits, 0, 0, 30, 0, 30));
  EXPECT_FALSE(unseen_in_box(commits, 0, kNaN, 100, 0, 100));
  EXPECT_FALSE(unseen_in_box(commits, 0, 0, 100, 0, kNaN));
  // A box beyond every group's points.
  EXPECT_FALSE(unseen_in_box(commits, 0, 80, 90, 80, 90));
}

// Before any commit no box holds one.
TEST(CycleCommits, NoneBeforeTheFirstCommit) {
  CycleCommits commits;
  start_cycle_commits(commits, kParts, 0, 100, 0, 100);
  for (std::size_t part = 0; part <= kParts; ++part) {
    EXPECT_FALSE(unseen_in_box(commits, part, -1e300, 1e300, -1e300, 1e300));
  }
}

}  // namespace
}  // namespace tesseramill
