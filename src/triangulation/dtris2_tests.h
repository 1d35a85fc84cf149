// The tolerant tests of the triangulation, defined here so that both
// insertion routines (the literal one and the fast one) take them in line.
#pragma once

#include <cmath>
#include <cstdint>
#include <iosfwd>

#include "triangulation/dtris2.h"

namespace tesseramill::dtris2_detail {

inline constexpr double kTol = kTriangulationTolerance;

// std::max on two doubles, by value, so that the compiler can keep the
// chains of maxima below in registers; the same (a < b ? b : a) either way.
inline double larger(double a, double b) { return a < b ? b : a; }

inline bool coordinates_differ(double a, double b) {
  const double size = larger(std::fabs(a), std::fabs(b));
  return std::fabs(a - b) > kTol * size && size > kTol;
}

// The body of side_of_line.
inline int side_choice(double x, double y, const double* a, const double* b) {
  const double dx = b[0] - a[0];
  const double dy = b[1] - a[1];
  const double dxu = x - a[0];
  const double dyu = y - a[1];
  const double limit =
      kTol * larger(larger(std::fabs(dx), std::fabs(dy)), larger(std::fabs(dxu), std::fabs(dyu)));
  const double t = dy * dxu - dx * dyu;
  if (t > limit) return 1;
  if (t >= -limit) return 0;
  return -1;
}

// The body of diagonal_test.
inline int diagonal_choice(const double* p0, const double* p1, const double* p2, const double* p3) {
  const double dx10 = p1[0] - p0[0];
  const double dy10 = p1[1] - p0[1];
  const double dx12 = p1[0] - p2[0];
  const double dy12 = p1[1] - p2[1];
  const double dx30 = p3[0] - p0[0];
  const double dy30 = p3[1] - p0[1];
  const double dx32 = p3[0] - p2[0];
  const double dy32 = p3[1] - p2[1];
  const double tola = kTol * larger(larger(std::fabs(dx10), std::fabs(dy10)),
                                      larger(std::fabs(dx30), std::fabs(dy30)));
  const double tolb = kTol * larger(larger(std::fabs(dx12), std::fabs(dy12)),
                                      larger(std::fabs(dx32), std::fabs(dy32)));
  const double ca = dx10 * dx30 + dy10 * dy30;
  const double cb = dx12 * dx32 + dy12 * dy32;
  if (ca > tola && cb > tolb) return -1;
  if (ca < -tola && cb < -tolb) return 1;
  const double tol2 = larger(tola, tolb);
  const double s = (dx10 * dy30 - dx30 * dy10) * cb + (dx32 * dy12 - dx12 * dy32) * ca;
  if (s > tol2) return -1;
  if (s < -tol2) return 1;
  return 0;
}

void print_fatal(std::ostream& screen, const char* routine, const char* text);

// The two failure blocks of a full stack, in the fan and in SWAPEC.
void print_fan_stack_full(std::ostream& screen, std::int32_t maxst, std::int32_t top);
void print_swap_stack_full(std::ostream& screen, std::int32_t maxst, std::int32_t top);

// The start of DTRIS2 after the sort: the duplicate test and the search for
// the first point off the line of the first two.  point_of(i) gives x,y of
// the i-th sorted point (1-based).  Gives 0 with `j` (that point's place in
// the order) and `side` set, or the failure code after printing its message.
template <typename PointOf>
int first_triangle_point(std::int32_t n, PointOf point_of, std::int32_t& j, std::int32_t& side, std::ostream& screen) {
  for (std::int32_t i = 2; i <= n; ++i) {
    const double* p = point_of(i - 1);
    const double* q = point_of(i);
    if (!coordinates_differ(p[0], q[0]) && !coordinates_differ(p[1], q[1])) {
      print_fatal(screen, "DTRIS2", "  Consecutive points are too close.");
      return 224;
    }
  }
  j = 3;
  side = 0;
  if (n >= 3) {
    const double* m1 = point_of(1);
    const double* m2 = point_of(2);
    for (; j <= n; ++j) {
      const double* pm = point_of(j);
      side = side_choice(pm[0], pm[1], m1, m2);
      if (side != 0) break;
    }
  }
  if (n < 3 || side == 0) {
    print_fatal(screen, "DTRIS2", "  Could not find a noncollinear third point.");
    return 225;
  }
  return 0;
}

}  // namespace tesseramill::dtris2_detail
