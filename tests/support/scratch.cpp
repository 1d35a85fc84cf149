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

RunResult run_binary(const ScratchDir& dir, const std::vector<std::string>& args) {
  return run_executable(dir.path(), TESSERAMILL_BINARY, args);
}

RunResult run_report_binary(const ScratchDir& dir, const std::vector<std::string>& args) {
  return run_executable(dir.path(), TESSERAMILL_REPORT_BINARY, args);
}

RunResult run_executable(const fs::path& dir, const std::string& executable, const std::vector<std::string>& args) {
  return run_measured(dir, executable, args).result;
}

MeasuredRun run_measured(const fs::path& dir, const std::string& executable, const std::vector<std::string>& args) {
  const tesseramill::ChildRun child = tesseramill::run_child(dir, executable, args);
  MeasuredRun run;
  run.result.raw_screen = child.output;
  run.result.screen = lf_line_ends(child.output);
  run.result.status = child.status;
  run.peak_kib = child.peak_kib;
  return run;
}

MeasuredRun run_measured(const ScratchDir& dir, const std::string& executable,
                         const std::vector<std::string>& args) {
  return run_measured(dir.path(), executable, args);
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
