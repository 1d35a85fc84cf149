#include "emplacement/mesh_point_index.h"

#include <algorithm>
#include <cmath>

namespace tesseramill {

namespace {

constexpr std::size_t kLeafPoints = 16;
constexpr std::int32_t kDeepest = kMeshIndexDeepest;

// Which child of `cell` holds (x, y): bit 0 east, bit 1 north.
std::int32_t quadrant(const MeshPointIndex::Cell& cell, double x, double y) {
  const double half = cell.size * 0.5;
  return (x >= cell.x0 + half ? 1 : 0) + (y >= cell.y0 + half ? 2 : 0);
}

bool in_region(const MeshPointIndex& index, double x, double y) {
  const MeshPointIndex::Cell& root = index.cells[0];
  return x >= root.x0 && x <= root.x0 + root.size && y >= root.y0 && y <= root.y0 + root.size;
}

void split(MeshPointIndex& index, std::int32_t c) {
  const std::int32_t first = static_cast<std::int32_t>(index.cells.size());
  const double x0 = index.cells[static_cast<std::size_t>(c)].x0;
  const double y0 = index.cells[static_cast<std::size_t>(c)].y0;
  const double half = index.cells[static_cast<std::size_t>(c)].size * 0.5;
  const std::int32_t depth = index.cells[static_cast<std::size_t>(c)].depth;
  for (std::int32_t q = 0; q < 4; ++q) {
    MeshPointIndex::Cell child;
    child.x0 = x0 + (q & 1 ? half : 0.0);
    child.y0 = y0 + (q & 2 ? half : 0.0);
    child.size = half;
    child.depth = depth + 1;
    index.cells.push_back(std::move(child));
  }
  std::vector<MeshPointIndex::Entry> points = std::move(index.cells[static_cast<std::size_t>(c)].points);
  index.cells[static_cast<std::size_t>(c)].points = {};
  index.cells[static_cast<std::size_t>(c)].first_child = first;
  for (const MeshPointIndex::Entry& e : points) {
    const std::int32_t q = quadrant(index.cells[static_cast<std::size_t>(c)], e.x, e.y);
    index.cells[static_cast<std::size_t>(first + q)].points.push_back(e);
  }
}

}  // namespace

void start_mesh_point_index(MeshPointIndex& index, const std::vector<double>* coordinates, double xlo, double xhi,
                            double ylo, double yhi) {
  index.coordinates = coordinates;
  index.strikes = nullptr;
  index.cells.clear();
  index.elsewhere.clear();
  MeshPointIndex::Cell root;
  double size = std::max(xhi - xlo, yhi - ylo);
  if (!(size > 0.0) || !std::isfinite(size)) size = 1.0;
  root.x0 = std::isfinite(xlo) ? xlo : 0.0;
  root.y0 = std::isfinite(ylo) ? ylo : 0.0;
  root.size = size;
  index.cells.push_back(std::move(root));
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
    if (cell.points.size() < kLeafPoints || cell.depth >= kDeepest) {
      cell.points.push_back(entry);
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
