// The mesh points by place, kept up to date as points are appended, so that
// a seed's near list is found without a scan over every mesh point.
#pragma once

#include <cmath>
#include <cstdint>
#include <vector>

namespace tesseramill {

// A cell this deep is not split again: its points share a place to within
// 2^-40 of the region, as duplicate points do.
inline constexpr std::int32_t kMeshIndexDeepest = 40;

// A quadtree of square cells over a fixed region.  A cell holds up to
// kLeafPoints points before it is split in four; points outside the
// region, or no number at all, are kept in a list of their own that every
// query looks at.  Each point is kept with a copy of its coordinates, so
// that a query reads a leaf's points where they lie together instead of
// one by one across the whole table of mesh points: the copies are the
// table's values, as a point's coordinates never change once it is
// inserted.
struct MeshPointIndex {
  struct Entry {
    double x = 0.0;
    double y = 0.0;
    // The squared distance below which the point surely strikes a
    // candidate where the field's slope holds, from `strikes`; 0 where not
    // known.
    double strike = 0.0;
    std::int32_t number = 0;  // 1-based
  };
  struct Cell {
    double x0 = 0.0;       // lower left corner
    double y0 = 0.0;
    double size = 0.0;     // side
    std::int32_t first_child = -1;  // the four children follow one another
    std::int32_t depth = 0;
    std::vector<Entry> points;  // the points of a leaf
  };
  const std::vector<double>* coordinates = nullptr;  // x,y pairs of the mesh points
  // The strike limits of the mesh points, where kept; a point past its end
  // has none.
  const std::vector<double>* strikes = nullptr;
  std::vector<Cell> cells;
  std::vector<Entry> elsewhere;
};

// Starts an index over the square region that holds the rectangle
// [xlo, xhi] x [ylo, yhi]; `coordinates` are the mesh points' x,y pairs.
void start_mesh_point_index(MeshPointIndex& index, const std::vector<double>* coordinates, double xlo, double xhi,
                            double ylo, double yhi);

// Adds mesh point `number` (1-based), whose coordinates are already stored
// and stay as they are while the index is in use.
void insert_mesh_point(MeshPointIndex& index, std::int32_t number);

// The numbers of the points with xlo <= x <= xhi and ylo <= y <= yhi, in
// ascending order, as a scan over every point would list them.
void points_in_box(const MeshPointIndex& index, double xlo, double xhi, double ylo, double yhi,
                   std::vector<std::int32_t>& out);

// Appends to `out` the points with xlo <= x <= xhi and ylo <= y <= yhi, with
// their coordinates, in no set order.
void entries_in_box(const MeshPointIndex& index, double xlo, double xhi, double ylo, double yhi,
                    std::vector<MeshPointIndex::Entry>& out);

// Visits the points with xlo <= x <= xhi and ylo <= y <= yhi, in no set
// order, making the same comparisons as a scan over every point would, and
// stops at the first for which stop(entry) is true; returns whether one
// was.
template <typename Stop>
bool visit_entries_in_box(const MeshPointIndex& index, double xlo, double xhi, double ylo, double yhi, Stop stop) {
  auto stops = [&](const MeshPointIndex::Entry& e) {
    return e.x >= xlo && e.x <= xhi && e.y >= ylo && e.y <= yhi && stop(e);
  };
  for (const MeshPointIndex::Entry& e : index.elsewhere) {
    if (stops(e)) return true;
  }
  if (index.cells.empty()) return false;
  std::int32_t stack[4 * kMeshIndexDeepest + 8];
  std::int32_t top = 0;
  stack[top++] = 0;
  while (top > 0) {
    const MeshPointIndex::Cell& cell = index.cells[static_cast<std::size_t>(stack[--top])];
    // A cell the box cannot reach holds no point the box holds: its points
    // lie within [x0, x0 + size] x [y0, y0 + size], up to the rounding of
    // the halvings that made the cell, which the slack covers.
    const double slack = 1e-12 * (std::fabs(cell.x0) + std::fabs(cell.y0) + cell.size);
    if (cell.x0 - slack > xhi || cell.x0 + cell.size + slack < xlo || cell.y0 - slack > yhi ||
        cell.y0 + cell.size + slack < ylo) {
      continue;
    }
    if (cell.first_child < 0) {
      for (const MeshPointIndex::Entry& e : cell.points) {
        if (stops(e)) return true;
      }
    } else {
      for (std::int32_t q = 0; q < 4; ++q) stack[top++] = cell.first_child + q;
    }
  }
  return false;
}

// visit_entries_in_box, handing stop() the point's number alone.
template <typename Stop>
bool visit_points_in_box(const MeshPointIndex& index, double xlo, double xhi, double ylo, double yhi, Stop stop) {
  return visit_entries_in_box(index, xlo, xhi, ylo, yhi,
                              [&](const MeshPointIndex::Entry& e) { return stop(e.number); });
}

// Whether `test(number)` holds for a point with xlo <= x <= xhi and
// ylo <= y <= yhi.
template <typename Test>
bool any_point_in_box(const MeshPointIndex& index, double xlo, double xhi, double ylo, double yhi, Test test) {
  return visit_points_in_box(index, xlo, xhi, ylo, yhi, test);
}

}  // namespace tesseramill
