// Whether MODFLOW 6 saw the grid that the grid file holds: its dimensions,
// every cell's vertex numbers, and the connections of every cell.
#pragma once

#include <cstdint>
#include <string>

#include "binary_grid.h"
#include "report/disv_grid.h"

namespace tesseramill_mf6check {

struct GridAgreement {
  bool agrees = false;
  std::string difference;               // the first difference found, for the screen
  std::int64_t connections_compared = 0;  // entries of JA other than the cells themselves
};

// Compares MODFLOW 6's binary grid with the grid file: NCELLS, NLAY, NCPL
// and NVERT; each cell's vertex list in IAVERT/JAVERT (the first vertex
// repeated at the end); and the connections in IA/JA: each cell's row
// begins with the cell itself, then holds exactly the cells of its layer
// that share a face with it through the same two vertex numbers in the
// grid file, and the cells above and below it.
GridAgreement compare_grids(const BinaryGrid& grb, const tesseramill::DisvGrid& disv);

}  // namespace tesseramill_mf6check
