#include "geometry/point_in_polygon.h"

#include <cmath>

#include "common/correctly_rounded.h"

namespace tesseramill {

namespace {

constexpr double kPi = 3.141592653589793;
constexpr double kTwoPi = 6.283185307179586;
// An edge seen under an angle this close to pi has the point on it.
constexpr double kStraightAngleTolerance = 1.2566370614359174e-9;
constexpr double kReciprocalTwoPi = 0.15915494309189535;
constexpr double kWindingBias = 0.2;

// The signed angle step from `previous` to `angle`, or false when the two
// directions are opposite, so that the point lies on the edge between them.
bool angle_step(double angle, double previous, double& delta) {
  delta = std::fabs(angle - previous);
  if (std::fabs(delta - kPi) < kStraightAngleTolerance) return false;
  if (delta > kPi) delta -= kTwoPi;
  if (angle < previous) delta = -delta;
  return true;
}

}  // namespace

PolygonLocation point_in_polygon(double x, double y, const double* vertices, std::int32_t n) {
  PolygonLocation result;
  if (n < 1) return result;
  const double dx0 = vertices[0] - x;
  const double dy0 = vertices[1] - y;
  if (dx0 == 0.0 && dy0 == 0.0) {
    result.location = 0;
    return result;
  }
  std::int32_t m = n;
  if (vertices[0] == vertices[2 * (n - 1)] && vertices[1] == vertices[2 * (n - 1) + 1]) m = n - 1;
  if (m < 2) return result;

  const double first_angle = cr_atan2(dy0, dx0);
  double previous = first_angle;
  double sum = 0.0;
  double delta = 0.0;
  for (std::int32_t i = 1; i < m; ++i) {
    const double dx = vertices[2 * i] - x;
    const double dy = vertices[2 * i + 1] - y;
    if (dx == 0.0 && dy == 0.0) {
      result.location = 0;
      return result;
    }
    const double angle = cr_atan2(dy, dx);
    if (!angle_step(angle, previous, delta)) {
      result.location = 0;
      return result;
    }
    sum += delta;
    previous = angle;
  }
  if (!angle_step(first_angle, previous, delta)) {
    result.location = 0;
    return result;
  }
  sum += delta;

  // A point that is not a finite number has no angles to add up; its sum
  // is no number either, and it counts as outside.
  const double turns = std::fabs(sum) * kReciprocalTwoPi + kWindingBias;
  if (!(turns < 2147483648.0)) return result;
  const int w = static_cast<int>(turns);
  result.winding = w;
  if (w != 0) {
    result.location = 1;
    if (sum < 0.0) result.winding = -w;
  }
  return result;
}

}  // namespace tesseramill
