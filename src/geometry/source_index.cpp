#include "geometry/source_index.h"

#include <algorithm>
#include <cmath>

#include "common/run_state.h"

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

// The empty rings of every cell, from the cells that hold sources: a
// sweep forwards and one backwards, each taking from the four neighbours
// already swept, give the exact Chebyshev distance to the nearest such
// cell (the two-pass chessboard distance transform).  Distances stay below
// the grid's side, 2048, so 16 bits hold them.
void count_empty_rings(SourceIndex& index) {
  const CellGrid& g = index.grid;
  std::vector<std::uint16_t>& rings = index.empty_rings;
  rings.assign(g.cell_count(), kNoSourceNear);
  for (std::size_t c = 0; c < g.cell_count(); ++c) {
    if (index.cell_start[c + 1] > index.cell_start[c]) rings[c] = 0;
  }
  auto take_from = [&](std::int32_t i, std::int32_t j, std::uint16_t& to) {
    if (i < 0 || i >= g.nx || j < 0 || j >= g.ny) return;
    const std::uint16_t from = rings[g.cell(i, j)];
    if (from != kNoSourceNear && from + 1 < to) to = static_cast<std::uint16_t>(from + 1);
  };
  for (std::int32_t j = 0; j < g.ny; ++j) {
    for (std::int32_t i = 0; i < g.nx; ++i) {
      std::uint16_t& to = rings[g.cell(i, j)];
      take_from(i - 1, j, to);
      take_from(i - 1, j - 1, to);
      take_from(i, j - 1, to);
      take_from(i + 1, j - 1, to);
    }
  }
  for (std::int32_t j = g.ny - 1; j >= 0; --j) {
    for (std::int32_t i = g.nx - 1; i >= 0; --i) {
      std::uint16_t& to = rings[g.cell(i, j)];
      take_from(i + 1, j, to);
      take_from(i + 1, j + 1, to);
      take_from(i, j + 1, to);
      take_from(i - 1, j + 1, to);
    }
  }
}

// The rectangle and smallest separation of each cell's sources, kept at the
// place of the cell's first source.
void summarise_cells(SourceIndex& index) {
  const std::size_t cells = index.grid.cell_count();
  index.summaries.assign(index.xs.size(), SourceCellSummary{});
  for (std::size_t c = 0; c < cells; ++c) {
    const std::int32_t first = index.cell_start[c];
    if (first == index.cell_start[c + 1]) continue;
    const std::size_t at = static_cast<std::size_t>(first);
    SourceCellSummary& summary = index.summaries[at];
    summary = {index.xs[at], index.xs[at], index.ys[at], index.ys[at], index.separations[at]};
    for (std::int32_t m = first + 1; m < index.cell_start[c + 1]; ++m) {
      const std::size_t k = static_cast<std::size_t>(m);
      summary.xlo = std::min(summary.xlo, index.xs[k]);
      summary.xhi = std::max(summary.xhi, index.xs[k]);
      summary.ylo = std::min(summary.ylo, index.ys[k]);
      summary.yhi = std::max(summary.yhi, index.ys[k]);
      summary.least = std::min(summary.least, index.separations[k]);
    }
  }
}

}  // namespace

std::int64_t empty_rings_around(const SourceIndex& index, std::int64_t i0, std::int64_t i1, std::int64_t j0,
                                std::int64_t j1) {
  const CellGrid& g = index.grid;
  if (index.empty_rings.size() != g.cell_count() || g.nx < 1 || g.ny < 1) return 0;
  // Clamping a cell into the grid brings it no farther from any cell of
  // the grid along either axis, so the clamped block lies no farther from
  // the nearest cell with a source than the block itself: its empty rings
  // are a safe count for the block.
  const std::int64_t ilo = std::clamp<std::int64_t>(i0, 0, g.nx - 1);
  const std::int64_t ihi = std::clamp<std::int64_t>(i1, 0, g.nx - 1);
  const std::int64_t jlo = std::clamp<std::int64_t>(j0, 0, g.ny - 1);
  const std::int64_t jhi = std::clamp<std::int64_t>(j1, 0, g.ny - 1);
  constexpr std::int64_t kLargestBlock = 64;
  if ((ihi - ilo + 1) * (jhi - jlo + 1) > kLargestBlock) return 0;
  std::int64_t fewest = kNoSourceNear;
  for (std::int64_t j = jlo; j <= jhi; ++j) {
    for (std::int64_t i = ilo; i <= ihi; ++i) {
      const std::size_t c = g.cell(static_cast<std::int32_t>(i), static_cast<std::int32_t>(j));
      fewest = std::min<std::int64_t>(fewest, index.empty_rings[c]);
    }
  }
  return fewest;
}

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
  // Values no grid can place leave the index unbuilt: queries visit every
  // source.  Without sources it is one empty cell.
  if (!finite) return;
  if (count == 0) {
    index.grid.nx = 1;
    index.grid.ny = 1;
    index.cell_start.assign(2, 0);
    count_empty_rings(index);
    index.built = true;
    return;
  }
  const double extent = std::max(xmax - xmin, ymax - ymin);
  if (!std::isfinite(extent)) return;
  double h = state.control.max_centroid_separation;
  if (!(h > 0.0) || !std::isfinite(h)) h = extent;
  h = std::max(h, extent / kMaxCellsPerSide);
  if (!(h > 0.0)) h = 1.0;
  CellGrid& g = index.grid;
  g.h = h;
  g.inverse_h = 1.0 / h;
  g.x0 = xmin;
  g.y0 = ymin;
  g.nx = std::min<std::int32_t>(kMaxCellsPerSide, static_cast<std::int32_t>((xmax - xmin) * g.inverse_h) + 1);
  g.ny = std::min<std::int32_t>(kMaxCellsPerSide, static_cast<std::int32_t>((ymax - ymin) * g.inverse_h) + 1);
  auto cell_of = [&g](double x, double y) {
    return g.cell(std::min(g.nx - 1, static_cast<std::int32_t>((x - g.x0) * g.inverse_h)),
                  std::min(g.ny - 1, static_cast<std::int32_t>((y - g.y0) * g.inverse_h)));
  };
  const std::size_t cells = g.cell_count();
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
  count_empty_rings(index);
  summarise_cells(index);
  index.built = true;
}

}  // namespace tesseramill
