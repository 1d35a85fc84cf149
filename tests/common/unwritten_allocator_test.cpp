#include "common/unwritten_allocator.h"

#include <gtest/gtest.h>

#include <cstring>
#include <memory>
#include <vector>

namespace tesseramill {
namespace {

struct Plain {
  double x;
  int number;
};

struct WithInitialisers {
  double x = 2.5;
  int number = 7;
};

using Traits = std::allocator_traits<UnwrittenAllocator<Plain>>;

// An element made without arguments is left as the memory held it, where a
// plain vector would write zeros.
TEST(UnwrittenAllocator, AnElementMadeWithoutArgumentsIsLeftUnwritten) {
  alignas(Plain) unsigned char raw[sizeof(Plain)];
  std::memset(raw, 0xab, sizeof raw);
  UnwrittenAllocator<Plain> allocator;
  Plain* p = reinterpret_cast<Plain*>(raw);
  Traits::construct(allocator, p);
  for (unsigned char byte : raw) EXPECT_EQ(byte, 0xab);
  Traits::destroy(allocator, p);
}

TEST(UnwrittenAllocator, AnElementMadeFromValuesTakesThem) {
  std::vector<Plain, UnwrittenAllocator<Plain>> list;
  list.push_back(Plain{1.5, 3});
  list.emplace_back(Plain{-4.0, 9});
  list.insert(list.begin(), Plain{0.25, 1});
  ASSERT_EQ(list.size(), 3u);
  EXPECT_EQ(list[0].x, 0.25);
  EXPECT_EQ(list[0].number, 1);
  EXPECT_EQ(list[1].x, 1.5);
  EXPECT_EQ(list[2].number, 9);
}

// Lengthening keeps what the list held, through a move to a larger block
// too; cutting back drops only the places past the new length.
TEST(UnwrittenAllocator, LengtheningAndCuttingBackKeepTheListsHead) {
  std::vector<Plain, UnwrittenAllocator<Plain>> list{{1.0, 1}, {2.0, 2}};
  list.resize(1000);
  ASSERT_EQ(list.size(), 1000u);
  EXPECT_EQ(list[0].number, 1);
  EXPECT_EQ(list[1].x, 2.0);
  list[999] = Plain{9.0, 999};
  list.resize(1);
  ASSERT_EQ(list.size(), 1u);
  EXPECT_EQ(list[0].x, 1.0);
}

// A type with initialisers of its own still gets them.
TEST(UnwrittenAllocator, AnElementsOwnInitialisersStillRun) {
  std::vector<WithInitialisers, UnwrittenAllocator<WithInitialisers>> list(3);
  for (const WithInitialisers& e : list) {
    EXPECT_EQ(e.x, 2.5);
    EXPECT_EQ(e.number, 7);
  }
}

}  // namespace
}  // namespace tesseramill
