#include "emplacement/growth_limit.h"

#include <algorithm>

#include "geometry/local_separation.h"

namespace tesseramill {

bool enforce_growth_limit(const RunState& state, BoundaryRing& ring) {
  if (ring.vertex_count < 2) return false;
  const double growth = state.control.poly_growth_rate;
  std::vector<double>& separation = ring.vertex_separation;
  const std::vector<double>& v = ring.vertices;
  bool lowered = false;
  for (std::int32_t j = 1; j < ring.vertex_count; ++j) {
    const double x0 = v[2 * j - 2];
    const double y0 = v[2 * j - 1];
    const double ex = (v[2 * j] - x0) * 0.02;
    const double ey = (v[2 * j + 1] - y0) * 0.02;
    const double es = (separation[j] - separation[j - 1]) * 0.02;
    double worst = 0.0;
    double lowest = 1.7976931348623157e+308;
    bool flagged = false;
    double k = 0.0;
    for (int station = 0; station <= 50; ++station, k += 1.0) {
      const double wanted = es * k + separation[j - 1];
      const double here = local_separation(state, ex * k + x0, ey * k + y0, growth);
      if (wanted > here) {
        const double excess = wanted - here;
        if (excess > worst) flagged = true;
        worst = std::max(worst, excess);
      }
      lowest = std::min(lowest, here);
    }
    if (flagged) {
      separation[j - 1] = std::max(separation[j - 1] - worst, lowest);
      separation[j] = std::max(separation[j] - worst, lowest);
      lowered = true;
    }
  }
  return lowered;
}

}  // namespace tesseramill
