#include "geometry/local_separation.h"

#include <algorithm>
#include <cmath>

#include "geometry/point_in_polygon.h"

namespace tesseramill {

namespace {

struct GrowthConstants {
  double growth_less_one;
  double reciprocal_log_growth;
};

// Folds the sizes of one family of sources into `result`.
void fold_sources(double x, double y, double growth, const GrowthConstants& k,
                  const double* coords, const double* separations, std::int32_t count,
                  double& result) {
  for (std::int32_t j = 0; j < count; ++j) {
    const double dx = x - coords[2 * j];
    const double dy = y - coords[2 * j + 1];
    const double d = std::sqrt(dx * dx + dy * dy);
    const double s = separations[j];
    const double a = d * k.growth_less_one / s + 1.0;
    double e = std::log(a) * k.reciprocal_log_growth + -1.5;
    e = std::max(0.0, e);
    const double size = std::pow(growth, e) * s;
    result = std::min(result, size);
  }
}

void fold_chain(double x, double y, double growth, const GrowthConstants& k,
                const BoundaryRing& ring, double& result) {
  fold_sources(x, y, growth, k, ring.points.data(), ring.point_separation.data(), ring.point_count,
               result);
}

}  // namespace

double local_separation(const RunState& state, double x, double y, double growth) {
  double result = 1.7976931348623157e+308;
  const GrowthConstants k{growth - 1.0, 1.0 / std::log(growth)};
  for (const PointSet& points : state.inner_point_sets) {
    fold_sources(x, y, growth, k, points.coords.data(), points.separation.data(), points.count,
                 result);
  }
  fold_chain(x, y, growth, k, state.outer_boundary, result);
  for (const BoundaryRing& line : state.inner_lines) fold_chain(x, y, growth, k, line, result);
  for (const BoundaryRing& ring : state.inner_boundaries) fold_chain(x, y, growth, k, ring, result);
  for (const BoundaryRing& ring : state.inner_polygons) fold_chain(x, y, growth, k, ring, result);

  if (state.smallest_max_separation > result) return result;

  const ControlData& c = state.control;
  for (std::size_t i = 0; i < state.inner_polygons.size(); ++i) {
    const BoundaryRing& polygon = state.inner_polygons[i];
    if (point_in_polygon(x, y, polygon.vertices.data(), polygon.vertex_count).location >= 0) {
      result = std::min(result, c.inner_polygon_max_separation[i]);
    }
  }
  return std::min(result, c.max_centroid_separation);
}

}  // namespace tesseramill
