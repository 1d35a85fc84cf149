// `tesseramill-gis import`: GIS layers into a model folder the mesher runs.
#pragma once

#include <iosfwd>
#include <string>
#include <vector>

#include "common/run_state.h"

namespace tesseramill {

// Reads the layers the arguments name, checks and shapes the model, and
// writes its folder; a failure writes nothing.
void import_model(RunState& state, const std::vector<std::string>& args, std::ostream& screen);

}  // namespace tesseramill
