#include "check_models.h"

namespace tesseramill_mf6check {

namespace fs = std::filesystem;
using tesseramill_bench::ModelRecipe;
using tesseramill_bench::Random;

std::vector<CheckModel> check_models(bool large) {
  std::vector<CheckModel> models;
  models.push_back({"example catchment", ModelSource::kExample, "examples/catchment", "catchment.in", {}});
  models.push_back({"example full", ModelSource::kExample, "examples/full", "model.in", {}});
  for (const auto& [name, cells] : {std::pair<const char*, double>{"family 1e3", 1e3}, {"family 1e4", 1e4},
                                    {"family 1e5", 1e5}}) {
    models.push_back({name, ModelSource::kRecipe, "", "model.in", tesseramill_bench::family_model(cells)});
  }
  if (large) {
    ModelRecipe recipe = tesseramill_bench::family_model(6e5);
    recipe.max_lloyd = 1;
    models.push_back({"family 6e5, MAX_LLOYD 1", ModelSource::kRecipe, "", "model.in", recipe});
  }
  // Random variations of the family's small models, every feature present:
  // sizes, refinement, growth, wells, Lloyd settings and, for some, a rough
  // outline; seeded so that every run checks the same models.
  Random random(20);
  for (int trial = 1; trial <= 12; ++trial) {
    ModelRecipe recipe = tesseramill_bench::family_model(1e4);
    recipe.seed = 700 + static_cast<std::uint64_t>(trial);
    recipe.scale = random.uniform(1.5, 6.0);
    recipe.refinement = random.uniform(0.5, 1.0);
    recipe.wells = 1 + static_cast<int>(random.uniform(0, 4));
    recipe.growth = random.uniform(1.1, 1.5);
    recipe.nsdim = 2 * static_cast<int>(random.uniform(2, 16)) + 1;
    recipe.lloyd_fac = random.uniform(0.1, 0.5);
    recipe.max_lloyd = static_cast<int>(random.uniform(1, 12));
    if (trial % 3 == 0) {
      recipe.outline_vertices = 96;
      recipe.outline_roughness = 0.03;
    }
    models.push_back({"random " + std::to_string(trial), ModelSource::kRecipe, "", "model.in", recipe});
  }
  return models;
}

void write_check_model(const CheckModel& model, const fs::path& source_root, const fs::path& folder) {
  fs::create_directories(folder);
  if (model.source == ModelSource::kExample) {
    for (const auto& entry : fs::directory_iterator(source_root / model.example)) {
      fs::copy_file(entry.path(), folder / entry.path().filename(), fs::copy_options::overwrite_existing);
    }
  } else {
    tesseramill_bench::write_model(model.recipe, folder);
  }
}

}  // namespace tesseramill_mf6check
