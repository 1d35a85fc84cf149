#include "emplacement/mesh_point_index.h"

#include <algorithm>
#include <cmath>

namespace tesseramill {

namespace {

constexpr std::int32_t kLeafPoints = kMeshIndexLeafPoints;
constexpr std::int32_t kDeepest = kMeshIndexDeepest;

// Which child of `cell` holds (x, y): bit 0 east, bit 1 north.
std::int32_t quadrant(const MeshPointIndex::Cell& cell, double x, double y) {
  return (x >= cell.mid_x ? 1 : 0) + (y >= cell.mid_y ? 2 : 0);
}

bool in_region(const MeshPointIndex& index, double x, double y) {
  const MeshPointIndex::Extent& root = index.extents[0];
  return x >= root.x0 && x <= root.x0 + root.size && y >= root.y0 && y <= root.y0 + root.size;
}

// Appends an empty leaf with the given corner, side and depth, whose points
// go in `block`.
void add_leaf(MeshPointIndex& index, double x0, double y0, double size, std::int32_t depth, std::size_t block) {
  const double half = size * 0.5;
  MeshPointIndex::Cell cell;
  cell.mid_x = x0 + half;
  cell.mid_y = y0 + half;
  cell.first_child = -1 - static_cast<std::int32_t>(block);
  index.cells.push_back(cell);
  index.extents.push_back(MeshPointIndex::Extent{x0, y0, size, depth});
}

// A new block of points, not yet holding any.
std::size_t new_block(MeshPointIndex& index) {
  const std::size_t block = index.overflow_of.size();
  index.blocks.resize(index.blocks.size() + kLeafPoints);
  index.overflow_of.push_back(-1);
  return block;
}

void append_to_leaf(MeshPointIndex& index, MeshPointIndex::Cell& leaf, const MeshPointIndex::Entry& entry) {
  const std::size_t block = leaf_block(leaf);
  if (leaf.count < kLeafPoints) {
    index.blocks[block * kLeafPoints + static_cast<std::size_t>(leaf.count)] = entry;
  } else {
    if (index.overflow_of[block] < 0) {
      index.overflow_of[block] = static_cast<std::int32_t>(index.overflow.size());
      index.overflow.emplace_back();
    }
    index.overflow[static_cast<std::size_t>(index.overflow_of[block])].push_back(entry);
  }
  ++leaf.count;
}

// Splits a full leaf above the deepest level, which holds kLeafPoints
// points in its block and none in overflow.
void split(MeshPointIndex& index, std::int32_t c) {
  const std::int32_t first = static_cast<std::int32_t>(index.cells.size());
  const MeshPointIndex::Extent extent = index.extents[static_cast<std::size_t>(c)];
  const MeshPointIndex::Cell parent = index.cells[static_cast<std::size_t>(c)];
  const double half = extent.size * 0.5;
  const std::size_t parent_block = leaf_block(parent);
  MeshPointIndex::Entry points[kLeafPoints];
  std::copy_n(index.blocks.begin() + static_cast<std::ptrdiff_t>(parent_block * kLeafPoints), kLeafPoints, points);
  for (std::int32_t q = 0; q < 4; ++q) {
    // The first child takes over the parent's block; the other three get
    // new ones.  The corners of the east and north children are the
    // parent's mid lines, worked out the same way.
    const std::size_t block = q == 0 ? parent_block : new_block(index);
    add_leaf(index, q & 1 ? parent.mid_x : extent.x0, q & 2 ? parent.mid_y : extent.y0, half, extent.depth + 1,
             block);
  }
  MeshPointIndex::Cell& cell = index.cells[static_cast<std::size_t>(c)];
  cell.first_child = first;
  cell.count = 0;
  for (const MeshPointIndex::Entry& e : points) {
    append_to_leaf(index, index.cells[static_cast<std::size_t>(first + quadrant(cell, e.x, e.y))], e);
  }
}

}  // namespace

void start_mesh_point_index(MeshPointIndex& index, const std::vector<double>* coordinates, double xlo, double xhi,
                            double ylo, double yhi) {
  index.coordinates = coordinates;
  index.strikes = nullptr;
  index.cells.clear();
  index.extents.clear();
  index.blocks.clear();
  index.overflow_of.clear();
  index.overflow.clear();
  index.elsewhere.clear();
  double size = std::max(xhi - xlo, yhi - ylo);
  if (!(size > 0.0) || !std::isfinite(size)) size = 1.0;
  add_leaf(index, std::isfinite(xlo) ? xlo : 0.0, std::isfinite(ylo) ? ylo : 0.0, size, 0, new_block(index));
}

void insert_mesh_point(MeshPointIndex& index, std::int32_t number) {
  const std::vector<double>& coordinates = *index.coordinates;
  const std::size_t at = static_cast<std::size_t>(number - 1);
  const bool known = index.strikes != nullptr && at < index.strikes->size();
  const MeshPointIndex::Entry entry{coordinates[2 * at], coordinates[2 * at + 1], known ? (*index.strikes)[at] : 0.0,
                                    number};
  const double x = entry.x;
  const double y = entry.y;
  if (!in_region(index, x, y)) {
    index.elsewhere.push_back(entry);
    return;
  }
  std::int32_t c = 0;
  for (;;) {
    MeshPointIndex::Cell& cell = index.cells[static_cast<std::size_t>(c)];
    if (cell.first_child >= 0) {
      c = cell.first_child + quadrant(cell, x, y);
      continue;
    }
    if (cell.count < kLeafPoints || index.extents[static_cast<std::size_t>(c)].depth >= kDeepest) {
      append_to_leaf(index, cell, entry);
      return;
    }
    split(index, c);
  }
}

void points_in_box(const MeshPointIndex& index, double xlo, double xhi, double ylo, double yhi,
                   std::vector<std::int32_t>& out) {
  out.clear();
  // The same comparisons as a scan over every point makes, on each point of
  // every leaf the box reaches; the order is restored by sorting.
  visit_points_in_box(index, xlo, xhi, ylo, yhi, [&](std::int32_t number) {
    out.push_back(number);
    return false;
  });
  std::sort(out.begin(), out.end());
}

// Each point of a run is written at the next free place and the place
// moved on only when the point lies in the box: about a third of a leaf's
// points do, in no pattern, so a branch on the test would be mispredicted
// at one point in three.  The tests are visit_entries_in_box's and the
// points come in its order, so `out` ends as the push at each point that
// passes leaves it (entries_in_box_by_visits).  The list is lengthened
// ahead of each run to hold all of it and cut back at the end; the places
// it gains are left unwritten (EntryList), as each is written before it is
// kept.
void entries_in_box(const MeshPointIndex& index, double xlo, double xhi, double ylo, double yhi,
                    MeshPointIndex::EntryList& out) {
  std::size_t kept = out.size();
  visit_runs_in_box(index, xlo, xhi, ylo, yhi, [&](const MeshPointIndex::Entry* run, std::size_t count) {
    if (out.size() < kept + count) out.resize(kept + count + kept / 2 + kMeshIndexLeafPoints);
    MeshPointIndex::Entry* to = out.data();
    for (std::size_t i = 0; i < count; ++i) {
      const MeshPointIndex::Entry& e = run[i];
      const bool inside = (e.x >= xlo) & (e.x <= xhi) & (e.y >= ylo) & (e.y <= yhi);
      to[kept] = e;
      kept += inside ? 1 : 0;
    }
    return false;
  });
  out.resize(kept);
}

void entries_in_box_by_visits(const MeshPointIndex& index, double xlo, double xhi, double ylo, double yhi,
                              MeshPointIndex::EntryList& out) {
  visit_entries_in_box(index, xlo, xhi, ylo, yhi, [&](const MeshPointIndex::Entry& e) {
    out.push_back(e);
    return false;
  });
}

}  // namespace tesseramill
