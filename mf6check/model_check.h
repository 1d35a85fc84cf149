// One model through the mesher, the fix where the grid needs it, and
// MODFLOW 6 twice: with the solver settings the mesher writes, and on a
// scratch copy with tight closure.
#pragma once

#include <cstdint>
#include <filesystem>
#include <string>
#include <vector>

#include "check_models.h"

namespace tesseramill_mf6check {

struct Programs {
  std::filesystem::path mesher;
  std::filesystem::path report;
  std::string mf6;  // the solver's path
  std::filesystem::path source_root;
};

struct ModelResult {
  bool passed = false;
  std::string failure;  // what went wrong first
  std::int32_t cells = 0;
  std::int32_t layers = 0;
  std::int32_t vertices = 0;
  bool fixed = false;
  double solver_seconds = 0.0;
  double percent = 0.0;
  double tight_seconds = 0.0;
  double tight_percent = 0.0;
  std::int64_t connections = 0;
};

// The closure the check asks of the scratch copy's solution: the mesher's
// own settings close the budget only to a share that grows with the grid.
constexpr double kTightestPercent = 0.01;

ModelResult check_model(const CheckModel& model, const Programs& programs, const std::filesystem::path& folder);

// Runs `program` with `args` in `folder`, with its screen (output and
// errors) kept in `screen_file`; gives its exit status.
int run_command(const std::filesystem::path& folder, const std::string& program,
                const std::vector<std::string>& args, const std::filesystem::path& screen_file);

}  // namespace tesseramill_mf6check
