#include "model_check.h"

#include <chrono>
#include <cmath>
#include <fstream>
#include <map>
#include <sstream>
#include <vector>

#include "binary_grid.h"
#include "common/failure.h"
#include "common/platform.h"
#include "grid_agreement.h"
#include "listing_budget.h"
#include "report/disv_grid.h"

namespace tesseramill_mf6check {

namespace fs = std::filesystem;

namespace {

// The scratch copy's solver settings: closure a hundred thousand times
// tighter than the mesher writes, and BICGSTAB, which converges on these
// non-symmetric grids where plain CG stalls.
const char* const kTightIms =
    "BEGIN OPTIONS\n"
    "  COMPLEXITY simple\n"
    "END OPTIONS\n"
    " \n"
    "BEGIN NONLINEAR\n"
    "  OUTER_DVCLOSE 1.0E-9\n"
    "  OUTER_MAXIMUM 2000\n"
    "END NONLINEAR\n"
    " \n"
    "BEGIN LINEAR\n"
    "  INNER_MAXIMUM 1000\n"
    "  INNER_DVCLOSE 1.0E-9\n"
    "  INNER_RCLOSE 1.0E-7\n"
    "  LINEAR_ACCELERATION BICGSTAB\n"
    "END LINEAR\n";

const char* const kNormalTermination = "Normal termination of simulation.";

std::string read_all(const fs::path& path) {
  std::ifstream in(path, std::ios::binary);
  std::ostringstream text;
  text << in.rdbuf();
  return text.str();
}

// The last line of a screen text that is not blank.
std::string last_line(const std::string& screen) {
  std::istringstream in(screen);
  std::string line;
  std::string last;
  while (std::getline(in, line)) {
    if (line.find_first_not_of(' ') != std::string::npos) last = line;
  }
  return last;
}

// The model stem from mfsim.nam's line "  GWF6 stem.nam  GWF_Model".
std::string stem_from_simulation(const fs::path& folder) {
  std::istringstream in(read_all(folder / "mfsim.nam"));
  std::string word;
  while (in >> word) {
    if (word == "GWF6" && in >> word && word.size() > 4 && word.substr(word.size() - 4) == ".nam") {
      return word.substr(0, word.size() - 4);
    }
  }
  return "";
}

// The files MODFLOW 6 reads, by name, with their bytes.
std::map<std::string, std::string> solver_inputs(const fs::path& folder, const std::string& stem) {
  std::map<std::string, std::string> files;
  files["mfsim.nam"] = read_all(folder / "mfsim.nam");
  for (const char* suffix : {".disv", ".tdis", ".ims", ".nam", ".ic", ".npf", ".chd", ".oc"}) {
    files[stem + suffix] = read_all(folder / (stem + suffix));
  }
  return files;
}

struct SolverRun {
  bool normal = false;
  double seconds = 0.0;
  VolumeBudget budget;
  bool have_budget = false;
  std::string failure;
};

SolverRun run_solver(const Programs& programs, const fs::path& folder, const std::string& stem) {
  SolverRun run;
  const auto start = std::chrono::steady_clock::now();
  const int status = run_command(folder, programs.mf6, {}, folder / "mf6_screen.txt");
  run.seconds = std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
  const std::string screen = read_all(folder / "mf6_screen.txt");
  run.normal = status == 0 && screen.find(kNormalTermination) != std::string::npos;
  if (!run.normal) {
    run.failure = "MODFLOW 6 ended with status " + std::to_string(status) + ": " + last_line(screen);
    return run;
  }
  run.have_budget = last_volume_budget(read_all(folder / (stem + ".lst")), run.budget);
  if (!run.have_budget) run.failure = "the listing " + stem + ".lst holds no volume budget";
  return run;
}

}  // namespace

int run_command(const fs::path& folder, const std::string& program, const std::vector<std::string>& args,
                const fs::path& screen_file) {
  const tesseramill::ChildRun run = tesseramill::run_child(folder, program, args);
  std::ofstream(screen_file, std::ios::binary) << run.output;
  return run.status;
}

ModelResult check_model(const CheckModel& model, const Programs& programs, const fs::path& folder) {
  ModelResult result;
  fs::remove_all(folder);
  write_check_model(model, programs.source_root, folder);

  // The mesher, which ends its run with the output control file's line.
  run_command(folder, programs.mesher.string(), {model.control}, folder / "mesher_screen.txt");
  const std::string mesher_screen = read_all(folder / "mesher_screen.txt");
  const std::string stem = stem_from_simulation(folder);
  if (stem.empty() || mesher_screen.find(" - file " + stem + ".oc written ok.") == std::string::npos) {
    result.failure = "the mesher stopped: " + last_line(mesher_screen);
    return result;
  }

  tesseramill::DisvGrid disv;
  auto read_grid = [&]() {
    std::ostringstream screen;
    tesseramill::RunState state;
    state.screen = &screen;
    try {
      tesseramill::read_disv_grid(state, (folder / (stem + ".disv")).string(), "tesseramill", disv);
    } catch (const tesseramill::RunFailure&) {
      result.failure = "the grid file cannot be read back: " + state.message_buffer;
      return false;
    }
    return true;
  };
  if (!read_grid()) return result;
  if (disv.first_joined_cell != 0) {
    run_command(folder, programs.report.string(), {"--fix-grid", model.control}, folder / "fix_screen.txt");
    if (read_all(folder / "fix_screen.txt").find(" written ok: every vertex number") == std::string::npos) {
      result.failure = "the fix of the grid failed: " + last_line(read_all(folder / "fix_screen.txt"));
      return result;
    }
    result.fixed = true;
    if (!read_grid()) return result;
  }
  result.cells = disv.ncpl;
  result.layers = disv.nlay;
  result.vertices = disv.nvert;

  // The solver with the mesher's own settings; it must leave every file it
  // reads as it was.
  const std::map<std::string, std::string> inputs = solver_inputs(folder, stem);
  const SolverRun normal = run_solver(programs, folder, stem);
  result.solver_seconds = normal.seconds;
  result.percent = normal.budget.percent;
  if (!normal.failure.empty()) {
    result.failure = normal.failure;
    return result;
  }
  if (solver_inputs(folder, stem) != inputs) {
    result.failure = "a file that MODFLOW 6 reads changed during its run";
    return result;
  }

  // What MODFLOW 6 saw of the grid.
  BinaryGrid grb;
  std::string error;
  if (!read_binary_grid(read_all(folder / (stem + ".disv.grb")), grb, error)) {
    result.failure = "the binary grid file " + stem + ".disv.grb cannot be read: " + error;
    return result;
  }
  const GridAgreement agreement = compare_grids(grb, disv);
  result.connections = agreement.connections_compared;
  if (!agreement.agrees) {
    result.failure = "MODFLOW 6 saw another grid: " + agreement.difference;
    return result;
  }

  // The scratch copy with tight closure.
  const fs::path tight = folder / "tight";
  fs::create_directories(tight);
  for (const auto& [name, bytes] : inputs) std::ofstream(tight / name, std::ios::binary) << bytes;
  std::ofstream(tight / (stem + ".ims"), std::ios::binary) << kTightIms;
  const SolverRun closed = run_solver(programs, tight, stem);
  result.tight_seconds = closed.seconds;
  result.tight_percent = closed.budget.percent;
  if (!closed.failure.empty()) {
    result.failure = "with tight closure " + closed.failure;
    return result;
  }
  if (!(std::fabs(closed.budget.percent) < kTightestPercent)) {
    result.failure = "with tight closure the budget's discrepancy is " + std::to_string(closed.budget.percent) +
                     " %, not below " + std::to_string(kTightestPercent) + " %";
    return result;
  }
  result.passed = true;
  return result;
}

}  // namespace tesseramill_mf6check
