// Shared work reports the failure that a pass in order meets first, covers
// every item once, and carries an exception out of the helper thread.
#include <gtest/gtest.h>

#include <algorithm>
#include <atomic>
#include <filesystem>
#include <fstream>
#include <stdexcept>
#include <string>
#include <vector>

#include "common/parallel.h"
#include "support/random.h"

namespace tesseramill {
namespace {

PartFailure fail_at(std::size_t begin, std::size_t end, const std::vector<std::size_t>& failing) {
  for (std::size_t k = begin; k < end; ++k) {
    for (std::size_t f : failing) {
      if (k == f) return PartFailure{k, "item " + std::to_string(k)};
    }
  }
  return PartFailure{};
}

TEST(RunInParts, TheLowestFailingItemWins) {
  const std::size_t count = 3 * kSmallestSharedWork;
  const PartFailure both = run_in_parts(count, [&](std::size_t b, std::size_t e, int) {
    return fail_at(b, e, {count - 5, count / 2 - 1, 7});
  });
  EXPECT_EQ(both.at, 7u);
  EXPECT_EQ(both.message, "item 7");
  const PartFailure second = run_in_parts(count, [&](std::size_t b, std::size_t e, int) {
    return fail_at(b, e, {count - 5, count - 2});
  });
  EXPECT_EQ(second.at, count - 5);
  EXPECT_FALSE(run_in_parts(count, [&](std::size_t b, std::size_t e, int) { return fail_at(b, e, {}); }).failed());
}

TEST(RunInParts, EveryItemOnceAndSmallWorkInOnePart) {
  const std::size_t count = 2 * kSmallestSharedWork + 3;
  std::vector<std::atomic<int>> seen(count);
  std::atomic<int> parts{0};
  run_in_parts(count, [&](std::size_t b, std::size_t e, int part) {
    parts += part + 1;
    for (std::size_t k = b; k < e; ++k) seen[k] += 1;
    return PartFailure{};
  });
  for (const auto& s : seen) ASSERT_EQ(s.load(), 1);
  EXPECT_EQ(parts.load(), 3);  // parts 0 and 1
  int small_parts = 0;
  run_in_parts(100, [&](std::size_t b, std::size_t e, int part) {
    small_parts += 1;
    EXPECT_EQ(b, 0u);
    EXPECT_EQ(e, 100u);
    EXPECT_EQ(part, 0);
    return PartFailure{};
  });
  EXPECT_EQ(small_parts, 1);
}

TEST(RunInParts, AGivenSmallestCountSharesSmallerWork) {
  std::vector<std::atomic<int>> seen(101);
  std::vector<std::size_t> ends(2, 0);
  run_in_parts(
      seen.size(),
      [&](std::size_t b, std::size_t e, int part) {
        ends[static_cast<std::size_t>(part)] = e;
        for (std::size_t k = b; k < e; ++k) seen[k] += 1;
        return PartFailure{};
      },
      100);
  for (const auto& s : seen) ASSERT_EQ(s.load(), 1);
  EXPECT_EQ(ends[0], 50u);
  EXPECT_EQ(ends[1], 101u);
  int parts = 0;
  run_in_parts(
      99,
      [&](std::size_t, std::size_t, int) {
        parts += 1;
        return PartFailure{};
      },
      100);
  EXPECT_EQ(parts, 1);
}

TEST(RunInParts, AnExceptionOfTheHelperReachesTheCaller) {
  EXPECT_THROW(run_in_parts(2 * kSmallestSharedWork,
                            [&](std::size_t, std::size_t, int part) -> PartFailure {
                              if (part == 1) throw std::runtime_error("helper");
                              return PartFailure{};
                            }),
               std::runtime_error);
}

// Sorting in two parts gives std::sort's order where no two items are
// equivalent: random, ascending, descending and nearly ascending values,
// counts round the sample's size, on both cores and on one.
TEST(SortInParts, GivesTheOneSortedOrderOfDistinctItems) {
  tesseramill_test::Random random(71);
  auto less = [](double a, double b) { return a < b; };
  for (std::size_t count : {0, 1, 2, 3, 10, 254, 255, 256, 1000, 40001}) {
    for (int shape = 0; shape < 4; ++shape) {
      std::vector<double> items;
      for (std::size_t k = 0; k < count; ++k) items.push_back(random.uniform(-1e6, 1e6));
      if (shape == 1) std::sort(items.begin(), items.end());
      if (shape == 2) std::sort(items.rbegin(), items.rend());
      if (shape == 3 && count > 1) {
        // Ascending but for the largest, which comes first.
        std::sort(items.begin(), items.end());
        std::rotate(items.begin(), items.end() - 1, items.end());
      }
      std::vector<double> expected = items;
      std::sort(expected.begin(), expected.end());
      for (std::size_t smallest : {std::size_t{2}, kSmallestSharedWork}) {
        std::vector<double> sorted = items;
        sort_in_parts(sorted.begin(), sorted.end(), less, smallest);
        ASSERT_EQ(sorted, expected) << count << " items, shape " << shape << ", shared from " << smallest;
      }
    }
  }
}

// Equivalent items (equal keys, different tags) come out together, in
// order of key, each item once, however many share the pivot's key.
TEST(SortInParts, KeepsEveryItemAndOrdersEquivalentOnesTogether) {
  tesseramill_test::Random random(72);
  struct Item {
    int key;
    int tag;
  };
  auto by_key = [](const Item& a, const Item& b) { return a.key < b.key; };
  auto by_key_and_tag = [](const Item& a, const Item& b) { return a.key < b.key || (a.key == b.key && a.tag < b.tag); };
  for (int keys : {1, 2, 3, 17, 1000}) {
    std::vector<Item> items;
    for (int k = 0; k < 5000; ++k) items.push_back({static_cast<int>(random.uniform(0, keys)), k});
    std::vector<Item> sorted = items;
    sort_in_parts(sorted.begin(), sorted.end(), by_key, 2);
    ASSERT_TRUE(std::is_sorted(sorted.begin(), sorted.end(), by_key)) << keys << " keys";
    std::sort(items.begin(), items.end(), by_key_and_tag);
    std::sort(sorted.begin(), sorted.end(), by_key_and_tag);
    for (std::size_t k = 0; k < items.size(); ++k) {
      ASSERT_EQ(sorted[k].key, items[k].key) << keys << " keys, item " << k;
      ASSERT_EQ(sorted[k].tag, items[k].tag) << keys << " keys, item " << k;
    }
  }
}

// The Windows build emulates thread-local storage, which may be released
// before a thread-local object's destructor runs when a thread ends: the
// thread_local vectors of the field's bounds crashed the mesher there now
// and then, their destructors freeing a stale pointer as the threads of
// interior emplacement ended.  So every thread_local of the programs holds
// plain values only (numbers and structs of numbers), never an object of
// the standard library.
TEST(ThreadLocalStorage, HoldsNoObjectWithADestructor) {
  namespace fs = std::filesystem;
  int declarations = 0;
  std::string offending;
  for (const fs::directory_entry& entry : fs::recursive_directory_iterator(fs::path(TESSERAMILL_SOURCE_DIR) / "src")) {
    const std::string extension = entry.path().extension().string();
    if (extension != ".cpp" && extension != ".h") continue;
    std::ifstream in(entry.path());
    std::string line;
    for (int number = 1; std::getline(in, line); ++number) {
      const std::string code = line.substr(0, line.find("//"));
      if (code.find("thread_local") == std::string::npos) continue;
      ++declarations;
      if (code.find("std::") != std::string::npos) {
        offending += entry.path().filename().string() + ":" + std::to_string(number) + ": " + line + "\n";
      }
    }
  }
  EXPECT_GE(declarations, 4);  // the growth rate's constants, cached per thread
  EXPECT_EQ(offending, "");
}

}  // namespace
}  // namespace tesseramill
