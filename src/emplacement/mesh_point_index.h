// The mesh points by place, kept up to date as points are appended, so that
// a seed's near list is found without a scan over every mesh point.
#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <vector>

#include "common/unwritten_allocator.h"

namespace tesseramill {

// A cell this deep is not split again: its points share a place to within
// 2^-40 of the region, as duplicate points do.
inline constexpr std::int32_t kMeshIndexDeepest = 40;

// The points a cell holds before it is split in four.
inline constexpr std::int32_t kMeshIndexLeafPoints = 16;

// A quadtree of square cells over a fixed region.  A cell holds up to
// kMeshIndexLeafPoints points before it is split in four; points outside
// the region, or no number at all, are kept in a list of their own that
// every query looks at.  Each point is kept with a copy of its
// coordinates, so that a query reads a leaf's points where they lie
// together instead of one by one across the whole table of mesh points:
// the copies are the table's values, as a point's coordinates never change
// once it is inserted.
struct MeshPointIndex {
  // Made with all four values: an entry has no initialisers, so that a
  // query's list can be lengthened ahead of its writes without zeros
  // written first (EntryList).
  struct Entry {
    double x;
    double y;
    // The squared distance below which the point surely strikes a
    // candidate where the field's slope holds, from `strikes`; 0 where not
    // known.
    double strike;
    std::int32_t number;  // 1-based
  };
  using EntryList = std::vector<Entry, UnwrittenAllocator<Entry>>;
  // What a query reads of a cell, kept apart from the rest so that the
  // four children of a cell lie on 96 bytes.
  struct Cell {
    // The lines that part the children: a point with x >= mid_x lies in an
    // east child, one with y >= mid_y in a north child.
    double mid_x = 0.0;
    double mid_y = 0.0;
    // An inner cell's four children follow one another from first_child;
    // a leaf has first_child < 0 and its points in block -1 - first_child.
    std::int32_t first_child = -1;
    std::int32_t count = 0;  // the points of a leaf
  };
  // What only the splitting of a cell reads.
  struct Extent {
    double x0 = 0.0;  // lower left corner
    double y0 = 0.0;
    double size = 0.0;  // side
    std::int32_t depth = 0;
  };
  const std::vector<double>* coordinates = nullptr;  // x,y pairs of the mesh points
  // The strike limits of the mesh points, where kept; a point past its end
  // has none.
  const std::vector<double>* strikes = nullptr;
  std::vector<Cell> cells;
  std::vector<Extent> extents;  // one for each cell
  // The leaves' points, kMeshIndexLeafPoints places to a block, one block
  // to a leaf; a leaf at the deepest level that holds more keeps the rest
  // in `overflow`, at the place `overflow_of` gives for its block.  A new
  // block's places are left unwritten: a leaf's places past its count are
  // never read.
  EntryList blocks;
  std::vector<std::int32_t> overflow_of;
  std::vector<std::vector<Entry>> overflow;
  std::vector<Entry> elsewhere;
};

// The block of a leaf's points in `blocks`.
inline std::size_t leaf_block(const MeshPointIndex::Cell& leaf) {
  return static_cast<std::size_t>(-1 - leaf.first_child);
}

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
// their coordinates, in the order visit_entries_in_box visits them.
void entries_in_box(const MeshPointIndex& index, double xlo, double xhi, double ylo, double yhi,
                    MeshPointIndex::EntryList& out);

// The same, one push at each point that passes the tests: the reference
// for entries_in_box, kept for tests and benchmarks.
void entries_in_box_by_visits(const MeshPointIndex& index, double xlo, double xhi, double ylo, double yhi,
                              MeshPointIndex::EntryList& out);

// Hands each run of points that a box can hold to on_run(first, count), in
// a set order: the points kept elsewhere, then leaf by leaf, each leaf's
// block before its overflow; stops at the first run for which on_run is
// true, and returns whether one was.  Only leaves the box reaches are
// visited; the points of a run must still be tested against the box.
template <typename OnRun>
bool visit_runs_in_box(const MeshPointIndex& index, double xlo, double xhi, double ylo, double yhi, OnRun on_run) {
  if (!index.elsewhere.empty() && on_run(index.elsewhere.data(), index.elsewhere.size())) return true;
  if (index.cells.empty()) return false;
  std::int32_t stack[4 * kMeshIndexDeepest + 8];
  std::int32_t top = 0;
  stack[top++] = 0;
  while (top > 0) {
    const MeshPointIndex::Cell& cell = index.cells[static_cast<std::size_t>(stack[--top])];
    if (cell.first_child < 0) {
      const std::size_t block = leaf_block(cell);
      const std::int32_t held = std::min(cell.count, kMeshIndexLeafPoints);
      if (on_run(index.blocks.data() + block * kMeshIndexLeafPoints, static_cast<std::size_t>(held))) return true;
      if (cell.count > kMeshIndexLeafPoints) {
        const std::vector<MeshPointIndex::Entry>& rest =
            index.overflow[static_cast<std::size_t>(index.overflow_of[block])];
        if (on_run(rest.data(), rest.size())) return true;
      }
      continue;
    }
    // A child is passed over only when none of its points can pass the
    // box's tests: the west children hold the points with x < mid_x, by
    // the very comparison that placed them, so with xlo >= mid_x every one
    // fails x >= xlo; likewise the east ones with xhi < mid_x, and the
    // south and north ones.  The children's own corners are never read.
    // A box with no number for a side passes over the children that side
    // decides, whose points would all fail its tests.
    const bool west = xlo < cell.mid_x;
    const bool east = xhi >= cell.mid_x;
    if (yhi >= cell.mid_y) {
      if (east) stack[top++] = cell.first_child + 3;
      if (west) stack[top++] = cell.first_child + 2;
    }
    if (ylo < cell.mid_y) {
      if (east) stack[top++] = cell.first_child + 1;
      if (west) stack[top++] = cell.first_child;
    }
  }
  return false;
}

// Visits the points with xlo <= x <= xhi and ylo <= y <= yhi, in the order
// of visit_runs_in_box, making the same comparisons as a scan over every
// point would, and stops at the first for which stop(entry) is true;
// returns whether one was.
template <typename Stop>
bool visit_entries_in_box(const MeshPointIndex& index, double xlo, double xhi, double ylo, double yhi, Stop stop) {
  return visit_runs_in_box(index, xlo, xhi, ylo, yhi, [&](const MeshPointIndex::Entry* run, std::size_t count) {
    for (std::size_t i = 0; i < count; ++i) {
      const MeshPointIndex::Entry& e = run[i];
      if (e.x >= xlo && e.x <= xhi && e.y >= ylo && e.y <= yhi && stop(e)) return true;
    }
    return false;
  });
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
