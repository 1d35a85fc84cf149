// The fast proposal of interior emplacement: the mesh points and the
// boundary segments by place, and scratch tables reused from seed to seed.
#pragma once

#include <cmath>
#include <cstdint>
#include <limits>
#include <vector>

#include "emplacement/mesh_point_index.h"
#include "geometry/field_bounds.h"
#include "geometry/segment_index.h"

namespace tesseramill {

struct RunState;

// The tables one proposal works in; each thread that proposes has its own.
// Two of them never share a cache line, so that the growing and clearing
// of one thread's tables does not slow the other's.
struct alignas(64) ProposalScratch {
  // The candidate columns and rows, index k + half.
  std::vector<double> grid_x;
  std::vector<double> grid_y;
  FieldBounds field;
  // The grid cut into tiles of kTileSide x kTileSide candidates, each with
  // the field's sources that matter in it, kept when first needed.
  std::vector<TileSources> tiles;
  std::vector<std::uint8_t> tile_kept;
  // The near list's points as the indexes give them (near_by_x.h lays
  // them out by x in the arrays below).
  MeshPointIndex::EntryList near;
  // For each point of the near list as sorted, the squared distance below
  // which it surely strikes a candidate (0 where none is known).
  std::vector<double> near_strike;
  std::vector<double> row_strike;
  std::vector<std::int32_t> near_number;
  std::vector<double> near_x;
  std::vector<double> near_y;
  // One row's points that can strike a candidate of the row.
  std::vector<double> row_x;
  std::vector<double> row_dy2;
  // Per candidate: still open, and the exact separation once worked out.
  std::vector<std::uint8_t> open;
  std::vector<double> exact;
  std::vector<std::int32_t> exact_set;  // the candidates whose exact separation is in `exact`
  std::vector<std::int32_t> close_segments;
  std::vector<std::int32_t> tile_segments;  // of close_segments, those that can reach one tile
  std::vector<std::int32_t> open_list;
  std::vector<double> seed_term;
  // The slope by which bounds of the field carry from one candidate to
  // another (0 where it does not hold over the seed's boxes), and the
  // candidate where the field's bounds were last worked out, with them.
  double carry_slope = 0.0;
  bool bounded_any = false;
  double bounded_x = 0.0;
  double bounded_y = 0.0;
  double bounded_lo = 0.0;
  double bounded_hi = 0.0;
};

struct FastEmplacement {
  bool ready = false;
  // Every mesh point of the run by place, over the region below, with the
  // field at each point (local_separation there), kept when the point is
  // indexed: every point is a seed in its turn, and the field is then
  // taken from here; and with its strike limit (point_strike), which the
  // index hands out with the point.
  MeshPointIndex mesh_index;
  std::vector<double> separations;
  std::vector<double> strikes;
  // For each point, 1 once it has proposed nothing as a seed on the grid of
  // its first box: it will propose nothing again (see propose_fast).
  std::vector<std::uint8_t> stays_empty;
  // The proposals passed over so.
  std::int64_t passed_over = 0;
  // The slope of the field at the run's growth rate (growth_slope), when
  // it has one.
  bool has_slope = false;
  double slope = 0.0;
  double xlo = 0.0;
  double xhi = 0.0;
  double ylo = 0.0;
  double yhi = 0.0;
  SegmentIndex segments;
  // The most by which a ring's last vertex misses its first (the closing
  // edge between them is no segment of `segments`), and the widest margin
  // of the domain index round any edge of the rings, beyond which
  // point_in_domain gives a point's winding number's answer (INFINITY
  // where the index does not serve every ring).
  double closing_gap = 0.0;
  double edge_margin = INFINITY;
  ProposalScratch scratch;
  // The second thread's, while a cycle's seeds are shared.
  ProposalScratch second_scratch;
  // Seeds of the cycles shared between two threads, and those of them that
  // proposed again at their turn, because a point they did not see lay
  // where they had looked.
  std::int64_t shared_seeds = 0;
  std::int64_t proposed_again = 0;
};

// The mesh points a proposal sees: the run's points 1 to `count`, found
// through `index`, and, while a cycle's seeds are shared between two
// threads, the points that this thread has placed in the cycle so far,
// numbered on from `count` in the order they were placed.
struct PointView {
  const MeshPointIndex* index = nullptr;
  const std::vector<double>* coordinates = nullptr;  // x,y pairs of points 1 to count
  std::int32_t count = 0;
  const MeshPointIndex* own = nullptr;
  const std::vector<double>* own_coordinates = nullptr;
  // The field at points 1 to separations->size(), where kept.
  const std::vector<double>* separations = nullptr;

  double x(std::int32_t p) const {
    return p <= count ? (*coordinates)[2 * static_cast<std::size_t>(p - 1)]
                      : (*own_coordinates)[2 * static_cast<std::size_t>(p - count - 1)];
  }
  double y(std::int32_t p) const {
    return p <= count ? (*coordinates)[2 * static_cast<std::size_t>(p - 1) + 1]
                      : (*own_coordinates)[2 * static_cast<std::size_t>(p - count - 1) + 1];
  }
};

// What one seed proposes, and what it looked at to decide.
struct Proposal {
  bool chosen = false;  // a candidate was left: (x, y)
  double x = 0.0;
  double y = 0.0;
  // The literal steps must decide: the grid is no longer finite, or the
  // field has no safe bounds at this growth rate.
  bool literal = false;
  // Mesh points were listed, all of them from inside [xlo, xhi] x [ylo, yhi];
  // none outside it played any part.  Without it, the outcome depends on no
  // mesh point at all but the seed.
  bool searched = false;
  // The seed's search box grew past its first: the grid is not the one
  // laid at the field at the seed.
  bool grown = false;
  // The seed was passed over, as one that proposed nothing before on the
  // grid of its first box (note_outcome).
  bool passed_over = false;
  // The field at the chosen candidate, when it was worked out; NaN when not.
  double separation = std::numeric_limits<double>::quiet_NaN();
  double xlo = 0.0;
  double xhi = 0.0;
  double ylo = 0.0;
  double yhi = 0.0;
};

// Builds the indexes the fast proposal needs from the mesh points placed so
// far and the boundaries.
void start_fast_emplacement(RunState& state);

// Adds the run's mesh point `number`, the last appended, to the index of
// mesh points, with the field there: `separation` when it is given (NaN
// for none) and local_separation at the point otherwise.
void index_run_point(RunState& state, std::int32_t number, double separation);

// The squared distance below which a point where the field is `separation`
// surely strikes a candidate, wherever the run's slope holds over both; 0
// where none is known.
double point_strike(const FastEmplacement& f, double separation);

// Frees the indexes and tables of the fast proposal once the interior is
// filled; the counts of shared, proposed-again and passed-over seeds stay.
void finish_fast_emplacement(RunState& state);

// Every mesh point of the run, as the index holds them.
PointView run_points(const RunState& state);

// The points of `view` with xlo <= x <= xhi and ylo <= y <= yhi, with their
// numbers in the view and their coordinates, in no set order.
void entries_in_view(const PointView& view, double xlo, double xhi, double ylo, double yhi,
                     MeshPointIndex::EntryList& out);

// Records the outcome of a proposal of seed `seed` that the literal steps
// would give among all the run's points at the seed's turn: a seed that
// chose nothing on the grid of its first box is passed over from then on.
void note_outcome(RunState& state, std::int32_t seed, const Proposal& proposal);

// What the literal steps of seed `seed` (one of the run's points in `view`)
// choose among the points of `view`, worked out with indexes and bounds;
// reads the run state and writes only `scratch` and `out`.
void propose_fast(const RunState& state, ProposalScratch& scratch, const PointView& view, std::int32_t seed,
                  Proposal& out);

// The candidate that the literal steps of seed `seed` choose among all the
// run's mesh points, false when none is left; with the field at the point
// chosen (local_separation's bits) when the proposal worked it out, NaN
// when not.
bool choose_from_seed_fast(RunState& state, std::int32_t seed, double& x, double& y, double& separation);

}  // namespace tesseramill
