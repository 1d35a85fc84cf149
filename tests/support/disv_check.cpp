#include "support/disv_check.h"

#include <cmath>
#include <cstdlib>
#include <sstream>

namespace tesseramill_test {

DisvGrid read_disv(const std::string& text) {
  DisvGrid grid;
  std::istringstream in(text);
  std::string line;
  enum { kNone, kVertices, kCells } section = kNone;
  while (std::getline(in, line)) {
    grid.lines.push_back(line);
    std::istringstream words(line);
    std::string first;
    words >> first;
    if (line == "BEGIN VERTICES") {
      section = kVertices;
    } else if (line == "BEGIN CELL2D") {
      section = kCells;
    } else if (line.rfind("END ", 0) == 0) {
      section = kNone;
    } else if (first == "NLAY") {
      words >> grid.nlay;
    } else if (first == "NCPL") {
      words >> grid.ncpl;
    } else if (first == "NVERT") {
      words >> grid.nvert;
    } else if (section == kVertices) {
      double x = 0;
      double y = 0;
      words >> x >> y;
      grid.vertices[std::stoi(first)] = {x, y};
      ++grid.vertex_lines;
    } else if (section == kCells) {
      double cx = 0;
      double cy = 0;
      int count = 0;
      words >> cx >> cy >> count;
      std::vector<int> cell(static_cast<std::size_t>(count));
      for (int& v : cell) words >> v;
      grid.cells.push_back(cell);
      grid.centres.emplace_back(cx, cy);
    }
  }
  return grid;
}

double doubled_area(const DisvGrid& grid, const std::vector<int>& cell) {
  double a = 0.0;
  for (std::size_t k = 0; k < cell.size(); ++k) {
    const auto& p = grid.vertices.at(cell[k]);
    const auto& q = grid.vertices.at(cell[(k + 1) % cell.size()]);
    a += p.first * q.second - q.first * p.second;
  }
  return a;
}

std::vector<std::vector<double>> bln_groups(const std::string& bln_text) {
  std::istringstream in(bln_text);
  std::vector<std::vector<double>> groups;
  std::string line;
  while (std::getline(in, line)) {
    const int count = std::atoi(line.c_str());
    if (count <= 0) break;
    std::vector<double> group;
    for (int k = 0; k < count && std::getline(in, line); ++k) {
      std::istringstream words(line);
      double x = 0;
      double y = 0;
      words >> x >> y;
      group.push_back(x);
      group.push_back(y);
    }
    groups.push_back(group);
  }
  return groups;
}

double bln_ring_area(const std::string& bln_text) {
  std::istringstream in(bln_text);
  std::string line;
  std::getline(in, line);
  std::vector<std::pair<double, double>> points;
  while (std::getline(in, line)) {
    std::istringstream words(line);
    double x = 0;
    double y = 0;
    if (words >> x >> y) points.push_back({x, y});
  }
  double a = 0.0;
  for (std::size_t k = 0; k + 1 < points.size(); ++k) {
    a += points[k].first * points[k + 1].second - points[k + 1].first * points[k].second;
  }
  return std::fabs(a) * 0.5;
}

}  // namespace tesseramill_test
