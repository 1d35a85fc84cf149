// tesseramill-mf6-check: runs the real MODFLOW 6 on what the project
// writes and fails on any problem.  For each model of check_models(): the
// mesher, the fix of the grid where its vertex numbers run together, then
// MODFLOW 6 with the mesher's solver settings and again on a scratch copy
// with tight closure; it requires normal termination, a budget that closes
// on the tight run, and a binary grid that agrees with the grid file.
//
//   tesseramill-mf6-check --mf6 PATH --programs DIR --source DIR --work DIR [--small] [--only TEXT]
//
// --programs is the build folder holding tesseramill and tesseramill-report,
// --source the top of the source tree (for the examples), --work a folder
// the check may fill and empty; --small leaves out the 600,000-cell model,
// and --only TEXT runs only the models whose names hold TEXT.
// The exit status is 0 when every model passes.
#include <filesystem>
#include <fstream>
#include <iostream>
#include <optional>
#include <sstream>
#include <string>

#include "check_models.h"
#include "common/platform.h"
#include "model_check.h"
#include "output/number_format.h"

namespace fs = std::filesystem;
using namespace tesseramill_mf6check;

namespace {

int usage() {
  std::cout << "tesseramill-mf6-check --mf6 PATH --programs DIR --source DIR --work DIR [--small] [--only TEXT]\n";
  return 2;
}

// The solver's path: a name without a folder is looked up along PATH.
std::string solver_path(const std::string& given) {
  if (given.find('/') == std::string::npos) {
    const std::optional<fs::path> found = tesseramill::find_on_path(given);
    return found ? found->string() : given;
  }
  return fs::absolute(given).lexically_normal().string();
}

bool solver_runs(const std::string& mf6, const fs::path& work, std::string& version) {
  const int status = run_command(work, mf6, {"-v"}, work / "mf6_version.txt");
  std::ifstream in(work / "mf6_version.txt");
  while (std::getline(in, version) && version.find_first_not_of(' ') == std::string::npos) {
  }
  return status == 0 && version.find("mf6") != std::string::npos;
}

std::string row(const std::string& name, const ModelResult& r) {
  using tesseramill::format_fixed;
  using tesseramill::format_integer;
  std::string line = name;
  line.resize(26, ' ');
  line += format_integer(r.cells, 9) + format_integer(r.layers, 4) + format_integer(r.vertices, 10) +
          (r.fixed ? "   yes" : "    no") + format_fixed(r.solver_seconds, 9, 2) + format_fixed(r.percent, 10, 4) +
          format_fixed(r.tight_seconds, 9, 2) + format_fixed(r.tight_percent, 10, 4) +
          format_integer(r.connections, 12) + (r.passed ? "  ok" : "  FAIL: " + r.failure);
  return line;
}

}  // namespace

int main(int argc, char** argv) {
  std::string mf6;
  fs::path programs_dir;
  fs::path source;
  fs::path work;
  bool large = true;
  std::string only;
  for (int k = 1; k < argc; ++k) {
    const std::string arg = argv[k];
    if (arg == "--small") {
      large = false;
    } else if (k + 1 < argc && arg == "--only") {
      only = argv[++k];
    } else if (k + 1 < argc && arg == "--mf6") {
      mf6 = argv[++k];
    } else if (k + 1 < argc && arg == "--programs") {
      programs_dir = argv[++k];
    } else if (k + 1 < argc && arg == "--source") {
      source = argv[++k];
    } else if (k + 1 < argc && arg == "--work") {
      work = argv[++k];
    } else {
      return usage();
    }
  }
  if (mf6.empty() || programs_dir.empty() || source.empty() || work.empty()) return usage();

  fs::create_directories(work);
  work = fs::absolute(work).lexically_normal();
  Programs programs;
  programs.mf6 = solver_path(mf6);
  programs.mesher = fs::absolute(programs_dir / "tesseramill").lexically_normal();
  programs.report = fs::absolute(programs_dir / "tesseramill-report").lexically_normal();
  programs.source_root = fs::absolute(source).lexically_normal();
  std::string version;
  if (!solver_runs(programs.mf6, work, version)) {
    std::cout << "No MODFLOW 6 solver runs as \"" << mf6
              << "\". Give its path as MF6=/path/to/mf6 (make mf6-check MF6=...), or put mf6 on PATH.\n"
                 "MODFLOW 6 is free from the USGS (https://github.com/MODFLOW-ORG/modflow6/releases); the\n"
                 "Linux build needs the Debian packages libgfortran5 and libquadmath0.\n";
    return 1;
  }
  std::cout << "MODFLOW 6 check with " << version << "\n"
            << "Discrepancies are the volume budget's, in percent: with the solver settings the mesher writes,\n"
            << "and on a scratch copy with tight closure, which must stay below "
            << tesseramill::format_fixed(kTightestPercent, 0, 2) << " %.\n\n"
            << "model                         cells lay  vertices fixed  mf6 s  discrep %  tight s   tight %"
               " connections\n";
  int failed = 0;
  int count = 0;
  double seconds = 0.0;
  for (const CheckModel& model : check_models(large)) {
    if (model.name.find(only) == std::string::npos) continue;
    std::string folder = model.name;
    for (char& c : folder) {
      if (c == ' ' || c == ',') c = '_';
    }
    const ModelResult result = check_model(model, programs, work / folder);
    std::cout << row(model.name, result) << std::endl;
    count += 1;
    failed += result.passed ? 0 : 1;
    seconds += result.solver_seconds + result.tight_seconds;
  }
  std::cout << "\n"
            << (failed == 0 ? "All " + std::to_string(count) + " models passed"
                            : std::to_string(failed) + " of " + std::to_string(count) + " models FAILED")
            << "; MODFLOW 6 ran for " << tesseramill::format_fixed(seconds, 0, 1) << " s in all.\n";
  return failed == 0 ? 0 : 1;
}
