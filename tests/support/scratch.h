// Helpers for tests that run the built program in a scratch folder.
#pragma once

#include <filesystem>
#include <string>
#include <vector>

#include "common/platform.h"

namespace tesseramill_test {

// A fresh, empty folder that is removed again with everything in it.
class ScratchDir {
 public:
  ScratchDir();
  ~ScratchDir();
  ScratchDir(const ScratchDir&) = delete;
  ScratchDir& operator=(const ScratchDir&) = delete;

  const std::filesystem::path& path() const { return path_; }
  void write(const std::string& name, const std::string& content) const;
  std::string read(const std::string& name) const;
  std::vector<std::string> listing() const;

 private:
  std::filesystem::path path_;
};

// A finished run of a program: its screen (standard output and standard
// error together) with every line ended by LF, the screen as the program
// wrote it, and the exit status.
struct RunResult {
  std::string screen;
  std::string raw_screen;
  int status = -1;
};

// A screen text with the platform's screen line ends (CR LF on Windows)
// turned into LF, the only way screens differ between platforms.
std::string lf_line_ends(const std::string& screen);

// How a started program must end for its test to pass: with this exit
// status, by exiting (not by a signal), within the time limit, and with no
// sanitizer report on its screen.  The mesher and the report end with status
// 0 whatever happens in the run (success or failure text); tesseramill-gis
// ends with 1 when it stops on a failure.
struct ExpectedEnd {
  int status = 0;
  // Seconds the run may take before it is killed and the test fails.  The
  // default is generous, about 100 times what the slowest program run of
  // the suite takes on an idle machine, so that a busy shared machine or a
  // sanitizer build (up to ten times slower) never trips it, while a hang
  // still ends the test within minutes rather than stalling the suite.
  double time_limit_seconds = 300.0;
};

// What is wrong with the way a child ended, measured against `expected`;
// empty when nothing is.  Names the signal, the status, the time limit or
// the sanitizer's report line.
std::string child_end_fault(const tesseramill::ChildRun& child, const ExpectedEnd& expected);

// Runs the tesseramill executable in `dir` with the given arguments.  Every
// helper below that starts a program fails the calling test (non-fatally,
// with the command and the end of its screen) when the program does not end
// as `expected`.
RunResult run_binary(const ScratchDir& dir, const std::vector<std::string>& args, const ExpectedEnd& expected = {});
// The same with the report program.
RunResult run_report_binary(const ScratchDir& dir, const std::vector<std::string>& args,
                            const ExpectedEnd& expected = {});
RunResult run_executable(const std::filesystem::path& dir, const std::string& executable,
                         const std::vector<std::string>& args, const ExpectedEnd& expected = {});

// Runs the report program in `dir` on the control file of a finished run
// there and expects every MODFLOW 6 readiness check of the grid to pass.
void expect_ready_for_modflow(const std::filesystem::path& dir, const std::string& control);

// Runs an executable in `dir` as its own child process and reports, beside
// the screen and the status, the largest memory the child held, in KiB.
struct MeasuredRun {
  RunResult result;
  long peak_kib = 0;
};
MeasuredRun run_measured(const ScratchDir& dir, const std::string& executable,
                         const std::vector<std::string>& args, const ExpectedEnd& expected = {});
MeasuredRun run_measured(const std::filesystem::path& dir, const std::string& executable,
                         const std::vector<std::string>& args, const ExpectedEnd& expected = {});

// Writes `control` as t.in into a new scratch folder and runs the program on it.
RunResult run_on_control(const std::string& control);

// The screen text that every run starts with.
std::string banner();
// Banner plus the first line of reading the control file.
std::string reading(const std::string& file);

}  // namespace tesseramill_test

namespace tesseramill_test {

// The last `size` characters of a screen text (all of it when shorter).
std::string screen_tail(const std::string& screen, std::size_t size);

// Copies every file of tests/models/<model> into `dir`.
void copy_model(const ScratchDir& dir, const std::string& model);

// A file of the source tree, by its path from the top.
std::filesystem::path source_path(const std::string& relative);
// The whole content of a file; empty when it cannot be read.
std::string read_file(const std::filesystem::path& path);
// Copies every file of folder `from` into folder `to`.
void copy_folder(const std::filesystem::path& from, const std::filesystem::path& to);

}  // namespace tesseramill_test
