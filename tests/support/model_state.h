// Runs the first phases of a run on a model in a folder and keeps the run
// state, so that a test can look into it.
#pragma once

#include <filesystem>
#include <iosfwd>
#include <string>

#include "common/run_state.h"
#include "run/program.h"

namespace tesseramill_test {

// Runs the phases from reading the control file `control` in `folder` up to
// and including `last` on `state`.  Returns false when a phase failed (the
// failure text is then in state.message_buffer).
bool run_phases_until(tesseramill::RunState& state, const std::filesystem::path& folder, const std::string& control,
                      tesseramill::Phase last, std::ostream& screen);

}  // namespace tesseramill_test
