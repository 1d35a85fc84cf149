#include "support/model_state.h"

#include <ostream>

#include "common/failure.h"
#include "run/phases.h"

namespace tesseramill_test {

bool run_phases_until(tesseramill::RunState& state, const std::filesystem::path& folder, const std::string& control,
                      tesseramill::Phase last, std::ostream& screen) {
  const std::filesystem::path here = std::filesystem::current_path();
  std::filesystem::current_path(folder);
  const bool reference = state.reference_paths;
  state.screen = &screen;
  tesseramill::initialise_run_state(state);
  state.reference_paths = reference;
  state.control_file_name = control;
  bool ok = true;
  try {
    for (int k = 0; k <= static_cast<int>(last); ++k) tesseramill::run_phase(state, static_cast<tesseramill::Phase>(k));
  } catch (const tesseramill::RunFailure&) {
    ok = false;
  }
  std::filesystem::current_path(here);
  return ok;
}

}  // namespace tesseramill_test
