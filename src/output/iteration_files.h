// Map files and tables of the triangles and cells, written in the first and
// the last Lloyd pass with the pass number in their names.
#pragma once

#include "common/run_state.h"
#include "output/text_file.h"

namespace tesseramill {

// The triangle map files of the pass, opened; filling them writes their
// lines and closes them.  Opening ends the run on a name that cannot be
// written, with nothing written.
struct TriangleMapFiles {
  OutputFile mif;
  OutputFile mid;
};
void open_triangle_map_files(RunState& state, TriangleMapFiles& files);
void fill_triangle_map_files(const RunState& state, TriangleMapFiles& files);

// The pass's cell files (polygon MIF/MID pair, BLN, centroid table), in the
// same way; a file that cannot be opened ends the run with the ones before
// it written in full.
struct CellFiles {
  OutputFile mif;
  OutputFile mid;
  OutputFile bln;
  OutputFile dat;
};
void open_cell_files(RunState& state, CellFiles& files);
void fill_cell_files(const RunState& state, CellFiles& files, FillCores cores = FillCores::both);

// Each file kind opened and written at once.
void write_triangle_map_files(RunState& state);
void write_polygon_map_files(RunState& state);
void write_polygon_bln_file(RunState& state);
void write_polygon_centroid_table(RunState& state);

}  // namespace tesseramill
