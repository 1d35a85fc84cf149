// Setting apart the vertex numbers of a grid file, so that MODFLOW 6 can
// read a grid of a million vertices or more.
//
// The mesher gives each vertex number of a cell line seven columns; from
// 1,000,000 vertices on a number fills its columns and runs into the one
// before it.  MODFLOW 6 reads the numbers between blanks, so such a file
// stops it at the first joined cell.  The fix rewrites the cell lines with
// every number in eight columns and leaves every other byte of the file as
// it was.
#pragma once

#include <string>

#include "common/run_state.h"
#include "output/text_file.h"
#include "report/disv_grid.h"

namespace tesseramill {

// The cell lines of `grid`, read from the file `name`, rewritten into `out`
// with the bytes of the file in `text`: every line outside the CELL2D block
// the cells came from, and each cell line up to its centre's y, stay as they
// are; the count follows in five columns and each vertex number in eight, up
// to 1000 numbers to a line.  A cell that does not begin a line of its own
// with its number, centre and count cannot be rewritten, and ends the run.
// With a `sink`, the text goes to it in pieces as it is made and `out`
// ends empty.
void set_numbers_apart(RunState& state, const std::string& name, const std::string& text, const DisvGrid& grid,
                       std::string& out, OutputFile* sink = nullptr);

// The whole fix of the grid file `name`, which `command` writes: reads and
// checks it as the report does; when its numbers already stand apart, says
// so and changes nothing.  Otherwise keeps the file as the mesher wrote it as
// name + ".orig" (unless that file is there already, from an earlier fix),
// writes the fixed grid under a temporary name and only then puts it in
// place of the original, so that a full disc or a cut run leaves the grid
// file whole.
void fix_grid_file(RunState& state, const std::string& name, const std::string& command);

}  // namespace tesseramill
