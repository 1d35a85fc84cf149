// The segments of the outer and inner boundaries, as read from their files,
// by place: which segments can come within a given distance of a rectangle.
#pragma once

#include <cstdint>
#include <vector>

#include "geometry/cell_grid.h"

namespace tesseramill {

struct SegmentIndex {
  bool built = false;
  CellGrid grid;
  // Each segment's ends, x1, y1, x2, y2, numbered in the order of the rings
  // and of their vertices.
  std::vector<double> ends;
  // The largest magnitude of any end's coordinate.
  double magnitude = 0.0;
  // Each segment's line as nx x + ny y = c, (nx, ny) of length one, and a
  // slack of 1e-12 of its ends' sizes, against which the distance from the
  // line may be weighed (see segment_lines); the slack is INFINITY for a
  // segment too short, too long or too far out to have a line worth one.
  std::vector<double> lines;
  // The segments that pass through cell c: cell_segments[cell_start[c] .. cell_start[c+1]).
  std::vector<std::int32_t> cell_start;
  std::vector<std::int32_t> cell_segments;
};

// Indexes the segments from vertex k to vertex k+1 of each ring of
// `counts[r]` x,y pairs at `rings[r]`.  Not built when a value is no finite
// number; callers then look at every segment.
void build_segment_index(SegmentIndex& index, const std::vector<const double*>& rings,
                         const std::vector<std::int32_t>& counts);

// Works out `lines` from `ends`, four values a segment.
void segment_lines(SegmentIndex& index);

// The numbers of every segment that comes within `reach` of the rectangle,
// and possibly of a few more, in ascending order and each once.
void segments_near(const SegmentIndex& index, double xlo, double xhi, double ylo, double yhi, double reach,
                   std::vector<std::int32_t>& out);

// Calls visit(s) for the same segments as segments_near, cell by cell, so
// that a segment may come more than once and in no particular order, until
// visit returns true; tells whether it did.
template <typename Visit>
bool any_segment_near(const SegmentIndex& index, double xlo, double xhi, double ylo, double yhi, double reach,
                      Visit visit);

// Share of a cell by which segments are widened when they are placed in
// cells, and rectangles when they are looked up, against rounding.
inline constexpr double kSegmentCellSlack = 0.01;

template <typename Visit>
bool any_segment_near(const SegmentIndex& index, double xlo, double xhi, double ylo, double yhi, double reach,
                      Visit visit) {
  const CellGrid& g = index.grid;
  // The point of a segment nearest the rectangle lies in the rectangle
  // widened by `reach`, and the segment is listed in that point's cell.
  const double widen = reach + kSegmentCellSlack * g.h;
  const CellSpan span = cells_touched(g, xlo - widen, xhi + widen, ylo - widen, yhi + widen);
  if (span.outside) return false;
  for (std::int32_t j = span.j0; j <= span.j1; ++j) {
    for (std::int32_t i = span.i0; i <= span.i1; ++i) {
      const std::size_t c = g.cell(i, j);
      for (std::int32_t m = index.cell_start[c]; m < index.cell_start[c + 1]; ++m) {
        if (visit(index.cell_segments[static_cast<std::size_t>(m)])) return true;
      }
    }
  }
  return false;
}

}  // namespace tesseramill
