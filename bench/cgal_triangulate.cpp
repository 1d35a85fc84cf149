// tesseramill-cgal-bench: the yardstick for DTRIS2.  Triangulates the points
// of a file that `tesseramill-bench --triangulation SIZE --points FILE`
// wrote (the mesh points of a family model as DTRIS2 sees them) with CGAL's
// Delaunay triangulation (exact predicates, inexact constructions, the
// points inserted as one range, which CGAL orders along a space-filling curve
// first), three times, and prints the median.
//
//   tesseramill-cgal-bench FILE
//
// Built only where CGAL is installed (Debian: libcgal-dev); no program of the
// project links it.
#include <CGAL/Delaunay_triangulation_2.h>
#include <CGAL/Exact_predicates_inexact_constructions_kernel.h>
#include <CGAL/version.h>

#include <algorithm>
#include <array>
#include <chrono>
#include <cstdio>
#include <fstream>
#include <iostream>
#include <vector>

namespace {

using Kernel = CGAL::Exact_predicates_inexact_constructions_kernel;
using Triangulation = CGAL::Delaunay_triangulation_2<Kernel>;
using Point = Kernel::Point_2;

// The file holds x and y of each point as doubles in the machine's byte
// order, one pair after the other.
bool read_points(const char* name, std::vector<Point>& points) {
  std::ifstream in(name, std::ios::binary);
  if (!in) return false;
  std::vector<double> xy;
  double value = 0.0;
  while (in.read(reinterpret_cast<char*>(&value), sizeof value)) xy.push_back(value);
  if (xy.size() % 2 != 0) return false;
  for (std::size_t k = 0; k < xy.size(); k += 2) points.emplace_back(xy[k], xy[k + 1]);
  return true;
}

}  // namespace

int main(int argc, char** argv) {
  if (argc != 2) {
    std::cerr << "usage: tesseramill-cgal-bench FILE\n";
    return 2;
  }
  std::vector<Point> points;
  if (!read_points(argv[1], points) || points.size() < 3) {
    std::cerr << "cannot read the points of " << argv[1] << "\n";
    return 1;
  }
  std::array<double, 3> seconds{};
  std::size_t faces = 0;
  for (double& t : seconds) {
    const auto start = std::chrono::steady_clock::now();
    Triangulation triangulation;
    triangulation.insert(points.begin(), points.end());
    faces = triangulation.number_of_faces();
    t = std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
  }
  std::sort(seconds.begin(), seconds.end());
  char median[32];
  std::snprintf(median, sizeof median, "%.3f", seconds[1]);
  std::cout << "CGAL " << CGAL_VERSION_STR << " Delaunay_triangulation_2 of " << points.size() << " points: " << faces
            << " triangles, " << median << " s (median of 3)\n";
  return 0;
}
