#include "common/pages_ahead.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <limits>

namespace tesseramill {
namespace {

TEST(PagesAhead, NoneAskedNoneTaken) {
  PagesAhead ahead;
  touch_pages_ahead(ahead, 0);
  EXPECT_EQ(ahead.block, nullptr);
  EXPECT_EQ(ahead.bytes, 0u);
  EXPECT_FALSE(ahead.touching.thread.joinable());
}

TEST(PagesAhead, ABlockThatCannotBeHadIsLeftAlone) {
  PagesAhead ahead;
  touch_pages_ahead(ahead, std::numeric_limits<std::size_t>::max() - 4096);
  EXPECT_EQ(ahead.block, nullptr);
  EXPECT_EQ(ahead.bytes, 0u);
  EXPECT_FALSE(ahead.touching.thread.joinable());
}

// The block is held while its pages are touched, and let go of once the
// touching has ended, by a call or by the holder going; asking again lets
// the first block go first.
TEST(PagesAhead, TheBlockIsHeldUntilReleased) {
  PagesAhead ahead;
  touch_pages_ahead(ahead, (5 << 20) + 3);
  ASSERT_NE(ahead.block, nullptr);
  EXPECT_EQ(ahead.bytes, (5u << 20) + 3);
  touch_pages_ahead(ahead, 4096);
  ASSERT_NE(ahead.block, nullptr);
  EXPECT_EQ(ahead.bytes, 4096u);
  release_pages_ahead(ahead);
  EXPECT_EQ(ahead.block, nullptr);
  EXPECT_EQ(ahead.bytes, 0u);
  EXPECT_FALSE(ahead.touching.thread.joinable());
  {
    PagesAhead held;
    touch_pages_ahead(held, 1 << 20);
    EXPECT_NE(held.block, nullptr);
  }
}

}  // namespace
}  // namespace tesseramill
