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

// assemble_cell_polygons and measure_cells in one, for a pass whose cell
// corners nothing reads: one that writes no files and is not the last, so
// that the next pass assembles every cell again before anything reads
// them.  The plain cells' corners are not written to cell_vertices: each
// cell's are gathered from its column and the triangles' centroids straight
// into the buffer that measure_cells would copy them into, the same values
// in the same order, so its area and centroid are the same bits.  Every
// other table is written as the two steps write it: the counts, the first
// corners and the codes of every cell (number_grid_vertices reads the whole
// list of codes, entries left from earlier passes included), and the
// inner and ring points' corners.  The failures are the two steps', met in
// the same order.  Spared the writing and reading back of some 100 MB of
// corners a pass, the million cells' second pass took 0.027 s against
// 0.049 s for the two steps (medians of 9 pairs, the two in turn).
void assemble_and_measure_cells(RunState& state);

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
