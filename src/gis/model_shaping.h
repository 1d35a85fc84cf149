// Shaping the rings and lines for the mesher: cleaning narrow parts out of
// the rings, then thinning digitised outlines to about the asked spacing,
// each undone or lessened where a relation of the model would break.
#pragma once

#include <iosfwd>

#include "gis/import_options.h"
#include "gis/model_pieces.h"

namespace tesseramill {

void clean_model(RunState& state, ImportModel& model, const ImportOptions& options, std::ostream& screen);

void thin_model(ImportModel& model, const ImportOptions& options, std::ostream& screen);

// Refuses a shaped model whose rings or wells stand too close for the mesher.
void check_gaps(RunState& state, const ImportModel& model);

// The pieces thinning and cleaning may change, in the numbering of Breach.
std::vector<ModelPiece*> shaped_pieces(ImportModel& model);

}  // namespace tesseramill
