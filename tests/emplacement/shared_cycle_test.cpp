// Interior emplacement with each cycle's seeds shared between two threads
// places the points, labels and screen lines of the same cycles proposed
// one seed after another.
#include <gtest/gtest.h>

#include <cstring>
#include <sstream>
#include <string>

#include "common/parallel.h"
#include "model_family.h"
#include "run/phases.h"
#include "support/model_state.h"
#include "support/scratch.h"
#include "support/whole_run.h"

namespace tesseramill {
namespace {

using tesseramill_bench::ModelRecipe;

struct Emplaced {
  bool ok = false;
  std::string screen;
  std::vector<double> points;
  std::vector<std::int32_t> labels;
  std::int64_t shared_seeds = 0;
  std::int64_t proposed_again = 0;
  std::int64_t passed_over = 0;
};

// Runs the phases up to interior emplacement on the model; with
// `smallest_cycle` 0 every cycle proposes one seed after another.
Emplaced emplace(const ModelRecipe& recipe, std::size_t smallest_cycle) {
  tesseramill_test::ScratchDir dir;
  tesseramill_bench::write_model(recipe, dir.path());
  Emplaced out;
  RunState state;
  std::ostringstream screen;
  {
    std::unique_ptr<tesseramill_test::OneCore> one;
    if (smallest_cycle == 0) one = std::make_unique<tesseramill_test::OneCore>();
    if (smallest_cycle > 0) smallest_shared_cycle = smallest_cycle;
    out.ok = tesseramill_test::run_phases_until(state, dir.path(), "model.in", Phase::kPopulateInterior, screen);
    smallest_shared_cycle = kSmallestSharedCycle;
  }
  out.screen = screen.str() + state.message_buffer;
  out.points.assign(state.mesh.mesh_points.begin(),
                    state.mesh.mesh_points.begin() + 2 * static_cast<std::ptrdiff_t>(state.mesh.mesh_point_count));
  out.labels.assign(state.mesh.mesh_point_label.begin(),
                    state.mesh.mesh_point_label.begin() + state.mesh.mesh_point_count);
  out.shared_seeds = state.fast_emplacement.shared_seeds;
  out.proposed_again = state.fast_emplacement.proposed_again;
  out.passed_over = state.fast_emplacement.passed_over;
  return out;
}

void expect_same_points(const Emplaced& one, const Emplaced& shared) {
  EXPECT_EQ(one.ok, shared.ok);
  EXPECT_EQ(one.screen, shared.screen);
  ASSERT_EQ(one.points.size(), shared.points.size());
  // Bit for bit, so that a -0.0 for a 0.0 would show.
  EXPECT_EQ(std::memcmp(one.points.data(), shared.points.data(), one.points.size() * sizeof(double)), 0);
  EXPECT_EQ(one.labels, shared.labels);
  EXPECT_EQ(one.shared_seeds, 0);
  // A seed is marked as one to pass over at its turn in the commit, from
  // the outcome the seeds one after another give, so the same seeds are
  // passed over.
  EXPECT_EQ(one.passed_over, shared.passed_over);
}

struct SharedCase {
  const char* name;
  ModelRecipe recipe;
  std::size_t smallest_cycle;
};

ModelRecipe scaled(double cells, double scale) {
  ModelRecipe recipe = tesseramill_bench::family_model(cells);
  recipe.scale = scale;
  return recipe;
}

std::vector<SharedCase> shared_cases() {
  std::vector<SharedCase> cases;
  // The family's model of 30,000 cells at the program's own threshold.
  cases.push_back({"family 3e4", tesseramill_bench::family_model(3e4), kSmallestSharedCycle});
  // Small models with every cycle shared, down to a few seeds per slab, so
  // that most seeds lie near the edge of a slab and many propose again.
  cases.push_back({"family 1e3, every cycle", tesseramill_bench::family_model(1e3), 2});
  cases.push_back({"family 1e4 with its caps, every cycle", scaled(1e4, 1.0), 16});
  {
    ModelRecipe recipe = scaled(1e3, 1.0);
    recipe.growth = 1.02;
    cases.push_back({"growth 1.02, every cycle", recipe, 8});
  }
  {
    // A growth rate the field's bounds do not serve leaves every choice to
    // the literal steps, at the seed's turn.
    ModelRecipe recipe = scaled(1e3, 1.0);
    recipe.growth = 3.0;
    cases.push_back({"growth 3, every cycle", recipe, 8});
  }
  {
    ModelRecipe recipe = scaled(1e3, 1.0);
    recipe.nsdim = 7;
    recipe.safety = 3;
    cases.push_back({"NSDIM 7, SAFETY 3, every cycle", recipe, 8});
  }
  {
    ModelRecipe recipe = scaled(1e3, 3.0);
    recipe.outline_vertices = 2000;
    recipe.outline_roughness = 0.06;
    recipe.nsdim = 15;
    recipe.max_cells = 200000;
    cases.push_back({"outline of 2,000 vertices", recipe, 64});
  }
  cases.push_back({"GIS-like divide of 500 vertices", tesseramill_bench::gis_model(500), 256});
  {
    // The capacity runs out in a shared cycle: the failure comes at the
    // same seed and with the same text.
    ModelRecipe recipe = tesseramill_bench::family_model(1e4);
    recipe.max_cells = 6000;
    cases.push_back({"MAX_CELLS reached in a shared cycle", recipe, 16});
  }
  return cases;
}

TEST(SharedCycle, PlacesThePointsOfTheSeedsOneAfterAnother) {
  for (const SharedCase& c : shared_cases()) {
    SCOPED_TRACE(c.name);
    const Emplaced one = emplace(c.recipe, 0);
    const Emplaced shared = emplace(c.recipe, c.smallest_cycle);
    expect_same_points(one, shared);
    // The cycles were shared, and the commit took proposals as they stood
    // as well as making some again.
    EXPECT_GT(shared.shared_seeds, 0);
    EXPECT_LT(shared.proposed_again, shared.shared_seeds);
  }
}

TEST(SharedCycle, SeedsNearTheEdgeOfASlabProposeAgain) {
  // With every cycle shared, a seed whose box reaches into another slab
  // sees that slab's new points only at its turn.
  const Emplaced shared = emplace(tesseramill_bench::family_model(1e3), 2);
  ASSERT_TRUE(shared.ok) << shared.screen;
  EXPECT_GT(shared.proposed_again, 0);
  EXPECT_LT(shared.proposed_again, shared.shared_seeds);
}

TEST(SharedCycle, CapacityFailureNamesMaxCells) {
  ModelRecipe recipe = tesseramill_bench::family_model(1e4);
  recipe.max_cells = 6000;
  const Emplaced shared = emplace(recipe, 16);
  EXPECT_FALSE(shared.ok);
  EXPECT_NE(shared.screen.find("Number of cell centres is greater than MAX_CELLS value of 6000. Alter value for this "
                               "variable in CONTROL block of TESSERAMILL input file."),
            std::string::npos)
      << shared.screen;
  EXPECT_EQ(shared.points.size(), 2u * 6000u);
}

}  // namespace
}  // namespace tesseramill
