// The bounds of the separation field hold the reference field at every point
// of their rectangle, and a rectangle called flat has exactly that value.
#include <gtest/gtest.h>

#include <cmath>
#include <cstring>
#include <sstream>
#include <string>
#include <tuple>
#include <utility>

#include "geometry/cell_grid.h"
#include "geometry/field_bounds.h"
#include "geometry/local_separation.h"
#include "geometry/planar_tools.h"
#include "geometry/source_index.h"
#include "model_family.h"
#include "support/model_state.h"
#include "support/random.h"
#include "support/scratch.h"

namespace tesseramill {
namespace {

using tesseramill_bench::ModelRecipe;
using tesseramill_test::Random;

// A run state with its chains built, from a model of the family.
void state_after_boundaries(RunState& state, const ModelRecipe& recipe, tesseramill_test::ScratchDir& dir) {
  tesseramill_bench::write_model(recipe, dir.path());
  static std::ostringstream screen;
  ASSERT_TRUE(tesseramill_test::run_phases_until(state, dir.path(), "model.in", Phase::kPopulateBoundaries, screen))
      << state.message_buffer;
}

// The smallest rectangle holding the outer boundary.
void outer_extent(const RunState& state, double& xmin, double& xmax, double& ymin, double& ymax) {
  const std::vector<double>& outer = state.outer_boundary.vertices;
  xmin = xmax = outer[0];
  ymin = ymax = outer[1];
  for (std::size_t k = 0; k + 1 < outer.size(); k += 2) {
    xmin = std::min(xmin, outer[k]);
    xmax = std::max(xmax, outer[k]);
    ymin = std::min(ymin, outer[k + 1]);
    ymax = std::max(ymax, outer[k + 1]);
  }
}

// A random point of the outer boundary's extent, or, when `near_chain`, one
// within the cap below and left of a random chain point of the outer
// boundary, where the sources crowd.
std::pair<double, double> random_corner(Random& random, const RunState& state, bool near_chain) {
  double xmin, xmax, ymin, ymax;
  outer_extent(state, xmin, xmax, ymin, ymax);
  double x = random.uniform(xmin, xmax);
  double y = random.uniform(ymin, ymax);
  const std::vector<double>& chain = state.outer_boundary.points;
  if (near_chain && chain.size() >= 2) {
    const double largest = state.control.max_centroid_separation;
    const std::size_t k = static_cast<std::size_t>(random.uniform(0, static_cast<double>(chain.size() / 2)));
    x = chain[2 * k] - random.uniform(0, largest);
    y = chain[2 * k + 1] - random.uniform(0, largest);
  }
  return {x, y};
}

// A run state with its chains built, from the GIS-like model of a divide of
// `vertices` vertices at the growth rate `growth`.
void gis_state_after_boundaries(RunState& state, int vertices, double growth, tesseramill_test::ScratchDir& dir) {
  ModelRecipe recipe = tesseramill_bench::gis_model(vertices);
  recipe.growth = growth;
  state_after_boundaries(state, recipe, dir);
}

// Probes rectangles of every size over the domain: corners, random points,
// and points on the sources themselves.
void expect_bounds_hold(const RunState& state, std::uint64_t seed, int rectangles, bool some_flat) {
  Random random(seed);
  double xmin, xmax, ymin, ymax;
  outer_extent(state, xmin, xmax, ymin, ymax);
  const double growth = state.control.poly_growth_rate;
  const double largest = state.control.max_centroid_separation;
  const std::vector<double>& chain = state.outer_boundary.points;
  FieldBounds bounds;
  int flat = 0;
  for (int r = 0; r < rectangles; ++r) {
    double x = random.uniform(xmin, xmax);
    double y = random.uniform(ymin, ymax);
    if (r % 4 == 0 && chain.size() >= 2) {
      const std::size_t k = static_cast<std::size_t>(random.uniform(0, static_cast<double>(chain.size() / 2)));
      x = chain[2 * k];
      y = chain[2 * k + 1];
    }
    const double w = largest * random.uniform(0, 4) * (r % 3 == 0 ? 1e-3 : 1.0);
    const double h = largest * random.uniform(0, 4);
    bound_field(state, x, x + w, y, y + h, bounds);
    ASSERT_TRUE(bounds.usable);
    if (bounds.flat) ++flat;
    for (int p = 0; p < 12; ++p) {
      const double px = p < 4 ? (p & 1 ? x + w : x) : random.uniform(x, x + w);
      const double py = p < 4 ? (p & 2 ? y + h : y) : random.uniform(y, y + h);
      const double exact = local_separation_reference(state, px, py, growth);
      ASSERT_LE(bounds.lo, exact);
      ASSERT_GE(bounds.hi, exact);
      if (bounds.flat) {
        ASSERT_EQ(exact, bounds.lo);
      }
      double lo = 0.0;
      double hi = 0.0;
      bound_field_at(state, bounds, px, py, lo, hi);
      ASSERT_LE(lo, exact) << px << " " << py;
      ASSERT_GE(hi, exact) << px << " " << py;
      // The bounds at a point are tight: the reference field is within a
      // relative 1e-8 of them.
      ASSERT_LE(hi - lo, 1e-8 * exact) << px << " " << py;
    }
  }
  // Flat rectangles are found where the field has reached its caps.
  if (some_flat) {
    EXPECT_GT(flat, 0);
  }
}

// The same double, bit for bit: equal values of another sign or NaN payload
// would not do.
void expect_same_bits(double a, double b, const char* what, double x, double y) {
  ASSERT_EQ(0, std::memcmp(&a, &b, sizeof a)) << what << " " << a << " against " << b << " at " << x << " " << y;
}

// bound_tile_at against bound_field_at at one point of a tile.
void expect_tile_gives_same_bits(const RunState& state, const FieldBounds& bounds, const TileSources& tile, double x,
                                 double y) {
  double lo = 0.0;
  double hi = 0.0;
  double tile_lo = 0.0;
  double tile_hi = 0.0;
  bound_field_at(state, bounds, x, y, lo, hi);
  bound_tile_at(state, bounds, tile, x, y, tile_lo, tile_hi);
  expect_same_bits(tile_lo, lo, "lo", x, y);
  expect_same_bits(tile_hi, hi, "hi", x, y);
  // The tile's own bounds hold those at each of its points, and so the field.
  ASSERT_LE(tile.lo, lo) << x << " " << y;
  ASSERT_GE(tile.hi, hi) << x << " " << y;
}

// Cuts rectangles of every size into tiles and compares the bounds of the
// tiles with those of the rectangle at the tiles' corners, on their rims,
// inside them and on the sources within them.  Returns how many sources the
// tiles left out, so that a test can tell that the pruning was at work.
std::size_t expect_tiles_hold(const RunState& state, std::uint64_t seed, int rectangles) {
  Random random(seed);
  const double largest = state.control.max_centroid_separation;
  FieldBounds bounds;
  TileSources tile;
  std::size_t left_out = 0;
  for (int r = 0; r < rectangles; ++r) {
    const auto [x, y] = random_corner(random, state, r % 2 == 0);
    const double w = largest * random.uniform(0.01, 3);
    const double h = largest * random.uniform(0.01, 3);
    bound_field(state, x, x + w, y, y + h, bounds);
    if (!bounds.usable) {
      ADD_FAILURE() << "no bounds";
      return left_out;
    }
    for (int t = 0; t < 6; ++t) {
      // A tile anywhere in the rectangle; the last is a single point.
      double tx0 = random.uniform(x, x + w);
      double tx1 = t == 5 ? tx0 : random.uniform(tx0, x + w);
      double ty0 = random.uniform(y, y + h);
      double ty1 = t == 5 ? ty0 : random.uniform(ty0, y + h);
      if (t == 0) {
        tx0 = x;
        tx1 = x + w;
        ty0 = y;
        ty1 = y + h;
      }
      keep_tile_sources(state, bounds, tx0, tx1, ty0, ty1, tile);
      EXPECT_LE(tile.xs.size(), bounds.xs.size());
      left_out += bounds.xs.size() - tile.xs.size();
      for (int p = 0; p < 10; ++p) {
        double px = random.uniform(tx0, tx1);
        double py = random.uniform(ty0, ty1);
        if (p < 4) {
          px = p & 1 ? tx1 : tx0;
          py = p & 2 ? ty1 : ty0;
        } else if (p == 4) {
          px = tx0;
        } else if (p == 5) {
          py = ty1;
        }
        expect_tile_gives_same_bits(state, bounds, tile, px, py);
      }
      // Sources that lie in the tile, at distance zero from a point.
      for (std::size_t k = 0; k < bounds.xs.size(); ++k) {
        if (bounds.xs[k] >= tx0 && bounds.xs[k] <= tx1 && bounds.ys[k] >= ty0 && bounds.ys[k] <= ty1) {
          expect_tile_gives_same_bits(state, bounds, tile, bounds.xs[k], bounds.ys[k]);
        }
      }
    }
  }
  return left_out;
}

TEST(FieldBounds, HoldOnTheFamilyWithEveryKindOfSource) {
  for (double growth : {1.2, 1.05, 2.0}) {
    tesseramill_test::ScratchDir dir;
    // Fine features and a cap the field reaches over most of the domain.
    ModelRecipe recipe = tesseramill_bench::family_model(1e5);
    recipe.scale = 1.0;
    recipe.growth = growth;
    RunState state;
    state_after_boundaries(state, recipe, dir);
    expect_bounds_hold(state, 21 + static_cast<std::uint64_t>(growth * 100), 300, true);
    // Tiles of the rectangles give the rectangles' bits, and leave out many sources.
    EXPECT_GT(expect_tiles_hold(state, 31 + static_cast<std::uint64_t>(growth * 100), 300), 1000u);
  }
}

TEST(FieldBounds, HoldWithGrowthRatesNearOne) {
  tesseramill_test::ScratchDir dir;
  ModelRecipe recipe = tesseramill_bench::family_model(1e3);
  recipe.growth = 1.0001;
  recipe.scale = 30.0;
  RunState state;
  state_after_boundaries(state, recipe, dir);
  // So slow a growth never reaches the caps here.
  expect_bounds_hold(state, 22, 200, false);
}


TEST(FieldBounds, TilesGiveTheRectanglesBitsAlongADigitisedDivideAndARiver) {
  tesseramill_test::ScratchDir dir;
  RunState state;
  state_after_boundaries(state, tesseramill_bench::gis_model(400), dir);
  EXPECT_GT(expect_tiles_hold(state, 32, 600), 1000u);
}

// The floor and the ceiling that the field's slope gives hold the
// reference field at distance r, along the lines from a point towards a
// source, where the field falls exactly at its slope (and, the other way,
// rises at it), and between random points; returns how many pairs they
// were asked for.
int expect_floor_holds(const RunState& state, std::uint64_t seed, int pairs) {
  Random random(seed);
  double xmin, xmax, ymin, ymax;
  outer_extent(state, xmin, xmax, ymin, ymax);
  const double growth = state.control.poly_growth_rate;
  const double largest = state.control.max_centroid_separation;
  std::vector<const BoundaryRing*> chains = {&state.outer_boundary};
  for (const BoundaryRing& line : state.inner_lines) chains.push_back(&line);
  int asked = 0;
  int tight = 0;
  int tight_above = 0;
  for (int n = 0; n < pairs; ++n) {
    double qx = random.uniform(xmin, xmax);
    double qy = random.uniform(ymin, ymax);
    double cx = qx + largest * random.uniform(-3, 3) * (n % 5 == 0 ? 1e-4 : 1.0);
    double cy = qy + largest * random.uniform(-3, 3) * (n % 5 == 0 ? 1e-4 : 1.0);
    if (n % 2 == 0) {
      // From a point in the graded field straight towards a chain point.
      const BoundaryRing& chain = *chains[static_cast<std::size_t>(n / 2) % chains.size()];
      const std::size_t k = static_cast<std::size_t>(random.uniform(0, chain.point_count - 1));
      const double sx = chain.points[2 * k];
      const double sy = chain.points[2 * k + 1];
      const double angle = random.uniform(0, 6.283185307179586);
      const double reach = largest * random.uniform(0, 3);
      qx = sx + reach * std::cos(angle);
      qy = sy + reach * std::sin(angle);
      const double along = random.uniform(0, 1);
      cx = qx + (sx - qx) * along;
      cy = qy + (sy - qy) * along;
    }
    double slope = 0.0;
    if (!field_slope(state, std::min(qx, cx), std::max(qx, cx), std::min(qy, cy), std::max(qy, cy), slope)) continue;
    ++asked;
    const double at_q = local_separation_reference(state, qx, qy, growth);
    const double at_c = local_separation_reference(state, cx, cy, growth);
    const double dx = cx - qx;
    const double dy = cy - qy;
    const double r = std::sqrt(dx * dx + dy * dy) * (1.0 + kRelative);
    const double floor = field_floor(slope, at_q, r);
    EXPECT_LE(floor, at_c) << qx << " " << qy << " to " << cx << " " << cy;
    if (floor > at_c * (1.0 - 1e-3)) ++tight;
    // From the point nearer the source back out, the field rises.
    const double ceiling = field_ceiling(slope, at_c, r);
    EXPECT_GE(ceiling, at_q) << cx << " " << cy << " to " << qx << " " << qy;
    if (ceiling < at_q * (1.0 + 1e-3)) ++tight_above;
  }
  // Along the lines towards the sources the floor and the ceiling come
  // within a thousandth of the field.
  EXPECT_GT(tight, pairs / 50) << tight;
  EXPECT_GT(tight_above, pairs / 50) << tight_above;
  return asked;
}

TEST(FieldBounds, TheFieldFallsAndRisesNoFasterThanItsSlope) {
  for (double growth : {1.25, 1.05, 2.0}) {
    tesseramill_test::ScratchDir dir;
    RunState state;
    gis_state_after_boundaries(state, 400, growth, dir);
    EXPECT_EQ(expect_floor_holds(state, 51 + static_cast<std::uint64_t>(growth * 100), 4000), 4000);
  }
}

// A zone's cap breaks the slope at its edge: rectangles across the zone
// have none, and the floor holds on the others.
TEST(FieldBounds, TheSlopeHoldsOnlyWhereNoZoneEdgeComesNear) {
  tesseramill_test::ScratchDir dir;
  ModelRecipe recipe = tesseramill_bench::family_model(1e4);
  RunState state;
  state_after_boundaries(state, recipe, dir);
  ASSERT_FALSE(state.inner_polygons.empty());
  const BoundaryRing& zone = state.inner_polygons[0];
  double zx0 = zone.vertices[0];
  double zx1 = zx0;
  double zy0 = zone.vertices[1];
  double zy1 = zy0;
  for (std::size_t k = 0; k + 1 < zone.vertices.size(); k += 2) {
    zx0 = std::min(zx0, zone.vertices[k]);
    zx1 = std::max(zx1, zone.vertices[k]);
    zy0 = std::min(zy0, zone.vertices[k + 1]);
    zy1 = std::max(zy1, zone.vertices[k + 1]);
  }
  double slope = 0.0;
  EXPECT_FALSE(field_slope(state, zx0 - 1, zx1 + 1, zy0 - 1, zy1 + 1, slope));
  const int asked = expect_floor_holds(state, 61, 4000);
  EXPECT_GT(asked, 1000);
  EXPECT_LT(asked, 4000);
}

// A run state whose only sources are inner points, in a square of side
// 2000 round the origin; cap 1000.
void state_with_sources(RunState& state, const std::vector<double>& coords, const std::vector<double>& separations) {
  state = RunState{};
  state.control.poly_growth_rate = 1.2;
  state.control.max_centroid_separation = 1000.0;
  state.smallest_max_separation = 1000.0;
  state.outer_boundary.vertices = {-1000, -1000, 1000, -1000, 1000, 1000, -1000, 1000, -1000, -1000};
  state.outer_boundary.vertex_count = 5;
  PointSet points;
  points.count = static_cast<std::int32_t>(separations.size());
  points.coords = coords;
  points.separation = separations;
  state.inner_point_sets = {points};
  build_domain_index(state);
  build_source_index(state);
}

// The Chebyshev distance in cells from the block i0..i1, j0..j1 to the
// nearest of the cells that hold a source, `full`, by trying each.
std::int64_t rings_by_search(const std::vector<std::pair<std::int64_t, std::int64_t>>& full, std::int64_t i0,
                             std::int64_t i1, std::int64_t j0, std::int64_t j1) {
  std::int64_t nearest = kNoSourceNear;
  for (const auto& [i, j] : full) {
    const std::int64_t di = std::max<std::int64_t>({i0 - i, i - i1, 0});
    const std::int64_t dj = std::max<std::int64_t>({j0 - j, j - j1, 0});
    nearest = std::min(nearest, std::max(di, dj));
  }
  return nearest;
}

TEST(SourceIndex, EmptyRingsAreTheDistanceToTheNearestCellWithASource) {
  Random random(20261125);
  RunState state;
  for (int trial = 0; trial < 40; ++trial) {
    // From no source at all to a few dozen, some on the rim of the domain;
    // a cap of 10 gives a grid of about 200 cells a side.
    const int count = trial % 10 == 0 ? 0 : 1 + static_cast<int>(random.uniform(0, 40));
    std::vector<double> coords;
    std::vector<double> separations;
    for (int k = 0; k < count; ++k) {
      const bool rim = k % 7 == 3;
      coords.push_back(rim ? 1000.0 : random.uniform(-1000, 1000));
      coords.push_back(random.uniform(-1000, 1000));
      separations.push_back(random.uniform(1, 50));
    }
    state_with_sources(state, coords, separations);
    state.control.max_centroid_separation = 10.0;
    build_source_index(state);
    const SourceIndex& index = state.source_index;
    ASSERT_TRUE(index.built);
    const CellGrid& g = index.grid;
    ASSERT_EQ(index.empty_rings.size(), g.cell_count());
    std::vector<std::pair<std::int64_t, std::int64_t>> full;
    for (std::int32_t j = 0; j < g.ny; ++j) {
      for (std::int32_t i = 0; i < g.nx; ++i) {
        if (index.cell_start[g.cell(i, j) + 1] > index.cell_start[g.cell(i, j)]) full.emplace_back(i, j);
      }
    }
    int differences = 0;
    for (std::int32_t j = 0; j < g.ny; ++j) {
      for (std::int32_t i = 0; i < g.nx; ++i) {
        const std::int64_t expected = rings_by_search(full, i, i, j, j);
        if (index.empty_rings[g.cell(i, j)] != expected && ++differences <= 5) {
          ADD_FAILURE() << "trial " << trial << " cell " << i << "," << j << ": " << index.empty_rings[g.cell(i, j)]
                        << " against " << expected;
        }
      }
    }
    EXPECT_EQ(differences, 0);
    // Blocks inside the grid get their exact distance; blocks reaching out
    // of it a count no larger than theirs, and many-celled blocks 0.
    for (int block = 0; block < 200; ++block) {
      const std::int64_t i0 = static_cast<std::int64_t>(random.uniform(-20, g.nx + 20));
      const std::int64_t j0 = static_cast<std::int64_t>(random.uniform(-20, g.ny + 20));
      const std::int64_t i1 = i0 + static_cast<std::int64_t>(random.uniform(0, 10));
      const std::int64_t j1 = j0 + static_cast<std::int64_t>(random.uniform(0, 10));
      const std::int64_t got = empty_rings_around(index, i0, i1, j0, j1);
      const std::int64_t truth = rings_by_search(full, i0, i1, j0, j1);
      EXPECT_LE(got, truth) << i0 << ".." << i1 << " x " << j0 << ".." << j1;
      const bool inside = i0 >= 0 && i1 < g.nx && j0 >= 0 && j1 < g.ny;
      const std::int64_t columns = std::min<std::int64_t>(i1, g.nx - 1) - std::max<std::int64_t>(i0, 0) + 1;
      const std::int64_t rows = std::min<std::int64_t>(j1, g.ny - 1) - std::max<std::int64_t>(j0, 0) + 1;
      if (columns > 0 && rows > 0 && columns * rows > 64) {
        EXPECT_EQ(got, 0);
      } else if (inside) {
        EXPECT_EQ(got, truth) << i0 << ".." << i1 << " x " << j0 << ".." << j1;
      }
    }
  }
}

// Sources on an integer lattice with equal separations, so that distances
// and sizes tie again and again, with tiles whose rims run through them.
TEST(FieldBounds, TilesGiveTheRectanglesBitsThroughTiesOnALattice) {
  Random random(33);
  RunState state;
  FieldBounds bounds;
  TileSources tile;
  std::size_t left_out = 0;
  for (int trial = 0; trial < 300; ++trial) {
    std::vector<double> coords;
    std::vector<double> separations;
    const int count = 2 + trial % 40;
    for (int k = 0; k < count; ++k) {
      coords.push_back(std::round(random.uniform(-60, 60)));
      coords.push_back(std::round(random.uniform(-60, 60)));
      separations.push_back(trial % 3 == 0 ? 4.0 : std::round(random.uniform(1, 8)));
    }
    state_with_sources(state, coords, separations);
    bound_field(state, -20, 20, -20, 20, bounds);
    ASSERT_TRUE(bounds.usable);
    for (int tx = -20; tx < 20; tx += 8) {
      for (int ty = -20; ty < 20; ty += 8) {
        keep_tile_sources(state, bounds, tx, tx + 8, ty, ty + 8, tile);
        left_out += bounds.xs.size() - tile.xs.size();
        for (int px = tx; px <= tx + 8; px += 2) {
          for (int py = ty; py <= ty + 8; py += 2) expect_tile_gives_same_bits(state, bounds, tile, px, py);
        }
      }
    }
  }
  EXPECT_GT(left_out, 1000u);
}

// bound_field_at at (x, y) with a single source.
void bounds_of_one_source(double sx, double sy, double s, double x, double y, double& lo, double& hi) {
  RunState state;
  state_with_sources(state, {sx, sy}, {s});
  FieldBounds bounds;
  bound_field(state, x - 1, x + 1, y - 1, y + 1, bounds);
  bound_field_at(state, bounds, x, y, lo, hi);
}

// A source whose lower bound over the tile equals the smallest upper bound
// exactly is left out, and the bounds still come out the same: a tile of
// one point at the origin, one source at (30, 0) setting the upper bound,
// and a second at the origin whose separation is searched so that its
// lower bound there is that very value.
TEST(FieldBounds, TilesLeaveOutASourceExactlyAtTheBoundAndGiveTheSameBits) {
  double lo = 0.0;
  double upper = 0.0;
  bounds_of_one_source(30, 0, 10, 0, 0, lo, upper);
  double s = upper / (1.0 - 1e-9);
  double lower = 0.0;
  double hi = 0.0;
  for (int step = 0; step < 200; ++step) {
    bounds_of_one_source(0, 0, s, 0, 0, lower, hi);
    if (lower == upper) break;
    s = std::nextafter(s, lower < upper ? INFINITY : 0.0);
  }
  ASSERT_EQ(lower, upper) << "no separation gives the bound exactly";
  for (int order = 0; order < 2; ++order) {
    RunState state;
    if (order == 0) {
      state_with_sources(state, {30, 0, 0, 0}, {10, s});
    } else {
      state_with_sources(state, {0, 0, 30, 0}, {s, 10});
    }
    FieldBounds bounds;
    bound_field(state, -5, 5, -5, 5, bounds);
    ASSERT_EQ(bounds.xs.size(), 2u);
    TileSources tile;
    keep_tile_sources(state, bounds, 0, 0, 0, 0, tile);
    ASSERT_EQ(tile.xs.size(), 1u) << order;
    EXPECT_EQ(tile.xs[0], 30.0);
    expect_tile_gives_same_bits(state, bounds, tile, 0, 0);
  }
}

// What `work` gives with the source index's cells' summaries set aside, as
// an index without them: the walks then look at every source.
template <typename Work>
auto without_summaries(RunState& state, Work work) {
  std::vector<SourceCellSummary> summaries;
  std::swap(summaries, state.source_index.summaries);
  const auto result = work();
  std::swap(summaries, state.source_index.summaries);
  return result;
}

// bound_field over one rectangle with the summaries and without: the same
// bounds bit for bit, and the same sources in the same order.  Gives the
// upper bound.
double expect_summaries_change_no_bounds_over(RunState& state, double xlo, double xhi, double ylo, double yhi) {
  FieldBounds with;
  bound_field(state, xlo, xhi, ylo, yhi, with);
  const FieldBounds without = without_summaries(state, [&] {
    FieldBounds bounds;
    bound_field(state, xlo, xhi, ylo, yhi, bounds);
    return bounds;
  });
  const std::string where =
      std::to_string(xlo) + ".." + std::to_string(xhi) + " x " + std::to_string(ylo) + ".." + std::to_string(yhi);
  EXPECT_EQ(with.usable, without.usable) << where;
  EXPECT_EQ(with.flat, without.flat) << where;
  EXPECT_EQ(with.caps_vary, without.caps_vary) << where;
  for (const auto& [a, b, what] : {std::tuple{with.lo, without.lo, "lo"}, std::tuple{with.hi, without.hi, "hi"},
                                   std::tuple{with.cap, without.cap, "cap"},
                                   std::tuple{with.cap_lo, without.cap_lo, "cap_lo"}}) {
    expect_same_bits(a, b, what, xlo, ylo);
  }
  EXPECT_EQ(with.xs, without.xs) << where;
  EXPECT_EQ(with.ys, without.ys) << where;
  EXPECT_EQ(with.separations, without.separations) << where;
  EXPECT_EQ(with.lowers, without.lowers) << where;
  return with.hi;
}

// bound_field with the cells' summaries, which let its walk pass over whole
// cells, against the walk over every source of every cell: the same
// bounds, bit for bit, and the same sources in the same order.  Rectangles
// of every size, from points to several times the cap, anywhere and close
// to the chains, where cells crowd with sources.  Returns how many of the
// rectangles lie where the field is graded (below the cap), where sources
// near and far are weighed and the summaries pass over cells.
int expect_summaries_change_no_bounds(RunState& state, std::uint64_t seed, int rectangles) {
  Random random(seed);
  const double largest = state.control.max_centroid_separation;
  EXPECT_EQ(state.source_index.summaries.size(), state.source_index.xs.size());
  int graded = 0;
  for (int r = 0; r < rectangles; ++r) {
    const auto [x, y] = random_corner(random, state, r % 2 == 0);
    const double w = r % 7 == 0 ? 0.0 : largest * random.uniform(0.001, 3);
    const double h = r % 7 == 0 ? 0.0 : largest * random.uniform(0.001, 3);
    if (expect_summaries_change_no_bounds_over(state, x, x + w, y, y + h) < largest) ++graded;
  }
  return graded;
}

TEST(FieldBounds, CellSummariesChangeNoBoundsAlongADigitisedDivideAndARiver) {
  for (double growth : {1.25, 1.05, 2.0}) {
    tesseramill_test::ScratchDir dir;
    RunState state;
    gis_state_after_boundaries(state, 2000, growth, dir);
    EXPECT_GT(expect_summaries_change_no_bounds(state, 61 + static_cast<std::uint64_t>(growth * 100), 1500), 300);
  }
}

TEST(FieldBounds, CellSummariesChangeNoBoundsOnTheFamily) {
  tesseramill_test::ScratchDir dir;
  ModelRecipe recipe = tesseramill_bench::family_model(1e5);
  recipe.scale = 1.0;
  RunState state;
  state_after_boundaries(state, recipe, dir);
  EXPECT_GT(expect_summaries_change_no_bounds(state, 62, 1500), 300);
}

// Sources on a lattice, many of them tying in distance and separation, in
// cells whose rectangles of sources are single points or lines.
TEST(FieldBounds, CellSummariesChangeNoBoundsThroughTiesOnALattice) {
  Random random(34);
  RunState state;
  for (int trial = 0; trial < 300; ++trial) {
    std::vector<double> coords;
    std::vector<double> separations;
    const int count = 2 + trial % 60;
    for (int k = 0; k < count; ++k) {
      coords.push_back(std::round(random.uniform(-600, 600)));
      coords.push_back(std::round(random.uniform(-600, 600)));
      separations.push_back(trial % 3 == 0 ? 40.0 : std::round(random.uniform(10, 80)));
    }
    state_with_sources(state, coords, separations);
    state.control.max_centroid_separation = 100.0;
    build_source_index(state);
    for (int x = -500; x <= 500; x += 125) {
      for (int y = -500; y <= 500; y += 125) expect_summaries_change_no_bounds_over(state, x, x + 40, y, y + 40);
    }
  }
}

// A source so fine that upper_size's test of range fails at the far side of
// a tile and passes at its near side: the tile must keep the tests, and
// its bounds stay those of the rectangle; a source of ordinary size lets
// the tile skip them, with the same bits.
TEST(FieldBounds, TilesKeepTheTestsOfRangeWhereASourceLeavesItsRange) {
  for (const double fine : {1e-299, 10.0}) {
    RunState state;
    state_with_sources(state, {0, 0}, {fine});
    FieldBounds bounds;
    bound_field(state, -10, 700, -10, 700, bounds);
    ASSERT_TRUE(bounds.usable);
    ASSERT_EQ(bounds.xs.size(), 1u);
    TileSources tile;
    keep_tile_sources(state, bounds, 0, 600, 0, 600, tile);
    ASSERT_EQ(tile.xs.size(), 1u);
    EXPECT_EQ(tile.in_range, fine == 10.0);
    for (const auto& [x, y] : {std::pair{0.0, 0.0}, std::pair{1.0, 0.0}, std::pair{300.0, 300.0},
                               std::pair{600.0, 600.0}, std::pair{0.0, 600.0}}) {
      expect_tile_gives_same_bits(state, bounds, tile, x, y);
    }
    if (fine == 10.0) continue;
    double lo = 0.0;
    double hi = 0.0;
    // Out of range the fine source asks for no upper bound, and the cap is
    // the bound; in range it asks for less than one.
    bound_tile_at(state, bounds, tile, 600, 600, lo, hi);
    EXPECT_EQ(hi, 1000.0);
    bound_tile_at(state, bounds, tile, 1, 0, lo, hi);
    EXPECT_LT(hi, 1.0);
  }
}

// The field's walk with the cells' summaries, which passes over whole cells,
// against the reference field over every source, and against the same walk
// without the summaries: anywhere in the domain, on and next to the chain
// points, where the nearest sources decide, and at every growth rate that
// has safe bounds and at one so close to one that it has none.
TEST(LocalSeparationFastPath, CellSummariesGiveTheReferenceBitsAlongADigitisedDivideAndARiver) {
  tesseramill_test::ScratchDir dir;
  RunState state;
  state_after_boundaries(state, tesseramill_bench::gis_model(2000), dir);
  for (double growth : {1.25, 1.05, 2.0, 1.0 + 1e-12}) {
    Random random(71 + static_cast<std::uint64_t>(growth * 100));
    double xmin, xmax, ymin, ymax;
    outer_extent(state, xmin, xmax, ymin, ymax);
    const std::vector<double>& chain = state.outer_boundary.points;
    int differences = 0;
    int graded = 0;
    for (int n = 0; n < 1500; ++n) {
      double x = random.uniform(xmin, xmax);
      double y = random.uniform(ymin, ymax);
      if (n % 2 == 0) {
        const std::size_t k = static_cast<std::size_t>(random.uniform(0, static_cast<double>(chain.size() / 2)));
        const double offset = n % 6 == 0 ? 0.0 : random.uniform(-200, 200);
        x = chain[2 * k] + offset;
        y = chain[2 * k + 1] + (n % 6 == 0 ? 0.0 : random.uniform(-200, 200));
      }
      const double fast = local_separation(state, x, y, growth);
      const double walked = without_summaries(state, [&] { return local_separation(state, x, y, growth); });
      const double reference = local_separation_reference(state, x, y, growth);
      if (std::memcmp(&fast, &reference, sizeof fast) != 0 || std::memcmp(&fast, &walked, sizeof fast) != 0) {
        if (++differences <= 5) ADD_FAILURE() << x << " " << y << ": " << fast << " " << walked << " " << reference;
      }
      if (fast < state.control.max_centroid_separation) ++graded;
    }
    EXPECT_EQ(differences, 0) << growth;
    EXPECT_GT(graded, 750) << growth;
  }
}

// The summary of each cell: the smallest rectangle of its sources and their
// smallest separation.
TEST(SourceIndex, EachCellIsSummarisedByItsSourcesRectangleAndSmallestSeparation) {
  Random random(35);
  RunState state;
  std::vector<double> coords;
  std::vector<double> separations;
  for (int k = 0; k < 500; ++k) {
    coords.push_back(random.uniform(-900, 900));
    coords.push_back(random.uniform(-900, 900));
    separations.push_back(random.uniform(1, 50));
  }
  state_with_sources(state, coords, separations);
  state.control.max_centroid_separation = 100.0;
  build_source_index(state);
  const SourceIndex& index = state.source_index;
  ASSERT_EQ(index.summaries.size(), index.xs.size());
  int full = 0;
  for (std::size_t c = 0; c < index.grid.cell_count(); ++c) {
    if (index.cell_start[c] == index.cell_start[c + 1]) continue;
    ++full;
    double xlo = INFINITY, xhi = -INFINITY, ylo = INFINITY, yhi = -INFINITY, least = INFINITY;
    for (std::int32_t m = index.cell_start[c]; m < index.cell_start[c + 1]; ++m) {
      const std::size_t at = static_cast<std::size_t>(m);
      xlo = std::min(xlo, index.xs[at]);
      xhi = std::max(xhi, index.xs[at]);
      ylo = std::min(ylo, index.ys[at]);
      yhi = std::max(yhi, index.ys[at]);
      least = std::min(least, index.separations[at]);
    }
    const SourceCellSummary& summary = index.summaries[static_cast<std::size_t>(index.cell_start[c])];
    EXPECT_EQ(summary.xlo, xlo);
    EXPECT_EQ(summary.xhi, xhi);
    EXPECT_EQ(summary.ylo, ylo);
    EXPECT_EQ(summary.yhi, yhi);
    EXPECT_EQ(summary.least, least);
    // The gap to the cell is that to its nearest source's place, and zero
    // from inside the rectangle.
    EXPECT_EQ(squared_gap_to_cell(summary, xlo, xlo, ylo, ylo), 0.0);
    EXPECT_EQ(squared_gap_to_cell(summary, xhi + 3, xhi + 3, yhi + 4, yhi + 4), 25.0);
    EXPECT_EQ(squared_gap_to_cell(summary, xlo - 6, xlo - 6, (ylo + yhi) / 2, (ylo + yhi) / 2), 36.0);
  }
  EXPECT_GT(full, 100);
}

}  // namespace
}  // namespace tesseramill
