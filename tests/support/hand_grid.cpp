#include "support/hand_grid.h"

namespace tesseramill_test {

tesseramill::DisvGrid unit_squares(int nx, int ny, const std::set<int>& left_out) {
  tesseramill::DisvGrid grid;
  grid.nlay = 1;
  grid.nvert = (nx + 1) * (ny + 1);
  for (int j = 0; j <= ny; ++j) {
    for (int i = 0; i <= nx; ++i) {
      grid.vertices.push_back(i);
      grid.vertices.push_back(j);
    }
  }
  auto vertex = [&](int i, int j) { return j * (nx + 1) + i + 1; };
  grid.cell_start.push_back(0);
  for (int j = 0; j < ny; ++j) {
    for (int i = 0; i < nx; ++i) {
      if (left_out.count(j * nx + i + 1)) continue;
      // Clockwise with y up: lower left, upper left, upper right, lower right.
      for (int v : {vertex(i, j), vertex(i, j + 1), vertex(i + 1, j + 1), vertex(i + 1, j)}) {
        grid.cell_vertices.push_back(v);
      }
      grid.cell_start.push_back(static_cast<std::int32_t>(grid.cell_vertices.size()));
      grid.centres.push_back(i + 0.5);
      grid.centres.push_back(j + 0.5);
    }
  }
  grid.ncpl = static_cast<std::int32_t>(grid.cell_start.size() - 1);
  return grid;
}

}  // namespace tesseramill_test
