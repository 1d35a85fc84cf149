#pragma once

#include <cstdint>

#include "run/run_state.h"

namespace tesseramill {

// Reorders each mesh point's column of internal triangles into fan order.
void order_connected_triangles(RunState& state);

// Builds the corner lists of every cell: plain cells of triangle centroids,
// and ring cells closed along the ring through the ring point and the
// midpoints of its two ring segments.
void assemble_cell_polygons(RunState& state);

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
