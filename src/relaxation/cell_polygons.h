#pragma once

#include <cstdint>

#include "common/run_state.h"

namespace tesseramill {

// Reorders each mesh point's column of internal triangles into fan order.
void order_connected_triangles(RunState& state);

// Builds the corner lists of every cell: plain cells of triangle centroids,
// and ring cells closed along the ring through the ring point and the
// midpoints of its two ring segments.
void assemble_cell_polygons(RunState& state);

// Where the next cell goes: the last mesh point and the last corner written.
struct CellCursor {
  std::int32_t last_point = 0;
  std::int32_t last_vertex = 0;
};

// Builds the cells of one ring's points, advancing the cursor and
// edge_code_base.  Returns false, with the message in message_buffer, when a
// fan touches neither ring neighbour of its point.
bool populate_boundary_with_polys(RunState& state, CellCursor& cursor, const BoundaryRing& ring);

// The cell of the i-th point (1-based) of a ring, which is mesh point
// cursor.last_point + 1.
bool ring_point_cell(RunState& state, CellCursor& cursor, const BoundaryRing& ring, std::int32_t i);

// Sizes the cell tables for the cells of this pass.
void size_cell_tables(RunState& state);

// Works out the area and centroid of every cell.
void measure_cells(RunState& state);

struct AreaCentroid {
  double x = 0.0;
  double y = 0.0;
  double area = 0.0;
};

// Area (positive when the corners run anticlockwise) and centroid of the
// closed ring of `count` corners held as x,y pairs; the corners are shifted
// in place.
AreaCentroid polygon_area_centroid(std::int32_t count, double* corners);

}  // namespace tesseramill
