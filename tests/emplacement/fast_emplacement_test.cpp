// Every proposal of interior emplacement, asked of the fast path and of the
// literal steps on the same run state, chooses the same candidate.
#include <gtest/gtest.h>

#include <bit>
#include <cmath>
#include <cstdint>
#include <initializer_list>
#include <sstream>
#include <utility>

#include "emplacement/chains.h"
#include "emplacement/fast_emplacement.h"
#include "emplacement/interior_emplacement.h"
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
namespace fs = std::filesystem;

bool same_bits(double a, double b) { return std::bit_cast<std::uint64_t>(a) == std::bit_cast<std::uint64_t>(b); }

// The seeds passed over that each replay asks the literal steps about, as
// well as every `every`th seed.
constexpr int kPassedOverChecked = 60;

// Replays the emplacement cycles on a model with the fast path, asks the
// literal steps too at every `every`th seed and at the first seeds that
// the fast path passed over, and appends the candidate.  Stops after
// `most` proposals.  Checking a share of the seeds keeps the slow literal
// steps few while the replay reaches deep into the domain; whole runs
// compare every proposal's outcome.  The field that a proposal works out at its point, from the
// sources its bounds kept, must be the very bits of local_separation
// there, at every seed, and of the literal field at the checked ones.
// Gives how many seeds were passed over.
int expect_same_proposals(const fs::path& folder, const std::string& control, int most, int every) {
  RunState state;
  std::ostringstream screen;
  const bool ready = tesseramill_test::run_phases_until(state, folder, control, Phase::kPopulateBoundaries, screen);
  EXPECT_TRUE(ready) << state.message_buffer;
  if (!ready) return 0;
  start_fast_emplacement(state);
  int proposals = 0;
  int passed_over = 0;
  int checked = 0;
  int fields = 0;
  int placed = 0;
  const double growth = state.control.poly_growth_rate;
  std::int32_t seed_after = 0;
  for (std::int32_t cycle = 1; proposals < most; ++cycle) {
    const std::int32_t n = state.mesh.mesh_point_count;
    seed_after = seed_range_start(state, cycle, seed_after);
    if (n <= seed_after) break;
    std::int32_t added = 0;
    for (std::int32_t seed = seed_after + 1; seed <= n && proposals < most; ++seed, ++proposals) {
      double xf = 0.0;
      double yf = 0.0;
      double xr = 0.0;
      double yr = 0.0;
      double separation = 0.0;
      const std::int64_t passed_before = state.fast_emplacement.passed_over;
      const bool fast = choose_from_seed_fast(state, seed, xf, yf, separation);
      const bool passed = state.fast_emplacement.passed_over != passed_before;
      if (passed) {
        ++passed_over;
        EXPECT_FALSE(fast) << "cycle " << cycle << " seed " << seed;
      }
      if (fast && !std::isnan(separation)) {
        EXPECT_TRUE(same_bits(separation, local_separation(state, xf, yf, growth)))
            << "cycle " << cycle << " seed " << seed << ": " << separation;
        if (!same_bits(separation, local_separation(state, xf, yf, growth))) return passed_over;
        ++fields;
      }
      if (proposals % every == 0 || (passed && passed_over <= kPassedOverChecked)) {
        state.reference_paths = true;
        const bool reference = choose_from_seed_reference(state, seed, xr, yr);
        const double literal_field = fast ? local_separation_reference(state, xf, yf, growth) : 0.0;
        state.reference_paths = false;
        EXPECT_EQ(fast, reference) << "cycle " << cycle << " seed " << seed << (passed ? ", passed over" : "");
        if (fast != reference) return passed_over;
        if (fast) {
          EXPECT_EQ(xf, xr) << "cycle " << cycle << " seed " << seed;
          EXPECT_EQ(yf, yr) << "cycle " << cycle << " seed " << seed;
          if (!std::isnan(separation)) {
            EXPECT_TRUE(same_bits(separation, literal_field)) << "cycle " << cycle << " seed " << seed;
          }
          if (xf != xr || yf != yr) return passed_over;
          ++checked;
        }
      }
      if (!fast) continue;
      ++placed;
      const std::int32_t number = append_mesh_point(state, xf, yf, cycle);
      index_run_point(state, number, separation);
      ++added;
    }
    if (added == 0) break;
  }
  // Enough proposals that chose a candidate have to be checked to mean anything.
  EXPECT_GT(checked, 20);
  // Only a point that the literal steps chose has no field from its proposal.
  EXPECT_GT(fields, placed * 9 / 10) << placed;
  return passed_over;
}

// The same on a model written from the texts of its files; its control file
// is m.in.
int expect_same_proposals(std::initializer_list<std::pair<const char*, const char*>> files, int most, int every) {
  tesseramill_test::ScratchDir dir;
  for (const auto& [name, text] : files) dir.write(name, text);
  return expect_same_proposals(dir.path(), "m.in", most, every);
}

int expect_same_proposals(const ModelRecipe& recipe, int most, int every) {
  tesseramill_test::ScratchDir dir;
  tesseramill_bench::write_model(recipe, dir.path());
  return expect_same_proposals(dir.path(), "model.in", most, every);
}

TEST(FastEmplacement, ChoosesAsTheLiteralStepsOnTheFamily) {
  ModelRecipe recipe = tesseramill_bench::family_model(1e3);
  recipe.scale = 16.0;
  // Seeds reach their second turn, and many are passed over.
  EXPECT_GT(expect_same_proposals(recipe, 3000, 20), 100);
}

TEST(FastEmplacement, ChoosesAsTheLiteralStepsWithFineFeaturesAndTheirCaps) {
  // Refinement 1 reaches the caps, so that flat rectangles, relevant
  // sources and inner polygon edges all come into play.
  ModelRecipe recipe = tesseramill_bench::family_model(1e5);
  recipe.scale = 4.0;
  expect_same_proposals(recipe, 6000, 40);
}

TEST(FastEmplacement, ChoosesAsTheLiteralStepsWithGrowthRatesNearOneAndLarge) {
  for (double growth : {1.02, 3.0}) {
    ModelRecipe recipe = tesseramill_bench::family_model(1e3);
    recipe.scale = 20.0;
    recipe.growth = growth;
    expect_same_proposals(recipe, 2000, 10);
  }
}

TEST(FastEmplacement, ChoosesAsTheLiteralStepsWithSmallGridsAndEverySeed) {
  ModelRecipe recipe = tesseramill_bench::family_model(1e3);
  recipe.scale = 16.0;
  recipe.nsdim = 7;
  recipe.safety = 3;
  expect_same_proposals(recipe, 4000, 4);
}

TEST(FastEmplacement, ChoosesAsTheLiteralStepsInsideAnOutlineOfThousandsOfVertices) {
  ModelRecipe recipe = tesseramill_bench::family_model(1e3);
  recipe.scale = 16.0;
  recipe.outline_vertices = 2000;
  recipe.outline_roughness = 0.06;
  recipe.nsdim = 15;
  recipe.max_cells = 100000;
  expect_same_proposals(recipe, 3000, 15);
}

// The GIS-like model: a digitised divide wiggling at every scale, whose
// ring seeds lie on its edges, and a river of short segments; the grid is
// kept small so that the literal steps, which visit every source for each
// candidate, stay quick.
TEST(FastEmplacement, ChoosesAsTheLiteralStepsAlongADigitisedDivideAndARiver) {
  ModelRecipe recipe = tesseramill_bench::gis_model(200);
  recipe.nsdim = 11;
  EXPECT_GT(expect_same_proposals(recipe, 3000, 12), 40);
}

TEST(FastEmplacement, ChoosesAsTheLiteralStepsOnADomainOf1e7) {
  // Coordinates are shifted so that the outer boundary starts at 1000; a
  // domain 10,000 km across keeps them of the order of 1e7 after the shift.
  ModelRecipe recipe = tesseramill_bench::family_model(1e3);
  recipe.radius = 5e6;
  recipe.scale = 16.0 * 250.0;
  expect_same_proposals(recipe, 3000, 20);
}

// Grid candidates fall exactly on the square's edges, on ring points and on
// one another's distances: the square of side 60 with spacing 6 and NSDIM 9
// puts candidates at whole numbers.
TEST(FastEmplacement, ChoosesAsTheLiteralStepsWithCandidatesOnEdgesAndPoints) {
  expect_same_proposals(
      {{"outer.bln", "5\n0 0 6\n60 0 6\n60 60 6\n0 60 6\n0 0 6\n"},
       {"hole.bln", "5\n24 24 6\n36 24 6\n36 36 6\n24 36 6\n24 24 6\n"},
       {"pts.bln", "1\n12 48 3\n"},
       {"m.in",
        "START CONTROL\n MAX_CENTROID_SEPARATION 6\n POLY_GROWTH_RATE 1.2\n OUT_FILE_BASE m\n MAX_CELLS 5000\n"
        " NSDIM 9\nEND\nSTART MF6\n MF6_BASENAME m\n NLAY 1\nEND\nSTART OUTER_BOUNDARY\n BLN_FILE outer.bln\nEND\n"
        "START INNER_BOUNDARY\n BLN_FILE hole.bln\nEND\nSTART INNER_POINTS\n BLN_FILE pts.bln\nEND\n"}},
      3000, 1);
}

// A refinement zone whose cap, not its ring's sources, sets the field in
// its middle: the field a proposal works out at its point must take the
// zone's cap as local_separation does.
TEST(FastEmplacement, ChoosesAsTheLiteralStepsWhereAZoneCapsTheField) {
  expect_same_proposals(
      {{"outer.bln", "5\n0 0 60\n600 0 60\n600 600 60\n0 600 60\n0 0 60\n"},
       {"zone.bln", "5\n150 150 30\n450 150 30\n450 450 30\n150 450 30\n150 150 30\n"},
       {"m.in",
        "START CONTROL\n MAX_CENTROID_SEPARATION 60\n POLY_GROWTH_RATE 1.2\n OUT_FILE_BASE m\n MAX_CELLS 20000\n"
        " NSDIM 11\nEND\nSTART MF6\n MF6_BASENAME m\n NLAY 1\nEND\nSTART OUTER_BOUNDARY\n BLN_FILE outer.bln\nEND\n"
        "START INNER_POLYGON\n BLN_FILE zone.bln\n MAX_CENTROID_SEPARATION 14.0\nEND\n"}},
      3000, 3);
}

TEST(FastEmplacement, ChoosesAsTheLiteralStepsOnTheExampleWithEveryKindOfInput) {
  expect_same_proposals(fs::path(TESSERAMILL_SOURCE_DIR) / "examples" / "full", "model.in", 3000, 2);
}

// A seed is passed over only after a proposal that chose nothing on the
// grid of its first box, laid at the field at the seed: one whose box grew,
// one left to the literal steps and one that chose a point say nothing of
// the seed's later turns, where more points may fill its first box.
TEST(FastEmplacement, PassesOverOnlySeedsThatChoseNothingOnTheirFirstBox) {
  RunState state;
  state.control.max_cells = 5000;
  state.control.poly_growth_rate = 1.2;
  state.control.max_centroid_separation = 10.0;
  state.control.nsdim = 11;
  state.smallest_max_separation = 10.0;
  state.outer_boundary.vertices = {-1000, -1000, 1000, -1000, 1000, 1000, -1000, 1000, -1000, -1000};
  state.outer_boundary.vertex_count = 5;
  build_domain_index(state);
  build_source_index(state);
  create_emplacement_grid(state);
  for (const auto& [x, y] : {std::pair{0.0, 0.0}, {40.0, 0.0}, {0.0, 40.0}, {-40.0, 0.0}, {0.0, -40.0}}) {
    append_mesh_point(state, x, y, 1);
  }
  start_fast_emplacement(state);
  const PointView view = run_points(state);
  Proposal proposal;
  // The seed has a candidate to choose: on its turn it is asked.
  propose_fast(state, state.fast_emplacement.scratch, view, 1, proposal);
  EXPECT_TRUE(proposal.chosen);
  EXPECT_FALSE(proposal.passed_over);
  auto noted = [&](Proposal outcome) {
    note_outcome(state, 1, outcome);
    Proposal again;
    propose_fast(state, state.fast_emplacement.scratch, view, 1, again);
    return again;
  };
  Proposal grown;
  grown.grown = true;
  EXPECT_FALSE(noted(grown).passed_over);
  Proposal literal;
  literal.literal = true;
  EXPECT_FALSE(noted(literal).passed_over);
  Proposal chose;
  chose.chosen = true;
  EXPECT_FALSE(noted(chose).passed_over);
  EXPECT_EQ(state.fast_emplacement.passed_over, 0);
  // Nothing chosen on the first box: from then on the seed is passed over,
  // and chooses nothing, and the passes are counted as they are noted.
  const Proposal passed = noted(Proposal{});
  EXPECT_TRUE(passed.passed_over);
  EXPECT_FALSE(passed.chosen);
  EXPECT_FALSE(passed.searched);
  note_outcome(state, 1, passed);
  EXPECT_EQ(state.fast_emplacement.passed_over, 1);
  // Another seed is asked as before.
  propose_fast(state, state.fast_emplacement.scratch, view, 2, proposal);
  EXPECT_FALSE(proposal.passed_over);
}

}  // namespace
}  // namespace tesseramill

namespace tesseramill {
namespace {

// Points on an integer lattice round a seed, with the field 10 everywhere
// and candidate spacings of 6, 2 or 1.2: distances, strikes and scores tie
// exactly again and again, and the first candidate in scan order must win.
TEST(FastEmplacement, ChoosesAsTheLiteralStepsThroughExactTies) {
  tesseramill_test::Random random(41);
  int chosen = 0;
  for (int trial = 0; trial < 2000; ++trial) {
    RunState state;
    state.control.max_cells = 5000;
    state.control.poly_growth_rate = 1.2;
    state.control.max_centroid_separation = 10.0;
    state.smallest_max_separation = 10.0;
    // The 41 candidates of a row of the widest grid go past the short runs
    // that are struck with a store or two.
    const std::int32_t sizes[] = {5, 15, 25, 7, 41};
    state.control.nsdim = sizes[trial % 5];
    state.outer_boundary.vertices = {-1000, -1000, 1000, -1000, 1000, 1000, -1000, 1000, -1000, -1000};
    state.outer_boundary.vertex_count = 5;
    if (trial % 3 == 0) {
      // A hole whose edges run along lattice lines through the grid.
      BoundaryRing hole;
      hole.vertices = {6, -4, 16, -4, 16, 8, 6, 8, 6, -4};
      hole.vertex_count = 5;
      state.inner_boundaries.push_back(hole);
    }
    build_domain_index(state);
    build_source_index(state);
    create_emplacement_grid(state);
    append_mesh_point(state, 0, 0, 1);
    const int points = 4 + trial % 17;
    for (int p = 0; p < points; ++p) {
      append_mesh_point(state, std::round(random.uniform(-25, 25)), std::round(random.uniform(-25, 25)), 1);
    }
    start_fast_emplacement(state);
    double xf = 0.0;
    double yf = 0.0;
    double xr = 0.0;
    double yr = 0.0;
    double separation = 0.0;
    const bool fast = choose_from_seed_fast(state, 1, xf, yf, separation);
    state.reference_paths = true;
    const bool reference = choose_from_seed_reference(state, 1, xr, yr);
    ASSERT_EQ(fast, reference) << trial;
    if (!fast) continue;
    ++chosen;
    ASSERT_EQ(xf, xr) << trial;
    ASSERT_EQ(yf, yr) << trial;
    ASSERT_TRUE(same_bits(separation, local_separation_reference(state, xf, yf, 1.2))) << trial << ": " << separation;
  }
  EXPECT_GT(chosen, 700);
}

}  // namespace
}  // namespace tesseramill
