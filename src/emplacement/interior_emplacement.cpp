#include "emplacement/interior_emplacement.h"

#include <algorithm>
#include <cmath>
#include <limits>

#include "common/failure.h"
#include "emplacement/chains.h"
#include "emplacement/fast_emplacement.h"
#include "geometry/local_separation.h"
#include "geometry/planar_tools.h"

namespace tesseramill {

namespace {

// The square of the single-precision value of 0.9: free points keep this
// share of the squared local separation from one another.
constexpr double kPointClearanceFactor = 0.8099999570846563;
constexpr double kLargest = 1.7976931348623157e+308;

// 16383 x 16383 candidates take about 3 GiB.
constexpr std::int32_t kLargestNsdim = 16383;

struct Candidates {
  EmplacementGrid& grid;
  std::int32_t nsdim;
  std::int32_t half;

  std::int32_t& open_at(std::int32_t k, std::int32_t j) {
    return grid.grid_open[static_cast<std::size_t>((j + half) * nsdim + (k + half))];
  }
  double x(std::int32_t k) const { return grid.grid_x[static_cast<std::size_t>(k + half)]; }
  double y(std::int32_t j) const { return grid.grid_y[static_cast<std::size_t>(j + half)]; }
};

// Strikes open candidates that stand closer than their local separation to
// a segment of `ring`.  Returns false when no candidate is left.
bool strike_near_ring(Candidates& g, const BoundaryRing& ring,
                      const std::vector<double>& candidate_separation, std::int32_t& open) {
  const double* v = ring.vertices.data();
  for (std::int32_t j = -g.half; j <= g.half; ++j) {
    for (std::int32_t k = -g.half; k <= g.half; ++k) {
      if (g.open_at(k, j) == 0) continue;
      const double s = candidate_separation[static_cast<std::size_t>((j + g.half) * g.nsdim + (k + g.half))];
      for (std::int32_t m = 0; m + 1 < ring.vertex_count; ++m) {
        if (s > distance_to_segment(g.x(k), g.y(j), v[2 * m], v[2 * m + 1], v[2 * m + 2], v[2 * m + 3])) {
          g.open_at(k, j) = 0;
          if (--open == 0) return false;
          break;
        }
      }
    }
  }
  return true;
}

}  // namespace

void create_emplacement_grid(RunState& state) {
  const std::int32_t nsdim = state.control.nsdim;
  // Every seed visits all nsdim x nsdim candidates and holds a flag and a
  // separation for each; beyond this size the grid cannot be held in memory
  // on any machine the program is meant for.
  if (nsdim > kLargestNsdim) fail(state, "Unable to allocate sufficient memory to continue execution.");
  EmplacementGrid& grid = state.grid;
  grid.half = nsdim / 2;
  grid.grid_x.assign(static_cast<std::size_t>(nsdim), 0.0);
  grid.grid_y.assign(static_cast<std::size_t>(nsdim), 0.0);
  grid.grid_open.assign(static_cast<std::size_t>(nsdim) * static_cast<std::size_t>(nsdim), 0);
}

std::int32_t seed_range_start(const RunState& state, std::int32_t cycle, std::int32_t seed_after) {
  const std::int32_t safety = state.control.safety;
  if (cycle == 1 || safety >= 3) return 0;
  const std::int32_t target = cycle - 3 - safety;
  for (std::int32_t i = state.mesh.mesh_point_count; i >= 1; --i) {
    const std::int32_t label = state.mesh.mesh_point_label[static_cast<std::size_t>(i - 1)];
    if (label == target || label <= 0) return i;
  }
  return seed_after;
}

bool choose_from_seed_reference(RunState& state, std::int32_t seed, double& chosen_x, double& chosen_y) {
  MeshPointList& mesh = state.mesh;
  const double growth = state.control.poly_growth_rate;
  const std::int32_t nsdim = state.control.nsdim;
  Candidates g{state.grid, nsdim, state.grid.half};
  const double x0 = mesh.mesh_points[2 * static_cast<std::size_t>(seed - 1)];
  const double y0 = mesh.mesh_points[2 * static_cast<std::size_t>(seed - 1) + 1];
  const double sep = local_separation(state, x0, y0, growth);
  double box = sep;
  std::vector<std::int32_t>& near = mesh.work_list;
  std::int32_t open = 0;

  for (;;) {
    // Lay the grid and open the candidates inside the domain.
    const double h = box * 3.0 / nsdim;
    for (std::int32_t k = -g.half; k <= g.half; ++k) {
      g.grid.grid_x[static_cast<std::size_t>(k + g.half)] = k * h + x0;
      g.grid.grid_y[static_cast<std::size_t>(k + g.half)] = k * h + y0;
    }
    open = 0;
    for (std::int32_t j = -g.half; j <= g.half; ++j) {
      for (std::int32_t k = -g.half; k <= g.half; ++k) {
        const bool inside = point_in_domain(state, g.x(k), g.y(j));
        g.open_at(k, j) = inside ? 1 : 0;
        if (inside) ++open;
      }
    }
    if (open == 0) return false;

    // The near list: every mesh point in the search box, ascending.
    const double xlo = g.x(-g.half) - box;
    const double xhi = g.x(g.half) + box;
    const double ylo = g.y(-g.half) - box;
    const double yhi = g.y(g.half) + box;
    near.clear();
    for (std::int32_t p = 1; p <= mesh.mesh_point_count; ++p) {
      const double px = mesh.mesh_points[2 * static_cast<std::size_t>(p - 1)];
      const double py = mesh.mesh_points[2 * static_cast<std::size_t>(p - 1) + 1];
      if (px >= xlo && px <= xhi && py >= ylo && py <= yhi) near.push_back(p);
    }
    if (near.size() >= 5) break;
    box *= growth;
  }

  // The local separation of each open candidate, worked out once.
  std::vector<double>& candidate_separation = state.grid.candidate_separation;
  candidate_separation.assign(g.grid.grid_open.size(), 0.0);
  for (std::int32_t j = -g.half; j <= g.half; ++j) {
    for (std::int32_t k = -g.half; k <= g.half; ++k) {
      if (g.open_at(k, j) == 0) continue;
      candidate_separation[static_cast<std::size_t>((j + g.half) * nsdim + (k + g.half))] =
          local_separation(state, g.x(k), g.y(j), growth);
    }
  }

  // Strike candidates too close to a listed point.
  for (std::int32_t j = -g.half; j <= g.half; ++j) {
    for (std::int32_t k = -g.half; k <= g.half; ++k) {
      if (g.open_at(k, j) == 0) continue;
      const double s = candidate_separation[static_cast<std::size_t>((j + g.half) * nsdim + (k + g.half))];
      const double limit = s * s * kPointClearanceFactor;
      for (std::int32_t p : near) {
        const double dx = g.x(k) - mesh.mesh_points[2 * static_cast<std::size_t>(p - 1)];
        const double dy = g.y(j) - mesh.mesh_points[2 * static_cast<std::size_t>(p - 1) + 1];
        if (limit > dx * dx + dy * dy) {
          g.open_at(k, j) = 0;
          if (--open == 0) return false;
          break;
        }
      }
    }
  }

  // Strike candidates too close to the input boundary lines.
  if (!strike_near_ring(g, state.outer_boundary, candidate_separation, open)) return false;
  for (const BoundaryRing& ring : state.inner_boundaries) {
    if (!strike_near_ring(g, ring, candidate_separation, open)) return false;
  }

  // Strike isolated candidates inside the rim, twice.
  for (int pass = 0; pass < 2; ++pass) {
    for (std::int32_t j = -g.half + 1; j <= g.half - 1; ++j) {
      for (std::int32_t k = -g.half + 1; k <= g.half - 1; ++k) {
        if (g.open_at(k, j) == 0) continue;
        if (g.open_at(k - 1, j) == 0 && g.open_at(k + 1, j) == 0 && g.open_at(k, j - 1) == 0 &&
            g.open_at(k, j + 1) == 0) {
          g.open_at(k, j) = 0;
          if (--open == 0) return false;
        }
      }
    }
  }

  // Choose the candidate that best keeps `sep` from the seed and from one
  // other listed point; the first in scan order wins a tie.
  double best = kLargest;
  bool chosen = false;
  std::int32_t best_k = 0;
  std::int32_t best_j = 0;
  for (std::int32_t j = -g.half; j <= g.half; ++j) {
    for (std::int32_t k = -g.half; k <= g.half; ++k) {
      if (g.open_at(k, j) == 0) continue;
      const double cx = g.x(k);
      const double cy = g.y(j);
      double m = kLargest;
      for (std::int32_t p : near) {
        if (p == seed) continue;
        const double dx = cx - mesh.mesh_points[2 * static_cast<std::size_t>(p - 1)];
        const double dy = cy - mesh.mesh_points[2 * static_cast<std::size_t>(p - 1) + 1];
        m = std::min(m, std::fabs(std::sqrt(dx * dx + dy * dy) - sep));
      }
      const double dx = cx - x0;
      const double dy = cy - y0;
      const double score = std::fabs(std::sqrt(dx * dx + dy * dy) - sep) + m;
      if (best > score) {
        best = score;
        chosen = true;
        best_k = k;
        best_j = j;
      }
    }
  }
  if (!chosen) return false;
  chosen_x = g.x(best_k);
  chosen_y = g.y(best_j);
  return true;
}

bool propose_from_seed(RunState& state, std::int32_t seed, std::int32_t cycle) {
  FastEmplacement& fast = state.fast_emplacement;
  double x = 0.0;
  double y = 0.0;
  double separation = std::numeric_limits<double>::quiet_NaN();
  const bool chosen = fast.ready && !state.reference_paths ? choose_from_seed_fast(state, seed, x, y, separation)
                                                          : choose_from_seed_reference(state, seed, x, y);
  if (!chosen) return false;
  const std::int32_t number = append_mesh_point(state, x, y, cycle);
  if (fast.ready) index_run_point(state, number, separation);
  return true;
}

}  // namespace tesseramill
