#include "geometry/field_bounds.h"

#include <algorithm>
#include <cmath>

#include "common/run_state.h"
#include "geometry/planar_tools.h"
#include "geometry/size_bounds.h"
#include "geometry/sources_in_lanes.h"

namespace tesseramill {

namespace {

// Keeps, in their order, the sources whose lower bound is below `upper`,
// their lowers with them; gives how many.
std::size_t keep_below(double upper, std::vector<double>& lowers, std::vector<double>& xs, std::vector<double>& ys,
                       std::vector<double>& separations) {
  std::size_t kept = 0;
  for (std::size_t k = 0; k < lowers.size(); ++k) {
    if (lowers[k] >= upper) continue;
    lowers[kept] = lowers[k];
    xs[kept] = xs[k];
    ys[kept] = ys[k];
    separations[kept] = separations[k];
    ++kept;
  }
  lowers.resize(kept);
  xs.resize(kept);
  ys.resize(kept);
  separations.resize(kept);
  return kept;
}

// The caps of MAX_CENTROID_SEPARATION and of the inner polygons holding (x, y).
double cap_at(const RunState& state, double x, double y) {
  double cap = state.control.max_centroid_separation;
  for (std::size_t i = 0; i < state.inner_polygons.size(); ++i) {
    if (in_inner_polygon(state, i, x, y)) cap = std::min(cap, state.control.inner_polygon_max_separation[i]);
  }
  return cap;
}

}  // namespace

void bound_field(const RunState& state, double xlo, double xhi, double ylo, double yhi, FieldBounds& b) {
  b.usable = false;
  b.xs.clear();
  b.ys.clear();
  b.separations.clear();
  b.lowers.clear();
  Growth g;
  const SourceIndex& index = state.source_index;
  const DomainIndex& domain = state.domain_index;
  if (!growth_for(state.control.poly_growth_rate, g) || !index.built || !domain.built) return;

  // The field is the smallest of the sizes and the caps; min is exact, so
  // that a source or a cap that asks for more than the field cannot matter.
  // Caps: MAX_CENTROID_SEPARATION everywhere, and each inner polygon's where
  // it holds the point.  Over the rectangle they lie in [cap_lo, cap_hi].
  double cap_lo = state.control.max_centroid_separation;
  double cap_hi = cap_lo;
  b.caps_vary = false;
  for (std::size_t i = 0; i < domain.polygons.size(); ++i) {
    const int where = locate_rectangle_in_ring(domain.polygons[i], xlo, xhi, ylo, yhi);
    const double cap = state.control.inner_polygon_max_separation[i];
    if (where == kOutside) continue;
    cap_lo = std::min(cap_lo, cap);
    if (where == kInside) {
      cap_hi = std::min(cap_hi, cap);
    } else {
      b.caps_vary = true;
    }
  }
  b.cap = cap_hi;
  b.cap_lo = cap_lo;

  // Sources ring by ring of cells outward from the rectangle, until no
  // source farther out can ask for less than the smallest upper bound found:
  // every size is at least d (growth - 1) / growth^1.5.
  const CellGrid& grid = index.grid;
  const double reach_limit = 4.0 * static_cast<double>(std::max(grid.nx, grid.ny));
  const std::int64_t i0 = static_cast<std::int64_t>(std::clamp(grid.column_of(xlo), -reach_limit, reach_limit));
  const std::int64_t i1 = static_cast<std::int64_t>(std::clamp(grid.column_of(xhi), -reach_limit, reach_limit));
  const std::int64_t j0 = static_cast<std::int64_t>(std::clamp(grid.row_of(ylo), -reach_limit, reach_limit));
  const std::int64_t j1 = static_cast<std::int64_t>(std::clamp(grid.row_of(yhi), -reach_limit, reach_limit));
  double upper = cap_hi;  // the smallest upper bound so far
  std::vector<double>& lowers = b.lowers;
  // A cell is passed over whole when the nearest point of its sources'
  // rectangle, with the smallest of their separations, already gives a
  // lower bound at or above `upper`.  lower_size never falls as the
  // distance or the separation rises (growth_for has checked that growth -
  // 1 and 1 / growth^1.5 are positive, and each rounded step is monotone),
  // and the gap to the cell is no larger than that to any of its sources
  // (squared_gap_to_cell), so every source of the cell would be passed
  // over below, one by one, with nothing changed.  On the GIS-like divide of
  // 8,000 vertices this leaves 42 of the 124 sources per rectangle to look
  // at, on the family's 311,225 cells 5 of 14.
  const bool summarised = index.summaries.size() == index.xs.size() && std::isfinite(xlo) &&
                          std::isfinite(xhi) && std::isfinite(ylo) && std::isfinite(yhi);
  double lower_of[kSourcesInLanes];
  double upper_of[kSourcesInLanes];
  auto visit_cell = [&](std::int64_t i, std::int64_t j) {
    if (i < 0 || i >= grid.nx || j < 0 || j >= grid.ny) return;
    const std::size_t c = grid.cell(static_cast<std::int32_t>(i), static_cast<std::int32_t>(j));
    if (index.cell_start[c] == index.cell_start[c + 1]) return;
    if (summarised) {
      const SourceCellSummary& cell = index.summaries[static_cast<std::size_t>(index.cell_start[c])];
      if (lower_size(g, std::sqrt(squared_gap_to_cell(cell, xlo, xhi, ylo, yhi)), cell.least) >= upper) return;
    }
    // Each source's bounds are worked out in lanes (sources_in_lanes.h),
    // a few sources at a time, and then taken in their order; a source's
    // upper bound is read only when it is kept, as before.
    for (std::int32_t from = index.cell_start[c]; from < index.cell_start[c + 1];
         from += static_cast<std::int32_t>(kSourcesInLanes)) {
      const std::size_t at = static_cast<std::size_t>(from);
      const std::size_t m =
          std::min(kSourcesInLanes, static_cast<std::size_t>(index.cell_start[c + 1] - from));
      bound_sources_over(g, m, index.xs.data() + at, index.ys.data() + at, index.separations.data() + at, xlo, xhi,
                         ylo, yhi, lower_of, upper_of);
      for (std::size_t k = 0; k < m; ++k) {
        const double lower = lower_of[k];
        if (lower >= upper) continue;
        upper = std::min(upper, upper_of[k]);
        b.xs.push_back(index.xs[at + k]);
        b.ys.push_back(index.ys[at + k]);
        b.separations.push_back(index.separations[at + k]);
        lowers.push_back(lower);
      }
    }
  };
  const std::int64_t last_ring = std::max({i1 - 0, grid.nx - 1 - i0, j1 - 0, grid.ny - 1 - j0}) + 1;
  // The walk starts at the first ring that may hold a source: the rings
  // inside it hold none, so visiting them would change nothing, and the
  // test that ends the walk only grows with r, so a walk that would have
  // ended among them ends at that ring, before visiting it.
  for (std::int64_t r = empty_rings_around(index, i0, i1, j0, j1); r <= last_ring; ++r) {
    // Every cell of ring r lies at least (r - 1) cell sides from the
    // rectangle; one side less allows for a column or row that rounding
    // put one cell over.
    if (r > 2 &&
        static_cast<double>(r - 2) * grid.h * g.less_one * g.inverse_rise * (1.0 - kRelative) - kAbsolute >= upper) {
      break;
    }
    if (r == 0) {
      for (std::int64_t j = j0; j <= j1; ++j) {
        for (std::int64_t i = i0; i <= i1; ++i) visit_cell(i, j);
      }
      continue;
    }
    for (std::int64_t i = i0 - r; i <= i1 + r; ++i) {
      visit_cell(i, j0 - r);
      visit_cell(i, j1 + r);
    }
    for (std::int64_t j = j0 - r + 1; j <= j1 + r - 1; ++j) {
      visit_cell(i0 - r, j);
      visit_cell(i1 + r, j);
    }
  }
  // Keep the sources whose lower bound is below the final smallest upper
  // bound; the others ask for at least the field everywhere in the rectangle.
  const std::size_t kept = keep_below(upper, lowers, b.xs, b.ys, b.separations);
  double lowest = cap_lo;
  for (std::size_t k = 0; k < kept; ++k) lowest = std::min(lowest, lowers[k]);
  b.lo = lowest;
  b.hi = upper;
  // No source asks for less than the caps anywhere, and the caps are one
  // value over the rectangle: the field is that value.
  b.flat = kept == 0 && !b.caps_vary;
  if (b.flat) b.lo = b.hi = b.cap;
  b.usable = true;
}

bool growth_slope(const RunState& state, double& slope) {
  Growth g;
  if (!growth_for(state.control.poly_growth_rate, g)) return false;
  slope = g.less_one * g.inverse_rise * (1.0 + kRelative);
  return std::isfinite(slope);
}

bool slope_holds_over(const RunState& state, double xlo, double xhi, double ylo, double yhi) {
  if (state.inner_polygons.empty()) return true;
  const DomainIndex& domain = state.domain_index;
  if (!domain.built || domain.polygons.size() != state.inner_polygons.size()) return false;
  for (const RingIndex& polygon : domain.polygons) {
    if (locate_rectangle_in_ring(polygon, xlo, xhi, ylo, yhi) == kMixed) return false;
  }
  return true;
}

bool field_slope(const RunState& state, double xlo, double xhi, double ylo, double yhi, double& slope) {
  return slope_holds_over(state, xlo, xhi, ylo, yhi) && growth_slope(state, slope);
}

namespace {

// The bounds at (x, y) from the given sources, one source at a time.
void bound_from_sources(const RunState& state, const FieldBounds& b, const std::vector<double>& xs,
                        const std::vector<double>& ys, const std::vector<double>& separations, double x, double y,
                        double& lo, double& hi) {
  Growth g;
  growth_for(state.control.poly_growth_rate, g);
  const double cap = b.caps_vary ? cap_at(state, x, y) : b.cap;
  lo = cap;
  hi = cap;
  for (std::size_t k = 0; k < xs.size(); ++k) {
    const double dx = x - xs[k];
    const double dy = y - ys[k];
    const double d = std::sqrt(dx * dx + dy * dy);
    lo = std::min(lo, lower_size(g, d, separations[k]));
    hi = std::min(hi, upper_size(g, d, separations[k]));
  }
}

}  // namespace

void bound_field_at(const RunState& state, const FieldBounds& b, double x, double y, double& lo, double& hi) {
  bound_from_sources(state, b, b.xs, b.ys, b.separations, x, y, lo, hi);
}

// Why a tile's bounds are the very bits of the rectangle's.  At a point P of
// the tile bound_field_at takes lo(P) = min(cap(P), lower_k(P)) and hi(P) =
// min(cap(P), upper_k(P)) over the rectangle's sources k.  Every step of the
// distance (a difference, its square, a sum, a square root) and of
// lower_size and upper_size is a correctly rounded operation that never
// falls when its operand rises, so
//   lower_k(P) >= lower_k(tile), from the tile's nearest point to k, and
//   upper_k(P) <= upper_k(far),  from the tile's farthest corner from k,
// as the rounded distances from P lie between those two rounded distances.
// The caps at P are at most `cap`, the caps that hold over the whole
// rectangle.  Let U be the smallest of `cap` and of upper_k(far) over the
// sources kept: then hi(P) <= U.  A source left out has lower_k(tile) >= U
// (U only falls while the sources are visited, so a source left out at any
// moment stays so), hence lower_k(P) >= U >= hi(P) >= lo(P), and its upper
// at P is no lower: min() over the kept sources alone gives the same lo(P)
// and hi(P), bit for bit.  The test costs one pass over the rectangle's
// sources per tile, instead of one per point.
void keep_tile_sources(const RunState& state, const FieldBounds& b, double xlo, double xhi, double ylo, double yhi,
                       TileSources& tile) {
  tile.xs.clear();
  tile.ys.clear();
  tile.separations.clear();
  tile.lowers.clear();
  Growth g;
  growth_for(state.control.poly_growth_rate, g);
  double upper = b.cap;
  std::vector<double>& lowers = tile.lowers;
  // Whether every source kept has a positive separation and passes
  // upper_size's tests of range at the tile's corner farthest from it.  It
  // then passes them at every point P of the tile: the rounded distance
  // from P is at most that from the farthest corner (as above), and both d
  // (growth - 1) / s and the algebraic size never fall as d rises.
  bool in_range = true;
  double lower_of[kSourcesInLanes];
  double upper_of[kSourcesInLanes];
  for (std::size_t from = 0; from < b.xs.size(); from += kSourcesInLanes) {
    // Each source's bounds over the tile, worked out in lanes a few sources
    // at a time (sources_in_lanes.h), then taken in their order.
    const std::size_t m = std::min(kSourcesInLanes, b.xs.size() - from);
    bound_sources_over(g, m, b.xs.data() + from, b.ys.data() + from, b.separations.data() + from, xlo, xhi, ylo,
                       yhi, lower_of, upper_of);
    for (std::size_t i = 0; i < m; ++i) {
      const std::size_t k = from + i;
      // The tile lies in the rectangle, so a source's lower bound over the
      // tile is at least its lower bound over the rectangle (the rounded
      // distance to the tile's nearest point is no shorter, as above): a
      // source whose bound over the rectangle already reaches U is left
      // out here, as its bound over the tile would leave it out below.
      if (b.lowers[k] >= upper) continue;
      const double lower = lower_of[i];
      if (lower >= upper) continue;
      const double s = b.separations[k];
      const double far_upper = upper_of[i];
      in_range = in_range && s > 0.0 && far_upper != INFINITY;
      upper = std::min(upper, far_upper);
      tile.xs.push_back(b.xs[k]);
      tile.ys.push_back(b.ys[k]);
      tile.separations.push_back(s);
      lowers.push_back(lower);
    }
  }
  // The field over the tile: at most U, as above; at least the smallest of
  // the caps and of the lowers of the sources kept, since those left out
  // ask for at least U at every point.
  const std::size_t kept = keep_below(upper, lowers, tile.xs, tile.ys, tile.separations);
  double lowest = b.caps_vary ? b.cap_lo : b.cap;
  for (std::size_t k = 0; k < kept; ++k) lowest = std::min(lowest, lowers[k]);
  tile.lo = lowest;
  tile.hi = upper;
  tile.in_range = in_range;
}

// Where every kept source passes upper_size's tests of range, upper_size
// is the algebraic size widened up, as lower_size always is it widened
// down; so the smallest algebraic size is found first and widened once each
// way.  Both widenings (a product by a constant above zero, a difference or
// a sum with a constant, a max with 0) are correctly rounded steps that
// never fall as the size rises, so the widened smallest size is the
// smallest widened size, bit for bit, for lo and hi alike; the sizes are
// numbers (the sources' separations are above zero and the distances
// finite), so min() picks the same value in any order.  On the GIS-like
// divide of 8,000 vertices this is asked 5.7 million times, of about ten
// sources each; whole runs there take 0.99 of the CPU they took with the
// sources widened one at a time, as bound_field_at still does.
void bound_tile_at(const RunState& state, const FieldBounds& b, const TileSources& tile, double x, double y,
                   double& lo, double& hi) {
  if (tile.in_range) {
    Growth g;
    growth_for(state.control.poly_growth_rate, g);
    double smallest = INFINITY;
    for (std::size_t k = 0; k < tile.xs.size(); ++k) {
      const double dx = x - tile.xs[k];
      const double dy = y - tile.ys[k];
      smallest = std::min(smallest, algebraic_size(g, std::sqrt(dx * dx + dy * dy), tile.separations[k]));
    }
    // With no source kept the smallest size is infinite, and so are both
    // widenings: the caps alone give the bounds, as they do below.
    const double cap = b.caps_vary ? cap_at(state, x, y) : b.cap;
    lo = std::min(cap, lower_of_size(smallest));
    hi = std::min(cap, widened_up(smallest));
  } else {
    bound_from_sources(state, b, tile.xs, tile.ys, tile.separations, x, y, lo, hi);
  }
}

}  // namespace tesseramill
