#include "report/zone_shares.h"

#include <algorithm>
#include <cmath>
#include <vector>

#include "report/cell_geometry.h"

namespace tesseramill {

namespace {

// The corners of a polygon, anticlockwise, less a reference point that keeps
// the products of the area small.
std::vector<double> anticlockwise(const double* xy, std::int32_t n, double ox, double oy) {
  std::vector<double> out;
  for (std::int32_t i = 0; i < n; ++i) {
    out.push_back(xy[2 * i] - ox);
    out.push_back(xy[2 * i + 1] - oy);
  }
  if (doubled_area(out.data(), n) < 0.0) {
    for (std::int32_t i = 0, j = n - 1; i < j; ++i, --j) {
      std::swap(out[2 * i], out[2 * j]);
      std::swap(out[2 * i + 1], out[2 * j + 1]);
    }
  }
  return out;
}

// Twice the area swept, seen from the reference point, by the pieces of
// `edges`' boundary that lie inside `other` (and, when `same_way_on_edge`,
// along its boundary in the same direction).  By Green's theorem the area
// of the overlap is half the sum over the pieces of both boundaries that
// bound it.
double boundary_inside(const std::vector<double>& edges, const std::vector<double>& other, bool same_way_on_edge) {
  const std::int32_t n = static_cast<std::int32_t>(edges.size() / 2);
  const std::int32_t m = static_cast<std::int32_t>(other.size() / 2);
  double sum = 0.0;
  std::vector<double> ts;
  for (std::int32_t i = 0; i < n; ++i) {
    const std::int32_t i1 = i + 1 == n ? 0 : i + 1;
    const double ax = edges[2 * i];
    const double ay = edges[2 * i + 1];
    const double dx = edges[2 * i1] - ax;
    const double dy = edges[2 * i1 + 1] - ay;
    ts.assign({0.0, 1.0});
    for (std::int32_t j = 0; j < m; ++j) {
      const std::int32_t j1 = j + 1 == m ? 0 : j + 1;
      const double px = other[2 * j] - ax;
      const double py = other[2 * j + 1] - ay;
      const double ex = other[2 * j1] - other[2 * j];
      const double ey = other[2 * j1 + 1] - other[2 * j + 1];
      const double denominator = dx * ey - dy * ex;
      if (denominator == 0.0) {
        // Along the same line: the other edge's ends cut this one.
        if (px * dy - py * dx == 0.0) {
          const double length2 = dx * dx + dy * dy;
          for (double t : {(px * dx + py * dy) / length2, ((px + ex) * dx + (py + ey) * dy) / length2}) {
            if (t > 0.0 && t < 1.0) ts.push_back(t);
          }
        }
        continue;
      }
      const double t = (px * ey - py * ex) / denominator;
      const double u = (px * dy - py * dx) / denominator;
      if (t > 0.0 && t < 1.0 && u >= 0.0 && u <= 1.0) ts.push_back(t);
    }
    std::sort(ts.begin(), ts.end());
    for (std::size_t k = 0; k + 1 < ts.size(); ++k) {
      if (!(ts[k + 1] > ts[k])) continue;
      const double tm = 0.5 * (ts[k] + ts[k + 1]);
      const Side side = locate_in_polygon(other.data(), m, ax + tm * dx, ay + tm * dy);
      bool counts = side == Side::kInside;
      if (side == Side::kOnEdge && same_way_on_edge) {
        // Along an edge of the other polygon: it bounds the overlap when both
        // run the same way, the insides then lying on the same side.
        for (std::int32_t j = 0; j < m && !counts; ++j) {
          const std::int32_t j1 = j + 1 == m ? 0 : j + 1;
          const double ex = other[2 * j1] - other[2 * j];
          const double ey = other[2 * j1 + 1] - other[2 * j + 1];
          const double qx = ax + tm * dx - other[2 * j];
          const double qy = ay + tm * dy - other[2 * j + 1];
          const double along = ex * qx + ey * qy;
          if (ex * qy - ey * qx == 0.0 && along >= 0.0 && along <= ex * ex + ey * ey && dx * ex + dy * ey > 0.0) {
            counts = true;
          }
        }
      }
      if (!counts) continue;
      const double x0 = ax + ts[k] * dx;
      const double y0 = ay + ts[k] * dy;
      const double x1 = ax + ts[k + 1] * dx;
      const double y1 = ay + ts[k + 1] * dy;
      sum += x0 * y1 - x1 * y0;
    }
  }
  return sum;
}

}  // namespace

double overlap_area(const double* a, std::int32_t na, const double* b, std::int32_t nb) {
  if (na < 3 || nb < 3) return 0.0;
  const std::vector<double> pa = anticlockwise(a, na, a[0], a[1]);
  const std::vector<double> pb = anticlockwise(b, nb, a[0], a[1]);
  return 0.5 * (boundary_inside(pa, pb, true) + boundary_inside(pb, pa, false));
}

void zone_cells(const DisvGrid& disv, const CellLocator& locator, const double* polygon, std::int32_t count,
                std::vector<ZoneCell>& out) {
  out.clear();
  if (count < 3) return;
  double xlo = INFINITY, xhi = -INFINITY, ylo = INFINITY, yhi = -INFINITY;
  for (std::int32_t i = 0; i < count; ++i) {
    xlo = std::min(xlo, polygon[2 * i]);
    xhi = std::max(xhi, polygon[2 * i]);
    ylo = std::min(ylo, polygon[2 * i + 1]);
    yhi = std::max(yhi, polygon[2 * i + 1]);
  }
  std::vector<std::int32_t> candidates;
  cells_near(locator, xlo, xhi, ylo, yhi, candidates);
  std::vector<double> xy;
  for (std::int32_t c : candidates) {
    const std::size_t cell = static_cast<std::size_t>(c);
    const double cx = disv.centres[2 * cell];
    const double cy = disv.centres[2 * cell + 1];
    if (locate_in_polygon(polygon, count, cx, cy) == Side::kOutside) continue;
    // A cell that no edge of the polygon comes near lies wholly on the side
    // of its centre; only the cells that the polygon's edges may cut need
    // the overlap.
    const double* box = &locator.boxes[4 * cell];
    bool cut = false;
    for (std::int32_t i = 0; i < count && !cut; ++i) {
      const std::int32_t j = i + 1 == count ? 0 : i + 1;
      cut = std::min(polygon[2 * i], polygon[2 * j]) <= box[1] && std::max(polygon[2 * i], polygon[2 * j]) >= box[0] &&
            std::min(polygon[2 * i + 1], polygon[2 * j + 1]) <= box[3] &&
            std::max(polygon[2 * i + 1], polygon[2 * j + 1]) >= box[2];
    }
    double share = 1.0;
    if (cut) {
      cell_polygon(disv, cell, xy);
      const std::int32_t n = corner_count(disv, cell);
      const double area = std::fabs(0.5 * doubled_area(xy.data(), n));
      share = area > 0.0 ? std::clamp(overlap_area(xy.data(), n, polygon, count) / area, 0.0, 1.0) : 0.0;
    }
    out.push_back({c, share});
  }
}

}  // namespace tesseramill
