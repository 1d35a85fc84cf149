// Line-level reading shared by the BLN polygon, line and point readers.
#pragma once

#include <cstdint>
#include <string>

#include "common/run_state.h"
#include "input/line_reader.h"

namespace tesseramill {

enum class CountStatus { kOk, kEnd, kBad };

// Reads the count at the head of a group: the first token of the next line
// whose first 100 characters are not blank, delimited by a blank, comma or
// tab and cut to 30 characters.  A token holding a point, or one that is no
// integer, is bad.
CountStatus read_group_count(LineReader& reader, std::int32_t& count);

// Reads the next vertex line that is not blank, counting every line read in
// `line_number`, and takes x, y and, when `with_separation`, the separation
// from it.  Any fault ends the run with the reader's message for `file`.
void read_vertex_line(RunState& state, LineReader& reader, const std::string& file,
                      std::int32_t& line_number, bool with_separation, double& x, double& y,
                      double& separation);

}  // namespace tesseramill
