#include "gis/gis_import.h"

#include <filesystem>
#include <fstream>
#include <ostream>
#include <sstream>

#include "common/failure.h"
#include "common/platform.h"
#include "gis/import_options.h"
#include "gis/layer_source.h"
#include "gis/model_build.h"
#include "gis/model_files.h"
#include "gis/model_relations.h"
#include "gis/model_shaping.h"
#include "output/number_format.h"
#include "run/program.h"

namespace tesseramill {

namespace fs = std::filesystem;

namespace {

struct SetCounts {
  std::int64_t features[kFeatureSetCount] = {};
  std::int64_t vertices[kFeatureSetCount] = {};
};

std::int64_t vertex_count(const ModelPiece& piece, bool ring) {
  return static_cast<std::int64_t>(piece.xy.size() / 2) - (ring ? 1 : 0);
}

SetCounts count_sets(const ImportModel& model) {
  SetCounts c;
  c.features[0] = 1;
  c.vertices[0] = vertex_count(model.boundary, true);
  const std::vector<ModelPiece>* sets[] = {nullptr, &model.holes, &model.lines, &model.points, &model.zones};
  for (int s = 1; s < kFeatureSetCount; ++s) {
    c.features[s] = static_cast<std::int64_t>(sets[s]->size());
    for (const ModelPiece& p : *sets[s]) c.vertices[s] += vertex_count(p, s == 1 || s == 4);
  }
  return c;
}

// The mesher's own reading and checks of the written folder, which must
// pass: a model the import writes and the mesher refuses is a fault of the
// import, and is not handed over.
void check_with_mesher(RunState& state, const fs::path& folder, const std::string& control) {
  RunState mesher;
  std::ostringstream screen;
  mesher.screen = &screen;
  const fs::path here = fs::current_path();
  fs::current_path(folder);
  bool ok = true;
  try {
    initialise_run_state(mesher);
    mesher.control_file_name = control;
    run_phase(mesher, Phase::kReadControlFile);
    run_phase(mesher, Phase::kReadBoundaryFiles);
    run_phase(mesher, Phase::kCheckBoundaries);
  } catch (const RunFailure&) {
    ok = false;
  }
  fs::current_path(here);
  if (!ok) {
    std::error_code error;
    fs::remove_all(folder, error);
    fail(state, "The model would be refused by the mesher, which the import should have prevented: \"" +
                    mesher.message_buffer + "\" Nothing is written; please report this with the layers.");
  }
}

void write_folder(RunState& state, const fs::path& folder, const std::vector<ModelFile>& files) {
  std::error_code error;
  fs::create_directories(folder, error);
  if (error) fail(state, "Cannot make folder " + folder.string() + ": " + error.message() + ".");
  for (const ModelFile& f : files) {
    std::ofstream out(folder / f.name, std::ios::binary);
    out << f.text;
    out.close();
    if (!out) {
      fs::remove_all(folder, error);
      fail(state, "Cannot write file " + (folder / f.name).string() + ": the disc may be full. Nothing is written.");
    }
  }
}

std::string set_line(FeatureSet set, std::int64_t features, std::int64_t read, std::int64_t kept) {
  static const char* const kOne[] = {"ring", "hole", "line", "point", "zone"};
  const int s = static_cast<int>(set);
  std::string line = " - " + std::string(feature_set_word(set)) + ": " + format_integer(features) + " " + kOne[s] +
                     (features == 1 ? "" : "s");
  if (set != FeatureSet::kPoints) line += ", " + format_integer(read) + " vertices read, " + format_integer(kept) + " kept";
  return line + "\n";
}

}  // namespace

void import_model(RunState& state, const std::vector<std::string>& args, std::ostream& screen) {
  const ImportOptions o = parse_import_options(state, args);
  const fs::path out_dir(o.out_dir);
  std::error_code error;
  if (fs::exists(out_dir, error) && !fs::is_empty(out_dir, error) && !o.force) {
    fail(state, "Folder " + o.out_dir +
                    " exists and is not empty. Name another folder, or run the import again with --force to "
                    "replace the model's files in it.");
  }

  OGRSpatialReference crs;
  if (!o.to_crs.empty()) {
    crs = epsg_system(state, o.to_crs);
    if (crs.IsGeographic()) {
      fail(state, "The system " + o.to_crs + " of --to is geographic, in degrees; name a projected system in metres.");
    }
  }
  ImportLayers layers;
  for (int s = 0; s < kFeatureSetCount; ++s) {
    if (o.sources[s].empty()) continue;
    screen << " - reading " << feature_set_word(static_cast<FeatureSet>(s)) << " from " << o.sources[s] << "...\n";
    layers[static_cast<std::size_t>(s)] = read_source_layer(state, o.sources[s], o, crs);
  }

  ImportModel model = build_model(state, o, layers, screen);
  const std::vector<Breach> breaches = model_breaches(model, nullptr);
  if (!breaches.empty()) fail(state, breaches.front().message);
  const SetCounts read = count_sets(model);

  clean_model(state, model, o, screen);
  thin_model(model, o, screen);
  check_gaps(state, model);
  const SetCounts kept = count_sets(model);

  double xorigin = 0.0;
  double yorigin = 0.0;
  round_origin(model, xorigin, yorigin);
  if (o.xorigin) {
    xorigin = *o.xorigin;
    yorigin = *o.yorigin;
  }
  const std::int32_t max_cells = o.max_cells ? *o.max_cells : estimated_max_cells(model, o);
  char* wkt = nullptr;
  crs.exportToWkt(&wkt);
  const std::string crs_wkt = wkt != nullptr ? wkt : "";
  CPLFree(wkt);
  const std::vector<ModelFile> files = model_files(model, o, max_cells, xorigin, yorigin, crs_wkt);

  // Written whole into a folder beside the target, checked, and only then
  // moved into place, so that a failure leaves the target as it was.
  const fs::path parent = fs::absolute(out_dir).parent_path();
  const fs::path staging = parent / (".tesseramill-gis-" + format_integer(process_id()));
  fs::remove_all(staging, error);
  write_folder(state, staging, files);
  check_with_mesher(state, staging, files.front().name);
  fs::create_directories(out_dir, error);
  for (const ModelFile& f : files) {
    fs::rename(staging / f.name, out_dir / f.name, error);
    if (error) {
      fs::remove_all(staging, error);
      fail(state, "Cannot move file " + f.name + " into folder " + o.out_dir + ".");
    }
  }
  fs::remove_all(staging, error);

  screen << "\n";
  for (int s = 0; s < kFeatureSetCount; ++s) {
    if (s > 0 && read.features[s] == 0) continue;
    screen << set_line(static_cast<FeatureSet>(s), kept.features[s], read.vertices[s], kept.vertices[s]);
  }
  double smallest = model.boundary.spacing;
  for (const std::vector<ModelPiece>* set : {&model.holes, &model.lines, &model.points, &model.zones}) {
    for (const ModelPiece& p : *set) smallest = std::min(smallest, p.spacing);
  }
  const char* authority = crs.GetAuthorityName(nullptr);
  const char* code = crs.GetAuthorityCode(nullptr);
  screen << " - coordinate system: " << (crs.GetName() != nullptr ? crs.GetName() : "unnamed");
  if (authority != nullptr && code != nullptr) screen << " (" << authority << ":" << code << ")";
  screen << "\n - spacing from " << screen_number(smallest) << " to " << screen_number(o.max_spacing)
         << ", MAX_CELLS " << format_integer(max_cells) << ", origin " << exact_text(xorigin) << ","
         << exact_text(yorigin) << "\n";
  for (const ModelFile& f : files) screen << " - file " << (out_dir / f.name).string() << " written ok.\n";
  screen << "\n Run the mesher next:\n\n   cd " << o.out_dir << " && tesseramill " << files.front().name << "\n";
}

}  // namespace tesseramill
