// tesseramill-bench: times the program on a family of realistic models and
// prints, for each, the cells, the wall seconds of each phase and in all,
// the peak memory per cell and, for the smaller models, how much slower the
// reference path is on the same model (and whether it wrote the same bytes).
//
//   tesseramill-bench                 the whole table
//   tesseramill-bench --sizes 1e3,1e4 only these family sizes (1e7, which is
//                                     not in the whole table, runs with 3
//                                     Lloyd passes only), and the outline
//                                     model and the GIS-like sizes (gis500,
//                                     gis2000, gis8000, any gisN) only when
//                                     the list names them
//   tesseramill-bench --binary PATH   also time another build of the program
//                                     on each model (whole run only)
//   tesseramill-bench --targets [--rounds N] [--binary PATH] [--with-1e7]
//                                     the speed targets, each GIS-like model
//                                     back to back with the family's of its
//                                     size, and each figure the median of N
//                                     rounds (3 unless told; targets.h)
//   tesseramill-bench --write SIZE|outline|gisN DIR [MAX_LLOYD]
//                                     write one model of the family and stop
//   tesseramill-bench --triangulation SIZE [--points FILE]
//                                     time DTRIS2 on the mesh points of the
//                                     family's model of that size, fast,
//                                     reference and CGAL (triangulation_speed.h)
//   tesseramill-bench --maths         the cost per call of each correctly
//                                     rounded function and the system's
//
// Each run is a child process of its own, so that its peak memory is its own;
// it runs this very binary again (through /proc/self/exe on Linux, which
// still names it when a rebuild has replaced the file on disk meanwhile).
#include <algorithm>
#include <array>
#include <chrono>
#include <cmath>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <iostream>
#include <sstream>
#include <string>
#include <string_view>
#include <vector>

#include "common/platform.h"
#include "common/text_tools.h"
#include "disc_room.h"
#include "maths_speed.h"
#include "model_family.h"
#include "model_runs.h"
#include "run/program.h"
#include "targets.h"
#include "triangulation_speed.h"

namespace fs = std::filesystem;
using tesseramill_bench::ModelRecipe;
using tesseramill_bench::Timing;
using tesseramill_bench::fixed;
using tesseramill_bench::pad;
using tesseramill_bench::room_shortfall_at;
using tesseramill_bench::same_files;
using tesseramill_bench::time_binary;
using tesseramill_bench::time_library;

namespace {

using tesseramill::Phase;

// The columns read, bound, inter, lloyd, write and total of a run.
std::string phase_columns(const Timing& t) {
  const double read = t.seconds(Phase::kReadControlFile) + t.seconds(Phase::kReadBoundaryFiles) +
                      t.seconds(Phase::kCheckBoundaries);
  const double write = t.seconds(Phase::kWriteFinalFiles) + t.seconds(Phase::kWriteMf6Files);
  return pad(fixed(read, 2), 7) + pad(fixed(t.seconds(Phase::kPopulateBoundaries), 2), 7) +
         pad(fixed(t.seconds(Phase::kPopulateInterior), 2), 8) + pad(fixed(t.seconds(Phase::kLloydIterations), 2), 8) +
         pad(fixed(write, 2), 7) + pad(fixed(t.total_seconds(), 2), 8);
}

struct Row {
  std::string name;
  ModelRecipe recipe;
  bool with_reference = false;
  double cells = 0.0;  // about how many the run gives, for the room its files need
};

ModelRecipe outline_model() {
  // About 30,000 cells inside an outline of 2,000 vertices with wiggles of
  // many wavelengths, as a surveyed catchment divide has them.  Its short
  // segments make a wide band of small cells along the divide, which a
  // growth rate of 1.3 keeps to this size.
  ModelRecipe recipe = tesseramill_bench::family_model(3e4);
  recipe.outline_vertices = 2000;
  recipe.outline_roughness = 0.06;
  recipe.scale = 3.5;
  recipe.growth = 1.3;
  recipe.max_cells = 200000;
  return recipe;
}

// A size as the table names it: "1e6", "3e4", "1e12".
std::string size_label(double size) {
  char text[32];
  std::snprintf(text, sizeof text, "%.0e", size);
  const std::string printed = text;
  const std::size_t e = printed.find('e');
  if (e == std::string::npos) return printed;
  std::string exponent = printed.substr(e + 1);
  std::string sign;
  if (!exponent.empty() && (exponent[0] == '+' || exponent[0] == '-')) {
    if (exponent[0] == '-') sign = "-";
    exponent.erase(0, 1);
  }
  while (exponent.size() > 1 && exponent[0] == '0') exponent.erase(0, 1);
  return printed.substr(0, e) + "e" + sign + exponent;
}

std::vector<Row> family(const std::vector<double>& sizes, bool with_outline) {
  std::vector<Row> rows;
  for (double size : sizes) {
    ModelRecipe recipe = tesseramill_bench::family_model(size);
    const std::string label = "family " + size_label(size);
    // The family gives up to a tenth more cells than its size (1,076,876
    // for 1e6).
    const double cells = size * 1.1;
    if (size >= 1e6) {
      recipe.max_lloyd = 3;
      rows.push_back({label + ", 3 passes", recipe, false, cells});
      // Ten million cells and more run the three passes only: the default
      // thirty would take a quarter of an hour and write hundreds of GB.
      if (size >= 1e7) continue;
      recipe.max_lloyd = -1;
    }
    rows.push_back({label, recipe, size <= 3e4, cells});
  }
  // The outline's model gives 31,904 cells.
  if (with_outline) rows.push_back({"outline of 2000 vertices", outline_model(), false, 35000.0});
  return rows;
}

void print_head(bool with_binary) {
  std::cout << pad("model", 26) << pad("cells", 9) << pad("read", 7) << pad("bound", 7) << pad("inter", 8)
            << pad("lloyd", 8) << pad("write", 7) << pad("total", 8) << pad("B/cell", 8)
            << pad("ref x", 8) << pad("same", 6);
  if (with_binary) std::cout << pad("other s", 9) << pad("B/cell", 8);
  std::cout << "\n";
}

// The GIS-like family (tesseramill_bench::gis_model): one row per size of
// the divide, with the same phases as the table above and the cost per cell
// of interior emplacement and of the whole run, in microseconds.
// Gives whether every run finished.
bool run_gis_family(const std::vector<int>& sizes, const fs::path& scratch) {
  if (sizes.empty()) return true;
  bool all_ran = true;
  std::cout << "\nGIS-like family: a divide of N vertices with 150 m asked at each, a river of N/2 vertices\n"
               "with 60 m, cap 400 m, growth 1.25, MAX_LLOYD 3.  us/cell: interior emplacement and whole run.\n\n"
            << pad("model", 26) << pad("cells", 9) << pad("read", 7) << pad("bound", 7) << pad("inter", 8)
            << pad("lloyd", 8) << pad("write", 7) << pad("total", 8) << pad("B/cell", 8) << pad("inter us", 10)
            << pad("total us", 10) << "\n";
  for (int n : sizes) {
    const fs::path folder = scratch / "gis";
    fs::remove_all(scratch);
    // The divide of N vertices gives about 40 N cells (317,622 for 8,000).
    const std::string short_of = room_shortfall_at(scratch.parent_path(), 40.0 * n, 1);
    if (!short_of.empty()) {
      std::cout << pad("gis " + std::to_string(n) + " vertices", 26) << "  (not run: " << short_of << ")" << std::endl;
      all_ran = false;
      continue;
    }
    tesseramill_bench::write_model(tesseramill_bench::gis_model(n), folder);
    const Timing t = time_library(folder, false);
    const double total = t.total_seconds();
    const double cells = t.cells > 0 ? static_cast<double>(t.cells) : 1.0;
    std::cout << pad("gis " + std::to_string(n) + " vertices", 26) << pad(std::to_string(t.cells), 9)
              << phase_columns(t)
              << pad(t.cells > 0 ? std::to_string(t.peak_kib * 1024 / t.cells) : "-", 8)
              << pad(fixed(t.seconds(Phase::kPopulateInterior) * 1e6 / cells, 1), 10)
              << pad(fixed(total * 1e6 / cells, 1), 10);
    if (!t.ok) std::cout << "  (run did not finish: see " << (folder / "screen.txt").string() << ")";
    std::cout << std::endl;
    if (t.ok) fs::remove_all(scratch);
    all_ran = all_ran && t.ok;
  }
  return all_ran;
}

// A size of the GIS-like family as the command line names it ("gis2000"),
// or 0 for any other word, a count past the range of an int among them.
int gis_size(const std::string& word) {
  std::int32_t vertices = 0;
  if (word.rfind("gis", 0) != 0 || tesseramill::read_integer(std::string_view(word).substr(3), vertices) != 0) return 0;
  return vertices > 0 ? vertices : 0;
}

// A size of the scale family as the command line names it, a count of
// cells: a finite number above 0.  False for any other word (strtod gives
// 0 for a word that is no number and an infinity for one past the doubles).
bool family_size(const std::string& word, double& size) {
  size = std::strtod(word.c_str(), nullptr);
  return size > 0.0 && std::isfinite(size);
}

// A whole number from `least` to the largest int, as a word of the command
// line gives it; false for any other word.
bool whole_number_from(const std::string& word, std::int32_t least, std::int32_t& value) {
  std::int32_t read = 0;
  if (tesseramill::read_integer(word, read) != 0 || read < least) return false;
  value = read;
  return true;
}

int usage() {
  std::cerr << "usage: tesseramill-bench [--sizes 1e3,1e4,...,outline] [--binary PATH]"
               " | --targets [--rounds N] [--binary PATH] [--with-1e7]"
               " | --write SIZE|outline DIR [MAX_LLOYD] | --triangulation SIZE | --maths\n";
  return 2;
}

// Runs what the command line asks for and gives the exit status.
int run(const std::vector<std::string>& args) {
  if (!args.empty() && args[0] == "--run-one") {
    // A run timed here runs as the program runs.
    tesseramill::keep_freed_memory();
    return tesseramill_bench::run_one(args.size() > 1 && args[1] == "--reference");
  }
  if (!args.empty() && args[0] == "--write" && args.size() >= 3) {
    const int vertices = gis_size(args[1]);
    double size = 0.0;
    if (args[1] != "outline" && vertices == 0 && !family_size(args[1], size)) return usage();
    ModelRecipe recipe = args[1] == "outline" ? outline_model()
                         : vertices > 0       ? tesseramill_bench::gis_model(vertices)
                                              : tesseramill_bench::family_model(size);
    if (args.size() > 3 && !whole_number_from(args[3], 0, recipe.max_lloyd)) return usage();
    tesseramill_bench::write_model(recipe, args[2]);
    return 0;
  }
  if (!args.empty() && args[0] == "--maths" && args.size() == 1) return tesseramill_bench::time_maths();
  if (!args.empty() && args[0] == "--triangulation" && (args.size() == 2 || (args.size() == 4 && args[2] == "--points"))) {
    double size = 0.0;
    if (!family_size(args[1], size)) return usage();
    return tesseramill_bench::time_triangulation(size, args.size() == 4 ? args[3] : "");
  }
  if (!args.empty() && args[0] == "--targets") {
    tesseramill_bench::TargetOptions options;
    for (std::size_t k = 1; k < args.size(); ++k) {
      if (args[k] == "--rounds" && k + 1 < args.size() && whole_number_from(args[k + 1], 1, options.rounds)) {
        ++k;
      } else if (args[k] == "--binary" && k + 1 < args.size()) {
        options.other_binary = args[++k];
      } else if (args[k] == "--with-1e7") {
        options.with_1e7 = true;
      } else {
        return usage();
      }
    }
    return tesseramill_bench::run_targets(options);
  }
  std::vector<double> sizes = {1e3, 1e4, 3e4, 1e5, 1e6};
  bool with_outline = true;
  std::vector<int> gis_sizes = {500, 2000, 8000};
  std::string other_binary;
  for (std::size_t k = 0; k < args.size(); ++k) {
    if (args[k] == "--sizes" && k + 1 < args.size()) {
      sizes.clear();
      std::stringstream list(args[++k]);
      std::string item;
      with_outline = false;
      gis_sizes.clear();
      while (std::getline(list, item, ',')) {
        if (item == "outline") {
          with_outline = true;
        } else if (gis_size(item) > 0) {
          gis_sizes.push_back(gis_size(item));
        } else {
          double size = 0.0;
          if (!family_size(item, size)) return usage();
          sizes.push_back(size);
        }
      }
    } else if (args[k] == "--binary" && k + 1 < args.size()) {
      other_binary = args[++k];
    } else {
      return usage();
    }
  }

  const fs::path scratch = tesseramill::fresh_temporary_folder("tesseramill_bench_");
  bool all_ran = true;
  std::cout << "Wall seconds per phase (read: control and BLN files and checks; bound: boundary chains;\n"
               "inter: interior emplacement; lloyd: the Lloyd passes with their map files; write: final\n"
               "and MODFLOW 6 files), peak memory per cell, and the reference path's time as a multiple.\n\n";
  print_head(!other_binary.empty());
  for (const Row& row : family(sizes, with_outline)) {
    const fs::path fast = scratch / "fast";
    const fs::path reference = scratch / "reference";
    fs::remove_all(scratch);
    const int folders = 1 + (row.with_reference ? 1 : 0) + (other_binary.empty() ? 0 : 1);
    const std::string short_of = room_shortfall_at(scratch.parent_path(), row.cells, folders);
    if (!short_of.empty()) {
      std::cout << pad(row.name, 26) << "  (not run: " << short_of << ")" << std::endl;
      all_ran = false;
      continue;
    }
    tesseramill_bench::write_model(row.recipe, fast);
    const Timing t = time_library(fast, false);
    const double total = t.total_seconds();
    std::cout << pad(row.name, 26) << pad(std::to_string(t.cells), 9)
              << phase_columns(t)
              << pad(t.cells > 0 ? std::to_string(t.peak_kib * 1024 / t.cells) : "-", 8);
    if (row.with_reference) {
      tesseramill_bench::write_model(row.recipe, reference);
      const Timing r = time_library(reference, true);
      std::cout << pad(fixed(r.total_seconds() / total, 1), 8) << pad(same_files(fast, reference) ? "yes" : "NO", 6);
    } else {
      std::cout << pad("-", 8) << pad("-", 6);
    }
    if (!other_binary.empty()) {
      const fs::path other = scratch / "other";
      tesseramill_bench::write_model(row.recipe, other);
      const Timing o = time_binary(other_binary, other);
      std::cout << pad(o.ok ? fixed(o.wall, 2) : "failed", 9)
                << pad(o.ok && t.cells > 0 ? std::to_string(o.peak_kib * 1024 / t.cells) : "-", 8);
    }
    if (!t.ok) std::cout << "  (run did not finish: see " << (fast / "screen.txt").string() << ")";
    std::cout << std::endl;
    if (t.ok) fs::remove_all(scratch);
    all_ran = all_ran && t.ok;
  }
  all_ran = run_gis_family(gis_sizes, scratch) && all_ran;
  return all_ran ? 0 : 1;
}

}  // namespace

int main(int argc, char** argv) {
  const std::vector<std::string> args(argv + 1, argv + argc);
  return tesseramill_bench::status_after_output(std::cout, std::cerr, run(args));
}
