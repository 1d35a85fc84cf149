// The geometry records read from the BLN files and extended by emplacement.
//
// Coordinates are held as contiguous x,y pairs: entry k (0-based) of a table
// of points is at [2k] and [2k+1].
#pragma once

#include <cstdint>
#include <vector>

namespace tesseramill {

// One closed ring or open polyline.  A ring is closed in memory: its last
// vertex, and later its last populated point, repeats the first.
struct BoundaryRing {
  std::int32_t closed = 0;  // -1 once a ring has passed the closure test; 0 for lines
  std::int32_t vertex_count = 0;
  std::vector<double> vertices;
  std::vector<double> vertex_separation;  // absent for inner polygons

  std::int32_t point_count = 0;
  std::vector<double> points;
  std::vector<double> point_separation;
  std::vector<std::int32_t> point_mesh_index;  // 0 for a refused point of an inner line
  std::int32_t omitted_count = 0;
};

// Inner points, each with its own separation.
struct PointSet {
  std::int32_t count = 0;
  std::vector<double> coords;
  std::vector<double> separation;
};

}  // namespace tesseramill
