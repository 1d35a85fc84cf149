// The mesh points by place, kept up to date as points are appended, so that
// a seed's near list is found without a scan over every mesh point.
#pragma once

#include <cstdint>
#include <vector>

namespace tesseramill {

// A quadtree of square cells over a fixed region.  A cell holds up to
// kLeafPoints point numbers before it is split in four; points outside the
// region, or no number at all, are kept in a list of their own that every
// query looks at.
struct MeshPointIndex {
  struct Cell {
    double x0 = 0.0;       // lower left corner
    double y0 = 0.0;
    double size = 0.0;     // side
    std::int32_t first_child = -1;  // the four children follow one another
    std::int32_t depth = 0;
    std::vector<std::int32_t> points;  // point numbers of a leaf, 1-based
  };
  const std::vector<double>* coordinates = nullptr;  // x,y pairs of the mesh points
  std::vector<Cell> cells;
  std::vector<std::int32_t> elsewhere;
};

// Starts an index over the square region that holds the rectangle
// [xlo, xhi] x [ylo, yhi]; `coordinates` are the mesh points' x,y pairs.
void start_mesh_point_index(MeshPointIndex& index, const std::vector<double>* coordinates, double xlo, double xhi,
                            double ylo, double yhi);

// Adds mesh point `number` (1-based), whose coordinates are already stored.
void insert_mesh_point(MeshPointIndex& index, std::int32_t number);

// The numbers of the points with xlo <= x <= xhi and ylo <= y <= yhi, in
// ascending order, as a scan over every point would list them.
void points_in_box(const MeshPointIndex& index, double xlo, double xhi, double ylo, double yhi,
                   std::vector<std::int32_t>& out);

}  // namespace tesseramill
