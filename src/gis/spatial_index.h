// The spatial index of a GeoPackage layer written in one piece at the end of
// the layer's transaction instead of feature by feature (see packed_rtree.h).
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "common/run_state.h"
#include "gis/packed_rtree.h"

class GDALDataset;
class OGRLayer;

namespace tesseramill {

// A layer's index between the first and the last step.
struct PendingIndex {
  std::string layer;
  std::string rtree;           // the index's table: rtree_<layer>_<geometry column>
  std::string insert_trigger;  // the text of the trigger held back while features are added
  std::size_t node_bytes = 0;
  std::vector<std::int64_t> ids;
  std::vector<Envelope> boxes;
};

// Makes the layer's empty index (table, triggers, extension entry) and holds
// back the trigger that would add each new feature to it.  Call it inside
// the layer's transaction, before its first feature.
PendingIndex begin_spatial_index(RunState& state, GDALDataset& d, OGRLayer& layer);

// Notes a feature just added to the layer.
void index_feature(PendingIndex& index, std::int64_t id, const Envelope& box);

// Writes the packed index of the noted features and puts the trigger back, so
// that later edits in a GIS keep the index up to date.
void finish_spatial_index(RunState& state, GDALDataset& d, PendingIndex& index);

}  // namespace tesseramill
