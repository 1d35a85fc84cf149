// Readers of the BLN polygon, line and point files.
#pragma once

#include <cstdint>
#include <string>

#include "common/run_state.h"
#include "input/boundary_ring.h"
#include "input/line_reader.h"

namespace tesseramill {

// Reads one group of a BLN file into `ring`.  `reader` holds the open file
// between groups of one file: with `open_file` it is opened first and
// `line_number` starts again at 1; with `close_file` it is closed after.
void read_bln_polyline(RunState& state, LineReader& reader, const std::string& file_name,
                       BoundaryRing& ring, bool read_separations, bool open_file, bool close_file,
                       std::int32_t& line_number);

// Reads the one group of an inner points file.
void read_point_file(RunState& state, const std::string& file_name, PointSet& points);

// Tests the closure of a ring read from `file_name`.
void test_ring_closure(RunState& state, const BoundaryRing& ring, const std::string& file_name);

}  // namespace tesseramill
