#include "emplacement/minimum_separation.h"

#include <algorithm>
#include <cmath>
#include <numeric>
#include <vector>

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
  std::vector<std::int32_t> order(static_cast<std::size_t>(n));
  std::iota(order.begin(), order.end(), 0);
  std::sort(order.begin(), order.end(), [p](std::int32_t a, std::int32_t b) { return p[2 * a] < p[2 * b]; });
  // The squared distance of a pair is the same bit for bit whichever point
  // comes first, since a rounded difference only changes sign when its
  // operands swap.  For a point, the later points in x order have
  // differences in x that only grow, and their squares with them; once that
  // square reaches min2, the rounded sum with dy * dy does too, so no later
  // point can lower min2 and the scan moves on.
  double min2 = kLargest;
  for (std::size_t i = 0; i < order.size(); ++i) {
    const double xi = p[2 * order[i]];
    const double yi = p[2 * order[i] + 1];
    for (std::size_t j = i + 1; j < order.size(); ++j) {
      const double dx = xi - p[2 * order[j]];
      const double dx2 = dx * dx;
      if (dx2 >= min2) break;
      const double dy = yi - p[2 * order[j] + 1];
      min2 = std::min(min2, dx2 + dy * dy);
    }
  }
  return std::sqrt(min2);
}

}  // namespace tesseramill
