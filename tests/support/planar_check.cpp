#include "support/planar_check.h"

#include <algorithm>
#include <cmath>

namespace tesseramill_test {

namespace {

double signed_doubled_area(const std::vector<double>& xy) {
  const std::size_t n = xy.size() / 2;
  double doubled = 0.0;
  for (std::size_t i = 0; i < n; ++i) {
    const std::size_t j = (i + 1) % n;
    doubled += (xy[2 * i] - xy[0]) * (xy[2 * j + 1] - xy[1]) - (xy[2 * j] - xy[0]) * (xy[2 * i + 1] - xy[1]);
  }
  return doubled;
}

}  // namespace

double clipped_area(std::vector<double> subject, std::vector<double> clip) {
  if (signed_doubled_area(clip) < 0.0) {
    std::vector<double> turned;
    for (std::size_t k = clip.size(); k >= 2; k -= 2) {
      turned.push_back(clip[k - 2]);
      turned.push_back(clip[k - 1]);
    }
    clip = turned;
  }
  const std::size_t m = clip.size() / 2;
  for (std::size_t j = 0; j < m && !subject.empty(); ++j) {
    const double ax = clip[2 * j];
    const double ay = clip[2 * j + 1];
    const double bx = clip[2 * ((j + 1) % m)];
    const double by = clip[2 * ((j + 1) % m) + 1];
    auto side = [&](double x, double y) { return (bx - ax) * (y - ay) - (by - ay) * (x - ax); };
    std::vector<double> out;
    const std::size_t n = subject.size() / 2;
    for (std::size_t i = 0; i < n; ++i) {
      const double px = subject[2 * i];
      const double py = subject[2 * i + 1];
      const double qx = subject[2 * ((i + 1) % n)];
      const double qy = subject[2 * ((i + 1) % n) + 1];
      const double sp = side(px, py);
      const double sq = side(qx, qy);
      if (sp >= 0) {
        out.push_back(px);
        out.push_back(py);
      }
      if ((sp >= 0) != (sq >= 0)) {
        const double t = sp / (sp - sq);
        out.push_back(px + t * (qx - px));
        out.push_back(py + t * (qy - py));
      }
    }
    subject = out;
  }
  return subject.size() < 6 ? 0.0 : std::fabs(0.5 * signed_doubled_area(subject));
}

bool inside_polygon(const std::vector<double>& xy, double x, double y) {
  const std::size_t n = xy.size() / 2;
  bool inside = false;
  for (std::size_t i = 0, j = n - 1; i < n; j = i++) {
    const double xi = xy[2 * i], yi = xy[2 * i + 1], xj = xy[2 * j], yj = xy[2 * j + 1];
    if ((yi > y) != (yj > y) && x < xi + (y - yi) * (xj - xi) / (yj - yi)) inside = !inside;
  }
  return inside;
}

double polyline_length(const std::vector<double>& xy) {
  double length = 0.0;
  for (std::size_t k = 2; k + 1 < xy.size(); k += 2) length += std::hypot(xy[k] - xy[k - 2], xy[k + 1] - xy[k - 1]);
  return length;
}

double length_inside(const std::vector<double>& line, const std::vector<double>& outer,
                     const std::vector<std::vector<double>>& holes) {
  std::vector<const std::vector<double>*> rings = {&outer};
  for (const std::vector<double>& hole : holes) rings.push_back(&hole);
  double inside_length = 0.0;
  for (std::size_t k = 2; k + 1 < line.size(); k += 2) {
    const double ax = line[k - 2], ay = line[k - 1], bx = line[k], by = line[k + 1];
    std::vector<double> cuts = {0.0, 1.0};
    for (const std::vector<double>* ring : rings) {
      const std::size_t n = ring->size() / 2;
      for (std::size_t i = 0; i < n; ++i) {
        const std::size_t j = (i + 1) % n;
        const double px = (*ring)[2 * i], py = (*ring)[2 * i + 1];
        const double ex = (*ring)[2 * j] - px, ey = (*ring)[2 * j + 1] - py;
        const double d = (bx - ax) * ey - (by - ay) * ex;
        if (d == 0.0) continue;
        const double t = ((px - ax) * ey - (py - ay) * ex) / d;
        const double u = ((px - ax) * (by - ay) - (py - ay) * (bx - ax)) / d;
        if (t > 0.0 && t < 1.0 && u >= 0.0 && u <= 1.0) cuts.push_back(t);
      }
    }
    std::sort(cuts.begin(), cuts.end());
    const double length = std::hypot(bx - ax, by - ay);
    for (std::size_t c = 1; c < cuts.size(); ++c) {
      const double tm = 0.5 * (cuts[c - 1] + cuts[c]);
      const double mx = ax + tm * (bx - ax), my = ay + tm * (by - ay);
      bool inside = inside_polygon(outer, mx, my);
      for (const std::vector<double>& hole : holes) inside = inside && !inside_polygon(hole, mx, my);
      if (inside) inside_length += (cuts[c] - cuts[c - 1]) * length;
    }
  }
  return inside_length;
}

void point_along(const std::vector<double>& line, double s, double& x, double& y) {
  x = line[0];
  y = line[1];
  for (std::size_t k = 2; k + 1 < line.size(); k += 2) {
    const double length = std::hypot(line[k] - line[k - 2], line[k + 1] - line[k - 1]);
    if (s <= length || k + 2 >= line.size()) {
      const double t = length > 0.0 ? s / length : 0.0;
      x = line[k - 2] + t * (line[k] - line[k - 2]);
      y = line[k - 1] + t * (line[k + 1] - line[k - 1]);
      return;
    }
    s -= length;
  }
}

}  // namespace tesseramill_test
