// The helpers that start a program fail the test that called them when the
// program crashes, hangs, ends with the wrong status or meets a sanitizer,
// whatever its screen says.
#include <gtest/gtest.h>
#include <gtest/gtest-spi.h>

#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <functional>
#include <string>
#include <thread>

#include "common/platform.h"
#include "support/scratch.h"

namespace tesseramill_test {
namespace {

using tesseramill::ChildRun;

// The texts of the failures that `body` records, which are kept from the
// running test.
std::string failures_of(const std::function<void()>& body) {
  ::testing::TestPartResultArray results;
  {
    ::testing::ScopedFakeTestPartResultReporter reporter(
        ::testing::ScopedFakeTestPartResultReporter::INTERCEPT_ONLY_CURRENT_THREAD, &results);
    body();
  }
  std::string text;
  for (int k = 0; k < results.size(); ++k) text += results.GetTestPartResult(k).message() + std::string("\n");
  return text;
}

ChildRun ended(int status, int signal, bool timed_out, const std::string& output) {
  ChildRun child;
  child.status = status;
  child.signal = signal;
  child.timed_out = timed_out;
  child.output = output;
  return child;
}

struct EndCase {
  const char* what;
  ChildRun child;
  ExpectedEnd expected;
  std::string fault;
};

TEST(ChildEnd, EveryWayOfEndingBadlyIsNamed) {
  const EndCase cases[] = {
      {"clean", ended(0, 0, false, " - file m.oc written ok.\n"), {}, ""},
      {"expected failure status", ended(1, 0, false, "text\n"), {.status = 1}, ""},
      {"signal", ended(-1, 11, false, ""), {}, "it was ended by signal 11; "},
      {"wrong status", ended(1, 0, false, ""), {}, "it ended with status 1 where 0 was expected; "},
      {"success where failure was expected", ended(0, 0, false, ""), {.status = 1},
       "it ended with status 0 where 1 was expected; "},
      {"time limit", ended(-1, 9, true, ""), {.status = 0, .time_limit_seconds = 2.0},
       "it ran past its time limit of 2.000000 s and was killed; "},
      {"address sanitizer", ended(0, 0, false, "ok\n==12==ERROR: AddressSanitizer: heap-buffer-overflow on x\nmore\n"),
       {}, "a sanitizer reported: ==12==ERROR: AddressSanitizer: heap-buffer-overflow on x; "},
      {"undefined behaviour", ended(0, 0, false, "a.cpp:3:5: runtime error: signed integer overflow"), {},
       "a sanitizer reported: a.cpp:3:5: runtime error: signed integer overflow; "},
      {"leak", ended(23, 0, false, "\n==7==ERROR: LeakSanitizer: detected memory leaks\n"), {.status = 23},
       "a sanitizer reported: ==7==ERROR: LeakSanitizer: detected memory leaks; "},
  };
  for (const EndCase& c : cases) EXPECT_EQ(child_end_fault(c.child, c.expected), c.fault) << c.what;
}

// These four stand in for a program that misbehaves; they run only as the
// children of the tests below.
TEST(ChildThatMisbehaves, DISABLED_Aborts) { std::abort(); }
TEST(ChildThatMisbehaves, DISABLED_Hangs) { std::this_thread::sleep_for(std::chrono::seconds(120)); }
TEST(ChildThatMisbehaves, DISABLED_ReportsAnAddressFault) {
  std::fputs("==4242==ERROR: AddressSanitizer: heap-use-after-free on address 0x602000000010\n", stderr);
}
TEST(ChildThatMisbehaves, DISABLED_ExitsWithStatusThree) { std::exit(3); }

// Starts this test program on one of the misbehaving tests through the
// shared helper and gives the failures it recorded.
std::string failures_of_child(const std::string& test, const ExpectedEnd& expected = {}) {
  // A sharded run (the Windows suite under Wine runs in two shards) hands
  // its shard to the child, whose one test may then lie in another shard.
  tesseramill::clear_environment_variable("GTEST_TOTAL_SHARDS");
  tesseramill::clear_environment_variable("GTEST_SHARD_INDEX");
  ScratchDir dir;
  return failures_of([&] {
    run_executable(dir.path(), tesseramill::own_program_path(),
                   {"--gtest_also_run_disabled_tests", "--gtest_filter=ChildThatMisbehaves.DISABLED_" + test},
                   expected);
  });
}

TEST(ChildEnd, CrashFailsTheTest) {
  EXPECT_NE(failures_of_child("Aborts").find("did not end as it should: it "), std::string::npos);
}

TEST(ChildEnd, HangIsKilledAtTheTimeLimitAndFailsTheTest) {
  const auto start = std::chrono::steady_clock::now();
  const std::string failures = failures_of_child("Hangs", {.status = 0, .time_limit_seconds = 2.0});
  EXPECT_NE(failures.find("it ran past its time limit of 2.000000 s and was killed; "), std::string::npos) << failures;
  EXPECT_LT(std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count(), 60.0);
}

TEST(ChildEnd, SanitizerReportFailsTheTestThoughTheStatusIsZero) {
  const std::string failures = failures_of_child("ReportsAnAddressFault");
  EXPECT_NE(failures.find("a sanitizer reported: ==4242==ERROR: AddressSanitizer: heap-use-after-free"),
            std::string::npos)
      << failures;
  EXPECT_EQ(failures.find("status"), std::string::npos) << failures;
}

TEST(ChildEnd, WrongStatusFailsTheTestAndTheRightOneDoesNot) {
  EXPECT_NE(failures_of_child("ExitsWithStatusThree").find("it ended with status 3 where 0 was expected; "),
            std::string::npos);
  EXPECT_EQ(failures_of_child("ExitsWithStatusThree", {.status = 3}), "");
}

}  // namespace
}  // namespace tesseramill_test
