// The bounds of the separation field hold the reference field at every point
// of their rectangle, and a rectangle called flat has exactly that value.
#include <gtest/gtest.h>

#include <cmath>
#include <sstream>

#include "geometry/field_bounds.h"
#include "geometry/local_separation.h"
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

// Probes rectangles of every size over the domain: corners, random points,
// and points on the sources themselves.
void expect_bounds_hold(const RunState& state, std::uint64_t seed, int rectangles, bool some_flat) {
  Random random(seed);
  const std::vector<double>& outer = state.outer_boundary.vertices;
  double xmin = outer[0], xmax = outer[0], ymin = outer[1], ymax = outer[1];
  for (std::size_t k = 0; k + 1 < outer.size(); k += 2) {
    xmin = std::min(xmin, outer[k]);
    xmax = std::max(xmax, outer[k]);
    ymin = std::min(ymin, outer[k + 1]);
    ymax = std::max(ymax, outer[k + 1]);
  }
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

}  // namespace
}  // namespace tesseramill
