#include "gis/spatial_index.h"

#include <cstdio>

#include <cpl_error.h>
#include <gdal_priv.h>
#include <ogrsf_frmts.h>

#include "common/failure.h"

namespace tesseramill {

namespace {

// Statements stay well below SQLite's default length limit of a billion
// bytes: about 250 KB of node blobs, or 5,000 rows of two numbers.
constexpr std::size_t kNodesPerStatement = 100;
constexpr std::size_t kRowsPerStatement = 5000;

std::string quoted_name(const std::string& name) {
  std::string out = "\"";
  for (char c : name) out += c == '"' ? std::string("\"\"") : std::string(1, c);
  return out + "\"";
}

std::string quoted_text(const std::string& text) {
  std::string out = "'";
  for (char c : text) out += c == '\'' ? std::string("''") : std::string(1, c);
  return out + "'";
}

[[noreturn]] void index_failure(RunState& state, const PendingIndex& index) {
  fail(state, "Cannot write the spatial index of layer " + index.layer + ": " + CPLGetLastErrorMsg());
}

// Runs a statement; a result it gives is read by `row` (first field of each
// row) and released.
void run_sql(RunState& state, GDALDataset& d, const PendingIndex& index, const std::string& sql,
             std::string* first_value = nullptr) {
  CPLErrorReset();
  OGRLayer* result = d.ExecuteSQL(sql.c_str(), nullptr, nullptr);
  if (result != nullptr) {
    OGRFeature* row = result->GetNextFeature();
    if (row != nullptr && first_value != nullptr) *first_value = row->GetFieldAsString(0);
    OGRFeature::DestroyFeature(row);
    d.ReleaseResultSet(result);
  }
  if (CPLGetLastErrorType() >= CE_Failure) index_failure(state, index);
}

std::string hex_blob(const std::string& blob) {
  static const char digits[] = "0123456789ABCDEF";
  std::string out = "X'";
  out.reserve(blob.size() * 2 + 3);
  for (unsigned char c : blob) {
    out += digits[c >> 4];
    out += digits[c & 0xf];
  }
  return out + "'";
}

// Inserts rows of two integers, `row(k)` giving the k-th pair.
template <typename Row>
void insert_pairs(RunState& state, GDALDataset& d, const PendingIndex& index, const std::string& table,
                  std::size_t count, Row row) {
  for (std::size_t first = 0; first < count; first += kRowsPerStatement) {
    std::string sql = "INSERT INTO " + quoted_name(table) + " VALUES ";
    const std::size_t last = std::min(count, first + kRowsPerStatement);
    char pair[48];
    for (std::size_t k = first; k < last; ++k) {
      const auto [a, b] = row(k);
      std::snprintf(pair, sizeof pair, "%s(%lld,%lld)", k == first ? "" : ",", static_cast<long long>(a),
                    static_cast<long long>(b));
      sql += pair;
    }
    run_sql(state, d, index, sql);
  }
}

}  // namespace

PendingIndex begin_spatial_index(RunState& state, GDALDataset& d, OGRLayer& layer) {
  PendingIndex index;
  index.layer = layer.GetName();
  const std::string column = layer.GetGeometryColumn();
  index.rtree = "rtree_" + index.layer + "_" + column;
  run_sql(state, d, index, "SELECT CreateSpatialIndex(" + quoted_text(index.layer) + "," + quoted_text(column) + ")");
  const std::string trigger = index.rtree + "_insert";
  run_sql(state, d, index, "SELECT sql FROM sqlite_master WHERE type = 'trigger' AND name = " + quoted_text(trigger),
          &index.insert_trigger);
  std::string node_bytes;
  run_sql(state, d, index, "SELECT length(data) FROM " + quoted_name(index.rtree + "_node") + " WHERE nodeno = 1",
          &node_bytes);
  index.node_bytes = static_cast<std::size_t>(std::strtoull(node_bytes.c_str(), nullptr, 10));
  // Two entries a node at the least, or the tree cannot branch; SQLite's
  // module makes nodes of 51 entries on the GeoPackage's 4096-byte pages.
  if (index.insert_trigger.empty() || rtree_node_capacity(index.node_bytes) < 2) {
    fail(state, "Cannot write the spatial index of layer " + index.layer +
                    ": the GDAL here made it in a form this program does not know.");
  }
  run_sql(state, d, index, "DROP TRIGGER " + quoted_name(trigger));
  return index;
}

void index_feature(PendingIndex& index, std::int64_t id, const Envelope& box) {
  index.ids.push_back(id);
  index.boxes.push_back(box);
}

void finish_spatial_index(RunState& state, GDALDataset& d, PendingIndex& index) {
  const PackedRtree tree = pack_rtree(index.ids, index.boxes, index.node_bytes);
  const std::string nodes = quoted_name(index.rtree + "_node");
  for (std::size_t first = 0; first < tree.nodes.size(); first += kNodesPerStatement) {
    // Node 1, the empty root the module made, is replaced.
    std::string sql = "INSERT OR REPLACE INTO " + nodes + " VALUES ";
    const std::size_t last = std::min(tree.nodes.size(), first + kNodesPerStatement);
    for (std::size_t k = first; k < last; ++k) {
      sql += (k == first ? "(" : ",(") + std::to_string(k + 1) + "," + hex_blob(tree.nodes[k]) + ")";
    }
    run_sql(state, d, index, sql);
  }
  insert_pairs(state, d, index, index.rtree + "_parent", tree.nodes.size() - 1, [&](std::size_t k) {
    return std::pair<std::int64_t, std::int64_t>(static_cast<std::int64_t>(k + 2), tree.parents[k + 1]);
  });
  insert_pairs(state, d, index, index.rtree + "_rowid", index.ids.size(), [&](std::size_t k) {
    return std::pair<std::int64_t, std::int64_t>(index.ids[k], tree.leaf_of[k]);
  });
  run_sql(state, d, index, index.insert_trigger);
  index.ids = {};
  index.boxes = {};
}

}  // namespace tesseramill
