#include "support/scratch.h"

#include <gtest/gtest.h>

#include <sys/resource.h>
#include <sys/wait.h>

#include <algorithm>
#include <cstdio>
#include <atomic>
#include <cstdlib>
#include <fstream>
#include <sstream>
#include <unistd.h>

namespace tesseramill_test {

namespace fs = std::filesystem;

namespace {

std::string quoted(const std::string& text) {
  std::string out = "'";
  for (char c : text) {
    if (c == '\'') {
      out += "'\\''";
    } else {
      out += c;
    }
  }
  return out + "'";
}

}  // namespace

ScratchDir::ScratchDir() {
  static std::atomic<int> serial{0};
  path_ = fs::temp_directory_path() /
          ("tesseramill_test_" + std::to_string(::getpid()) + "_" + std::to_string(serial++));
  fs::remove_all(path_);
  fs::create_directories(path_);
}

ScratchDir::~ScratchDir() {
  std::error_code ignored;
  fs::remove_all(path_, ignored);
  fs::remove(path_.string() + ".screen", ignored);
}

void ScratchDir::write(const std::string& name, const std::string& content) const {
  std::ofstream out(path_ / name, std::ios::binary);
  out << content;
}

std::string ScratchDir::read(const std::string& name) const {
  std::ifstream in(path_ / name, std::ios::binary);
  std::ostringstream text;
  text << in.rdbuf();
  return text.str();
}

std::vector<std::string> ScratchDir::listing() const {
  std::vector<std::string> names;
  for (const auto& entry : fs::directory_iterator(path_)) {
    names.push_back(entry.path().filename().string());
  }
  std::sort(names.begin(), names.end());
  return names;
}

RunResult run_binary(const ScratchDir& dir, const std::vector<std::string>& args) {
  return run_executable(dir.path(), TESSERAMILL_BINARY, args);
}

RunResult run_report_binary(const ScratchDir& dir, const std::vector<std::string>& args) {
  return run_executable(dir.path(), TESSERAMILL_REPORT_BINARY, args);
}

RunResult run_executable(const fs::path& dir, const std::string& executable, const std::vector<std::string>& args) {
  const std::string screen_file = dir.string() + ".screen";
  std::string command = "cd " + quoted(dir.string()) + " && " + quoted(executable);
  for (const std::string& arg : args) command += " " + quoted(arg);
  command += " > " + quoted(screen_file) + " 2>&1 < /dev/null";
  int raw = std::system(command.c_str());
  RunResult result;
  result.status = WIFEXITED(raw) ? WEXITSTATUS(raw) : -1;
  std::ifstream in(screen_file, std::ios::binary);
  std::ostringstream text;
  text << in.rdbuf();
  result.screen = text.str();
  return result;
}

MeasuredRun run_measured(const ScratchDir& dir, const std::string& executable,
                         const std::vector<std::string>& args) {
  const std::string screen_file = dir.path().string() + ".screen";
  std::vector<std::string> words = {executable};
  words.insert(words.end(), args.begin(), args.end());
  std::vector<char*> argv;
  for (std::string& word : words) argv.push_back(word.data());
  argv.push_back(nullptr);
  MeasuredRun run;
  const pid_t child = ::fork();
  if (child == 0) {
    if (::chdir(dir.path().c_str()) != 0) ::_exit(127);
    if (!std::freopen(screen_file.c_str(), "w", stdout)) ::_exit(127);
    ::dup2(::fileno(stdout), 2);
    ::execv(executable.c_str(), argv.data());
    ::_exit(127);
  }
  int raw = 0;
  struct rusage usage {};
  if (child > 0 && ::wait4(child, &raw, 0, &usage) == child) {
    run.result.status = WIFEXITED(raw) ? WEXITSTATUS(raw) : -1;
    run.peak_kib = usage.ru_maxrss;
  }
  std::ifstream in(screen_file, std::ios::binary);
  std::ostringstream text;
  text << in.rdbuf();
  run.result.screen = text.str();
  return run;
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
