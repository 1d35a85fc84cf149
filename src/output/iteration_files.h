// Map files and tables of the triangles and cells, written in the first and
// the last Lloyd pass with the pass number in their names.
#pragma once

#include "common/run_state.h"

namespace tesseramill {

void write_triangle_map_files(RunState& state);
void write_polygon_map_files(RunState& state);
void write_polygon_bln_file(RunState& state);
void write_polygon_centroid_table(RunState& state);

}  // namespace tesseramill
