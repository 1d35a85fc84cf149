#include "geometry/source_index.h"

#include <algorithm>
#include <cmath>

#include "run/run_state.h"

namespace tesseramill {

namespace {

// The grid never has more cells than this along a side.
constexpr std::int32_t kMaxCellsPerSide = 2048;

template <typename Visit>
void for_each_source(const RunState& state, Visit visit) {
  for (const PointSet& points : state.inner_point_sets) {
    for (std::int32_t j = 0; j < points.count; ++j) visit(points.coords[2 * j], points.coords[2 * j + 1], points.separation[j]);
  }
  auto chain = [&](const BoundaryRing& ring) {
    for (std::int32_t j = 0; j < ring.point_count; ++j) {
      visit(ring.points[2 * j], ring.points[2 * j + 1], ring.point_separation[j]);
    }
  };
  chain(state.outer_boundary);
  for (const BoundaryRing& line : state.inner_lines) chain(line);
  for (const BoundaryRing& ring : state.inner_boundaries) chain(ring);
  for (const BoundaryRing& ring : state.inner_polygons) chain(ring);
}

}  // namespace

void build_source_index(RunState& state) {
  SourceIndex& index = state.source_index;
  index = SourceIndex{};
  double xmin = 0.0;
  double xmax = 0.0;
  double ymin = 0.0;
  double ymax = 0.0;
  std::size_t count = 0;
  bool finite = true;
  for_each_source(state, [&](double x, double y, double s) {
    if (!std::isfinite(x) || !std::isfinite(y) || !std::isfinite(s)) finite = false;
    if (count == 0) {
      xmin = xmax = x;
      ymin = ymax = y;
    }
    xmin = std::min(xmin, x);
    xmax = std::max(xmax, x);
    ymin = std::min(ymin, y);
    ymax = std::max(ymax, y);
    ++count;
  });
  // Without sources, or with values no grid can place, queries fall back to
  // visiting every source.
  if (count == 0 || !finite) return;
  const double extent = std::max(xmax - xmin, ymax - ymin);
  if (!std::isfinite(extent)) return;
  double h = state.control.max_centroid_separation;
  if (!(h > 0.0) || !std::isfinite(h)) h = extent;
  h = std::max(h, extent / kMaxCellsPerSide);
  if (!(h > 0.0)) h = 1.0;
  index.h = h;
  index.inverse_h = 1.0 / h;
  index.x0 = xmin;
  index.y0 = ymin;
  index.nx = std::min<std::int32_t>(kMaxCellsPerSide, static_cast<std::int32_t>((xmax - xmin) * index.inverse_h) + 1);
  index.ny = std::min<std::int32_t>(kMaxCellsPerSide, static_cast<std::int32_t>((ymax - ymin) * index.inverse_h) + 1);
  auto cell_of = [&index](double x, double y) {
    const std::int32_t i = std::min(index.nx - 1, static_cast<std::int32_t>((x - index.x0) * index.inverse_h));
    const std::int32_t j = std::min(index.ny - 1, static_cast<std::int32_t>((y - index.y0) * index.inverse_h));
    return static_cast<std::size_t>(j) * static_cast<std::size_t>(index.nx) + static_cast<std::size_t>(i);
  };
  const std::size_t cells = static_cast<std::size_t>(index.nx) * static_cast<std::size_t>(index.ny);
  index.cell_start.assign(cells + 1, 0);
  for_each_source(state, [&](double x, double y, double) { index.cell_start[cell_of(x, y) + 1] += 1; });
  for (std::size_t c = 0; c < cells; ++c) index.cell_start[c + 1] += index.cell_start[c];
  index.xs.resize(count);
  index.ys.resize(count);
  index.separations.resize(count);
  std::vector<std::int32_t> fill(index.cell_start.begin(), index.cell_start.end() - 1);
  for_each_source(state, [&](double x, double y, double s) {
    const std::size_t at = static_cast<std::size_t>(fill[cell_of(x, y)]++);
    index.xs[at] = x;
    index.ys[at] = y;
    index.separations[at] = s;
  });
  index.built = true;
}

}  // namespace tesseramill
