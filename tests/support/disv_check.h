// An independent reading of a written DISV file, to judge the grid from the
// file alone.
#pragma once

#include <map>
#include <string>
#include <vector>

namespace tesseramill_test {

struct DisvGrid {
  int nlay = 0;
  int ncpl = 0;
  int nvert = 0;
  std::map<int, std::pair<double, double>> vertices;  // by vertex number
  int vertex_lines = 0;
  std::vector<std::vector<int>> cells;                 // vertex numbers of each cell
  std::vector<std::pair<double, double>> centres;      // the centre of each cell as written
  std::vector<std::string> lines;
};

DisvGrid read_disv(const std::string& text);

// Twice the signed area of a cell's polygon: negative when clockwise.
double doubled_area(const DisvGrid& grid, const std::vector<int>& cell);

// The groups of a BLN file, each as x,y pairs: a header whose first number
// counts the lines that follow, then x and y at the start of each line.
std::vector<std::vector<double>> bln_groups(const std::string& bln_text);

// Area of a closed ring read from a BLN file (first group, x and y columns).
double bln_ring_area(const std::string& bln_text);

}  // namespace tesseramill_test
