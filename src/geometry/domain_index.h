// An index of each ring's edges that decides, for points and for whole
// rectangles, what point_in_polygon's angle sum would decide, without an
// arc tangent per vertex.
//
// Far from every edge the angle sum counts the turns of the ring round the
// point, which is its winding number; an exact count of the edges that
// cross a ray from the point gives the same number.  Within a small margin
// of an edge the angle sum itself decides, since there its straight-angle
// tolerance and its exact-vertex test come into play.
#pragma once

#include <cstdint>
#include <vector>

#include "geometry/cell_grid.h"
#include "geometry/segment_index.h"

namespace tesseramill {

// Where a point or a rectangle lies against one ring, as point_in_polygon's
// location: -1 outside, 0 on the boundary, 1 inside.  A rectangle whose
// points do not all agree is kMixed.
inline constexpr int kOutside = -1;
inline constexpr int kOnBoundary = 0;
inline constexpr int kInside = 1;
inline constexpr int kMixed = 2;

struct RingIndex {
  // The ring as point_in_polygon takes it: `count` contiguous x,y pairs.
  const double* vertices = nullptr;
  std::int32_t count = 0;
  // False for a ring the index cannot serve (fewer than two distinct
  // vertices, or values that are not finite): every query takes the angle sum.
  bool usable = false;

  // Edge e runs from vertex e to vertex e+1, the last one back to vertex 0;
  // within `near[e]` of it a point is decided by the angle sum.
  std::int32_t edge_count = 0;
  std::vector<double> near;

  // Square cells covering the ring's vertices widened by the largest margin.
  CellGrid grid;
  // The edges that come within their margin of cell c:
  // cell_edges[cell_start[c] .. cell_start[c+1]).
  std::vector<std::int32_t> cell_start;
  std::vector<std::int32_t> cell_edges;
  // The winding number of a cell that no edge comes near; the same at every
  // point of the cell.
  std::vector<std::int32_t> cell_winding;
  // The edges whose heights reach into row j, widened by their margins:
  // row_edges[row_start[j] .. row_start[j+1]).  A horizontal ray from a
  // point of the row can cross no other edge.  The rows are a share of a
  // cell high (kRowsPerCell rows to a cell), so that a ray meets few edges
  // that do not span its height.
  std::int32_t row_count = 0;
  double row_inverse_h = 1.0;
  std::vector<std::int32_t> row_start;
  std::vector<std::int32_t> row_edges;
};

// Indexes the ring of `count` x,y pairs at `vertices`, which must outlive
// the index and stay unchanged.
RingIndex build_ring_index(const double* vertices, std::int32_t count);

// The location of (x, y) against the ring: the same as
// point_in_polygon(x, y, vertices, count).location.
int locate_in_ring(const RingIndex& ring, double x, double y);

// The location shared by every point of the rectangle, or kMixed when the
// index cannot tell that all share one (an edge comes near the rectangle).
int locate_rectangle_in_ring(const RingIndex& ring, double xlo, double xhi, double ylo, double yhi);

// The rings of the run: the domain's boundaries, and the inner polygons
// whose caps the separation field applies.
struct DomainIndex {
  bool built = false;
  RingIndex outer;
  std::vector<RingIndex> holes;
  std::vector<RingIndex> polygons;
  // The segments of the outer boundary and then of each hole, by place:
  // for the clearance of the inner lines' points and for the emplacement.
  SegmentIndex segments;
};

}  // namespace tesseramill
