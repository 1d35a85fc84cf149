#include "geometry/local_separation.h"

#include <algorithm>
#include <cmath>
#include <type_traits>
#include <vector>

#include "common/correctly_rounded.h"
#include "geometry/planar_tools.h"
#include "geometry/point_in_polygon.h"
#include "geometry/size_bounds.h"

namespace tesseramill {

namespace {

constexpr double kLargest = 1.7976931348623157e+308;
// Relative margin of the skipping bounds, far above the rounding of the
// logarithm and power it guards (each correctly rounded, within half an
// ulp, and the size they give within about 5e-13 of the exact one).
constexpr double kMargin = 1.0 + 1e-9;

struct GrowthConstants {
  double growth;
  // growth raised to a power: its logarithm is worked out once.
  FixedBase power_of_growth;
  double growth_less_one;
  double reciprocal_log_growth;
  // growth^1.5: below a = growth^1.5 the field has not started to rise.
  double rise_start;
  // A little under rise_start: for a at or below it the exponent is surely
  // negative, so the size is the source's own separation.
  double surely_flat;
  double reciprocal_growth_less_one;
};

GrowthConstants constants_for(double growth) {
  GrowthConstants k;
  k.growth = growth;
  k.power_of_growth = fixed_base(growth);
  k.growth_less_one = growth - 1.0;
  k.reciprocal_log_growth = 1.0 / cr_log(growth);
  k.rise_start = cr_pow(growth, 1.5);
  k.surely_flat = k.rise_start * (1.0 - 1e-9);
  k.reciprocal_growth_less_one = 1.0 / k.growth_less_one;
  return k;
}

// The run calls the field with one growth rate throughout, so its constants
// are worked out once and kept, by each thread that asks for the field.
// Plain numbers only: the Windows build's emulated thread-local storage may
// be released before a thread-local destructor runs.
static_assert(std::is_trivially_destructible_v<GrowthConstants>);
const GrowthConstants& cached_constants_for(double growth) {
  thread_local GrowthConstants cached = constants_for(2.0);
  if (cached.growth != growth) cached = constants_for(growth);
  return cached;
}

// The size that one source of separation `s` at distance `d` asks for.
double source_size(const GrowthConstants& k, double d, double s) {
  const double a = d * k.growth_less_one / s + 1.0;
  double e = cr_log(a) * k.reciprocal_log_growth + -1.5;
  e = std::max(0.0, e);
  return cr_pow(k.power_of_growth, e) * s;
}

// The same size, without the logarithm and power where the exponent is
// surely negative and the size is the source's own separation.
inline double flat_or_source_size(const GrowthConstants& k, double d, double s) {
  const double a = d * k.growth_less_one / s + 1.0;
  return a <= k.surely_flat ? s : source_size(k, d, s);
}

void fold_reference(double x, double y, const GrowthConstants& k, const double* coords,
                    const double* separations, std::int32_t count, double& result) {
  for (std::int32_t j = 0; j < count; ++j) {
    const double dx = x - coords[2 * j];
    const double dy = y - coords[2 * j + 1];
    const double size = source_size(k, std::sqrt(dx * dx + dy * dy), separations[j]);
    result = std::min(result, size);
  }
}

// Folds the size of one source into `result` unless it provably cannot
// lower it.  A source never asks for less than its own separation, and
// beyond (result * growth^1.5 - s) / (growth - 1) it asks for at least the
// result.
inline void fold_source(double x, double y, const GrowthConstants& k, double sx, double sy, double s,
                        double& result) {
  if (s >= result) return;
  const double dx = x - sx;
  const double dy = y - sy;
  const double d2 = dx * dx + dy * dy;
  const double reach = (result * k.rise_start - s) * k.reciprocal_growth_less_one * kMargin;
  if (d2 >= reach * reach) return;
  result = std::min(result, flat_or_source_size(k, std::sqrt(d2), s));
}

void fold_fast(double x, double y, const GrowthConstants& k, const double* coords,
               const double* separations, std::int32_t count, double& result) {
  for (std::int32_t j = 0; j < count; ++j) {
    fold_source(x, y, k, coords[2 * j], coords[2 * j + 1], separations[j], result);
  }
}

// Visits the cells of the bucket grid ring by ring outwards from (x, y),
// stopping where no source can ask for less than `bound` any more: a source
// at distance d asks for at least d (growth - 1) / growth^1.5.  `bound` is
// read again before each ring, as the visits lower it.  `visit` must pass
// over, changing nothing, every source of separation s at squared distance
// d2 (as dx * dx + dy * dy rounds it) with s >= bound, or with d2 >= reach *
// reach for reach = (bound * rise_start - s) * reciprocal_growth_less_one *
// kMargin, as fold_source does; a cell all of whose sources it would pass
// over is then not visited.
template <typename VisitSource>
void walk_rings(const SourceIndex& index, double x, double y, const GrowthConstants& k, const double& bound,
                VisitSource visit) {
  const CellGrid& g = index.grid;
  const std::int64_t nx = g.nx;
  const std::int64_t ny = g.ny;
  // Cells far outside the grid are all alike; clamping keeps the integers small.
  const double reach_limit = 4.0 * static_cast<double>(std::max(nx, ny));
  const std::int64_t ci = static_cast<std::int64_t>(std::clamp(g.column_of(x), -reach_limit, reach_limit));
  const std::int64_t cj = static_cast<std::int64_t>(std::clamp(g.row_of(y), -reach_limit, reach_limit));
  const std::int64_t last_ring = std::max(std::max(ci, nx - 1 - ci), std::max(cj, ny - 1 - cj));
  // A cell is passed over whole when its smallest separation is at least
  // `bound`, or when the reach of that smallest separation falls short of
  // the gap to the cell's rectangle of sources.  Every source left has s
  // in [least, bound); with growth^1.5 at least one and 1 / (growth - 1)
  // positive, bound * rise_start is at least bound, above s, so its reach is
  // not negative and, every rounded step being monotone, no larger than
  // the reach of `least`; and its d2 is no smaller than the cell's gap
  // (squared_gap_to_cell).  So d2 >= reach * reach for each of them.  The
  // test is skipped for other growth rates and points that are no finite
  // numbers.  On the GIS-like divide of 8,000 vertices this leaves 46 of
  // the 135 sources that each seed's fields looked at.
  const bool summarised = index.summaries.size() == index.xs.size() && k.rise_start >= 1.0 &&
                          k.reciprocal_growth_less_one > 0.0 && std::isfinite(x) && std::isfinite(y);
  auto visit_cell = [&](std::int64_t i, std::int64_t j) {
    const std::size_t c = static_cast<std::size_t>(j * nx + i);
    if (index.cell_start[c] == index.cell_start[c + 1]) return;
    if (summarised) {
      const SourceCellSummary& cell = index.summaries[static_cast<std::size_t>(index.cell_start[c])];
      if (cell.least >= bound) return;
      const double reach = (bound * k.rise_start - cell.least) * k.reciprocal_growth_less_one * kMargin;
      if (squared_gap_to_cell(cell, x, x, y, y) >= reach * reach) return;
    }
    for (std::int32_t m = index.cell_start[c]; m < index.cell_start[c + 1]; ++m) {
      const std::size_t at = static_cast<std::size_t>(m);
      visit(index.xs[at], index.ys[at], index.separations[at]);
    }
  };
  // The walk starts at the first ring that may hold a source: the rings
  // inside it hold none, `bound` keeps its value over them, and the test
  // that ends the walk only grows with r, so a walk that would have ended
  // among them ends at that ring, before visiting it.
  for (std::int64_t r = empty_rings_around(index, ci, ci, cj, cj); r <= last_ring; ++r) {
    if (r > 1) {
      // Every cell of ring r lies at least (r - 1) cell widths away.
      const double nearest = static_cast<double>(r - 1) * g.h;
      if (nearest * k.growth_less_one >= bound * k.rise_start * kMargin) break;
    }
    const std::int64_t jlo = std::max<std::int64_t>(0, cj - r);
    const std::int64_t jhi = std::min<std::int64_t>(ny - 1, cj + r);
    const std::int64_t ilo = std::max<std::int64_t>(0, ci - r);
    const std::int64_t ihi = std::min<std::int64_t>(nx - 1, ci + r);
    for (std::int64_t j = jlo; j <= jhi; ++j) {
      if (j == cj - r || j == cj + r) {
        for (std::int64_t i = ilo; i <= ihi; ++i) visit_cell(i, j);
      } else {
        if (ci - r >= 0 && ci - r < nx) visit_cell(ci - r, j);
        if (ci + r >= 0 && ci + r < nx) visit_cell(ci + r, j);
      }
    }
  }
}

// Folds the sources of the bucket grid nearest first, each one as it comes.
void fold_indexed(const SourceIndex& index, double x, double y, const GrowthConstants& k, double& result) {
  walk_rings(index, x, y, k, result,
             [&](double sx, double sy, double s) { fold_source(x, y, k, sx, sy, s, result); });
}

// A source that may give the smallest size, and the lower bound of its size.
struct NearSource {
  double d;
  double s;
  double lower;
};

// Folds sources in two sweeps, so that the logarithm and power are worked
// out for the few sources that can give the smallest size, whatever the
// order in which they come.  The first sweep (visit) bounds each source's
// size by its algebraic form (size_bounds.h) and keeps U, the smallest of
// the starting result and of the upper bounds; the second (finish) works
// out, exactly as fold_source does, the sizes of the sources whose lower
// bound lies below the final U.
//
// Why the result is the same bits as folding every source visited.  Let M
// be the smallest of the starting result and of all their sizes; M <= U,
// since U is the starting result or at least the size of a source.  A
// source is left out only when it asks for at least the U of that moment,
// and so for at least the final U: its separation is at least U, or it
// lies beyond the reach of U (fold_source's test), or its lower bound is at
// least U.  Such a source can equal M only when U = M; then U is the
// starting result, which the fold keeps, or the upper bound of a source t
// whose size is at most U = M, hence M, and t is kept, as its lower bound
// lies below its upper bound.  min() is exact, so the order of the second
// sweep plays no part.
struct BoundedFold {
  const GrowthConstants& k;
  const Growth& g;
  double x;
  double y;
  double upper;
  // The first sweep's sources are kept on the stack while they are few, as
  // they nearly always are, and the rest in a vector of this fold's own.
  // (Not in a thread_local vector: the Windows build emulates thread-local
  // storage and may release it before a thread-local object's destructor
  // runs when the thread ends, so that the destructor frees whatever the
  // released storage then holds.)
  static constexpr std::size_t kOnStack = 64;
  NearSource on_stack[kOnStack];
  std::vector<NearSource> spilled;
  std::size_t count = 0;

  BoundedFold(const GrowthConstants& constants, const Growth& growth, double px, double py, double result)
      : k(constants), g(growth), x(px), y(py), upper(result) {}

  void visit(double sx, double sy, double s) {
    if (s >= upper) return;
    const double dx = x - sx;
    const double dy = y - sy;
    const double d2 = dx * dx + dy * dy;
    const double reach = (upper * k.rise_start - s) * k.reciprocal_growth_less_one * kMargin;
    if (d2 >= reach * reach) return;
    const double d = std::sqrt(d2);
    const double lower = lower_size(g, d, s);
    if (lower >= upper) return;
    upper = std::min(upper, upper_size(g, d, s));
    if (count < kOnStack) {
      on_stack[count] = {d, s, lower};
    } else {
      spilled.push_back({d, s, lower});
    }
    ++count;
  }

  void finish(double& result) const {
    for (std::size_t i = 0; i < count; ++i) {
      const NearSource& n = i < kOnStack ? on_stack[i] : spilled[i - kOnStack];
      if (n.lower >= upper || n.s >= result) continue;
      result = std::min(result, flat_or_source_size(k, n.d, n.s));
    }
  }
};

// Folds the sources of the bucket grid, as BoundedFold; walk_rings passes
// over only sources that the first sweep would pass over, so the result is
// that of folding every source.
void fold_indexed_bounded(const SourceIndex& index, double x, double y, const GrowthConstants& k, const Growth& g,
                          double& result) {
  BoundedFold fold(k, g, x, y, result);
  walk_rings(index, x, y, k, fold.upper, [&](double sx, double sy, double s) { fold.visit(sx, sy, s); });
  fold.finish(result);
}

template <typename Fold>
void fold_all_sources(const RunState& state, double x, double y, const GrowthConstants& k, Fold fold,
                      double& result) {
  for (const PointSet& points : state.inner_point_sets) {
    fold(x, y, k, points.coords.data(), points.separation.data(), points.count, result);
  }
  auto chain = [&](const BoundaryRing& ring) {
    fold(x, y, k, ring.points.data(), ring.point_separation.data(), ring.point_count, result);
  };
  chain(state.outer_boundary);
  for (const BoundaryRing& line : state.inner_lines) chain(line);
  for (const BoundaryRing& ring : state.inner_boundaries) chain(ring);
  for (const BoundaryRing& ring : state.inner_polygons) chain(ring);
}

// The caps of inner polygons holding the point and of MAX_CENTROID_SEPARATION;
// `literal` locates the point by the angle sum of each polygon.
double capped(const RunState& state, double x, double y, double result, bool literal) {
  if (state.smallest_max_separation > result) return result;
  const ControlData& c = state.control;
  for (std::size_t i = 0; i < state.inner_polygons.size(); ++i) {
    const BoundaryRing& polygon = state.inner_polygons[i];
    const bool inside = literal ? point_in_polygon(x, y, polygon.vertices.data(), polygon.vertex_count).location >= 0
                                : in_inner_polygon(state, i, x, y);
    if (inside) result = std::min(result, c.inner_polygon_max_separation[i]);
  }
  return std::min(result, c.max_centroid_separation);
}

// Where the fast folds start.  MAX_CENTROID_SEPARATION caps the result in
// the end, so a source asking for that much or more cannot change it: sizes
// are sought below the cap only.  When none is found the result stays at
// the cap, which the caps then turn into the same value as the largest
// double would give.  This holds while the smallest cap is no larger than
// that one, as the run makes it.
double fold_start(const RunState& state) {
  const double cap = state.control.max_centroid_separation;
  const bool cap_bounds = cap > 0.0 && cap < kLargest && state.smallest_max_separation <= cap;
  return cap_bounds ? cap : kLargest;
}

}  // namespace

double local_separation(const RunState& state, double x, double y, double growth) {
  if (state.reference_paths) return local_separation_reference(state, x, y, growth);
  const GrowthConstants& k = cached_constants_for(growth);
  double result = fold_start(state);
  // A point that is no finite number has no place in the bucket grid.
  if (state.source_index.built && std::isfinite(x) && std::isfinite(y)) {
    Growth g;
    if (growth_for(growth, g)) {
      fold_indexed_bounded(state.source_index, x, y, k, g, result);
    } else {
      fold_indexed(state.source_index, x, y, k, result);
    }
  } else {
    fold_all_sources(state, x, y, k, fold_fast, result);
  }
  return capped(state, x, y, result, false);
}

double local_separation_from_sources(const RunState& state, double x, double y, double growth,
                                     const std::vector<double>& xs, const std::vector<double>& ys,
                                     const std::vector<double>& separations) {
  Growth g;
  if (state.reference_paths || !state.source_index.built || !std::isfinite(x) || !std::isfinite(y) ||
      !growth_for(growth, g)) {
    return local_separation(state, x, y, growth);
  }
  const GrowthConstants& k = cached_constants_for(growth);
  double result = fold_start(state);
  BoundedFold fold(k, g, x, y, result);
  for (std::size_t i = 0; i < xs.size(); ++i) fold.visit(xs[i], ys[i], separations[i]);
  fold.finish(result);
  return capped(state, x, y, result, false);
}

double local_separation_reference(const RunState& state, double x, double y, double growth) {
  double result = kLargest;
  fold_all_sources(state, x, y, constants_for(growth), fold_reference, result);
  return capped(state, x, y, result, true);
}

}  // namespace tesseramill
