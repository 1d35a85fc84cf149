#include "targets.h"

#include <algorithm>
#include <filesystem>
#include <iostream>
#include <limits>
#include <string>
#include <vector>

#include "common/platform.h"
#include "disc_room.h"
#include "model_family.h"
#include "model_runs.h"
#include "target_table.h"

namespace fs = std::filesystem;

namespace tesseramill_bench {

namespace {

struct Model {
  std::string name;
  ModelRecipe recipe;
  // What the rounds measured.
  std::vector<double> inter_per_cell;  // microseconds of interior emplacement per cell
  std::vector<double> wall;
  std::vector<double> system_share;    // system time over all processor time
  std::vector<double> other_wall;
  std::vector<double> wall_ratio;      // this build over the other, round by round
  // Whether the model runs a second time in the folder of its first run,
  // over the files that run wrote, and what that run measured.
  bool again = false;
  std::vector<double> again_wall;
  std::vector<double> again_system_share;
  long cells = 0;
  long peak_kib = 0;
  bool ok = true;
  bool same = true;
};

Model model(const std::string& name, ModelRecipe recipe, int max_lloyd, bool again = false) {
  Model m;
  m.name = name;
  m.recipe = recipe;
  m.recipe.max_lloyd = max_lloyd;
  m.again = again;
  return m;
}

// The family's models of about the cells of each GIS-like one, for the
// interior's cost per cell; their Lloyd passes play no part, so they make
// three.
//
// The million cells with 3 passes also run again in their folder.  A run in
// a fresh folder writes its 2.9 GB of files into file-cache pages the
// system has not used for a while, and on a virtual machine whose balloon
// hands free pages back to the host (VIRTIO_BALLOON_F_REPORTING) each such
// page is the host's to find and clear again at its first touch: some 4 s
// of system time on this machine, in the copying of the files' bytes.  Run
// again, the files replace those of the first run and the pages just freed
// are used at once; the second run shows what the program itself costs.
std::vector<Model> target_models(bool with_1e7) {
  std::vector<Model> models = {
      model("GIS-like 500 vertices", gis_model(500), 3),   model("family 3e4", family_model(3e4), 3),
      model("GIS-like 2000 vertices", gis_model(2000), 3), model("family 1e5", family_model(1e5), 3),
      model("GIS-like 8000 vertices", gis_model(8000), 3), model("family 3e5", family_model(3e5), 3),
      model("family 1e6, 3 passes", family_model(1e6), 3, true), model("family 1e6, 30 passes", family_model(1e6), -1),
  };
  if (with_1e7) models.push_back(model("family 1e7, 3 passes", family_model(1e7), 3));
  return models;
}

const Model* find(const std::vector<Model>& models, const std::string& name) {
  for (const Model& m : models) {
    if (m.name == name) return &m;
  }
  return nullptr;
}

// A model's median, or NaN when it is not in the run or a run of it failed.
double measured(const std::vector<Model>& models, const std::string& name, std::vector<double> Model::*values) {
  const Model* m = find(models, name);
  return m != nullptr && m->ok ? median(m->*values) : std::numeric_limits<double>::quiet_NaN();
}

// The median over the rounds of the GIS-like model's interior cost per cell
// over the family model's of the same round.
double per_cell_ratio(const std::vector<Model>& models, const std::string& gis, const std::string& family) {
  const Model* g = find(models, gis);
  const Model* f = find(models, family);
  std::vector<double> ratios;
  if (g == nullptr || f == nullptr || !g->ok || !f->ok) return std::numeric_limits<double>::quiet_NaN();
  for (std::size_t r = 0; r < g->inter_per_cell.size() && r < f->inter_per_cell.size(); ++r) {
    ratios.push_back(g->inter_per_cell[r] / f->inter_per_cell[r]);
  }
  return median(ratios);
}

double peak_bytes_per_cell(const std::vector<Model>& models, const std::string& name) {
  const Model* m = find(models, name);
  if (m == nullptr || !m->ok || m->cells <= 0) return std::numeric_limits<double>::quiet_NaN();
  return static_cast<double>(m->peak_kib) * 1024.0 / static_cast<double>(m->cells);
}

void print_models(const std::vector<Model>& models, bool with_other) {
  std::cout << pad("model", 24) << pad("cells", 10) << pad("inter us", 10) << pad("wall s", 9) << pad("sys %", 7)
            << pad("B/cell", 8);
  if (with_other) std::cout << pad("other s", 9) << pad("ratio", 7) << pad("same", 6);
  std::cout << "\n";
  for (const Model& m : models) {
    std::cout << pad(m.name, 24) << pad(std::to_string(m.cells), 10);
    if (!m.ok) {
      std::cout << "  (a run did not finish)\n";
      continue;
    }
    std::cout << pad(fixed(median(m.inter_per_cell), 2), 10) << pad(fixed(median(m.wall), 2), 9)
              << pad(fixed_or_dash(100.0 * median(m.system_share), 1), 7)
              << pad(std::to_string(static_cast<long>(peak_bytes_per_cell(models, m.name))), 8);
    if (with_other) {
      std::cout << pad(fixed(median(m.other_wall), 2), 9) << pad(fixed(median(m.wall_ratio), 3), 7)
                << pad(m.same ? "yes" : "NO", 6);
    }
    std::cout << "\n";
  }
}

// Prints the models' table and the targets'; the scratch folder stays
// when a run failed, with its screen.
int finish(const std::vector<Model>& models, bool with_other, const TargetOptions& options, const fs::path& scratch) {
  std::cout << "\n";
  print_models(models, with_other);

  std::vector<Target> targets = {
      {"GIS-like 500 vertices, interior us per cell / family 3e4's",
       per_cell_ratio(models, "GIS-like 500 vertices", "family 3e4"), 1.5, 2},
      {"GIS-like 2000 vertices, interior us per cell / family 1e5's",
       per_cell_ratio(models, "GIS-like 2000 vertices", "family 1e5"), 1.5, 2},
      {"GIS-like 8000 vertices, interior us per cell / family 3e5's",
       per_cell_ratio(models, "GIS-like 8000 vertices", "family 3e5"), 1.5, 2},
      {"family 1e6, 3 passes, wall s", measured(models, "family 1e6, 3 passes", &Model::wall), 15.0, 2},
      {"family 1e6, 3 passes, system share of processor time",
       measured(models, "family 1e6, 3 passes", &Model::system_share), 0.10, 3},
      {"family 1e6, 3 passes, run again in its folder, wall s",
       measured(models, "family 1e6, 3 passes", &Model::again_wall), 15.0, 2},
      {"family 1e6, 3 passes, run again in its folder, system share",
       measured(models, "family 1e6, 3 passes", &Model::again_system_share), 0.10, 3},
      {"family 1e6, 30 passes, wall s", measured(models, "family 1e6, 30 passes", &Model::wall), 40.0, 2},
      {"family 1e6, 30 passes, system share of processor time",
       measured(models, "family 1e6, 30 passes", &Model::system_share), 0.10, 3},
  };
  if (with_other) {
    // The limits of 15 and 40 s were set on this machine when c78f890, the
    // build before the work on them, took 31.7 and 82.5 s.  The shared
    // machine's speed has moved by a third and more since, from day to day
    // and within a run (c78f890 took 37.4 to 52.0 s on the million cells
    // with 3 passes), so the same targets are also read against the other
    // build, which means them when it is c78f890.
    targets.push_back(wall_ratio_target("family 1e6, 3 passes, wall / the other build's (15 s of 31.7)",
                                        measured(models, "family 1e6, 3 passes", &Model::wall_ratio), 15.0, 31.7));
    targets.push_back(wall_ratio_target("family 1e6, 30 passes, wall / the other build's (40 s of 82.5)",
                                        measured(models, "family 1e6, 30 passes", &Model::wall_ratio), 40.0, 82.5));
  }
  if (options.with_1e7) {
    targets.push_back(
        {"family 1e7, 3 passes, wall s", measured(models, "family 1e7, 3 passes", &Model::wall), 240.0, 1});
    targets.push_back(
        {"family 1e7, 3 passes, peak bytes per cell", peak_bytes_per_cell(models, "family 1e7, 3 passes"), 600.0, 0});
  }
  std::cout << "\n" << target_table(targets);
  std::cout << "\nDTRIS2 against CGAL on the same points: make bench-triangulation.\n";
  bool all_ok = true;
  for (const Model& m : models) all_ok = all_ok && m.ok;
  if (all_ok) fs::remove_all(scratch);
  return all_ok ? 0 : 1;
}

// Runs this build on model m in folder `mine` for one round, and keeps what
// the run (and the run again in its folder, where asked) measured; false
// when a run did not finish, the model then marked so.
bool time_this_build(Model& m, const fs::path& mine) {
  write_model(m.recipe, mine);
  const Timing t = time_library(mine, false);
  std::cout << "  " << m.name << ": " << fixed(t.wall, 2) << " s" << std::flush;
  if (!t.ok || t.cells <= 0) {
    std::cout << ", did not finish: see " << (mine / "screen.txt").string() << "\n";
    m.ok = false;
    return false;
  }
  m.cells = t.cells;
  m.peak_kib = std::max(m.peak_kib, t.peak_kib);
  m.inter_per_cell.push_back(t.seconds(tesseramill::Phase::kPopulateInterior) * 1e6 / static_cast<double>(t.cells));
  m.wall.push_back(t.wall);
  const double processor = t.user + t.system;
  if (processor > 0.0) m.system_share.push_back(t.system / processor);
  if (m.again) {
    const Timing a = time_library(mine, false);
    std::cout << ", again in its folder " << fixed(a.wall, 2) << " s" << std::flush;
    if (!a.ok || a.cells != t.cells) {
      std::cout << ", did not finish as the first run: see " << (mine / "screen.txt").string() << "\n";
      m.ok = false;
      return false;
    }
    m.again_wall.push_back(a.wall);
    const double again_processor = a.user + a.system;
    if (again_processor > 0.0) m.again_system_share.push_back(a.system / again_processor);
  }
  std::cout << "\n";
  return true;
}

// Runs the other build on model m in folder `theirs`, after this build's
// run of the same round, and keeps its time, its ratio to this build's and,
// where asked, whether the two wrote the same files; false when it did not
// finish, the model then marked so.
bool time_other_build(Model& m, const std::string& binary, const fs::path& mine, const fs::path& theirs,
                      bool compare) {
  write_model(m.recipe, theirs);
  const Timing o = time_binary(binary, theirs);
  std::cout << "  " << m.name << ", other: " << fixed(o.wall, 2) << " s" << std::flush;
  if (!o.ok) {
    std::cout << ", did not finish: see " << (theirs / "screen.txt").string() << "\n";
    m.ok = false;
    return false;
  }
  m.other_wall.push_back(o.wall);
  m.wall_ratio.push_back(m.wall.back() / o.wall);
  if (compare) m.same = same_files(mine, theirs);
  std::cout << "\n";
  return true;
}

// The models that run back to back in a round: each GIS-like model with the
// family's model of about its cells, so that the ratio of their interior
// costs compares runs a few seconds apart, under the same load of the
// shared machine; the other build's runs of the two follow.  With the other
// build's runs between them, the ratio on the divide of 8,000 vertices read
// 1.24 to 1.68 over thirteen runs of the targets; nine pairs of one build
// run back to back read 1.51 to 1.68, with a median of 1.56.
std::vector<std::vector<std::size_t>> run_groups(const std::vector<Model>& models) {
  std::vector<std::vector<std::size_t>> groups;
  for (std::size_t i = 0; i < models.size(); ++i) {
    const bool pair = i + 1 < models.size() && models[i].name.rfind("GIS-like", 0) == 0 &&
                      models[i + 1].name.rfind("family", 0) == 0;
    if (pair) {
      groups.push_back({i, i + 1});
      ++i;
    } else {
      groups.push_back({i});
    }
  }
  return groups;
}

}  // namespace

int run_targets(const TargetOptions& options) {
  std::vector<Model> models = target_models(options.with_1e7);
  const bool with_other = !options.other_binary.empty();
  const fs::path scratch = tesseramill::fresh_temporary_folder("tesseramill_targets_");
  std::cout << "The speed targets, "
            << (options.rounds == 1 ? std::string("from one round")
                                    : "medians of " + std::to_string(options.rounds) + " rounds")
            << "; within a round each GIS-like model and the family's model of its size run back to back"
            << (with_other ? ", this build first, then the other" : "") << ".\n\n";
  // The largest model's folders, both builds' at once, must fit: the family
  // gives up to a tenth more cells than its size.
  const std::string short_of =
      room_shortfall_at(scratch.parent_path(), options.with_1e7 ? 1.1e7 : 1.1e6, with_other ? 2 : 1);
  if (!short_of.empty()) {
    std::cout << "Not run: the largest model " << short_of << ".\n";
    fs::remove_all(scratch);
    return 1;
  }
  const std::vector<std::vector<std::size_t>> groups = run_groups(models);
  for (int round = 1; round <= options.rounds; ++round) {
    std::cout << "round " << round << "\n";
    for (const std::vector<std::size_t>& group : groups) {
      // Each run has a fresh folder of its own, removed once it is measured
      // (and, for the first round, compared), so that the scratch space
      // holds at most the two builds' files of one group: ten million cells,
      // which run alone, write some 30 GB a run.
      auto folder = [&](const char* build, std::size_t i) { return scratch / (build + std::to_string(i)); };
      for (std::size_t i : group) {
        fs::remove_all(folder("this", i));
        fs::remove_all(folder("other", i));
        if (!time_this_build(models[i], folder("this", i))) return finish(models, with_other, options, scratch);
      }
      if (with_other) {
        for (std::size_t i : group) {
          if (!time_other_build(models[i], options.other_binary, folder("this", i), folder("other", i), round == 1)) {
            return finish(models, with_other, options, scratch);
          }
        }
      }
      for (std::size_t i : group) {
        fs::remove_all(folder("this", i));
        fs::remove_all(folder("other", i));
      }
    }
  }
  return finish(models, with_other, options, scratch);
}

}  // namespace tesseramill_bench
