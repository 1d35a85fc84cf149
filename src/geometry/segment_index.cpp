#include "geometry/segment_index.h"

#include <algorithm>
#include <cmath>

namespace tesseramill {

namespace {

constexpr std::int32_t kCellsPerSide = 256;
// Share of a cell by which segments are widened when they are placed in
// cells, and rectangles when they are looked up, against rounding.
constexpr double kCellSlack = 0.01;

}  // namespace

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
  CellGrid& g = index.grid;
  g.h = width > 0.0 ? width / (kCellsPerSide - 2) : 1.0;
  g.inverse_h = 1.0 / g.h;
  g.x0 = xmin - g.h;
  g.y0 = ymin - g.h;
  g.nx = std::min<std::int32_t>(kCellsPerSide + 1, static_cast<std::int32_t>((xmax - g.x0) * g.inverse_h) + 2);
  g.ny = std::min<std::int32_t>(kCellsPerSide + 1, static_cast<std::int32_t>((ymax - g.y0) * g.inverse_h) + 2);
  const std::size_t cells = g.cell_count();
  index.cell_start.assign(cells + 1, 0);
  auto walk = [&](std::int32_t s, auto visit) {
    const double* e = &index.ends[4 * static_cast<std::size_t>(s)];
    for_each_cell_along_segment(g, e[0], e[1], e[2], e[3], kCellSlack * g.h, visit);
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
  const CellGrid& g = index.grid;
  // The point of a segment nearest the rectangle lies in the rectangle
  // widened by `reach`, and the segment is listed in that point's cell.
  const double widen = reach + kCellSlack * g.h;
  const double fi0 = g.column_of(xlo - widen);
  const double fi1 = g.column_of(xhi + widen);
  const double fj0 = g.row_of(ylo - widen);
  const double fj1 = g.row_of(yhi + widen);
  if (fi1 < 0.0 || fi0 >= g.nx || fj1 < 0.0 || fj0 >= g.ny) return;
  const std::int32_t i0 = clamp_index(fi0, g.nx);
  const std::int32_t i1 = clamp_index(fi1, g.nx);
  const std::int32_t j0 = clamp_index(fj0, g.ny);
  const std::int32_t j1 = clamp_index(fj1, g.ny);
  for (std::int32_t j = j0; j <= j1; ++j) {
    for (std::int32_t i = i0; i <= i1; ++i) {
      const std::size_t c = g.cell(i, j);
      out.insert(out.end(), index.cell_segments.begin() + index.cell_start[c],
                 index.cell_segments.begin() + index.cell_start[c + 1]);
    }
  }
  std::sort(out.begin(), out.end());
  out.erase(std::unique(out.begin(), out.end()), out.end());
}

}  // namespace tesseramill
