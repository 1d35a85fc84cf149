// The text file writer puts items out in blocks, on one core or two, and
// hands long texts to the file at once; the file must hold exactly what one
// pass in order would have written.
#include <gtest/gtest.h>

#include <ostream>
#include <stdexcept>
#include <string>

#include "common/platform.h"
#include "output/text_file.h"
#include "support/scratch.h"

namespace tesseramill {
namespace {

using tesseramill_test::ScratchDir;

// Item k's lines: most are short, every 997th is longer than a flush of the
// writer, and every 5th has two lines, so that blocks end at uneven places.
void format_item(std::size_t k, std::string& text) {
  text += "item " + std::to_string(k);
  if (k % 997 == 3) text += std::string(70000 + k % 13, static_cast<char>('a' + k % 26));
  text += '\n';
  if (k % 5 == 0) text += "  second line of " + std::to_string(k) + '\n';
}

std::string written_in_order(std::size_t count) {
  std::string text = "head\n";
  for (std::size_t k = 0; k < count; ++k) format_item(k, text);
  return text + std::string(100000, 'z') + "tail\n";
}

// The file's text as the writer left it, and what the writer counted of it.
struct WrittenFile {
  std::string text;
  WrittenSpan written;
  bool failed = false;
};

WrittenFile written_by_put_items(const ScratchDir& dir, std::size_t count) {
  RunState state;
  OutputFile out;
  open_output(state, out, (dir.path() / "items.txt").string());
  put_line(out, "head");
  put_items(out, count, format_item);
  put_text(out, std::string(100000, 'z'));
  put_line(out, "tail");
  close_output(out);
  return {dir.read("items.txt"), out.written, out.failed};
}

class PutItems : public testing::TestWithParam<std::size_t> {};

TEST_P(PutItems, FileHoldsWhatOnePassInOrderWrites) {
  const ScratchDir dir;
  const std::size_t count = GetParam();
  const std::string expected = written_in_order(count);
  const std::string got = written_by_put_items(dir, count).text;
  ASSERT_EQ(got.size(), expected.size());
  EXPECT_TRUE(got == expected);
}

// Counts around the block of one core (4096 items), around the count from
// which two cores share the file (20,000), and several shared blocks.
INSTANTIATE_TEST_SUITE_P(BlockBoundaries, PutItems,
                         testing::Values(0, 1, 4095, 4096, 4097, 8192, 8193, 19999, 20000, 20001, 57345));

// A file of several steps of release_written (some 33 MB), its blocks
// shared by two threads: every byte written through the writer's three
// paths (pending lines, long texts, shared blocks) is counted once, and on
// Linux all but less than a step has been sent by the time it closes.
TEST(PutItemsOfSeveralSteps, EveryByteCountedAndKept) {
  const ScratchDir dir;
  constexpr std::size_t kCount = 400000;
  const WrittenFile got = written_by_put_items(dir, kCount);
  EXPECT_FALSE(got.failed);
  const std::string expected = written_in_order(kCount);
  ASSERT_GT(expected.size(), 4 * kReleaseStep);
  ASSERT_EQ(got.text.size(), expected.size());
  EXPECT_TRUE(got.text == expected);
  EXPECT_EQ(got.written.given, expected.size());
#ifdef __linux__
  EXPECT_LT(got.written.given - got.written.sent, kReleaseStep);
  EXPECT_GT(got.written.dropped, 0u);
  EXPECT_LT(got.written.dropped, got.written.sent);
#endif
}

// A block whose formatting fails, on the first thread (an even block) or
// the second (an odd one), ends the writing with that failure and leaves the
// blocks before it in the file, in order; neither thread is left waiting
// for its turn.
class FailingBlock : public testing::TestWithParam<std::size_t> {};

TEST_P(FailingBlock, StopsBothThreadsAndKeepsTheBlocksBefore) {
  const ScratchDir dir;
  const std::size_t failing = GetParam();
  RunState state;
  OutputFile out;
  open_output(state, out, (dir.path() / "blocks.txt").string());
  put_line(out, "head");
  std::string message;
  try {
    put_blocks(
        out, 40,
        [&](std::size_t block, std::string& text) {
          if (block == failing) throw std::runtime_error("block " + std::to_string(block) + " failed");
          text += "block " + std::to_string(block) + "\n";
        },
        true);
  } catch (const std::runtime_error& e) {
    message = e.what();
  }
  close_output(out);
  EXPECT_EQ(message, "block " + std::to_string(failing) + " failed");
  std::string expected = "head\n";
  for (std::size_t block = 0; block < failing; ++block) expected += "block " + std::to_string(block) + "\n";
  EXPECT_EQ(dir.read("blocks.txt"), expected);
}

INSTANTIATE_TEST_SUITE_P(OnEitherThread, FailingBlock, testing::Values(0, 1, 4, 5, 39));

// When blocks on both threads fail, the lower one's failure is passed on.
TEST(PutBlocks, FailuresOnBothThreadsPassOnTheLowerBlocks) {
  for (std::size_t lower : {6, 7}) {
    const ScratchDir dir;
    RunState state;
    OutputFile out;
    open_output(state, out, (dir.path() / "blocks.txt").string());
    std::string message;
    try {
      put_blocks(
          out, 20,
          [&](std::size_t block, std::string& text) {
            if (block == lower || block == lower + 1) throw std::runtime_error("block " + std::to_string(block));
            text += std::to_string(block) + "\n";
          },
          true);
    } catch (const std::runtime_error& e) {
      message = e.what();
    }
    close_output(out);
    EXPECT_EQ(message, "block " + std::to_string(lower));
    std::string expected;
    for (std::size_t block = 0; block < lower; ++block) expected += std::to_string(block) + "\n";
    EXPECT_EQ(dir.read("blocks.txt"), expected);
  }
}

// Many short blocks, one after another, hand the turn over thirty thousand
// times: a wakeup lost between the threads would leave both asleep, and
// ctest's time limit would end the test.  The Windows build hung so, in
// each of three tries, while the turn was kept with std::atomic::wait.
TEST(PutBlocks, ManyShortBlocksNeverLoseTheTurn) {
  const ScratchDir dir;
  RunState state;
  OutputFile out;
  open_output(state, out, (dir.path() / "blocks.txt").string());
  constexpr std::size_t kWrites = 300;
  constexpr std::size_t kBlocks = 100;
  for (std::size_t write = 0; write < kWrites; ++write) {
    put_blocks(out, kBlocks, [](std::size_t block, std::string& text) { text += static_cast<char>('a' + block % 26); },
               true);
  }
  close_output(out);
  std::string one;
  for (std::size_t block = 0; block < kBlocks; ++block) one += static_cast<char>('a' + block % 26);
  std::string expected;
  for (std::size_t write = 0; write < kWrites; ++write) expected += one;
  EXPECT_EQ(dir.read("blocks.txt"), expected);
}

// Replacing a file that is there.  A large file (from a size that the
// tests lower to 1,000 bytes) is written over where it stands on Linux; a
// file of any size must end as emptying it and writing the new text leaves
// it, and hold none of its old bytes from the moment it is opened.
struct LowerOverwriteSize {
  LowerOverwriteSize() { overwrite_from_bytes_for_tests = 1000; }
  ~LowerOverwriteSize() { overwrite_from_bytes_for_tests = 0; }
};

struct Replacement {
  std::size_t old_size;  // npos: no file there
  std::size_t new_size;
};

void PrintTo(const Replacement& r, std::ostream* os) {
  *os << (r.old_size == std::string::npos ? std::string("no old file") : std::to_string(r.old_size) + " old bytes")
      << ", " << r.new_size << " new";
}

class ReplacingAFile : public testing::TestWithParam<Replacement> {};

// Leaves a file of 300,000 old bytes named `name` in `dir` and opens it for
// the writer, written over where it stands.
void open_over_old_file(const ScratchDir& dir, const std::string& name, OutputFile& out) {
  dir.write(name, std::string(300000, 'o'));
  RunState state;
  open_output(state, out, (dir.path() / name).string());
}

TEST_P(ReplacingAFile, EndsAsEmptyingAndWritingLeaveIt) {
  const LowerOverwriteSize lower;
  const ScratchDir dir;
  const Replacement r = GetParam();
  if (r.old_size != std::string::npos) dir.write("map.mif", std::string(r.old_size, 'o'));
  RunState state;
  OutputFile out;
  open_output(state, out, (dir.path() / "map.mif").string());
  const std::string opened = dir.read("map.mif");
  EXPECT_EQ(opened.find('o'), std::string::npos) << "an old byte is left after the open";
  EXPECT_EQ(opened.find_first_not_of('\0'), std::string::npos);
  std::string expected;
  for (std::size_t k = 0; expected.size() < r.new_size; ++k) {
    const std::string line = "new line " + std::to_string(k);
    put_line(out, line);
    expected += line + "\n";
  }
  EXPECT_TRUE(close_output_checked(out));
  const std::string got = dir.read("map.mif");
  ASSERT_EQ(got.size(), expected.size());
  EXPECT_TRUE(got == expected);
}

// Old files below and above the lowered size, none at all, and new texts
// shorter, about as long as and longer than the old, up to several flushes
// and a step of release_written.
INSTANTIATE_TEST_SUITE_P(
    OldAndNewSizes, ReplacingAFile,
    testing::Values(Replacement{std::string::npos, 0}, Replacement{std::string::npos, 5000}, Replacement{10, 0},
                    Replacement{10, 100}, Replacement{999, 5000}, Replacement{1000, 0}, Replacement{1000, 12},
                    Replacement{200000, 150000}, Replacement{200000, 200000}, Replacement{200000, 450000},
                    Replacement{9000000, 100}, Replacement{9000000, 17000000}),
    [](const testing::TestParamInfo<Replacement>& info) {
      const Replacement& r = info.param;
      return (r.old_size == std::string::npos ? std::string("none") : "old" + std::to_string(r.old_size)) + "_new" +
             std::to_string(r.new_size);
    });

// A run that fails while filling a file leaves in it what was written
// before the failure, and nothing of the longer file it replaced.
TEST(ReplacingAFile, FailedFillEndsWhereItsWritingStopped) {
  const LowerOverwriteSize lower;
  const ScratchDir dir;
  OutputFile out;
  open_over_old_file(dir, "blocks.txt", out);
  put_line(out, "head");
  EXPECT_THROW(put_blocks(
                   out, 40,
                   [&](std::size_t block, std::string& text) {
                     if (block == 7) throw std::runtime_error("block 7 failed");
                     text += "block " + std::to_string(block) + "\n";
                   },
                   true),
               std::runtime_error);
  close_output(out);
  std::string expected = "head\n";
  for (std::size_t block = 0; block < 7; ++block) expected += "block " + std::to_string(block) + "\n";
  EXPECT_EQ(dir.read("blocks.txt"), expected);
}

// A file left empty after a failure elsewhere is empty, whatever it held.
TEST(ReplacingAFile, EmptiedFileIsEmpty) {
  const LowerOverwriteSize lower;
  const ScratchDir dir;
  OutputFile out;
  open_over_old_file(dir, "cells.bln", out);
  put_line(out, "begun");
  empty_output(out);
  EXPECT_EQ(dir.read("cells.bln"), "");
}

}  // namespace
}  // namespace tesseramill
