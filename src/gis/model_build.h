// From the layers read to the model's rings, lines and points: parts split,
// spacings resolved, parts far smaller than a cell left out, and the
// mesher's limits and bounds on spacings checked.
#pragma once

#include <array>
#include <iosfwd>
#include <optional>

#include "gis/import_options.h"
#include "gis/layer_source.h"
#include "gis/model_pieces.h"

namespace tesseramill {

using ImportLayers = std::array<std::optional<SourceLayer>, kFeatureSetCount>;

ImportModel build_model(RunState& state, const ImportOptions& options, const ImportLayers& layers,
                        std::ostream& screen);

// A ring far smaller than a cell of its spacing: a hundredth of the square
// of the spacing, where a cell of that spacing holds about 0.87 of it.  Such
// a part is a digitising or dissolving remnant, and the mesher could only
// crowd cells into it.
bool far_smaller_than_a_cell(double area, double spacing);

// Checks the counts of holes, lines and zones against what the mesher
// takes.
void check_model_limits(RunState& state, const ImportModel& model);

// Areas and lengths on the screen and in messages.
std::string screen_number(double value);

}  // namespace tesseramill
