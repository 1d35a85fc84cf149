#include "geometry/segment_index.h"

#include <algorithm>
#include <cmath>

namespace tesseramill {

void build_segment_index(SegmentIndex& index, const std::vector<const double*>& rings,
                         const std::vector<std::int32_t>& counts) {
  index = SegmentIndex{};
  double xmin = INFINITY;
  double xmax = -INFINITY;
  double ymin = INFINITY;
  double ymax = -INFINITY;
  for (std::size_t r = 0; r < rings.size(); ++r) {
    for (std::int32_t k = 0; k + 1 < counts[r]; ++k) {
      const double* v = rings[r] + 2 * static_cast<std::size_t>(k);
      for (int c = 0; c < 4; ++c) {
        if (!std::isfinite(v[c])) return;
      }
      index.ends.insert(index.ends.end(), {v[0], v[1], v[2], v[3]});
      for (int c = 0; c < 4; ++c) index.magnitude = std::max(index.magnitude, std::fabs(v[c]));
      xmin = std::min({xmin, v[0], v[2]});
      xmax = std::max({xmax, v[0], v[2]});
      ymin = std::min({ymin, v[1], v[3]});
      ymax = std::max({ymax, v[1], v[3]});
    }
  }
  const std::int32_t segments = static_cast<std::int32_t>(index.ends.size() / 4);
  if (segments == 0) return;
  const double width = std::max(xmax - xmin, ymax - ymin);
  if (!std::isfinite(width)) return;
  const std::int32_t side = cells_per_side_for(static_cast<std::size_t>(segments));
  CellGrid& g = index.grid;
  g.h = width > 0.0 ? width / (side - 2) : 1.0;
  g.inverse_h = 1.0 / g.h;
  g.x0 = xmin - g.h;
  g.y0 = ymin - g.h;
  g.nx = std::min<std::int32_t>(side + 1, static_cast<std::int32_t>((xmax - g.x0) * g.inverse_h) + 2);
  g.ny = std::min<std::int32_t>(side + 1, static_cast<std::int32_t>((ymax - g.y0) * g.inverse_h) + 2);
  const std::size_t cells = g.cell_count();
  index.cell_start.assign(cells + 1, 0);
  auto walk = [&](std::int32_t s, auto visit) {
    const double* e = &index.ends[4 * static_cast<std::size_t>(s)];
    for_each_cell_along_segment(g, e[0], e[1], e[2], e[3], kSegmentCellSlack * g.h, visit);
  };
  for (std::int32_t s = 0; s < segments; ++s) {
    walk(s, [&](std::int32_t i, std::int32_t j) { index.cell_start[g.cell(i, j) + 1] += 1; });
  }
  for (std::size_t c = 0; c < cells; ++c) index.cell_start[c + 1] += index.cell_start[c];
  index.cell_segments.resize(static_cast<std::size_t>(index.cell_start[cells]));
  std::vector<std::int32_t> fill(index.cell_start.begin(), index.cell_start.end() - 1);
  for (std::int32_t s = 0; s < segments; ++s) {
    walk(s, [&](std::int32_t i, std::int32_t j) { index.cell_segments[static_cast<std::size_t>(fill[g.cell(i, j)]++)] = s; });
  }
  index.built = true;
}

void segment_lines(SegmentIndex& index) {
  const std::vector<double>& ends = index.ends;
  index.lines.resize(ends.size());
  for (std::size_t i = 0; i + 4 <= ends.size(); i += 4) {
    const double* e = &ends[i];
    double* line = &index.lines[i];
    const double dx = e[2] - e[0];
    const double dy = e[3] - e[1];
    const double length = std::sqrt(dx * dx + dy * dy);
    line[0] = -dy / length;
    line[1] = dx / length;
    line[2] = line[0] * e[0] + line[1] * e[1];
    line[3] = 1e-12 * (std::fabs(e[0]) + std::fabs(e[1]) + std::fabs(e[2]) + std::fabs(e[3]));
    if (!(length > 1e-100 && length < 1e100 && std::isfinite(line[2]) && std::isfinite(line[3]))) {
      line[3] = INFINITY;
    }
  }
}

void segments_near(const SegmentIndex& index, double xlo, double xhi, double ylo, double yhi, double reach,
                   std::vector<std::int32_t>& out) {
  out.clear();
  any_segment_near(index, xlo, xhi, ylo, yhi, reach, [&](std::int32_t s) {
    out.push_back(s);
    return false;
  });
  std::sort(out.begin(), out.end());
  out.erase(std::unique(out.begin(), out.end()), out.end());
}

}  // namespace tesseramill
