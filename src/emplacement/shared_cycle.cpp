#include "emplacement/shared_cycle.h"

#include <algorithm>
#include <array>
#include <atomic>
#include <cmath>
#include <cstring>
#include <limits>
#include <vector>

#include "common/parallel.h"
#include "common/run_state.h"
#include "emplacement/chains.h"
#include "emplacement/cycle_commits.h"
#include "emplacement/fast_emplacement.h"
#include "emplacement/interior_emplacement.h"
#include "emplacement/slab_cuts.h"

namespace tesseramill {

// Why the points come out as in the sequential run.
//
// A proposal reads the run state, which does not change during emplacement
// but for the mesh points, and of the mesh points only those that its
// growing search boxes list, in ascending order, with their coordinates.
// Their numbers matter only to tell the seed, which is a point from before
// the cycle in both runs; the field kept with each point is a function of
// its coordinates alone.  So two proposals of the same seed that list the
// same coordinates in the same order, box for box, choose the same.
//
// While proposing, part p of the seeds sees the points from before the
// cycle and its own new points, in the order it placed them.  At the
// commit, in seed order, the points of the run at seed s's turn are those
// from before the cycle and the points committed so far.  Inside the widest
// box that s searched the two agree when
//   - every point committed in this cycle that lies in the box was placed
//     by a seed of part p with the very bits that part p placed, so that
//     part p saw it, in the same order, since both keep seed order; and
//   - no point that part p placed and the commit did not lies in the box.
// The box a proposal records holds every box it searched, so then every
// list the proposal took is the sequential run's, and its outcome is too.  A
// proposal that fails either test, or that left the choice to the literal
// steps, is made again at its turn from the run's points, exactly as the
// sequential run makes it.

namespace {

// The seeds are cut into this many slabs across the wider side of the box
// that holds them, each slab a part with its own view; the two threads take
// the slabs one after another, so that a thread that finishes early takes
// more of them.  Which thread proposes for a slab changes nothing, and more
// slabs only mean more seeds near a slab's edge that propose again.  On
// the benchmark's million-cell model, 8 slabs have 2.3 % of the seeds
// propose again and keep both threads busy; 2 slabs have 0.5 % propose
// again, but one thread then waits for the other a good part of each
// cycle, as seeds near the river and the wells cost more; 4 lie between.
constexpr std::size_t kSlabs = 8;

// The slabs' shares of a cycle's seeds, in fortieths, in the order the
// threads take them: the last slabs are the smallest, so that the thread
// that ends first waits for a short slab of the other's at most.  On the
// million cells, over its 259 shared cycles, the threads' waits came to
// about 0.2 s with these shares, against 0.3 s with eight equal ones (3
// runs each), and as many seeds proposed again.
constexpr std::array<std::size_t, kSlabs> kSlabShares = {9, 9, 7, 6, 4, 3, 1, 1};

struct alignas(64) Part {
  // The points this part placed while proposing, numbered from 1.
  std::vector<double> own_coordinates;
  std::vector<double> own_strikes;  // the strike limit of each of them
  MeshPointIndex own;
  // Points this part placed that the commit did not.
  std::vector<double> strays;
  MeshPointIndex stray_index;
};

bool same_bits(double a, double b) { return std::memcmp(&a, &b, sizeof a) == 0; }

// Part `part` proposes for its seeds in ascending order.
void propose_part(const RunState& state, std::int32_t first, const std::vector<std::uint8_t>& part_of,
                  std::uint8_t part, Part& own, ProposalScratch& scratch, std::vector<Proposal>& proposals) {
  PointView view = run_points(state);
  view.own = &own.own;
  view.own_coordinates = &own.own_coordinates;
  std::int32_t placed = 0;
  for (std::size_t i = 0; i < part_of.size(); ++i) {
    if (part_of[i] != part) continue;
    Proposal& proposal = proposals[i];
    propose_fast(state, scratch, view, first + static_cast<std::int32_t>(i), proposal);
    if (!proposal.chosen || proposal.literal) continue;
    own.own_coordinates.push_back(proposal.x);
    own.own_coordinates.push_back(proposal.y);
    // A proposal that chose a point brings the field there (local_separation's bits).
    own.own_strikes.push_back(point_strike(state.fast_emplacement, proposal.separation));
    insert_mesh_point(own.own, ++placed);
  }
}

// Cuts the seeds into slabs of the shares above across the wider side of
// the box that holds them; false when they all fall in one.  Which slab a
// seed goes to changes how much is proposed again, never what is placed,
// so the comparisons need no care.
bool cut_slabs(const RunState& state, std::int32_t first, std::int32_t last, std::vector<std::uint8_t>& part_of) {
  const std::vector<double>& points = state.mesh.mesh_points;
  const std::size_t count = static_cast<std::size_t>(last - first + 1);
  auto coordinate = [&](std::size_t i, std::size_t axis) {
    return points[2 * (static_cast<std::size_t>(first - 1) + i) + axis];
  };
  double lo[2] = {coordinate(0, 0), coordinate(0, 1)};
  double hi[2] = {lo[0], lo[1]};
  for (std::size_t i = 0; i < count; ++i) {
    for (std::size_t axis = 0; axis < 2; ++axis) {
      // Selecting ranks needs numbers to order; a seed that is none (which
      // the domain tests keep out) leaves the cycle to one thread, which
      // places the same points.
      if (!std::isfinite(coordinate(i, axis))) return false;
      lo[axis] = std::min(lo[axis], coordinate(i, axis));
      hi[axis] = std::max(hi[axis], coordinate(i, axis));
    }
  }
  const std::size_t axis = hi[0] - lo[0] >= hi[1] - lo[1] ? 0 : 1;
  std::vector<double> along(count);
  for (std::size_t i = 0; i < count; ++i) along[i] = coordinate(i, axis);
  const std::vector<double> cuts = slab_cuts(along, kSlabShares);
  part_of.resize(count);
  std::size_t in_first = 0;
  for (std::size_t i = 0; i < count; ++i) {
    const double v = coordinate(i, axis);
    part_of[i] = static_cast<std::uint8_t>(std::upper_bound(cuts.begin(), cuts.end(), v) - cuts.begin());
    if (part_of[i] == part_of[0]) ++in_first;
  }
  return in_first < count;
}

}  // namespace

std::int32_t propose_in_parts(RunState& state, std::int32_t first, std::int32_t last, std::int32_t cycle) {
  FastEmplacement& f = state.fast_emplacement;
  std::vector<std::uint8_t> part_of;
  if (!cut_slabs(state, first, last, part_of)) {
    // One slab: nothing to share.
    std::int32_t added = 0;
    for (std::int32_t seed = first; seed <= last; ++seed) {
      if (propose_from_seed(state, seed, cycle)) ++added;
    }
    return added;
  }
  std::vector<Proposal> proposals(part_of.size());
  std::vector<Part> parts(kSlabs);
  for (Part& part : parts) {
    start_mesh_point_index(part.own, &part.own_coordinates, f.xlo, f.xhi, f.ylo, f.yhi);
    part.own.strikes = &part.own_strikes;
    start_mesh_point_index(part.stray_index, &part.strays, f.xlo, f.xhi, f.ylo, f.yhi);
  }
  // Two threads, each with its own scratch tables, take the slabs in turn.
  const RunState& reading = state;
  std::atomic<std::size_t> next{0};
  run_in_parts(
      2,
      [&](std::size_t, std::size_t, int thread) {
        ProposalScratch& scratch = thread == 0 ? f.scratch : f.second_scratch;
        for (std::size_t k = next++; k < kSlabs; k = next++) {
          propose_part(reading, first, part_of, static_cast<std::uint8_t>(k), parts[k], scratch, proposals);
        }
        return PartFailure{};
      },
      2);

  // The commit, in seed order.  The points committed in this cycle are
  // indexed on their own, by the part that saw each (cycle_commits.h).
  CycleCommits commits;
  start_cycle_commits(commits, kSlabs, f.xlo, f.xhi, f.ylo, f.yhi);
  std::int32_t added = 0;
  std::int64_t again = 0;
  for (std::int32_t s = first; s <= last; ++s) {
    const std::size_t i = static_cast<std::size_t>(s - first);
    const Proposal& proposal = proposals[i];
    const std::uint8_t part = part_of[i];
    Part& own = parts[part];
    bool stands = !proposal.literal;
    if (stands && proposal.searched) {
      const bool unseen = unseen_in_box(commits, part, proposal.xlo, proposal.xhi, proposal.ylo, proposal.yhi);
      stands = !unseen && !any_point_in_box(own.stray_index, proposal.xlo, proposal.xhi, proposal.ylo, proposal.yhi,
                                            [](std::int32_t) { return true; });
    }
    bool chosen = proposal.chosen;
    double x = proposal.x;
    double y = proposal.y;
    double separation = std::numeric_limits<double>::quiet_NaN();
    // A proposal that stands has the sequential run's outcome at this turn,
    // and one made again is the sequential run's own, so the seeds to pass
    // over at later turns are marked here, in seed order, as the
    // sequential run marks them; the parts only read the marks of earlier
    // cycles, which nothing writes while they propose.
    if (stands) {
      note_outcome(state, s, proposal);
    } else {
      ++again;
      chosen = choose_from_seed_fast(state, s, x, y, separation);
    }
    const bool placed_by_part = proposal.chosen && !proposal.literal;
    const bool as_part_placed = placed_by_part && chosen && same_bits(x, proposal.x) && same_bits(y, proposal.y);
    if (placed_by_part && !as_part_placed) {
      own.strays.push_back(proposal.x);
      own.strays.push_back(proposal.y);
      insert_mesh_point(own.stray_index, static_cast<std::int32_t>(own.strays.size() / 2));
    }
    if (!chosen) continue;
    const std::int32_t number = append_mesh_point(state, x, y, cycle);
    // The field at a point the part placed as it stands is the part's, the
    // same function of the same point; a seed that proposed again brings
    // the field its proposal worked out, where it did.
    index_run_point(state, number, as_part_placed ? proposal.separation : separation);
    add_commit(commits, x, y, as_part_placed ? part : kSlabs);
    ++added;
  }
  f.shared_seeds += last - first + 1;
  f.proposed_again += again;
  return added;
}

}  // namespace tesseramill
