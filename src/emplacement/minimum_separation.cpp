#include "emplacement/minimum_separation.h"

#include <algorithm>
#include <cmath>
#include <vector>

#include "common/parallel.h"

namespace tesseramill {

namespace {

constexpr double kLargest = 1.7976931348623157e+308;

}  // namespace

double minimum_separation_reference(const MeshPointList& mesh) {
  double min2 = kLargest;
  const double* p = mesh.mesh_points.data();
  for (std::int32_t a = 0; a < mesh.mesh_point_count; ++a) {
    for (std::int32_t b = a + 1; b < mesh.mesh_point_count; ++b) {
      const double dx = p[2 * a] - p[2 * b];
      const double dy = p[2 * a + 1] - p[2 * b + 1];
      min2 = std::min(min2, dx * dx + dy * dy);
    }
  }
  return std::sqrt(min2);
}

double minimum_separation(const MeshPointList& mesh) {
  const double* p = mesh.mesh_points.data();
  const std::int32_t n = mesh.mesh_point_count;
  for (std::int32_t a = 0; a < 2 * n; ++a) {
    // Values that are no numbers cannot be sorted; the pairs decide.
    if (!std::isfinite(p[a])) return minimum_separation_reference(mesh);
  }
  // The points themselves, sorted by x: the scan below then reads them in
  // the order it visits them.  Points of equal x may stand in any order,
  // since the difference in x of such a pair is 0 and never stops the scan.
  struct Place {
    double x;
    double y;
  };
  std::vector<Place> sorted(static_cast<std::size_t>(n));
  for (std::int32_t a = 0; a < n; ++a) sorted[static_cast<std::size_t>(a)] = {p[2 * a], p[2 * a + 1]};
  sort_in_parts(sorted.begin(), sorted.end(), [](const Place& a, const Place& b) { return a.x < b.x; });
  // The squared distance of a pair is the same bit for bit whichever point
  // comes first, since a rounded difference only changes sign when its
  // operands swap.  For a point, the later points in x order have
  // differences in x that only grow, and their squares with them; once that
  // square reaches min2, the rounded sum with dy * dy does too, so no later
  // point can lower min2 and the scan moves on.
  //
  // The first points of the pairs are shared between the two cores, each
  // part with a minimum of its own: by the same argument a part's minimum
  // is that of all the pairs whose first point is its own, the smaller of
  // the two minima is that of all pairs, and taking a minimum rounds
  // nothing.
  double part_min2[2] = {kLargest, kLargest};
  run_in_parts(sorted.size(), [&](std::size_t begin, std::size_t end, int part) {
    double min2 = kLargest;
    for (std::size_t i = begin; i < end; ++i) {
      const double xi = sorted[i].x;
      const double yi = sorted[i].y;
      for (std::size_t j = i + 1; j < sorted.size(); ++j) {
        const double dx = xi - sorted[j].x;
        const double dx2 = dx * dx;
        if (dx2 >= min2) break;
        const double dy = yi - sorted[j].y;
        min2 = std::min(min2, dx2 + dy * dy);
      }
    }
    part_min2[part] = min2;
    return PartFailure{};
  });
  const double min2 = std::min(part_min2[0], part_min2[1]);
  return std::sqrt(min2);
}

}  // namespace tesseramill
