#include "output/iteration_files.h"

namespace tesseramill {

void write_triangle_map_files(RunState&) {}
void write_polygon_map_files(RunState&) {}
void write_polygon_bln_file(RunState&) {}
void write_polygon_centroid_table(RunState&) {}

}  // namespace tesseramill
