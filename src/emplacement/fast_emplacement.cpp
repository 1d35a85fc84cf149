#include "emplacement/fast_emplacement.h"

#include <algorithm>
#include <cmath>
#include <cstring>
#include <limits>
#include <numeric>

#include "common/run_state.h"
#include "emplacement/grid_steps.h"
#include "emplacement/interior_emplacement.h"
#include "emplacement/near_by_x.h"
#include "geometry/local_separation.h"
#include "geometry/planar_tools.h"
#include "geometry/size_bounds.h"

namespace tesseramill {

// What the fast proposal keeps of the literal steps, and why it chooses the
// same candidate:
// - The grid, the growth of the box and the near list are made exactly as
//   written; the near list comes from the mesh point index, which finds the
//   same points, sorted into the same ascending order.
// - A candidate ends open when it lies in the domain, no listed point lies
//   closer than its clearance and no boundary segment lies closer than its
//   separation.  Each strike looks at one candidate alone and only ever
//   closes it, so the order in which the three are tried does not change
//   which candidates stay open, and a seed whose open count falls to zero
//   on the way gives nothing as surely as one whose open set ends empty.
// - Each strike compares with the candidate's separation; where the bounds
//   of the field already decide the comparison, the exact separation is not
//   worked out.  Where they do not, it is, by local_separation.
// - The isolated-candidate passes and the choice then run on the same open
//   set as the literal steps; the choice skips only candidates whose score
//   provably cannot win, and only points that provably cannot give a
//   smaller term.

namespace {

constexpr double kPointClearanceFactor = 0.8099999570846563;
constexpr double kLargest = 1.7976931348623157e+308;

// The squared distance inside which a listed point strikes a candidate of
// separation s, as the literal step works it out.
double clearance(double s) { return s * s * kPointClearanceFactor; }

// The squared distance below which a listed point where the field is
// `separation` surely strikes a candidate, from how fast the field can fall
// away from the point (field_floor); 0 where none is known.  A candidate
// whose squared distance d2, as the strikes round it, lies below T lies
// within sqrt(T) (1 + kRelative) of the point: the few roundings of d2
// together fall short of the true square by a relative 2^-50 at most, and
// T is kept far above the numbers too small for relative errors to hold.
// The field at the candidate is then at least the floor at that distance,
// and the clearance rises with the field, so the clearance at the
// candidate is at least that of the floor, which is checked to be at
// least T, above d2: the point strikes it.  T is taken just inside the
// distance where the clearance of the falling floor meets the square of
// the distance, 0.9 s / (1 + 0.9 slope), as 0.9 is the root of the
// clearance factor to within 3e-8.
double strike_limit(double slope, double separation) {
  if (!(separation > 0.0 && separation <= kLargestSafeA)) return 0.0;
  const double reach = 0.9 * separation / (1.0 + 0.9 * slope) * (1.0 - 1e-6);
  const double limit = reach * reach;
  if (!(limit >= 1e-290)) return 0.0;
  const double floor = field_floor(slope, separation, std::sqrt(limit) * (1.0 + kRelative));
  return clearance(floor) >= limit ? limit : 0.0;
}

struct Grid {
  const std::vector<double>& grid_x;
  const std::vector<double>& grid_y;
  std::int32_t nsdim;
  std::int32_t half;
  double x(std::int32_t k) const { return grid_x[static_cast<std::size_t>(k + half)]; }
  double y(std::int32_t j) const { return grid_y[static_cast<std::size_t>(j + half)]; }
  std::size_t at(std::int32_t k, std::int32_t j) const {
    return static_cast<std::size_t>((j + half) * nsdim + (k + half));
  }
};

// The exact separation at candidate (k, j), worked out once.
double exact_separation(const RunState& state, ProposalScratch& f, const Grid& g, std::int32_t k, std::int32_t j) {
  double& s = f.exact[g.at(k, j)];
  if (std::isnan(s)) {
    s = local_separation(state, g.x(k), g.y(j), state.control.poly_growth_rate);
    f.exact_set.push_back(static_cast<std::int32_t>(g.at(k, j)));
  }
  return s;
}

// Forgets the exact separations of the seed before.  Only a few candidates
// of a grid ever need theirs, so the table is cleared where it was written
// rather than whole: it reads NaN everywhere afterwards either way.
void forget_exact(ProposalScratch& f, std::size_t candidates) {
  if (f.exact.size() != candidates) {
    f.exact.assign(candidates, std::numeric_limits<double>::quiet_NaN());
  } else {
    for (std::int32_t c : f.exact_set) f.exact[static_cast<std::size_t>(c)] = std::numeric_limits<double>::quiet_NaN();
  }
  f.exact_set.clear();
}

// Calls visit(c) for every open candidate c of the grid, c = (j + half) *
// nsdim + (k + half), in ascending c, which is the literal scan order (row
// by row, each row from the left).  Nearly all candidates are struck by the
// time this is asked, so eight of them are looked at with one load and
// passed over together when all eight are struck; the bytes are only
// compared with zero, so the order of the bytes in the word plays no part.
template <typename Visit>
void for_each_open(const std::vector<std::uint8_t>& open, Visit visit) {
  const std::size_t n = open.size();
  std::size_t c = 0;
  for (; c + 8 <= n; c += 8) {
    std::uint64_t eight = 0;
    std::memcpy(&eight, open.data() + c, sizeof eight);
    if (eight == 0) continue;
    for (std::size_t i = c; i < c + 8; ++i) {
      if (open[i] != 0) visit(i);
    }
  }
  for (; c < n; ++c) {
    if (open[c] != 0) visit(c);
  }
}

// Candidates per side of a tile of the grid.  A tile's sources are kept
// with one pass over the rectangle's; a tile of 8 x 8 candidates spans 0.8
// of the seed's separation with the default NSDIM, and the passes over the
// rectangle's sources stay at most 16 per seed.  Smaller tiles keep fewer
// sources each, but their passes cost more than their narrower bounds
// save: with tiles of 4 the divide of 8,000 vertices made 6.1 million
// passes over 38 sources each for its 317,622 cells, 9 % of the run's CPU;
// tiles of 8 take 0.96 of the CPU of tiles of 4 on the GIS-like divide of
// 2,000 vertices, 0.94 on that of 8,000 and 0.99 on the family's 100,000
// cells (farm-bench medians of 5 pairs).  The side changes no decision:
// every tile's bounds hold at each of its candidates (see
// keep_tile_sources), and a decision they leave open goes on to narrower
// bounds and at last to the exact separation.  The domain test takes the
// tiles too.
constexpr std::int32_t kTileSide = 8;

std::int32_t tiles_per_side(const Grid& g) { return (g.nsdim + kTileSide - 1) / kTileSide; }

// Forgets the tiles of the grid before: the grid or the rectangle's sources
// have changed.
void reset_tiles(ProposalScratch& f, const Grid& g) {
  const std::size_t count = static_cast<std::size_t>(tiles_per_side(g)) * static_cast<std::size_t>(tiles_per_side(g));
  if (f.tiles.size() < count) f.tiles.resize(count);
  f.tile_kept.assign(count, 0);
}

// The columns k0..k1 and rows j0..j1 of tile (ti, tj).  The tile's
// rectangle, from x(k0) to x(k1) and y(j0) to y(j1), has its rim on
// candidates, so that it holds its candidates exactly.
struct TileRange {
  std::int32_t k0, k1, j0, j1;
};

TileRange tile_range(const Grid& g, std::int32_t ti, std::int32_t tj) {
  const std::int32_t k0 = ti * kTileSide - g.half;
  const std::int32_t j0 = tj * kTileSide - g.half;
  return {k0, std::min(k0 + kTileSide - 1, g.half), j0, std::min(j0 + kTileSide - 1, g.half)};
}

// The number of the tile that holds candidate (k, j).
std::size_t tile_number(const Grid& g, std::int32_t k, std::int32_t j) {
  return static_cast<std::size_t>((j + g.half) / kTileSide * tiles_per_side(g) + (k + g.half) / kTileSide);
}

// The tile of candidate (k, j), its sources kept when first asked for.
const TileSources& tile_of(const RunState& state, ProposalScratch& f, const Grid& g, std::int32_t k, std::int32_t j) {
  const std::size_t t = tile_number(g, k, j);
  if (f.tile_kept[t] == 0) {
    const TileRange r = tile_range(g, (k + g.half) / kTileSide, (j + g.half) / kTileSide);
    keep_tile_sources(state, f.field, g.x(r.k0), g.x(r.k1), g.y(r.j0), g.y(r.j1), f.tiles[t]);
    f.tile_kept[t] = 1;
  }
  return f.tiles[t];
}

// Each comparison of a candidate's separation below is decided by the
// narrowest bounds that decide it: the rectangle's, the tile's, then those
// at the candidate itself (the bits of bound_field_at, from the tile's
// sources; see keep_tile_sources), and only then by the exact separation.
// All of them hold the exact separation, so each decision is the one the
// exact value gives.

// Whether a listed point at squared distance `d2min` (the nearest) strikes
// candidate (k, j), when the rectangle's bounds left it open.
//
// The bounds last worked out at a candidate are tried first, carried here
// by the slope: the field at any point lies within the slope times the
// distance of its value at another, where the slope holds over the segment
// between them (field_floor, field_ceiling), and every candidate lies in
// the seed's boxes, over which carry_slope was found to hold.  |dx| + |dy|,
// widened by kRelative against the rounding of the differences and their
// sum, is at least the true distance.  The candidates that reach this test
// lie along the rims of the points' discs, near one another, and on the
// GIS-like divide of 8,000 vertices 56 in 100 of them are decided so,
// without the tile's sources being kept or bounded at the candidate.
bool struck_by_point(const RunState& state, ProposalScratch& f, const Grid& g, std::int32_t k, std::int32_t j,
                     double d2min) {
  // The clearance rises with s, rounding included, so bounds on s bound it.
  if (f.bounded_any) {
    const double r = (std::fabs(g.x(k) - f.bounded_x) + std::fabs(g.y(j) - f.bounded_y)) * (1.0 + kRelative);
    if (clearance(field_floor(f.carry_slope, f.bounded_lo, r)) > d2min) return true;
    const double ceiling = field_ceiling(f.carry_slope, f.bounded_hi, r);
    if (ceiling <= kLargestSafeA && !(clearance(ceiling) > d2min)) return false;
  }
  const TileSources& tile = tile_of(state, f, g, k, j);
  if (clearance(tile.lo) > d2min) return true;
  if (!(clearance(tile.hi) > d2min)) return false;
  double lo = 0.0;
  double hi = 0.0;
  bound_tile_at(state, f.field, tile, g.x(k), g.y(j), lo, hi);
  if (f.carry_slope > 0.0 && hi <= kLargestSafeA) {
    f.bounded_any = true;
    f.bounded_x = g.x(k);
    f.bounded_y = g.y(j);
    f.bounded_lo = lo;
    f.bounded_hi = hi;
  }
  if (clearance(lo) > d2min) return true;
  if (!(clearance(hi) > d2min)) return false;
  return clearance(exact_separation(state, f, g, k, j)) > d2min;
}

// Whether a boundary segment at distance `distance` strikes candidate (k, j).
bool struck_by_segment(const RunState& state, ProposalScratch& f, const Grid& g, std::int32_t k, std::int32_t j,
                       double distance) {
  if (f.field.lo > distance) return true;
  if (!(f.field.hi > distance)) return false;
  const TileSources& tile = tile_of(state, f, g, k, j);
  if (tile.lo > distance) return true;
  if (!(tile.hi > distance)) return false;
  double lo = 0.0;
  double hi = 0.0;
  bound_tile_at(state, f.field, tile, g.x(k), g.y(j), lo, hi);
  if (lo > distance) return true;
  if (!(hi > distance)) return false;
  return exact_separation(state, f, g, k, j) > distance;
}

// Whether some candidate of the grid lies in the domain; the answer does
// not depend on the order of the tests.  The seed's own position comes
// last: a seed on a ring lies within the domain index's margin of an edge,
// where a point costs an angle sum over the whole ring.  Its eight
// neighbours come first, as one of them lies inside for most seeds.
bool any_candidate_in_domain(const RunState& state, const Grid& g) {
  for (std::int32_t j = -1; j <= 1; ++j) {
    for (std::int32_t k = -1; k <= 1; ++k) {
      if ((k != 0 || j != 0) && point_in_domain(state, g.x(k), g.y(j))) return true;
    }
  }
  for (std::int32_t j = -g.half; j <= g.half; ++j) {
    for (std::int32_t k = -g.half; k <= g.half; ++k) {
      if ((k != 0 || j != 0) && point_in_domain(state, g.x(k), g.y(j))) return true;
    }
  }
  return point_in_domain(state, g.x(0), g.y(0));
}

// A distance that every candidate still open after strike_near_segments
// keeps from every edge of the outer boundary and the holes, or 0 where
// none is known beyond the domain index's margins.  An open candidate has
// no segment of those rings closer than its separation, as
// distance_to_segment rounds it (segments that strike_near_segments did
// not list lie farther than the field's upper bound), and its separation
// is at least the rectangle's lower bound.  distance_to_segment is off by
// far less than a relative 1e-9 plus 1e-9 of the coordinates' size, and a
// ring's closing edge, from its last vertex back to its first, lies within
// closing_gap of the last vertex, which ends a segment.
double edge_clearance(const FastEmplacement& fe, const ProposalScratch& f, const Grid& g) {
  const double size =
      std::fabs(g.x(-g.half)) + std::fabs(g.x(g.half)) + std::fabs(g.y(-g.half)) + std::fabs(g.y(g.half));
  const double clear = f.field.lo * (1.0 - 1e-9) - 1e-9 * size - fe.closing_gap;
  return clear > fe.edge_margin ? clear : 0.0;
}

// Whether any of the n candidates of a row from p on is open: the flags are
// 0 or 1, so eight of them are read at once and only compared with zero.
bool any_open_in_run(const std::uint8_t* p, std::size_t n) {
  if (n < 8) {
    for (std::size_t i = 0; i < n; ++i) {
      if (p[i] != 0) return true;
    }
    return false;
  }
  std::uint64_t any = 0;
  for (std::size_t i = 0; i + 8 <= n; i += 8) {
    std::uint64_t eight = 0;
    std::memcpy(&eight, p + i, sizeof eight);
    any |= eight;
  }
  std::uint64_t last = 0;
  std::memcpy(&last, p + n - 8, sizeof last);
  return (any | last) != 0;
}

// The first open candidate of a tile in scan order; false when none is.
// Most tiles are struck whole by now, so each row is first looked at eight
// candidates to a load (any_open_in_run).
bool first_open_in_tile(const ProposalScratch& f, const Grid& g, const TileRange& r, std::int32_t& k,
                        std::int32_t& j) {
  const std::size_t width = static_cast<std::size_t>(r.k1 - r.k0 + 1);
  for (j = r.j0; j <= r.j1; ++j) {
    if (!any_open_in_run(f.open.data() + g.at(r.k0, j), width)) continue;
    for (k = r.k0; k <= r.k1; ++k) {
      if (f.open[g.at(k, j)] != 0) return true;
    }
  }
  return false;
}

// Strikes the open candidates that lie outside the domain.  A tile whose
// rectangle the domain index places wholly inside or wholly outside decides
// all its candidates at once, since rectangle_in_domain gives for a
// rectangle what point_in_domain gives at every point of it.
//
// The open candidates of any other tile are decided by the first of them
// alone when they all keep `clear` (edge_clearance) from every edge of the
// rings and the tile's diagonal, widened far beyond its rounding, is below
// 2 clear.  Then every point of the segment between two of them lies
// within half the diagonal of one of its ends, so nearer no edge than
// clear - diagonal / 2 > 0: the segment crosses no ring, and the two have
// the same winding number round each.  Both lie beyond every margin of the
// domain index, where point_in_domain gives the winding number's answer,
// so it gives each of them the first one's.  On the GIS-like divide of
// 8,000 vertices every such tile is decided so, with 0.4 point tests per
// seed instead of 9.7.  Otherwise the candidates are tested one by one.
// Each candidate is decided alone, so the order of the tests does not
// matter.
void strike_outside_domain(const RunState& state, ProposalScratch& f, const Grid& g) {
  const double clear = edge_clearance(state.fast_emplacement, f, g);
  for (std::int32_t tj = 0; tj < tiles_per_side(g); ++tj) {
    for (std::int32_t ti = 0; ti < tiles_per_side(g); ++ti) {
      const TileRange r = tile_range(g, ti, tj);
      std::int32_t k_first = 0;
      std::int32_t j_first = 0;
      if (!first_open_in_tile(f, g, r, k_first, j_first)) continue;
      int where = rectangle_in_domain(state, g.x(r.k0), g.x(r.k1), g.y(r.j0), g.y(r.j1));
      if (where == kMixed && clear > 0.0) {
        const double dx = g.x(r.k1) - g.x(r.k0);
        const double dy = g.y(r.j1) - g.y(r.j0);
        if (std::sqrt(dx * dx + dy * dy) * (1.0 + 1e-12) < clear + clear) {
          where = point_in_domain(state, g.x(k_first), g.y(j_first)) ? kInside : kOutside;
        }
      }
      if (where == kInside) continue;
      for (std::int32_t j = r.j0; j <= r.j1; ++j) {
        for (std::int32_t k = r.k0; k <= r.k1; ++k) {
          if (f.open[g.at(k, j)] != 0 && (where == kOutside || !point_in_domain(state, g.x(k), g.y(j)))) {
            f.open[g.at(k, j)] = 0;
          }
        }
      }
    }
  }
}

// Strikes the n candidates of a row from p on.  The runs are short (a
// square's side is about 12 candidates with the default NSDIM), so they are
// written with at most two overlapping stores, which never reach past the
// run, rather than by a call per run.
void strike_run(std::uint8_t* p, std::size_t n) {
  static constexpr std::uint8_t kStruck[16] = {};
  if (n > 32) {
    std::memset(p, 0, n);
  } else if (n >= 16) {
    std::memcpy(p, kStruck, 16);
    std::memcpy(p + n - 16, kStruck, 16);
  } else if (n >= 8) {
    std::memcpy(p, kStruck, 8);
    std::memcpy(p + n - 8, kStruck, 8);
  } else if (n >= 4) {
    std::memcpy(p, kStruck, 4);
    std::memcpy(p + n - 4, kStruck, 4);
  } else if (n > 0) {
    p[0] = 0;
    p[n / 2] = 0;
    p[n - 1] = 0;
  }
}


// Strikes at once the candidates of the square inscribed in each listed
// point's disc of sure strikes.  The squared distance as the literal step
// rounds it grows with the rounded dx * dx and dy * dy, and each of those is
// largest at an end of its range of columns or rows, so over a rectangle of
// candidates it is largest at one of the four corners: when all four lie
// closer than the smallest clearance, every candidate between does.  The
// corners alone decide; the columns and rows of the square are only a
// guess, taken with a product by 1 / h in place of a quotient, and a guess
// too wide fails at a corner and strikes nothing here, leaving its
// candidates to the tests one by one.
void strike_squares(ProposalScratch& f, const Grid& g, double h, double x0, double y0, double limit_lo) {
  const double per_h = 1.0 / h;
  for (std::size_t p = 0; p < f.near_x.size(); ++p) {
    const double px = f.near_x[p];
    const double py = f.near_y[p];
    // A candidate closer than either limit is struck: by the rectangle's
    // lower bound, or by the point's own (strike_limit).
    const double limit = std::max(limit_lo, f.near_strike[p]);
    if (!(limit > 0.0)) continue;
    const double half_side = std::sqrt(limit) * 0.7071;
    const std::int32_t klo = first_step((px - half_side - x0) * per_h, g.half);
    const std::int32_t khi = last_step((px + half_side - x0) * per_h, g.half);
    const std::int32_t jlo = first_step((py - half_side - y0) * per_h, g.half);
    const std::int32_t jhi = last_step((py + half_side - y0) * per_h, g.half);
    if (klo > khi || jlo > jhi) continue;
    bool inside = true;
    for (std::int32_t k : {klo, khi}) {
      for (std::int32_t j : {jlo, jhi}) {
        const double dx = g.x(k) - px;
        const double dy = g.y(j) - py;
        if (!(limit > dx * dx + dy * dy)) inside = false;
      }
    }
    if (!inside) continue;
    for (std::int32_t j = jlo; j <= jhi; ++j) {
      strike_run(f.open.data() + g.at(klo, j), static_cast<std::size_t>(khi - klo + 1));
    }
  }
}

// Whether a point of a row at squared distance d2 from a candidate strikes
// it for sure, by the lower bound `near_lo` of the clearance there or by
// its own limit `strike`; otherwise the nearest distance so far is kept.
inline bool strikes_surely(double d2, double strike, double near_lo, double& d2min) {
  if (near_lo > d2 || strike > d2) return true;
  d2min = std::min(d2min, d2);
  return false;
}

// Strikes the candidates that a listed point lies too close to: first whole
// squares of sure strikes, then the rest row by row, where a row sees only
// the points within the largest clearance of it, and a candidate only those
// of them within that clearance in x, taken from the points sorted by x.
void strike_near_points(const RunState& state, ProposalScratch& f, const Grid& g, double h, double x0, double y0) {
  const double limit_lo = clearance(f.field.lo);
  const double limit_hi = clearance(f.field.hi);
  strike_squares(f, g, h, x0, y0, limit_lo);
  for (std::int32_t j = -g.half; j <= g.half; ++j) {
    if (!any_open_in_run(f.open.data() + g.at(-g.half, j), static_cast<std::size_t>(g.nsdim))) {
      continue;  // the whole row is struck already
    }
    const double y = g.y(j);
    // Every point is written, and only those within the clearance are kept
    // by moving on: about half the points pass, so a branch on the test
    // would be mispredicted half the time.
    f.row_x.resize(f.near_x.size());
    f.row_dy2.resize(f.near_x.size());
    f.row_strike.resize(f.near_x.size());
    std::size_t row_size = 0;
    for (std::size_t p = 0; p < f.near_x.size(); ++p) {
      const double dy = y - f.near_y[p];
      const double dy2 = dy * dy;
      f.row_x[row_size] = f.near_x[p];
      f.row_dy2[row_size] = dy2;
      f.row_strike[row_size] = f.near_strike[p];
      row_size += limit_hi > dy2 ? 1 : 0;
    }
    // The first point of the row at or right of the candidate; the
    // candidates come from the left, so it only moves right.
    std::size_t mid = 0;
    const std::size_t row_tiles = static_cast<std::size_t>((j + g.half) / kTileSide * tiles_per_side(g));
    for (std::int32_t k = -g.half; k <= g.half; ++k) {
      if (f.open[g.at(k, j)] == 0) continue;
      const double x = g.x(k);
      while (mid < row_size && f.row_x[mid] < x) ++mid;
      // Once the candidate's tile is kept its bounds hold at the candidate
      // too, and they are narrower than the rectangle's: the clearance
      // rises with s, rounding included, so a point closer than the
      // clearance of the tile's lower bound strikes the candidate, and none
      // as far as that of its upper bound does.  A point at least that far
      // in x lies at least that far, as adding dy * dy cannot lower a
      // rounded sum, and so do the points beyond it on its side, sorted by
      // x, as the rounded difference and its square only grow outwards.
      // None of them strikes: not by near_lo, which is at most near_hi, nor
      // by its own limit, which strikes only where the clearance exceeds
      // the distance (strike_limit), and the clearance is at most near_hi.
      // So the points are taken outwards from the candidate on each side,
      // up to the first that far in x; the nearest point that can strike
      // lies among them, and a candidate whose nearest point lies farther
      // is struck by none.  Whether the candidate is struck is an existence
      // over the points, so the order they are taken in plays no part.
      double near_lo = limit_lo;
      double near_hi = limit_hi;
      const std::size_t t = row_tiles + static_cast<std::size_t>((k + g.half) / kTileSide);
      if (f.tile_kept[t] != 0) {
        near_lo = std::max(near_lo, clearance(f.tiles[t].lo));
        near_hi = std::min(near_hi, clearance(f.tiles[t].hi));
      }
      // A point's own limit strikes only candidates that the rectangle's
      // upper bound lets it reach, so the points left out of the row above
      // strike none by it either.
      bool struck = false;
      double d2min = INFINITY;
      for (std::size_t q = mid; q < row_size && !struck; ++q) {
        const double dx = x - f.row_x[q];
        if (!(near_hi > dx * dx)) break;
        struck = strikes_surely(dx * dx + f.row_dy2[q], f.row_strike[q], near_lo, d2min);
      }
      for (std::size_t q = mid; q-- > 0 && !struck;) {
        const double dx = x - f.row_x[q];
        if (!(near_hi > dx * dx)) break;
        struck = strikes_surely(dx * dx + f.row_dy2[q], f.row_strike[q], near_lo, d2min);
      }
      if (!struck && near_hi > d2min) struck = struck_by_point(state, f, g, k, j, d2min);
      if (struck) f.open[g.at(k, j)] = 0;
    }
  }
}

// Strikes the open candidates that a boundary segment lies too close to;
// only segments within the field's upper bound of the grid can.
void strike_near_segments(const RunState& state, const SegmentIndex& segments, ProposalScratch& f, const Grid& g) {
  const double xlo = g.x(-g.half);
  const double xhi = g.x(g.half);
  const double ylo = g.y(-g.half);
  const double yhi = g.y(g.half);
  // distance_to_segment is off by far less than this from the true distance.
  const double reach =
      f.field.hi * (1.0 + 1e-9) + 1e-9 * (std::fabs(xlo) + std::fabs(xhi) + std::fabs(ylo) + std::fabs(yhi));
  const std::vector<double>& ends = segments.ends;
  if (segments.built) {
    segments_near(segments, xlo, xhi, ylo, yhi, reach, f.close_segments);
  } else {
    f.close_segments.resize(ends.size() / 4);
    std::iota(f.close_segments.begin(), f.close_segments.end(), 0);
  }
  if (f.close_segments.empty()) return;
  // A distance from a segment's line beyond which the segment cannot
  // strike: the cut-off below plus the line's slack (SegmentIndex::lines).
  // The distance from the line, as rounded below, is off by far less than
  // the slack, 1e-12 of the coordinates' sizes, from the true one, which is
  // at most the true distance from the segment; that in turn is off by far
  // less than 1e-9 of its own size and of the grid's from
  // distance_to_segment's.  So beyond the cut-off and the slack
  // distance_to_segment gives at least the field's upper bound, and
  // struck_by_segment passes the candidate over.  A segment without a line
  // has an infinite slack and is never passed over so; nor is any where
  // the cut-off is no finite number.  On the GIS-like divide of 8,000
  // vertices 7 in 10 of the distances worked out were past the upper bound.
  const double size = std::fabs(xlo) + std::fabs(xhi) + std::fabs(ylo) + std::fabs(yhi);
  const double cut = f.field.hi * (1.0 + 1e-8) + 1e-8 * size;
  // Tile by tile, each open candidate against the segments that can reach
  // its tile; a tile with none open is passed over before its segments are
  // sought (on the divide of 8,000 vertices, 9 in 10 of the tiles).  The
  // true distance from a segment to any point of a tile is at least the gap
  // between the segment's bounding box and the tile's rectangle, and the
  // gap as rounded here is off by far less than the margin in `reach`; so a
  // segment whose gap exceeds `reach` lies farther than the field's upper
  // bound from every candidate of the tile, as distance_to_segment rounds
  // it, and strikes none of them.  Each candidate is decided alone, so
  // taking them tile by tile, and from the first open one, changes nothing.
  for (std::int32_t tj = 0; tj < tiles_per_side(g); ++tj) {
    for (std::int32_t ti = 0; ti < tiles_per_side(g); ++ti) {
      const TileRange r = tile_range(g, ti, tj);
      const double txlo = g.x(r.k0);
      const double txhi = g.x(r.k1);
      const double tylo = g.y(r.j0);
      const double tyhi = g.y(r.j1);
      std::int32_t k_first = 0;
      std::int32_t j_first = 0;
      if (!first_open_in_tile(f, g, r, k_first, j_first)) continue;
      f.tile_segments.clear();
      for (std::int32_t s : f.close_segments) {
        const double* e = &ends[4 * static_cast<std::size_t>(s)];
        const double gap_x = std::max({std::min(e[0], e[2]) - txhi, txlo - std::max(e[0], e[2]), 0.0});
        const double gap_y = std::max({std::min(e[1], e[3]) - tyhi, tylo - std::max(e[1], e[3]), 0.0});
        if (!(std::max(gap_x, gap_y) > reach)) f.tile_segments.push_back(s);
      }
      if (f.tile_segments.empty()) continue;
      for (std::int32_t j = j_first; j <= r.j1; ++j) {
        for (std::int32_t k = j == j_first ? k_first : r.k0; k <= r.k1; ++k) {
          if (f.open[g.at(k, j)] == 0) continue;
          for (std::int32_t s : f.tile_segments) {
            const double* line = &segments.lines[4 * static_cast<std::size_t>(s)];
            if (std::fabs(line[0] * g.x(k) + line[1] * g.y(j) - line[2]) > cut + line[3]) continue;
            const double* e = &ends[4 * static_cast<std::size_t>(s)];
            const double distance = distance_to_segment(g.x(k), g.y(j), e[0], e[1], e[2], e[3]);
            if (struck_by_segment(state, f, g, k, j, distance)) {
              f.open[g.at(k, j)] = 0;
              break;
            }
          }
        }
      }
    }
  }
}

// The field at candidate (k, j), the point a proposal chose: the same bits
// as local_separation there, from the sources of the candidate's tile when
// they are kept and from the rectangle's otherwise.  Why the bits are the
// same.  local_separation gives min(A, caps), where A is the smallest of
// its start and of every source's size at the point; the same from the
// listed sources gives min(B, caps), with B >= A.  Let U be the upper bound
// of the field over the rectangle (or the tile) that the list was kept
// with.  Every source left out has a lower bound at least U there, so a
// size of its at least U; and U is either the caps that hold over the
// whole rectangle, at least caps, or the upper bound at the farthest
// corner of a source t, whose lower bound lies below that upper bound, so
// that t is kept, and B <= size of t <= U.  Were B > A, A would be a size of
// a source left out, at least U: in the first case caps <= U <= A < B, so
// min(A, caps) = caps = min(B, caps); in the second A >= U >= B, which
// cannot be.  So the two agree.  A tile's sources come from the
// rectangle's, and a source left out of the rectangle has a lower bound at
// least the rectangle's U, which is at least the tile's.
double separation_at(const RunState& state, ProposalScratch& f, const Grid& g, std::int32_t k, std::int32_t j) {
  const std::size_t t = tile_number(g, k, j);
  const double growth = state.control.poly_growth_rate;
  if (f.tile_kept[t] != 0) {
    const TileSources& tile = f.tiles[t];
    return local_separation_from_sources(state, g.x(k), g.y(j), growth, tile.xs, tile.ys, tile.separations);
  }
  return local_separation_from_sources(state, g.x(k), g.y(j), growth, f.field.xs, f.field.ys, f.field.separations);
}

// The literal choice among the open candidates: the smallest score
// |distance to the seed - sep| + min over other listed points of
// |distance - sep|, the first in scan order on a tie.
bool choose(ProposalScratch& f, const Grid& g, std::int32_t seed, double x0, double y0, double sep, double& x,
            double& y, std::int32_t& chosen_at) {
  f.open_list.clear();
  f.seed_term.clear();
  for_each_open(f.open, [&](std::size_t c) {
    const std::int32_t at = static_cast<std::int32_t>(c);
    const double dx = g.x(at % g.nsdim - g.half) - x0;
    const double dy = g.y(at / g.nsdim - g.half) - y0;
    f.open_list.push_back(at);
    f.seed_term.push_back(std::fabs(std::sqrt(dx * dx + dy * dy) - sep));
  });
  if (f.open_list.empty()) return false;
  // The term of the other points, exactly as the literal step takes its
  // minimum: a point whose distance is at least sep + m, or at most
  // sep - m, gives a term of at least m and cannot lower it.
  auto other_term = [&](double cx, double cy) {
    double m = kLargest;
    double above = INFINITY;
    double below = -1.0;
    for (std::size_t p = 0; p < f.near_number.size(); ++p) {
      if (f.near_number[p] == seed) continue;
      const double dx = cx - f.near_x[p];
      const double dy = cy - f.near_y[p];
      const double d2 = dx * dx + dy * dy;
      if (d2 >= above || d2 <= below) continue;
      m = std::min(m, std::fabs(std::sqrt(d2) - sep));
      // The cut-offs are widened by a relative 1e-12 against the rounding
      // of the square root and of the squares here.
      const double high = sep + m;
      above = high * high * (1.0 + 1e-12);
      const double low = sep - m;
      below = low > 0.0 ? low * low * (1.0 - 1e-12) : -1.0;
    }
    return m;
  };
  auto candidate_x = [&](std::int32_t c) { return g.x(c % g.nsdim - g.half); };
  auto candidate_y = [&](std::int32_t c) { return g.y(c / g.nsdim - g.half); };
  // The candidate with the smallest seed term first, so that the bound to
  // beat is low from the start; then all in scan order.  The winner is the
  // smallest (score, scan position), as in the literal scan.
  const std::size_t start = static_cast<std::size_t>(
      std::min_element(f.seed_term.begin(), f.seed_term.end()) - f.seed_term.begin());
  std::size_t best_at = start;
  double best = f.seed_term[start] + other_term(candidate_x(f.open_list[start]), candidate_y(f.open_list[start]));
  for (std::size_t q = 0; q < f.open_list.size(); ++q) {
    if (q == start) continue;
    // The score is the seed term plus a term that is not negative, and a
    // rounded sum is not below either part: a seed term above the best
    // score, or equal to it behind the best in scan order, cannot win.
    if (f.seed_term[q] > best || (f.seed_term[q] == best && q > best_at)) continue;
    const double score = f.seed_term[q] + other_term(candidate_x(f.open_list[q]), candidate_y(f.open_list[q]));
    if (score < best || (score == best && q < best_at)) {
      best = score;
      best_at = q;
    }
  }
  chosen_at = f.open_list[best_at];
  x = candidate_x(f.open_list[best_at]);
  y = candidate_y(f.open_list[best_at]);
  return true;
}

}  // namespace

void start_fast_emplacement(RunState& state) {
  FastEmplacement& f = state.fast_emplacement;
  f = FastEmplacement{};
  // The index covers the outer boundary and every point placed so far: the
  // points still to come lie in the domain.
  const std::vector<double>& outer = state.outer_boundary.vertices;
  double xlo = outer.empty() ? 0.0 : outer[0];
  double xhi = xlo;
  double ylo = outer.size() > 1 ? outer[1] : 0.0;
  double yhi = ylo;
  auto widen = [&](double x, double y) {
    if (!std::isfinite(x) || !std::isfinite(y)) return;
    xlo = std::min(xlo, x);
    xhi = std::max(xhi, x);
    ylo = std::min(ylo, y);
    yhi = std::max(yhi, y);
  };
  for (std::size_t k = 0; k + 1 < outer.size(); k += 2) widen(outer[k], outer[k + 1]);
  const std::vector<double>& points = state.mesh.mesh_points;
  for (std::int32_t p = 0; p < state.mesh.mesh_point_count; ++p) widen(points[2 * p], points[2 * p + 1]);
  f.xlo = xlo;
  f.xhi = xhi;
  f.ylo = ylo;
  f.yhi = yhi;
  f.has_slope = growth_slope(state, f.slope);
  start_mesh_point_index(f.mesh_index, &state.mesh.mesh_points, xlo, xhi, ylo, yhi);
  f.mesh_index.strikes = &f.strikes;
  for (std::int32_t p = 1; p <= state.mesh.mesh_point_count; ++p) {
    index_run_point(state, p, std::numeric_limits<double>::quiet_NaN());
  }

  const BoundaryRings boundaries = boundary_rings(state);
  const std::vector<const double*>& rings = boundaries.rings;
  const std::vector<std::int32_t>& counts = boundaries.counts;
  // The rings' segments by place, as the domain index keeps them once it is
  // built (the rings do not change afterwards).
  const DomainIndex& domain = state.domain_index;
  if (domain.built) {
    f.segments = domain.segments;
  } else {
    build_segment_index(f.segments, rings, counts);
  }
  // The rings' closing gaps, each as |dx| + |dy|, no less than its length;
  // and the domain index's widest margin, when it serves every ring.
  bool served = domain.built && domain.outer.usable && domain.holes.size() == state.inner_boundaries.size();
  f.edge_margin = 0.0;
  for (std::size_t r = 0; r < rings.size(); ++r) {
    if (counts[r] < 1) continue;
    const double* first = rings[r];
    const double* last = rings[r] + 2 * static_cast<std::size_t>(counts[r] - 1);
    const double gap = std::fabs(last[0] - first[0]) + std::fabs(last[1] - first[1]);
    if (std::isfinite(gap)) {
      f.closing_gap = std::max(f.closing_gap, gap * (1.0 + 1e-12));
    } else {
      served = false;
    }
    const RingIndex* ring = r == 0 ? &domain.outer : r - 1 < domain.holes.size() ? &domain.holes[r - 1] : nullptr;
    if (ring == nullptr || !ring->usable) {
      served = false;
      continue;
    }
    for (double margin : ring->near) f.edge_margin = std::max(f.edge_margin, margin);
  }
  if (!served) f.edge_margin = INFINITY;
  if (!f.segments.built) {
    // Values the index cannot place: every segment is looked at.
    f.segments.ends.clear();
    for (std::size_t r = 0; r < rings.size(); ++r) {
      for (std::int32_t k = 0; k + 1 < counts[r]; ++k) {
        const double* v = rings[r] + 2 * static_cast<std::size_t>(k);
        f.segments.ends.insert(f.segments.ends.end(), {v[0], v[1], v[2], v[3]});
      }
    }
  }
  segment_lines(f.segments);
  f.ready = true;
}

void index_run_point(RunState& state, std::int32_t number, double separation) {
  FastEmplacement& f = state.fast_emplacement;
  if (std::isnan(separation)) {
    const std::vector<double>& points = state.mesh.mesh_points;
    separation = local_separation(state, points[2 * static_cast<std::size_t>(number - 1)],
                                  points[2 * static_cast<std::size_t>(number - 1) + 1],
                                  state.control.poly_growth_rate);
  }
  // The tables hold the points in order; a point indexed out of turn keeps
  // neither its separation, which the proposals then work out again, nor a
  // strike limit.
  if (f.separations.size() + 1 == static_cast<std::size_t>(number)) {
    f.separations.push_back(separation);
    f.strikes.push_back(point_strike(f, separation));
  }
  insert_mesh_point(f.mesh_index, number);
}

double point_strike(const FastEmplacement& f, double separation) {
  return f.has_slope ? strike_limit(f.slope, separation) : 0.0;
}

void finish_fast_emplacement(RunState& state) {
  FastEmplacement& f = state.fast_emplacement;
  const std::int64_t shared_seeds = f.shared_seeds;
  const std::int64_t proposed_again = f.proposed_again;
  const std::int64_t passed_over = f.passed_over;
  f = FastEmplacement{};
  f.shared_seeds = shared_seeds;
  f.proposed_again = proposed_again;
  f.passed_over = passed_over;
}

PointView run_points(const RunState& state) {
  PointView view;
  view.index = &state.fast_emplacement.mesh_index;
  view.coordinates = &state.mesh.mesh_points;
  view.count = state.mesh.mesh_point_count;
  view.separations = &state.fast_emplacement.separations;
  return view;
}

void entries_in_view(const PointView& view, double xlo, double xhi, double ylo, double yhi,
                     MeshPointIndex::EntryList& out) {
  out.clear();
  entries_in_box(*view.index, xlo, xhi, ylo, yhi, out);
  if (view.own == nullptr) return;
  // The part's own points are numbered on from the run's, in the order they
  // were placed.
  const std::size_t from = out.size();
  entries_in_box(*view.own, xlo, xhi, ylo, yhi, out);
  for (std::size_t i = from; i < out.size(); ++i) out[i].number += view.count;
}

void propose_fast(const RunState& state, ProposalScratch& f, const PointView& view, std::int32_t seed,
                  Proposal& out) {
  out = Proposal{};
  // A seed that chose nothing on the grid of its first box chooses nothing
  // at any later turn, and is passed over.  Between its turns only mesh
  // points are added, and none moves: the field at the seed and at every
  // candidate, the domain and the boundaries stay as they were, and the
  // first box's near list can only grow, so it still holds five points or
  // more and the grid is the same.  A candidate outside the domain or too
  // near a boundary stays struck, and so does one struck by a listed point,
  // which is still listed: the candidates open before the
  // isolated-candidate passes are the same or fewer.  Those passes keep
  // that order: along the scan, a candidate open in both that the larger
  // set strikes has its four neighbours struck there at its turn, so in the
  // smaller set too, which strikes it as well.  So the open set ends empty
  // again, and the choice finds nothing.  note_outcome marks a seed only
  // from an outcome that is the literal steps' among all the run's points
  // at the seed's turn.  Each point is a seed at two turns of the default
  // SAFETY; on the GIS-like divide of 8,000 vertices 61,583 of the 609,486
  // proposals of the shared cycles are passed over so, on the family's
  // 311,225 cells 31,037 of 606,728.
  const std::vector<std::uint8_t>& stays_empty = state.fast_emplacement.stays_empty;
  if (seed >= 1 && static_cast<std::size_t>(seed) <= stays_empty.size() &&
      stays_empty[static_cast<std::size_t>(seed - 1)] != 0) {
    out.passed_over = true;
    return;
  }
  const double growth = state.control.poly_growth_rate;
  const std::int32_t nsdim = state.control.nsdim;
  const std::int32_t half = nsdim / 2;
  f.grid_x.resize(static_cast<std::size_t>(nsdim));
  f.grid_y.resize(static_cast<std::size_t>(nsdim));
  const Grid g{f.grid_x, f.grid_y, nsdim, half};
  const double x0 = view.x(seed);
  const double y0 = view.y(seed);
  // The field at the seed, kept when the seed was indexed (the same
  // function of the same point) or worked out here.
  const bool kept = view.separations != nullptr && seed >= 1 &&
                    static_cast<std::size_t>(seed) <= view.separations->size();
  const double sep = kept ? (*view.separations)[static_cast<std::size_t>(seed - 1)]
                          : local_separation(state, x0, y0, growth);
  double box = sep;
  int domain = kMixed;
  double h = 0.0;
  for (;;) {
    h = box * 3.0 / nsdim;
    // A grid that is no longer finite has no rectangle to bound or index.
    if (!std::isfinite(h) || !std::isfinite(x0) || !std::isfinite(y0) || !(h > 0.0)) {
      out.literal = true;
      return;
    }
    for (std::int32_t k = -g.half; k <= g.half; ++k) {
      f.grid_x[static_cast<std::size_t>(k + g.half)] = k * h + x0;
      f.grid_y[static_cast<std::size_t>(k + g.half)] = k * h + y0;
    }
    domain = rectangle_in_domain(state, g.x(-g.half), g.x(g.half), g.y(-g.half), g.y(g.half));
    if (domain == kOutside) return;
    if (domain == kMixed && !any_candidate_in_domain(state, g)) return;
    const double xlo = g.x(-g.half) - box;
    const double xhi = g.x(g.half) + box;
    const double ylo = g.y(-g.half) - box;
    const double yhi = g.y(g.half) + box;
    entries_in_view(view, xlo, xhi, ylo, yhi, f.near);
    // The boxes of the growing grid hold one another, but the widest of all
    // is kept as it stands, so that it holds every box searched.
    out.xlo = out.searched ? std::min(out.xlo, xlo) : xlo;
    out.xhi = out.searched ? std::max(out.xhi, xhi) : xhi;
    out.ylo = out.searched ? std::min(out.ylo, ylo) : ylo;
    out.yhi = out.searched ? std::max(out.yhi, yhi) : yhi;
    out.searched = true;
    if (f.near.size() >= 5) break;
    box *= growth;
    out.grown = true;
  }

  bound_field(state, g.x(-g.half), g.x(g.half), g.y(-g.half), g.y(g.half), f.field);
  // Without safe bounds of the field (a growth rate they do not serve) the
  // literal steps decide.
  if (!f.field.usable) {
    out.literal = true;
    return;
  }
  reset_tiles(f, g);

  const std::size_t candidates = static_cast<std::size_t>(nsdim) * static_cast<std::size_t>(nsdim);
  f.open.assign(candidates, 1);
  forget_exact(f, candidates);

  // The listed points by x, with their numbers; the numbers settle ties,
  // though nothing below depends on the order among points of equal x: the
  // strikes and the choice each take a minimum or an existence over the
  // points.  Every listed point and every candidate lies in the widest box
  // searched; each point's strike limit was worked out with the run's slope
  // when it was indexed.
  const bool sloped = slope_holds_over(state, out.xlo, out.xhi, out.ylo, out.yhi);
  const FastEmplacement& fe = state.fast_emplacement;
  f.carry_slope = sloped && fe.has_slope ? fe.slope : 0.0;
  f.bounded_any = false;
  lay_out_near_by_x(f.near, sloped, NearArrays{f.near_number, f.near_x, f.near_y, f.near_strike});

  strike_near_points(state, f, g, h, x0, y0);
  // The steps after this only strike candidates, and with none open the
  // choice finds nothing: about half the seeds end here, on the GIS-like
  // divides and on the family alike.
  if (!any_open_in_run(f.open.data(), candidates)) return;
  strike_near_segments(state, state.fast_emplacement.segments, f, g);
  if (domain != kInside) strike_outside_domain(state, f, g);
  // Isolated candidates inside the rim, twice, exactly as the literal step;
  // only open candidates can change, so the passes visit those alone, in
  // scan order, and a strike still counts at once for the ones after it.
  f.open_list.clear();
  for_each_open(f.open, [&](std::size_t c) {
    const std::int32_t at = static_cast<std::int32_t>(c);
    const std::int32_t column = at % g.nsdim;
    const std::int32_t row = at / g.nsdim;
    if (column > 0 && column < g.nsdim - 1 && row > 0 && row < g.nsdim - 1) f.open_list.push_back(at);
  });
  for (int pass = 0; pass < 2; ++pass) {
    for (std::int32_t c : f.open_list) {
      const std::size_t at = static_cast<std::size_t>(c);
      const std::size_t row = static_cast<std::size_t>(g.nsdim);
      if (f.open[at] == 0) continue;
      if (f.open[at - 1] == 0 && f.open[at + 1] == 0 && f.open[at - row] == 0 && f.open[at + row] == 0) {
        f.open[at] = 0;
      }
    }
  }
  std::int32_t chosen_at = 0;
  out.chosen = choose(f, g, seed, x0, y0, sep, out.x, out.y, chosen_at);
  if (out.chosen) {
    out.separation = separation_at(state, f, g, chosen_at % g.nsdim - g.half, chosen_at / g.nsdim - g.half);
  }
}

void note_outcome(RunState& state, std::int32_t seed, const Proposal& proposal) {
  FastEmplacement& f = state.fast_emplacement;
  if (proposal.passed_over) ++f.passed_over;
  if (proposal.literal || proposal.chosen || proposal.grown || proposal.passed_over || seed < 1) return;
  if (f.stays_empty.size() < static_cast<std::size_t>(seed)) f.stays_empty.resize(static_cast<std::size_t>(seed), 0);
  f.stays_empty[static_cast<std::size_t>(seed - 1)] = 1;
}

bool choose_from_seed_fast(RunState& state, std::int32_t seed, double& x, double& y, double& separation) {
  Proposal proposal;
  propose_fast(state, state.fast_emplacement.scratch, run_points(state), seed, proposal);
  note_outcome(state, seed, proposal);
  separation = std::numeric_limits<double>::quiet_NaN();
  if (proposal.literal) return choose_from_seed_reference(state, seed, x, y);
  x = proposal.x;
  y = proposal.y;
  separation = proposal.separation;
  return proposal.chosen;
}

}  // namespace tesseramill
