#include "report/line_reaches.h"

#include <algorithm>
#include <cmath>

#include "common/correctly_rounded.h"

namespace tesseramill {

namespace {

double cross(double ax, double ay, double bx, double by) { return ax * by - ay * bx; }

// The parameters in (0, 1) along the segment from a to b at which it meets
// the edges of cell c: crossings, and the ends of edges it runs along.
void meeting_points(const DisvGrid& disv, std::size_t c, double ax, double ay, double bx, double by,
                    std::vector<double>& ts) {
  const double dx = bx - ax;
  const double dy = by - ay;
  const double length2 = dx * dx + dy * dy;
  const std::int32_t n = corner_count(disv, c);
  for (std::int32_t i = 0; i < n; ++i) {
    const std::int32_t p = corner(disv, c, i);
    const std::int32_t q = corner(disv, c, i + 1 == n ? 0 : i + 1);
    const double px = vertex_x(disv, p) - ax;
    const double py = vertex_y(disv, p) - ay;
    const double ex = vertex_x(disv, q) - vertex_x(disv, p);
    const double ey = vertex_y(disv, q) - vertex_y(disv, p);
    const double denominator = cross(dx, dy, ex, ey);
    if (denominator != 0.0) {
      const double t = cross(px, py, ex, ey) / denominator;
      const double u = cross(px, py, dx, dy) / denominator;
      if (t > 0.0 && t < 1.0 && u >= 0.0 && u <= 1.0) ts.push_back(t);
    } else if (cross(px, py, dx, dy) == 0.0) {
      // Along the same line: the edge's ends cut the segment.
      for (double t : {(px * dx + py * dy) / length2, ((px + ex) * dx + (py + ey) * dy) / length2}) {
        if (t > 0.0 && t < 1.0) ts.push_back(t);
      }
    }
  }
}

}  // namespace

void line_reaches(const DisvGrid& disv, const CellLocator& locator, const double* xy, std::int32_t count,
                  std::vector<Reach>& out) {
  out.clear();
  std::vector<std::int32_t> candidates;
  std::vector<std::int32_t> near;
  std::vector<double> ts;
  std::vector<double> scratch;
  double travelled = 0.0;
  for (std::int32_t k = 0; k + 1 < count; ++k) {
    const double ax = xy[2 * k];
    const double ay = xy[2 * k + 1];
    const double bx = xy[2 * k + 2];
    const double by = xy[2 * k + 3];
    const double length = cr_hypot(bx - ax, by - ay);
    if (!(length > 0.0)) continue;
    // The segment is cut wherever it meets an edge of a cell it may pass,
    // so that each piece between two cuts lies in one cell, or along an
    // edge, or outside the grid.
    cells_along_segment(locator, ax, ay, bx, by, candidates);
    ts.assign({0.0, 1.0});
    for (std::int32_t c : candidates) meeting_points(disv, static_cast<std::size_t>(c), ax, ay, bx, by, ts);
    std::sort(ts.begin(), ts.end());
    ts.erase(std::unique(ts.begin(), ts.end()), ts.end());
    // The unit normal to the left of the segment, for pieces along an edge.
    const double nx = -(by - ay) / length;
    const double ny = (bx - ax) / length;
    for (std::size_t i = 0; i + 1 < ts.size(); ++i) {
      const double t0 = ts[i];
      const double t1 = ts[i + 1];
      const double tm = 0.5 * (t0 + t1);
      const double mx = ax + tm * (bx - ax);
      const double my = ay + tm * (by - ay);
      bool on_edge = false;
      cells_near(locator, mx, mx, my, my, near);
      std::int32_t cell = cell_holding(disv, near, mx, my, on_edge, scratch);
      if (cell < 0 && on_edge) {
        // Along an edge: the cell on the left, or on the right at the rim.
        // The probes step a millionth of the piece aside, well inside the
        // cells beside the edge and far from any other edge.
        const double step = 1e-6 * (t1 - t0) * length;
        for (const double side : {1.0, -1.0}) {
          const double px = mx + side * step * nx;
          const double py = my + side * step * ny;
          cells_near(locator, px, px, py, py, near);
          bool again = false;
          cell = cell_holding(disv, near, px, py, again, scratch);
          if (cell >= 0) break;
        }
      }
      if (cell < 0) continue;
      const double start = travelled + t0 * length;
      const double end = travelled + t1 * length;
      const double piece = (t1 - t0) * length;
      // Pieces that follow one another in one cell make one reach.
      if (!out.empty() && out.back().cell == cell && out.back().end == start) {
        out.back().length += piece;
        out.back().end = end;
      } else {
        out.push_back({cell, piece, start, end});
      }
    }
    travelled += length;
  }
}

}  // namespace tesseramill
