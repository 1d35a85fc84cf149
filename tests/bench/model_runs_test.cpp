// The benchmark's byte-for-byte comparison of two runs' folders, which reads
// the files a MiB at a time, and its run of another build of the program.
#include <gtest/gtest.h>

#include <filesystem>
#include <string>

#include "model_family.h"
#include "model_runs.h"
#include "support/scratch.h"

namespace tesseramill_test {
namespace {

using tesseramill_bench::same_files;
using tesseramill_bench::time_binary;
using tesseramill_bench::Timing;

constexpr std::size_t kMiB = std::size_t{1} << 20;

// A text of `size` bytes that differs from place to place, so that a byte
// moved or lost shows.
std::string varied(std::size_t size) {
  std::string text(size, ' ');
  for (std::size_t k = 0; k < size; ++k) text[k] = static_cast<char>('a' + (k * 7 + k / 251) % 26);
  return text;
}

// Two folders; `both` writes a file into each.
struct Pair {
  ScratchDir a;
  ScratchDir b;
  void both(const std::string& name, const std::string& content) const {
    a.write(name, content);
    b.write(name, content);
  }
};

TEST(SameFiles, TheSameFilesAndBytes) {
  {
    Pair empty;
    EXPECT_TRUE(same_files(empty.a.path(), empty.b.path()));
  }
  Pair p;
  p.both("model.disv", varied(1000));
  p.both("empty.txt", "");
  p.both("one block.mif", varied(kMiB));           // ends exactly at a block
  p.both("large.bln", varied(2 * kMiB + 12345));   // ends inside the third block
  EXPECT_TRUE(same_files(p.a.path(), p.b.path()));
}

TEST(SameFiles, AByteChangedMissingOrAddedInAnyBlock) {
  struct Case {
    const char* what;
    std::string second;  // what the second folder's large.bln holds
  };
  const std::string large = varied(2 * kMiB + 12345);
  std::string first_byte = large;
  first_byte[0] = 'Z';
  std::string second_block = large;
  second_block[kMiB + 17] = 'Z';
  std::string last_byte = large;
  last_byte.back() = 'Z';
  const std::vector<Case> cases = {
      {"first byte changed", first_byte},
      {"a byte changed in the second block", second_block},
      {"last byte changed", last_byte},
      {"one byte short", large.substr(0, large.size() - 1)},
      {"one byte more", large + "a"},
      {"empty", ""},
  };
  for (const Case& c : cases) {
    Pair p;
    p.both("model.disv", varied(1000));
    p.a.write("large.bln", large);
    p.b.write("large.bln", c.second);
    EXPECT_FALSE(same_files(p.a.path(), p.b.path())) << c.what;
    EXPECT_FALSE(same_files(p.b.path(), p.a.path())) << c.what << ", the other way round";
  }
  // A file that ends at a block's end against one a byte longer.
  Pair p;
  p.a.write("one block.mif", varied(kMiB));
  p.b.write("one block.mif", varied(kMiB) + "a");
  EXPECT_FALSE(same_files(p.a.path(), p.b.path()));
  EXPECT_FALSE(same_files(p.b.path(), p.a.path()));
}

TEST(SameFiles, AFileOnOneSideOnly) {
  Pair p;
  p.both("model.disv", varied(1000));
  p.a.write("screen.txt", "");
  EXPECT_FALSE(same_files(p.a.path(), p.b.path()));
  EXPECT_FALSE(same_files(p.b.path(), p.a.path()));
  // The same count of files under other names.
  p.b.write("screen.out", "");
  EXPECT_FALSE(same_files(p.a.path(), p.b.path()));
}

// Another build run on a folder: timed, its screen kept in screen.txt, and
// "ok" only when it wrote its last file.
TEST(TimeBinary, KeepsTheScreenAndTellsAFinishedRun) {
  ScratchDir dir;
  dir.write("model.in", "not a control file\n");
  const Timing failed = time_binary(TESSERAMILL_BINARY, dir.path());
  EXPECT_FALSE(failed.ok);
  EXPECT_GT(failed.wall, 0.0);
  EXPECT_EQ(lf_line_ends(dir.read("screen.txt")),
            "\n TESSERAMILL version 1.21 by Larkspur Analytics.\n\n - reading file model.in...\n\n"
            " Unknown keyword at line 1 of file model.in.\n");

  ScratchDir model;
  tesseramill_bench::ModelRecipe recipe = tesseramill_bench::family_model(1e3);
  recipe.max_lloyd = 1;
  tesseramill_bench::write_model(recipe, model.path());
  const Timing finished = time_binary(TESSERAMILL_BINARY, model.path());
  EXPECT_TRUE(finished.ok) << model.read("screen.txt");
  EXPECT_GT(finished.wall, 0.0);
  EXPECT_NE(model.read("screen.txt").find(" - file model.oc written ok."), std::string::npos);
}

}  // namespace
}  // namespace tesseramill_test
