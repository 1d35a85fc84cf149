// A picture of a grid as an SVG file: the cells coloured by area on a log
// scale, with the boundaries, zones, lines and points drawn over them.
#pragma once

#include <string>
#include <vector>

#include "report/disv_grid.h"
#include "report/grid_quality.h"

namespace tesseramill {

struct PictureLayers {
  DomainRings rings;                       // in the grid's frame
  std::vector<std::vector<double>> zones;  // closed rings of the inner polygons, grid's frame
  std::vector<std::vector<double>> lines;  // open polylines, grid's frame
  std::vector<double> points;              // x,y pairs, grid's frame
  std::string title;
  // Added to a place in the grid's frame to give its world coordinate, for
  // the axes.
  double world_x0 = 0.0;
  double world_y0 = 0.0;
};

// The whole SVG document.  Kept light for large grids: one path per cell of
// integer coordinates, each corner after the first a step from the one
// before, and the fill from one of a few classes of area.
std::string grid_picture(const DisvGrid& disv, const PictureLayers& layers);

}  // namespace tesseramill
