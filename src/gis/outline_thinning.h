// Thinning of digitised outlines: Douglas-Peucker, keeping every vertex
// that the outline cannot lose without leaving a band of the tolerance.
#pragma once

#include <vector>

namespace tesseramill {

// The vertices of the line (x,y pairs) that Douglas-Peucker keeps at
// `tolerance`; the ends always stay.  A tolerance of 0 keeps every vertex.
std::vector<double> thin_line(const std::vector<double>& xy, double tolerance);

// The same for a closed ring (last vertex repeating the first), which keeps
// at least three distinct vertices and stays closed.
std::vector<double> thin_ring(const std::vector<double>& xy, double tolerance);

}  // namespace tesseramill
