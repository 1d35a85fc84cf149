#include "gis/outline_thinning.h"

#include <cmath>
#include <cstdint>
#include <utility>

#include "common/correctly_rounded.h"

namespace tesseramill {

namespace {

// Distance of point p from the segment a-b.
double segment_distance(const double* a, const double* b, const double* p) {
  const double dx = b[0] - a[0];
  const double dy = b[1] - a[1];
  const double length2 = dx * dx + dy * dy;
  double t = 0.0;
  if (length2 > 0.0) {
    t = ((p[0] - a[0]) * dx + (p[1] - a[1]) * dy) / length2;
    t = t < 0.0 ? 0.0 : (t > 1.0 ? 1.0 : t);
  }
  return cr_hypot(p[0] - (a[0] + t * dx), p[1] - (a[1] + t * dy));
}

// Marks the vertices between first and last (exclusive) that Douglas-Peucker
// keeps.  An explicit stack instead of recursion, so that a layer of 10^5
// vertices in one outline cannot exhaust the call stack.
void mark_kept(const std::vector<double>& xy, std::size_t first, std::size_t last, double tolerance,
               std::vector<char>& keep) {
  std::vector<std::pair<std::size_t, std::size_t>> stack{{first, last}};
  while (!stack.empty()) {
    const auto [a, b] = stack.back();
    stack.pop_back();
    if (b <= a + 1) continue;
    double worst = -1.0;
    std::size_t at = a;
    for (std::size_t k = a + 1; k < b; ++k) {
      const double d = segment_distance(&xy[2 * a], &xy[2 * b], &xy[2 * k]);
      if (d > worst) {
        worst = d;
        at = k;
      }
    }
    if (worst > tolerance) {
      keep[at] = 1;
      stack.emplace_back(a, at);
      stack.emplace_back(at, b);
    }
  }
}

std::vector<double> kept_vertices(const std::vector<double>& xy, const std::vector<char>& keep) {
  std::vector<double> out;
  for (std::size_t k = 0; k < keep.size(); ++k) {
    if (keep[k] == 0) continue;
    out.push_back(xy[2 * k]);
    out.push_back(xy[2 * k + 1]);
  }
  return out;
}

}  // namespace

std::vector<double> thin_line(const std::vector<double>& xy, double tolerance) {
  const std::size_t n = xy.size() / 2;
  if (n <= 2 || tolerance <= 0.0) return xy;
  std::vector<char> keep(n, 0);
  keep[0] = 1;
  keep[n - 1] = 1;
  mark_kept(xy, 0, n - 1, tolerance, keep);
  return kept_vertices(xy, keep);
}

std::vector<double> thin_ring(const std::vector<double>& xy, double tolerance) {
  const std::size_t n = xy.size() / 2;  // the closing vertex included
  if (n <= 4 || tolerance <= 0.0) return xy;
  // Split at the first vertex and the one farthest from it, so that both
  // halves are open lines with distinct ends.
  std::size_t far = 1;
  double far_distance = -1.0;
  for (std::size_t k = 1; k + 1 < n; ++k) {
    const double d = cr_hypot(xy[2 * k] - xy[0], xy[2 * k + 1] - xy[1]);
    if (d > far_distance) {
      far_distance = d;
      far = k;
    }
  }
  std::vector<char> keep(n, 0);
  keep[0] = 1;
  keep[far] = 1;
  keep[n - 1] = 1;
  mark_kept(xy, 0, far, tolerance, keep);
  mark_kept(xy, far, n - 1, tolerance, keep);
  // A ring thinner than the tolerance everywhere still keeps a third
  // vertex: the one farthest from the line of the other two.
  std::int64_t distinct = 0;
  for (std::size_t k = 0; k + 1 < n; ++k) distinct += keep[k];
  if (distinct < 3) {
    std::size_t third = 1;
    double worst = -1.0;
    for (std::size_t k = 1; k + 1 < n; ++k) {
      if (k == far) continue;
      const double d = segment_distance(&xy[0], &xy[2 * far], &xy[2 * k]);
      if (d > worst) {
        worst = d;
        third = k;
      }
    }
    keep[third] = 1;
  }
  return kept_vertices(xy, keep);
}

}  // namespace tesseramill
