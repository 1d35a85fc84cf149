// A run state whose output files go into a scratch folder, for the tests of
// the writers on hand-made tables.
#pragma once

#include <string>

#include "common/run_state.h"
#include "support/scratch.h"

namespace tesseramill_test {

// The files are named "t" and the pass's stamp `stamp` in `dir`; the
// coordinates are written moved by -1000 in x and +500 in y.
tesseramill::RunState state_writing_into(const ScratchDir& dir, const std::string& stamp);

}  // namespace tesseramill_test
