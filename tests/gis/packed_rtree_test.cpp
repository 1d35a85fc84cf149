// The packed spatial index, read back from its blobs: every feature in one
// leaf under a box that holds it, every node's box inside its parent's, no
// node over its capacity, the depth in the root, and the same blobs for the
// same features.
#include <gtest/gtest.h>

#include <bit>
#include <cmath>
#include <cstdint>
#include <map>
#include <random>
#include <set>

#include "gis/packed_rtree.h"

namespace tesseramill_test {
namespace {

using tesseramill::Envelope;
using tesseramill::pack_rtree;
using tesseramill::PackedRtree;

// SQLite's node size on the GeoPackage's 4096-byte pages: 51 entries.
constexpr std::size_t kNodeBytes = 1228;

std::uint64_t big_endian(const std::string& blob, std::size_t at, std::size_t bytes) {
  std::uint64_t v = 0;
  for (std::size_t k = 0; k < bytes; ++k) v = (v << 8) | static_cast<unsigned char>(blob[at + k]);
  return v;
}

struct NodeEntry {
  std::int64_t id;
  float box[4];
};

std::vector<NodeEntry> entries(const std::string& blob) {
  std::vector<NodeEntry> out(big_endian(blob, 2, 2));
  for (std::size_t k = 0; k < out.size(); ++k) {
    const std::size_t at = 4 + 24 * k;
    out[k].id = static_cast<std::int64_t>(big_endian(blob, at, 8));
    for (std::size_t c = 0; c < 4; ++c) {
      out[k].box[c] = std::bit_cast<float>(static_cast<std::uint32_t>(big_endian(blob, at + 8 + 4 * c, 4)));
    }
  }
  return out;
}

bool inside(const float* inner, const float* outer) {
  return inner[0] >= outer[0] && inner[1] <= outer[1] && inner[2] >= outer[2] && inner[3] <= outer[3];
}

// Walks the tree from the root and checks every rule of the layout.
void check_tree(const PackedRtree& tree, const std::vector<std::int64_t>& ids, const std::vector<Envelope>& boxes) {
  ASSERT_FALSE(tree.nodes.empty());
  for (const std::string& blob : tree.nodes) ASSERT_EQ(blob.size(), kNodeBytes);
  EXPECT_EQ(static_cast<std::int32_t>(big_endian(tree.nodes[0], 0, 2)), tree.depth);
  EXPECT_EQ(tree.parents[0], 0);
  std::map<std::int64_t, std::size_t> position;
  for (std::size_t k = 0; k < ids.size(); ++k) position[ids[k]] = k;
  std::set<std::int64_t> seen_ids;
  std::set<std::int64_t> seen_nodes{1};
  // (node number, depth above the leaves, the box its parent holds for it)
  struct Visit {
    std::int64_t node;
    std::int32_t height;
    float box[4];
  };
  std::vector<Visit> stack{{1, tree.depth, {-INFINITY, INFINITY, -INFINITY, INFINITY}}};
  while (!stack.empty()) {
    const Visit v = stack.back();
    stack.pop_back();
    const std::vector<NodeEntry> node = entries(tree.nodes[static_cast<std::size_t>(v.node - 1)]);
    ASSERT_LE(node.size(), 51u);
    if (v.node != 1) {
      ASSERT_GE(node.size(), 1u);
      // The unused first bytes of a node that is not the root are zero.
      EXPECT_EQ(big_endian(tree.nodes[static_cast<std::size_t>(v.node - 1)], 0, 2), 0u);
    }
    for (const NodeEntry& e : node) {
      EXPECT_TRUE(inside(e.box, v.box)) << "node " << v.node;
      if (v.height == 0) {
        ASSERT_TRUE(position.count(e.id)) << e.id;
        EXPECT_TRUE(seen_ids.insert(e.id).second) << "feature " << e.id << " twice";
        const std::size_t k = position[e.id];
        EXPECT_EQ(tree.leaf_of[k], v.node);
        EXPECT_LE(static_cast<double>(e.box[0]), boxes[k].min_x);
        EXPECT_GE(static_cast<double>(e.box[1]), boxes[k].max_x);
        EXPECT_LE(static_cast<double>(e.box[2]), boxes[k].min_y);
        EXPECT_GE(static_cast<double>(e.box[3]), boxes[k].max_y);
      } else {
        ASSERT_GE(e.id, 2);
        ASSERT_LE(e.id, static_cast<std::int64_t>(tree.nodes.size()));
        EXPECT_TRUE(seen_nodes.insert(e.id).second) << "node " << e.id << " twice";
        EXPECT_EQ(tree.parents[static_cast<std::size_t>(e.id - 1)], v.node);
        Visit child{e.id, v.height - 1, {e.box[0], e.box[1], e.box[2], e.box[3]}};
        stack.push_back(child);
      }
    }
  }
  EXPECT_EQ(seen_ids.size(), ids.size());
  EXPECT_EQ(seen_nodes.size(), tree.nodes.size());
}

// Boxes of cells scattered over a grid's extent at coordinates such as a
// projected system has, so that few of them are floats.
void random_boxes(std::size_t n, std::uint32_t seed, std::vector<std::int64_t>& ids, std::vector<Envelope>& boxes) {
  std::mt19937 random(seed);
  std::uniform_real_distribution<double> place(0.0, 40000.0);
  std::uniform_real_distribution<double> size(0.0, 80.0);
  ids.clear();
  boxes.clear();
  for (std::size_t k = 0; k < n; ++k) {
    const double x = 491356.123 + place(random);
    const double y = 6213604.456 + place(random);
    ids.push_back(static_cast<std::int64_t>(k + 1));
    boxes.push_back({x, x + size(random), y, y + size(random)});
  }
}

class PackedRtreeSizes : public testing::TestWithParam<std::size_t> {};

TEST_P(PackedRtreeSizes, EveryFeatureOnceUnderBoxesThatHoldIt) {
  std::vector<std::int64_t> ids;
  std::vector<Envelope> boxes;
  random_boxes(GetParam(), 7, ids, boxes);
  const PackedRtree tree = pack_rtree(ids, boxes, kNodeBytes);
  check_tree(tree, ids, boxes);
}

// Below, at and just past each level's capacity: 51 entries fill one node,
// 51 * 51 two levels.
INSTANTIATE_TEST_SUITE_P(Counts, PackedRtreeSizes, testing::Values(0, 1, 2, 50, 51, 52, 2601, 2602, 20000, 132651, 132652));

TEST(PackedRtree, DepthGrowsWithTheLevels) {
  std::vector<std::int64_t> ids;
  std::vector<Envelope> boxes;
  const std::pair<std::size_t, std::int32_t> cases[] = {{0, 0}, {51, 0}, {52, 1}, {2601, 1}, {2602, 2}};
  for (const auto& [count, depth] : cases) {
    random_boxes(count, 3, ids, boxes);
    EXPECT_EQ(pack_rtree(ids, boxes, kNodeBytes).depth, depth) << count;
  }
}

TEST(PackedRtree, EmptyTreeIsOneEmptyRoot) {
  const PackedRtree tree = pack_rtree({}, {}, kNodeBytes);
  ASSERT_EQ(tree.nodes.size(), 1u);
  EXPECT_EQ(tree.nodes[0], std::string(kNodeBytes, '\0'));
}

TEST(PackedRtree, BoxesAreWidenedToTheNearestFloatsOutside) {
  // 0.1 lies between two floats; a float value stays as it is; points have
  // a box of no width; values beyond the floats' range stay on the safe side.
  const std::vector<Envelope> boxes = {{0.1, 0.1, -0.1, -0.1}, {0.5, 1.5, -2.0, 4.0}, {1e39, 1e39, -1e39, -1e39}};
  const PackedRtree tree = pack_rtree({10, 20, 30}, boxes, kNodeBytes);
  std::map<std::int64_t, NodeEntry> by_id;
  for (const NodeEntry& e : entries(tree.nodes[0])) by_id[e.id] = e;
  const NodeEntry& a = by_id.at(10);
  EXPECT_EQ(a.box[0], std::nextafter(0.1f, 0.0f));
  EXPECT_EQ(a.box[1], 0.1f);
  EXPECT_EQ(a.box[2], -0.1f);
  EXPECT_EQ(a.box[3], std::nextafter(-0.1f, 0.0f));
  const NodeEntry& b = by_id.at(20);
  EXPECT_EQ(b.box[0], 0.5f);
  EXPECT_EQ(b.box[1], 1.5f);
  EXPECT_EQ(b.box[2], -2.0f);
  EXPECT_EQ(b.box[3], 4.0f);
  const NodeEntry& c = by_id.at(30);
  EXPECT_EQ(c.box[0], 3.4028234663852886e38f);
  EXPECT_EQ(c.box[1], INFINITY);
  EXPECT_EQ(c.box[2], -INFINITY);
  EXPECT_EQ(c.box[3], -3.4028234663852886e38f);
}

TEST(PackedRtree, SameFeaturesGiveTheSameBlobs) {
  std::vector<std::int64_t> ids;
  std::vector<Envelope> boxes;
  random_boxes(5000, 11, ids, boxes);
  // Many equal boxes, so that the ties decide the order.
  for (std::size_t k = 0; k < boxes.size(); k += 3) boxes[k] = boxes[0];
  const PackedRtree first = pack_rtree(ids, boxes, kNodeBytes);
  const PackedRtree second = pack_rtree(ids, boxes, kNodeBytes);
  EXPECT_EQ(first.nodes, second.nodes);
  EXPECT_EQ(first.parents, second.parents);
  EXPECT_EQ(first.leaf_of, second.leaf_of);
  check_tree(first, ids, boxes);
}

}  // namespace
}  // namespace tesseramill_test
