#include "gis/packed_rtree.h"

#include <algorithm>
#include <bit>
#include <cfloat>
#include <cmath>

namespace tesseramill {

namespace {

// Bytes of an entry of a two-dimensional index: the id and four floats.
constexpr std::size_t kEntryBytes = 8 + 4 * 4;
// The depth and the count ahead of a node's entries.
constexpr std::size_t kNodeHeaderBytes = 4;

// A box as the module stores it, and the place it is sorted by.
struct Entry {
  std::int64_t id = 0;  // a feature id, or the index of a node of the level below
  float box[4] = {0.0f, 0.0f, 0.0f, 0.0f};  // min x, max x, min y, max y
  double cx = 0.0;
  double cy = 0.0;
};

// The float at or below d, and the float at or above it.  A double beyond the
// floats' range is not converted (that would be undefined): it gives the
// largest float or an infinity on the safe side.
float float_down(double d) {
  if (d >= static_cast<double>(FLT_MAX)) return FLT_MAX;
  if (d <= -static_cast<double>(FLT_MAX)) return -INFINITY;
  float f = static_cast<float>(d);
  if (static_cast<double>(f) > d) f = std::nextafter(f, -INFINITY);
  return f;
}

float float_up(double d) {
  if (d >= static_cast<double>(FLT_MAX)) return INFINITY;
  if (d <= -static_cast<double>(FLT_MAX)) return -FLT_MAX;
  float f = static_cast<float>(d);
  if (static_cast<double>(f) < d) f = std::nextafter(f, INFINITY);
  return f;
}

Entry with_centre(Entry e) {
  e.cx = 0.5 * (static_cast<double>(e.box[0]) + static_cast<double>(e.box[1]));
  e.cy = 0.5 * (static_cast<double>(e.box[2]) + static_cast<double>(e.box[3]));
  return e;
}

bool by_x(const Entry& a, const Entry& b) {
  if (a.cx != b.cx) return a.cx < b.cx;
  if (a.cy != b.cy) return a.cy < b.cy;
  return a.id < b.id;
}

bool by_y(const Entry& a, const Entry& b) {
  if (a.cy != b.cy) return a.cy < b.cy;
  if (a.cx != b.cx) return a.cx < b.cx;
  return a.id < b.id;
}

// Sort-tile-recursive grouping: the entries in vertical slices of about
// sqrt(nodes) nodes each by x, each slice by y, cut into full nodes.
// `level` is reordered so that node k holds entries [k*capacity, ...).
void tile(std::vector<Entry>& level, std::size_t capacity) {
  const std::size_t nodes = (level.size() + capacity - 1) / capacity;
  auto slices = static_cast<std::size_t>(std::ceil(std::sqrt(static_cast<double>(nodes))));
  if (slices == 0) slices = 1;
  const std::size_t slice_entries = ((nodes + slices - 1) / slices) * capacity;
  std::sort(level.begin(), level.end(), by_x);
  for (std::size_t first = 0; first < level.size(); first += slice_entries) {
    const std::size_t last = std::min(level.size(), first + slice_entries);
    std::sort(level.begin() + static_cast<std::ptrdiff_t>(first), level.begin() + static_cast<std::ptrdiff_t>(last), by_y);
  }
}

void put_big_endian(std::string& blob, std::size_t at, std::uint64_t value, std::size_t bytes) {
  for (std::size_t k = 0; k < bytes; ++k) {
    blob[at + k] = static_cast<char>((value >> (8 * (bytes - 1 - k))) & 0xffu);
  }
}

}  // namespace

std::size_t rtree_node_capacity(std::size_t node_bytes) {
  return node_bytes < kNodeHeaderBytes + kEntryBytes ? 0 : (node_bytes - kNodeHeaderBytes) / kEntryBytes;
}

PackedRtree pack_rtree(const std::vector<std::int64_t>& ids, const std::vector<Envelope>& boxes,
                       std::size_t node_bytes) {
  const std::size_t capacity = rtree_node_capacity(node_bytes);
  PackedRtree tree;
  tree.leaf_of.assign(ids.size(), 0);
  // Each level's entries in node order, from the leaves up; `nodes_of[l]` is
  // how many nodes level l has.
  std::vector<std::vector<Entry>> levels(1);
  std::vector<std::size_t> nodes_of;
  levels[0].reserve(ids.size());
  for (std::size_t k = 0; k < ids.size(); ++k) {
    Entry e;
    // The position, which breaks ties and finds leaf_of; the feature id goes
    // into the blob.
    e.id = static_cast<std::int64_t>(k);
    e.box[0] = float_down(boxes[k].min_x);
    e.box[1] = float_up(boxes[k].max_x);
    e.box[2] = float_down(boxes[k].min_y);
    e.box[3] = float_up(boxes[k].max_y);
    levels[0].push_back(with_centre(e));
  }
  for (;;) {
    std::vector<Entry>& level = levels.back();
    tile(level, capacity);
    const std::size_t count = std::max<std::size_t>(1, (level.size() + capacity - 1) / capacity);
    nodes_of.push_back(count);
    if (count == 1) break;
    std::vector<Entry> above;
    above.reserve(count);
    for (std::size_t n = 0; n < count; ++n) {
      Entry e;
      e.id = static_cast<std::int64_t>(n);
      e.box[0] = INFINITY;
      e.box[1] = -INFINITY;
      e.box[2] = INFINITY;
      e.box[3] = -INFINITY;
      for (std::size_t k = n * capacity; k < std::min(level.size(), (n + 1) * capacity); ++k) {
        e.box[0] = std::min(e.box[0], level[k].box[0]);
        e.box[1] = std::max(e.box[1], level[k].box[1]);
        e.box[2] = std::min(e.box[2], level[k].box[2]);
        e.box[3] = std::max(e.box[3], level[k].box[3]);
      }
      above.push_back(with_centre(e));
    }
    levels.push_back(std::move(above));
  }

  // Node numbers from the root down, level by level: the root is 1.
  const std::size_t height = levels.size();
  tree.depth = static_cast<std::int32_t>(height - 1);
  std::vector<std::int64_t> first_number(height);
  std::int64_t next = 1;
  for (std::size_t l = height; l-- > 0;) {
    first_number[l] = next;
    next += static_cast<std::int64_t>(nodes_of[l]);
  }
  tree.nodes.assign(static_cast<std::size_t>(next - 1), std::string(node_bytes, '\0'));
  tree.parents.assign(static_cast<std::size_t>(next - 1), 0);
  put_big_endian(tree.nodes[0], 0, static_cast<std::uint64_t>(tree.depth), 2);
  for (std::size_t l = 0; l < height; ++l) {
    const std::vector<Entry>& level = levels[l];
    for (std::size_t n = 0; n < nodes_of[l]; ++n) {
      const std::int64_t number = first_number[l] + static_cast<std::int64_t>(n);
      std::string& blob = tree.nodes[static_cast<std::size_t>(number - 1)];
      const std::size_t first = n * capacity;
      const std::size_t last = std::min(level.size(), first + capacity);
      put_big_endian(blob, 2, last - first, 2);
      for (std::size_t k = first; k < last; ++k) {
        const Entry& e = level[k];
        std::int64_t id = 0;
        if (l == 0) {
          id = ids[static_cast<std::size_t>(e.id)];
          tree.leaf_of[static_cast<std::size_t>(e.id)] = number;
        } else {
          id = first_number[l - 1] + e.id;
          tree.parents[static_cast<std::size_t>(id - 1)] = number;
        }
        const std::size_t at = kNodeHeaderBytes + (k - first) * kEntryBytes;
        put_big_endian(blob, at, static_cast<std::uint64_t>(id), 8);
        for (int c = 0; c < 4; ++c) {
          put_big_endian(blob, at + 8 + 4 * static_cast<std::size_t>(c), std::bit_cast<std::uint32_t>(e.box[c]), 4);
        }
      }
    }
  }
  return tree;
}

}  // namespace tesseramill
