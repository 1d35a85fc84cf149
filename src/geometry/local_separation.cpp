#include "geometry/local_separation.h"

#include <algorithm>
#include <cmath>

#include "geometry/point_in_polygon.h"

namespace tesseramill {

namespace {

struct GrowthConstants {
  double growth;
  double growth_less_one;
  double reciprocal_log_growth;
  // growth^1.5: below a = growth^1.5 the field has not started to rise.
  double rise_start;
  // A little under rise_start: for a at or below it the exponent is surely
  // negative, so the size is the source's own separation.
  double surely_flat;
};

GrowthConstants constants_for(double growth) {
  GrowthConstants k;
  k.growth = growth;
  k.growth_less_one = growth - 1.0;
  k.reciprocal_log_growth = 1.0 / std::log(growth);
  k.rise_start = std::pow(growth, 1.5);
  k.surely_flat = k.rise_start * (1.0 - 1e-9);
  return k;
}

// The size that one source of separation `s` at distance `d` asks for.
double source_size(const GrowthConstants& k, double d, double s) {
  const double a = d * k.growth_less_one / s + 1.0;
  double e = std::log(a) * k.reciprocal_log_growth + -1.5;
  e = std::max(0.0, e);
  return std::pow(k.growth, e) * s;
}

void fold_reference(double x, double y, const GrowthConstants& k, const double* coords,
                    const double* separations, std::int32_t count, double& result) {
  for (std::int32_t j = 0; j < count; ++j) {
    const double dx = x - coords[2 * j];
    const double dy = y - coords[2 * j + 1];
    const double size = source_size(k, std::sqrt(dx * dx + dy * dy), separations[j]);
    result = std::min(result, size);
  }
}

// Folds the same sizes as fold_reference into `result`, leaving out every
// source whose size cannot be below the result reached so far.  A source
// never asks for less than its own separation, and beyond
// (result * growth^1.5 - s) / (growth - 1) it asks for at least the result;
// a relative margin of 1e-9 covers the rounding of the logarithm and power.
void fold_fast(double x, double y, const GrowthConstants& k, const double* coords,
               const double* separations, std::int32_t count, double& result) {
  for (std::int32_t j = 0; j < count; ++j) {
    const double s = separations[j];
    if (s >= result) continue;
    const double dx = x - coords[2 * j];
    const double dy = y - coords[2 * j + 1];
    const double d2 = dx * dx + dy * dy;
    const double reach = (result * k.rise_start - s) / k.growth_less_one * (1.0 + 1e-9);
    if (d2 >= reach * reach) continue;
    const double d = std::sqrt(d2);
    const double a = d * k.growth_less_one / s + 1.0;
    const double size = a <= k.surely_flat ? s : source_size(k, d, s);
    result = std::min(result, size);
  }
}

template <typename Fold>
double field(const RunState& state, double x, double y, double growth, Fold fold) {
  double result = 1.7976931348623157e+308;
  const GrowthConstants k = constants_for(growth);
  for (const PointSet& points : state.inner_point_sets) {
    fold(x, y, k, points.coords.data(), points.separation.data(), points.count, result);
  }
  auto chain = [&](const BoundaryRing& ring) {
    fold(x, y, k, ring.points.data(), ring.point_separation.data(), ring.point_count, result);
  };
  chain(state.outer_boundary);
  for (const BoundaryRing& line : state.inner_lines) chain(line);
  for (const BoundaryRing& ring : state.inner_boundaries) chain(ring);
  for (const BoundaryRing& ring : state.inner_polygons) chain(ring);

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

}  // namespace

double local_separation(const RunState& state, double x, double y, double growth) {
  return field(state, x, y, growth, fold_fast);
}

double local_separation_reference(const RunState& state, double x, double y, double growth) {
  return field(state, x, y, growth, fold_reference);
}

}  // namespace tesseramill
