#pragma once

#include <vector>

#include "common/run_state.h"

namespace tesseramill {

// The separation the run asks for at (x, y): the smallest size over all
// sources (inner points and populated chain points), each growing away from
// its own separation at the rate `growth`, capped by the inner polygons that
// hold the point and by MAX_CENTROID_SEPARATION.
//
// This version skips the logarithm and power of a source whenever the
// source provably cannot lower the result, or provably gives its own
// separation; it returns the same bits as local_separation_reference.
double local_separation(const RunState& state, double x, double y, double growth);

// local_separation at (x, y) from the sources listed, which must hold every
// source that can give the smallest size there: those that FieldBounds or
// TileSources keep for a rectangle holding the point (field_bounds.h).  The
// same bits as local_separation (see where the proposals call it), without
// the walk over the bucket grid.
double local_separation_from_sources(const RunState& state, double x, double y, double growth,
                                     const std::vector<double>& xs, const std::vector<double>& ys,
                                     const std::vector<double>& separations);

// The field worked out source by source exactly as defined, with a
// logarithm and a power for every source.
double local_separation_reference(const RunState& state, double x, double y, double growth);

}  // namespace tesseramill
