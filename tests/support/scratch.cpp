#include "support/scratch.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <fstream>
#include <sstream>

#include "common/platform.h"

namespace tesseramill_test {

namespace fs = std::filesystem;

ScratchDir::ScratchDir() : path_(tesseramill::fresh_temporary_folder("tesseramill_test_")) {}

ScratchDir::~ScratchDir() {
  std::error_code ignored;
  fs::remove_all(path_, ignored);
}

void ScratchDir::write(const std::string& name, const std::string& content) const {
  std::ofstream out(path_ / tesseramill::path_from_utf8(name), std::ios::binary);
  out << content;
}

std::string ScratchDir::read(const std::string& name) const {
  std::ifstream in(path_ / tesseramill::path_from_utf8(name), std::ios::binary);
  std::ostringstream text;
  text << in.rdbuf();
  return text.str();
}

std::vector<std::string> ScratchDir::listing() const {
  std::vector<std::string> names;
  for (const auto& entry : fs::directory_iterator(path_)) {
    names.push_back(tesseramill::path_to_utf8(entry.path().filename()));
  }
  std::sort(names.begin(), names.end());
  return names;
}

std::string lf_line_ends(const std::string& screen) {
  const std::string line_end = tesseramill::screen_line_end();
  if (line_end == "\n") return screen;
  std::string text;
  text.reserve(screen.size());
  for (std::size_t at = 0; at < screen.size();) {
    if (screen.compare(at, line_end.size(), line_end) == 0) {
      text += '\n';
      at += line_end.size();
    } else {
      text += screen[at++];
    }
  }
  return text;
}

namespace {

// The first line of every report that the address, leak, undefined-behaviour,
// memory and thread sanitizers write on the error stream.
constexpr const char* kSanitizerReports[] = {
    "ERROR: AddressSanitizer",     "ERROR: LeakSanitizer", "runtime error:",
    "ERROR: MemorySanitizer",      "WARNING: MemorySanitizer", "WARNING: ThreadSanitizer",
    "ERROR: UndefinedBehaviorSanitizer", "SUMMARY: AddressSanitizer", "SUMMARY: UndefinedBehaviorSanitizer",
};

std::string command_text(const std::string& executable, const std::vector<std::string>& args) {
  std::string text = executable;
  for (const std::string& arg : args) text += " \"" + arg + "\"";
  return text;
}

}  // namespace

std::string child_end_fault(const tesseramill::ChildRun& child, const ExpectedEnd& expected) {
  std::string fault;
  if (child.timed_out) {
    fault += "it ran past its time limit of " + std::to_string(expected.time_limit_seconds) + " s and was killed; ";
  } else if (child.signal != 0) {
    fault += "it was ended by signal " + std::to_string(child.signal) + "; ";
  } else if (child.status != expected.status) {
    fault += "it ended with status " + std::to_string(child.status) + " where " + std::to_string(expected.status) +
             " was expected; ";
  }
  for (const char* report : kSanitizerReports) {
    const std::size_t at = child.output.find(report);
    if (at == std::string::npos) continue;
    const std::size_t line_start = child.output.rfind('\n', at);
    const std::size_t from = line_start == std::string::npos ? 0 : line_start + 1;
    fault += "a sanitizer reported: " + child.output.substr(from, child.output.find('\n', at) - from) + "; ";
    break;
  }
  return fault;
}

RunResult run_binary(const ScratchDir& dir, const std::vector<std::string>& args, const ExpectedEnd& expected) {
  return run_executable(dir.path(), TESSERAMILL_BINARY, args, expected);
}

RunResult run_report_binary(const ScratchDir& dir, const std::vector<std::string>& args,
                            const ExpectedEnd& expected) {
  return run_executable(dir.path(), TESSERAMILL_REPORT_BINARY, args, expected);
}

RunResult run_executable(const fs::path& dir, const std::string& executable, const std::vector<std::string>& args,
                         const ExpectedEnd& expected) {
  return run_measured(dir, executable, args, expected).result;
}

MeasuredRun run_measured(const fs::path& dir, const std::string& executable, const std::vector<std::string>& args,
                         const ExpectedEnd& expected) {
  const tesseramill::ChildRun child = tesseramill::run_child(
      dir, executable, args, tesseramill::ChildStreams::kOutputAndErrors, expected.time_limit_seconds);
  MeasuredRun run;
  run.result.raw_screen = child.output;
  run.result.screen = lf_line_ends(child.output);
  run.result.status = child.status;
  run.peak_kib = child.peak_kib;
  const std::string fault = child_end_fault(child, expected);
  if (!fault.empty()) {
    ADD_FAILURE() << command_text(executable, args) << " did not end as it should: " << fault
                  << "the end of its screen:\n"
                  << screen_tail(run.result.screen, 3000);
  }
  return run;
}

MeasuredRun run_measured(const ScratchDir& dir, const std::string& executable,
                         const std::vector<std::string>& args, const ExpectedEnd& expected) {
  return run_measured(dir.path(), executable, args, expected);
}

RunResult run_on_control(const std::string& control) {
  ScratchDir dir;
  dir.write("t.in", control);
  return run_binary(dir, {"t.in"});
}

std::string banner() { return "\n TESSERAMILL version 1.21 by Larkspur Analytics.\n"; }

std::string reading(const std::string& file) {
  return banner() + "\n - reading file " + file + "...\n";
}

}  // namespace tesseramill_test

namespace tesseramill_test {

std::string screen_tail(const std::string& screen, std::size_t size) {
  return screen.size() < size ? screen : screen.substr(screen.size() - size);
}

void copy_model(const ScratchDir& dir, const std::string& model) {
  copy_folder(source_path("tests/models/" + model), dir.path());
}

fs::path source_path(const std::string& relative) { return fs::path(TESSERAMILL_SOURCE_DIR) / relative; }

std::string read_file(const fs::path& path) {
  std::ifstream in(path, std::ios::binary);
  std::ostringstream text;
  text << in.rdbuf();
  return text.str();
}

void copy_folder(const fs::path& from, const fs::path& to) {
  for (const auto& entry : fs::directory_iterator(from)) {
    fs::copy_file(entry.path(), to / entry.path().filename(), fs::copy_options::overwrite_existing);
  }
}

void expect_ready_for_modflow(const fs::path& dir, const std::string& control) {
  const RunResult report = run_executable(dir, TESSERAMILL_REPORT_BINARY, {control});
  const std::size_t readiness = report.screen.find("\n MODFLOW 6 readiness\n");
  ASSERT_NE(readiness, std::string::npos) << report.screen;
  const std::string checks = report.screen.substr(readiness);
  std::size_t passed = 0;
  for (std::size_t p = checks.find("   pass  "); p != std::string::npos; p = checks.find("   pass  ", p + 1)) ++passed;
  EXPECT_EQ(passed, 6u) << checks;
  EXPECT_EQ(checks.find("FAIL"), std::string::npos) << checks;
}

}  // namespace tesseramill_test
