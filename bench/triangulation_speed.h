// Timing of DTRIS2 on the mesh points of a family model: the fast routine,
// the literal one, and CGAL's triangulation of the same points as a
// yardstick where the benchmark-only program that runs it was built.
#pragma once

#include <string>

namespace tesseramill_bench {

// Times DTRIS2 and its reference (median of three calls each) on the mesh
// points after the last Lloyd pass of the family's model of `size` cells
// with MAX_LLOYD 3, and checks that both give the same tables.  With a
// `points_file`, the points are read from it when it exists and written to
// it otherwise, so that later calls and CGAL take the very same points.
// Gives the exit status: 0 when both routines agree.
int time_triangulation(double size, const std::string& points_file);

}  // namespace tesseramill_bench
