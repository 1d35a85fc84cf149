// A spatial index packed in one pass, in the layout of SQLite's R*Tree
// module, which the GeoPackage's spatial index is.
//
// Filling the index row by row through its triggers makes SQLite split and
// reinsert nodes for every feature: for the million cells of a large grid
// that was three quarters of the export's time.  Here every envelope is known
// before the index is written, so the tree is built at once by sort-tile-
// recursive packing (full nodes of neighbouring boxes, level by level) and
// written straight into the module's three tables.  The result is an index
// the module reads, searches and updates like one it built itself.
//
// The layout, as the module stores it:
//   - node 1 is the root; every node is a blob of the same size as the root,
//     read from the table the module made;
//   - a blob: 2 bytes of tree depth (the root; 0 in other nodes), 2 bytes of
//     entry count, then the entries, the rest zero;
//   - an entry: an 8-byte id (a feature id in a leaf, a node number above),
//     then min x, max x, min y, max y as 4-byte floats; all big-endian;
//   - `_rowid` maps every feature id to its leaf, `_parent` every node but
//     the root to its parent.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

namespace tesseramill {

// A feature's bounding box in the layer's coordinates.
struct Envelope {
  double min_x = 0.0;
  double max_x = 0.0;
  double min_y = 0.0;
  double max_y = 0.0;
};

struct PackedRtree {
  // Edges from the leaves (depth 0) to the root.
  std::int32_t depth = 0;
  // The blob of node number k + 1 at index k; node 1 is the root.
  std::vector<std::string> nodes;
  // The parent's node number of node number k + 1 (0 for the root).
  std::vector<std::int64_t> parents;
  // The leaf node number of each feature, in the order the ids were given.
  std::vector<std::int64_t> leaf_of;
};

// Packs the features `ids` with their envelopes into nodes of `node_bytes`
// bytes.  Boxes are widened outwards to the nearest floats, as the module
// stores them, so that every stored box holds its feature.  Ties in the
// sorting are broken by the order the features are given in, so the same
// features give the same blobs.  A node must hold at least two entries.
PackedRtree pack_rtree(const std::vector<std::int64_t>& ids, const std::vector<Envelope>& boxes,
                       std::size_t node_bytes);

// Entries a node of `node_bytes` bytes holds.
std::size_t rtree_node_capacity(std::size_t node_bytes);

}  // namespace tesseramill
