// The models that the MODFLOW 6 check runs: both bundled examples, the
// benchmark family at about 10^3, 10^4 and 10^5 cells, a family model of
// about 600,000 cells (more than a million vertices, so that its grid must
// be fixed before MODFLOW 6 reads it) with one Lloyd pass, and a dozen
// seeded random models with a hole, a line, wells and a zone each.
#pragma once

#include <filesystem>
#include <string>
#include <vector>

#include "model_family.h"

namespace tesseramill_mf6check {

enum class ModelSource { kExample, kRecipe };

struct CheckModel {
  std::string name;
  ModelSource source = ModelSource::kRecipe;
  std::string example;  // folder below the source tree, for an example
  std::string control;  // its control file
  tesseramill_bench::ModelRecipe recipe;
};

// The models in the order they are run; without `large` the 600,000-cell
// model is left out.
std::vector<CheckModel> check_models(bool large);

// Puts the model's input files into `folder`.
void write_check_model(const CheckModel& model, const std::filesystem::path& source_root,
                       const std::filesystem::path& folder);

}  // namespace tesseramill_mf6check
