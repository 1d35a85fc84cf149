// `tesseramill-gis export infile`: a finished run's grid, reaches, wells,
// zones and domain as layers of one GeoPackage.
#pragma once

#include <iosfwd>
#include <string>
#include <vector>

#include "common/run_state.h"

namespace tesseramill {

void export_grid(RunState& state, const std::vector<std::string>& args, std::ostream& screen);

}  // namespace tesseramill
