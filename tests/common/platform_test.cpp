// The platform module gives the same answers on Linux and on Windows.
#include <gtest/gtest.h>

#include <chrono>
#include <cstdint>
#include <cstdio>
#include <filesystem>
#include <string>
#include <vector>

#include "common/platform.h"
#include "model_family.h"
#include "support/scratch.h"

#if defined(__GLIBC__)
#include <malloc.h>
#endif
#ifdef __linux__
#include <sys/mman.h>
#include <unistd.h>
#include <fcntl.h>
#endif

namespace tesseramill_test {
namespace {

namespace fs = std::filesystem;
using tesseramill::ChildRun;
using tesseramill::ChildStreams;
using tesseramill::run_child;

const std::string kBenchUsage =
    "usage: tesseramill-bench [--sizes 1e3,1e4,...,outline] [--binary PATH] | --targets [--rounds N] [--binary "
    "PATH] [--with-1e7] | --write SIZE|outline DIR [MAX_LLOYD] | --triangulation SIZE | --maths\n";

// The benchmark refuses an unknown option with its usage on standard error
// and status 2.
TEST(Platform, ChildStatusAndStreams) {
  ScratchDir dir;
  const ChildRun both = run_child(dir.path(), TESSERAMILL_BENCH_BINARY, {"--no-such-option"});
  EXPECT_EQ(both.status, 2);
  EXPECT_EQ(lf_line_ends(both.output), kBenchUsage);
  const ChildRun output_only =
      run_child(dir.path(), TESSERAMILL_BENCH_BINARY, {"--no-such-option"}, ChildStreams::kOutput);
  EXPECT_EQ(output_only.status, 2);
  EXPECT_EQ(output_only.output, "");
}

// The benchmark's --targets takes only its own options, and a number of
// rounds of at least one.
TEST(Platform, BenchmarkTargetsRefuseOtherOptions) {
  ScratchDir dir;
  for (const std::vector<std::string>& args : std::vector<std::vector<std::string>>{
           {"--targets", "--rounds", "0"}, {"--targets", "--rounds"}, {"--targets", "--sizes", "1e3"}}) {
    const ChildRun run = run_child(dir.path(), TESSERAMILL_BENCH_BINARY, args);
    EXPECT_EQ(run.status, 2) << args.back();
    EXPECT_EQ(lf_line_ends(run.output), kBenchUsage) << args.back();
  }
}

TEST(Platform, ProgramThatCannotStart) {
  ScratchDir dir;
  const ChildRun run = run_child(dir.path(), tesseramill::path_to_utf8(dir.path() / "absent.exe"), {});
  EXPECT_EQ(run.status, 127);
  EXPECT_EQ(run.output, "");
}

// Arguments reach the child word for word: blanks, quotes and backslashes
// (which Windows passes in one command line that the child's runtime parts
// again), and letters beyond ASCII.  The mesher echoes its argument.
TEST(Platform, ArgumentsReachTheChildAsGiven) {
  ScratchDir dir;
  for (const std::string word : {"my model.in", "a\\\"b\\", "x\\ y\\\\", "\"", "Grünau ø.in"}) {
    const RunResult result = run_binary(dir, {word});
    EXPECT_EQ(result.screen, reading(word) + "\n Cannot open TESSERAMILL input file " + word + ".\n") << word;
  }
}

// The child runs in the folder given: the files it writes land there.
TEST(Platform, ChildRunsInTheFolderGiven) {
  ScratchDir dir;
  copy_model(dir, "square");
  const ChildRun run = run_child(dir.path(), TESSERAMILL_BINARY, {"square.in"});
  EXPECT_EQ(run.status, 0);
  EXPECT_NE(lf_line_ends(run.output).find(" - file square.oc written ok.\n"), std::string::npos) << run.output;
  EXPECT_TRUE(fs::exists(dir.path() / "square.disv"));
  EXPECT_GT(run.peak_kib, 0);
}

// A child's processor times are its own: the mesher on a model of 10,000
// cells spends a good part of a second in its own code, and no more
// processor time than two cores give in the wall time it took.  Windows
// gives none.
TEST(Platform, ChildProcessorTimes) {
  ScratchDir dir;
  tesseramill_bench::ModelRecipe recipe = tesseramill_bench::family_model(1e4);
  recipe.max_lloyd = 3;
  const std::string control = tesseramill_bench::write_model(recipe, dir.path());
  const auto start = std::chrono::steady_clock::now();
  const ChildRun run = run_child(dir.path(), TESSERAMILL_BINARY, {control});
  const double wall = std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
  EXPECT_EQ(run.status, 0);
#ifdef _WIN32
  EXPECT_EQ(run.user_seconds, 0.0);
  EXPECT_EQ(run.system_seconds, 0.0);
  (void)wall;
#else
  EXPECT_GT(run.user_seconds, 0.05);
  EXPECT_GE(run.system_seconds, 0.0);
  EXPECT_LE(run.user_seconds + run.system_seconds, 2.0 * wall + 0.1);
#endif
}

TEST(Platform, OwnProgramPathStartsThisProgram) {
  ScratchDir dir;
  const ChildRun run = run_child(dir.path(), tesseramill::own_program_path(),
                                 {"--gtest_list_tests", "--gtest_filter=Platform.OwnProgramPathStartsThisProgram"});
  EXPECT_EQ(run.status, 0);
  // GoogleTest's main() may first name its source file.
  const std::string listing = "Platform.\n  OwnProgramPathStartsThisProgram\n";
  EXPECT_EQ(screen_tail(lf_line_ends(run.output), listing.size()), listing) << run.output;
}

TEST(Platform, FreshTemporaryFoldersAreNewAndEmpty) {
  const fs::path first = tesseramill::fresh_temporary_folder("tesseramill_platform_");
  const fs::path second = tesseramill::fresh_temporary_folder("tesseramill_platform_");
  EXPECT_NE(first, second);
  EXPECT_TRUE(fs::is_directory(fs::temp_directory_path() / first.filename()));
  EXPECT_TRUE(fs::is_directory(first) && fs::is_empty(first));
  EXPECT_TRUE(fs::is_directory(second) && fs::is_empty(second));
  EXPECT_EQ(first.filename().string().rfind("tesseramill_platform_", 0), 0u);
  fs::remove(first);
  fs::remove(second);
}

// A UTF-8 name opens the file that the file system lists under that name.
TEST(Platform, FilesByUtf8Names) {
  ScratchDir dir;
  const std::string name = "Außengrenze ø é.bln";
  std::FILE* file = tesseramill::open_file(tesseramill::path_to_utf8(dir.path()) + "/" + name, "wb");
  ASSERT_NE(file, nullptr);
  std::fputs("5\n", file);
  std::fclose(file);
  EXPECT_EQ(dir.listing(), std::vector<std::string>{name});
  EXPECT_EQ(dir.read(name), "5\n");
  EXPECT_EQ(tesseramill::path_to_utf8(tesseramill::path_from_utf8(name)), name);
}

TEST(Platform, NullDeviceSwallowsWritesAndReadsEmpty) {
  std::FILE* out = tesseramill::open_file(tesseramill::null_device(), "wb");
  ASSERT_NE(out, nullptr);
  EXPECT_GE(std::fputs("gone", out), 0);
  EXPECT_EQ(std::fflush(out), 0);
  EXPECT_EQ(std::fclose(out), 0);
  std::FILE* in = tesseramill::open_file(tesseramill::null_device(), "rb");
  ASSERT_NE(in, nullptr);
  EXPECT_EQ(std::getc(in), EOF);
  EXPECT_FALSE(std::ferror(in));
  std::fclose(in);
}

TEST(Platform, ProgramNotOnPath) {
  EXPECT_FALSE(tesseramill::find_on_path("tesseramill_no_such_program").has_value());
}

// Lowers the size from which open_file_replacing writes over a file, for
// the test that holds it, and restores it whatever way the test ends.
struct LowerOverwriteSize {
  LowerOverwriteSize() { tesseramill::overwrite_from_bytes_for_tests = 4096; }
  ~LowerOverwriteSize() { tesseramill::overwrite_from_bytes_for_tests = 0; }
};

// open_file_replacing on Linux writes over a file of the lowered size or
// more where it stands, and asks for the cut; below it, where there is no
// file, and on Windows, it empties the file as fopen does.  Either way the
// file holds no old byte once open, and ends with what was written.
TEST(Platform, ReplacingFileAsksForTheCutFromItsSize) {
  struct Case {
    std::size_t old_size;  // 0: no file there
    bool cut;              // on Linux
  };
  const LowerOverwriteSize lower;
  for (const Case c : {Case{0, false}, Case{4095, false}, Case{4096, true}, Case{70000, true}}) {
    ScratchDir dir;
    if (c.old_size > 0) dir.write("grid.disv", std::string(c.old_size, 'o'));
    bool cut = !c.cut;
    std::FILE* file = tesseramill::open_file_replacing((dir.path() / "grid.disv").string(), cut);
    ASSERT_NE(file, nullptr);
#ifdef __linux__
    EXPECT_EQ(cut, c.cut) << c.old_size;
#else
    EXPECT_FALSE(cut) << c.old_size;
#endif
    EXPECT_EQ(dir.read("grid.disv").find('o'), std::string::npos) << c.old_size;
    ASSERT_GE(std::fputs("new", file), 0);
    if (cut) {
      EXPECT_TRUE(tesseramill::cut_file_at(file, 3));
    }
    ASSERT_EQ(std::fclose(file), 0);
    EXPECT_EQ(dir.read("grid.disv"), "new") << c.old_size;
  }
}

#ifdef __linux__
// Written over where it stands, a file keeps what emptying it keeps: a
// symbolic link still names its target, which takes the new text; a second
// hard link sees the new text too; the permissions stay; and a file this
// process may not write is refused, its bytes untouched.
TEST(Platform, ReplacingFileKeepsLinksAndPermissions) {
  const LowerOverwriteSize lower;
  ScratchDir dir;
  const std::string old(10000, 'o');
  auto replace = [&](const std::string& name) {
    bool cut = false;
    std::FILE* file = tesseramill::open_file_replacing((dir.path() / name).string(), cut);
    if (file == nullptr) return false;
    EXPECT_TRUE(cut) << name;
    EXPECT_GE(std::fputs(("new " + name).c_str(), file), 0);
    EXPECT_TRUE(tesseramill::cut_file_at(file, 4 + name.size()));
    EXPECT_EQ(std::fclose(file), 0);
    return true;
  };
  dir.write("target.mif", old);
  fs::create_symlink("target.mif", dir.path() / "link.mif");
  ASSERT_TRUE(replace("link.mif"));
  EXPECT_TRUE(fs::is_symlink(dir.path() / "link.mif"));
  EXPECT_EQ(dir.read("target.mif"), "new link.mif");

  dir.write("first.bln", old);
  fs::create_hard_link(dir.path() / "first.bln", dir.path() / "second.bln");
  fs::permissions(dir.path() / "first.bln", fs::perms::owner_read | fs::perms::owner_write | fs::perms::group_read);
  ASSERT_TRUE(replace("first.bln"));
  EXPECT_EQ(dir.read("second.bln"), "new first.bln");
  EXPECT_EQ(fs::status(dir.path() / "first.bln").permissions() & fs::perms::all,
            fs::perms::owner_read | fs::perms::owner_write | fs::perms::group_read);

  if (::geteuid() != 0) {  // the superuser may write any file
    dir.write("locked.dat", old);
    fs::permissions(dir.path() / "locked.dat", fs::perms::owner_read);
    EXPECT_FALSE(replace("locked.dat"));
    EXPECT_TRUE(dir.read("locked.dat") == old);
  }
}
#endif

// An output file's counts after each write, as release_written keeps them:
// on Linux a request each time a step has gathered since the last, which
// sends all that was given and drops what the request before sent;
// elsewhere counts of what was given alone.  The file holds every byte.
TEST(Platform, ReleaseWrittenAsksStepByStep) {
  using tesseramill::kReleaseStep;
  using tesseramill::WrittenSpan;
  constexpr std::uint64_t kMiB = std::uint64_t{1} << 20;
  struct Write {
    std::uint64_t bytes;
    WrittenSpan after;  // on Linux
  };
  const std::vector<Write> writes = {
      {3 * kMiB, {3 * kMiB, 0, 0}},
      {5 * kMiB, {8 * kMiB, 8 * kMiB, 0}},  // a step exactly: sent, nothing before it to drop
      {100, {8 * kMiB + 100, 8 * kMiB, 0}},
      {0, {8 * kMiB + 100, 8 * kMiB, 0}},
      {9 * kMiB, {17 * kMiB + 100, 17 * kMiB + 100, 8 * kMiB}},
      {8 * kMiB - 101, {25 * kMiB - 1, 17 * kMiB + 100, 8 * kMiB}},  // one byte short of a step
      {101, {25 * kMiB + 100, 25 * kMiB + 100, 17 * kMiB + 100}},
  };
  ASSERT_EQ(kReleaseStep, 8 * kMiB);
  ScratchDir dir;
  const std::string name = (dir.path() / "released.bin").string();
  std::FILE* file = tesseramill::open_file(name, "wb");
  ASSERT_NE(file, nullptr);
  std::string expected;
  WrittenSpan span;
  for (std::size_t w = 0; w < writes.size(); ++w) {
    const std::string bytes(writes[w].bytes, static_cast<char>('a' + w));
    ASSERT_EQ(std::fwrite(bytes.data(), 1, bytes.size(), file), bytes.size());
    expected += bytes;
    EXPECT_TRUE(tesseramill::release_written(file, bytes.size(), span));
    const WrittenSpan& want = writes[w].after;
    EXPECT_EQ(span.given, want.given) << "write " << w;
#ifdef __linux__
    EXPECT_EQ(span.sent, want.sent) << "write " << w;
    EXPECT_EQ(span.dropped, want.dropped) << "write " << w;
#else
    EXPECT_EQ(span.sent, 0u) << "write " << w;
    EXPECT_EQ(span.dropped, 0u) << "write " << w;
#endif
  }
  ASSERT_EQ(std::fclose(file), 0);
  EXPECT_TRUE(dir.read("released.bin") == expected);
}

#ifdef __linux__
// How many of the pages of the file's bytes [from, to) the system holds in
// its cache.
std::size_t cached_pages(const std::string& name, std::uint64_t from, std::uint64_t to) {
  const int descriptor = ::open(name.c_str(), O_RDONLY);
  if (descriptor < 0) return 0;
  const std::size_t page = static_cast<std::size_t>(::sysconf(_SC_PAGESIZE));
  const std::size_t length = static_cast<std::size_t>(to);
  void* map = ::mmap(nullptr, length, PROT_READ, MAP_SHARED, descriptor, 0);
  ::close(descriptor);
  if (map == MAP_FAILED) return 0;
  std::vector<unsigned char> held((length + page - 1) / page);
  std::size_t count = 0;
  if (::mincore(map, length, held.data()) == 0) {
    for (std::size_t p = static_cast<std::size_t>(from) / page; p < held.size(); ++p) count += held[p] & 1;
  }
  ::munmap(map, length);
  return count;
}

// The bytes sent at one request are dropped from the cache at the next, and
// the bytes of the last request stay.  Each step is made clean on disc
// before its request, so that what the system drops does not hang on how
// fast the disc is.  A file system that keeps pages whatever it is asked
// (tmpfs) is passed over: a control file of clean pages is asked first.
TEST(Platform, ReleasedPagesLeaveTheCache) {
  using tesseramill::kReleaseStep;
  ScratchDir dir;
  const std::string control = (dir.path() / "control.bin").string();
  {
    std::FILE* file = tesseramill::open_file(control, "wb");
    ASSERT_NE(file, nullptr);
    const std::string bytes(kReleaseStep, 'c');
    ASSERT_EQ(std::fwrite(bytes.data(), 1, bytes.size(), file), bytes.size());
    ASSERT_EQ(std::fflush(file), 0);
    ASSERT_EQ(::fdatasync(::fileno(file)), 0);
    ::posix_fadvise(::fileno(file), 0, static_cast<off_t>(kReleaseStep), POSIX_FADV_DONTNEED);
    ASSERT_EQ(std::fclose(file), 0);
  }
  if (cached_pages(control, 0, kReleaseStep) > 0) GTEST_SKIP() << "this file system keeps clean pages";

  const std::string name = (dir.path() / "released.bin").string();
  std::FILE* file = tesseramill::open_file(name, "wb");
  ASSERT_NE(file, nullptr);
  tesseramill::WrittenSpan span;
  for (int step = 0; step < 4; ++step) {
    const std::string bytes(kReleaseStep, static_cast<char>('a' + step));
    ASSERT_EQ(std::fwrite(bytes.data(), 1, bytes.size(), file), bytes.size());
    ASSERT_EQ(std::fflush(file), 0);
    ASSERT_EQ(::fdatasync(::fileno(file)), 0);
    ASSERT_TRUE(tesseramill::release_written(file, bytes.size(), span));
  }
  ASSERT_EQ(std::fclose(file), 0);
  ASSERT_EQ(span.dropped, 3 * kReleaseStep);
  EXPECT_EQ(cached_pages(name, 0, span.dropped), 0u);
  // The last step's pages were not asked about; the system may still evict
  // a few of them when memory runs short, never most.
  const std::size_t page = static_cast<std::size_t>(::sysconf(_SC_PAGESIZE));
  EXPECT_GT(cached_pages(name, span.dropped, span.given), static_cast<std::size_t>(kReleaseStep) / page / 2);
}
#endif

// Under AddressSanitizer its own allocator serves the program, and its
// mallopt takes no setting.
#if defined(__SANITIZE_ADDRESS__)
#define TESSERAMILL_SANITIZER_ALLOCATOR 1
#elif defined(__has_feature)
#if __has_feature(address_sanitizer)
#define TESSERAMILL_SANITIZER_ALLOCATOR 1
#endif
#endif

// With GNU's C library a block of 64 MiB is mapped by itself unless the
// library was asked to keep freed memory; once asked, it comes from the
// heap.  Elsewhere (and under the sanitizer's allocator) the call takes no
// setting and says so.
TEST(Platform, FreedMemoryIsKeptForReuse) {
#if defined(__GLIBC__) && !defined(TESSERAMILL_SANITIZER_ALLOCATOR)
  ASSERT_TRUE(tesseramill::keep_freed_memory());
  const std::size_t mapped_before = mallinfo2().hblks;
  std::vector<char> block(std::size_t{64} << 20, 1);
  EXPECT_EQ(mallinfo2().hblks, mapped_before);
  EXPECT_EQ(block[12345], 1);
#else
  EXPECT_FALSE(tesseramill::keep_freed_memory());
#endif
}

}  // namespace
}  // namespace tesseramill_test
