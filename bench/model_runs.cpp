#include "model_runs.h"

#include <algorithm>
#include <cstdlib>
#include <fstream>
#include <iostream>
#include <sstream>
#include <vector>

#include "child_process.h"
#include "common/platform.h"

namespace fs = std::filesystem;

namespace tesseramill_bench {

namespace {

// Whether the two files hold the same bytes, read a MiB at a time, as the
// files of the largest models run to gigabytes.
bool same_bytes(const fs::path& a, const fs::path& b) {
  std::ifstream in_a(a, std::ios::binary);
  std::ifstream in_b(b, std::ios::binary);
  if (!in_a || !in_b) return false;
  std::vector<char> block_a(1 << 20);
  std::vector<char> block_b(1 << 20);
  for (;;) {
    in_a.read(block_a.data(), static_cast<std::streamsize>(block_a.size()));
    in_b.read(block_b.data(), static_cast<std::streamsize>(block_b.size()));
    const std::streamsize got = in_a.gcount();
    if (got != in_b.gcount() || !std::equal(block_a.begin(), block_a.begin() + got, block_b.begin())) return false;
    if (got < static_cast<std::streamsize>(block_a.size())) return true;  // both ended here
  }
}

}  // namespace

int run_one(bool reference) {
  tesseramill::RunOptions options;
  options.reference_paths = reference;
  std::array<double, tesseramill::kPhaseCount> phases{};
  options.phase_seconds = &phases;
  std::ostringstream screen;
  const char* argv[] = {"tesseramill", "model.in"};
  tesseramill::run_program(2, argv, screen, options);
  std::ofstream("screen.txt", std::ios::binary) << screen.str();
  long cells = 0;
  const std::string text = screen.str();
  const std::size_t at = text.find(" points emplaced");
  if (at != std::string::npos) {
    const std::size_t from = text.rfind(" - ", at) + 3;
    cells = std::atol(text.substr(from, at - from).c_str());
  }
  const bool ok = text.find(" - file model.oc written ok.") != std::string::npos;
  std::cout << (ok ? "ok" : "failed") << " " << cells;
  for (double t : phases) std::cout << " " << t;
  std::cout << "\n";
  return 0;
}

namespace {

// Runs `args` in `folder` as a child process; gives its stdout, wall and
// processor times and peak memory.
Timing spawn(const std::vector<std::string>& args, const fs::path& folder, std::string& out) {
  const ChildRun child = run_child(args, folder);
  Timing timing;
  timing.ok = child.ok;
  timing.wall = child.wall;
  timing.user = child.user;
  timing.system = child.system;
  timing.peak_kib = child.peak_kib;
  out = child.out;
  return timing;
}

}  // namespace

Timing time_library(const fs::path& folder, bool reference) {
  std::vector<std::string> args = {tesseramill::own_program_path(), "--run-one"};
  if (reference) args.push_back("--reference");
  std::string out;
  Timing timing = spawn(args, folder, out);
  std::istringstream in(out);
  std::string word;
  in >> word >> timing.cells;
  timing.ok = timing.ok && word == "ok";
  for (double& t : timing.phase) in >> t;
  return timing;
}

Timing time_binary(const std::string& binary, const fs::path& folder) {
  std::string out;
  Timing timing = spawn({fs::canonical(binary).string(), "model.in"}, folder, out);
  std::ofstream(folder / "screen.txt", std::ios::binary) << out;
  timing.ok = timing.ok && out.find(" - file model.oc written ok.") != std::string::npos;
  return timing;
}

bool same_files(const fs::path& a, const fs::path& b) {
  std::vector<std::string> names_a;
  std::vector<std::string> names_b;
  for (const auto& e : fs::directory_iterator(a)) names_a.push_back(e.path().filename().string());
  for (const auto& e : fs::directory_iterator(b)) names_b.push_back(e.path().filename().string());
  std::sort(names_a.begin(), names_a.end());
  std::sort(names_b.begin(), names_b.end());
  if (names_a != names_b) return false;
  for (const std::string& name : names_a) {
    if (!same_bytes(a / name, b / name)) return false;
  }
  return true;
}

}  // namespace tesseramill_bench
