#include "emplacement/mesh_point_index.h"

#include <algorithm>
#include <cmath>
#include <utility>

namespace tesseramill {

namespace {

constexpr std::size_t kLeafPoints = 16;
constexpr std::int32_t kDeepest = kMeshIndexDeepest;

// Which child of `cell` holds (x, y): bit 0 east, bit 1 north.
std::int32_t quadrant(const MeshPointIndex::Cell& cell, double x, double y) {
  return (x >= cell.mid_x ? 1 : 0) + (y >= cell.mid_y ? 2 : 0);
}

bool in_region(const MeshPointIndex& index, double x, double y) {
  const MeshPointIndex::Extent& root = index.extents[0];
  return x >= root.x0 && x <= root.x0 + root.size && y >= root.y0 && y <= root.y0 + root.size;
}

// Appends a leaf cell with the given corner, side and depth, whose points
// are the leaf `leaf`.
void add_cell(MeshPointIndex& index, double x0, double y0, double size, std::int32_t depth, std::int32_t leaf) {
  const double half = size * 0.5;
  MeshPointIndex::Cell cell;
  cell.mid_x = x0 + half;
  cell.mid_y = y0 + half;
  cell.leaf = leaf;
  index.cells.push_back(cell);
  index.extents.push_back(MeshPointIndex::Extent{x0, y0, size, depth});
}

void split(MeshPointIndex& index, std::int32_t c) {
  const std::int32_t first = static_cast<std::int32_t>(index.cells.size());
  const MeshPointIndex::Extent extent = index.extents[static_cast<std::size_t>(c)];
  const MeshPointIndex::Cell parent = index.cells[static_cast<std::size_t>(c)];
  const double half = extent.size * 0.5;
  // The first child takes over the parent's leaf; the other three get new
  // ones.
  std::vector<MeshPointIndex::Entry> points = std::move(index.leaves[static_cast<std::size_t>(parent.leaf)]);
  index.leaves[static_cast<std::size_t>(parent.leaf)] = {};
  for (std::int32_t q = 0; q < 4; ++q) {
    std::int32_t leaf = parent.leaf;
    if (q > 0) {
      leaf = static_cast<std::int32_t>(index.leaves.size());
      index.leaves.emplace_back();
    }
    // The corners of the east and north children are the parent's mid
    // lines, worked out the same way.
    add_cell(index, q & 1 ? parent.mid_x : extent.x0, q & 2 ? parent.mid_y : extent.y0, half, extent.depth + 1,
             leaf);
  }
  MeshPointIndex::Cell& cell = index.cells[static_cast<std::size_t>(c)];
  cell.first_child = first;
  cell.leaf = -1;
  for (const MeshPointIndex::Entry& e : points) {
    const std::int32_t q = quadrant(cell, e.x, e.y);
    index.leaves[static_cast<std::size_t>(index.cells[static_cast<std::size_t>(first + q)].leaf)].push_back(e);
  }
}

}  // namespace

void start_mesh_point_index(MeshPointIndex& index, const std::vector<double>* coordinates, double xlo, double xhi,
                            double ylo, double yhi) {
  index.coordinates = coordinates;
  index.strikes = nullptr;
  index.cells.clear();
  index.extents.clear();
  index.leaves.clear();
  index.elsewhere.clear();
  double size = std::max(xhi - xlo, yhi - ylo);
  if (!(size > 0.0) || !std::isfinite(size)) size = 1.0;
  index.leaves.emplace_back();
  add_cell(index, std::isfinite(xlo) ? xlo : 0.0, std::isfinite(ylo) ? ylo : 0.0, size, 0, 0);
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
    std::vector<MeshPointIndex::Entry>& points = index.leaves[static_cast<std::size_t>(cell.leaf)];
    if (points.size() < kLeafPoints || index.extents[static_cast<std::size_t>(c)].depth >= kDeepest) {
      points.push_back(entry);
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

void entries_in_box(const MeshPointIndex& index, double xlo, double xhi, double ylo, double yhi,
                    std::vector<MeshPointIndex::Entry>& out) {
  visit_entries_in_box(index, xlo, xhi, ylo, yhi, [&](const MeshPointIndex::Entry& e) {
    out.push_back(e);
    return false;
  });
}

}  // namespace tesseramill
