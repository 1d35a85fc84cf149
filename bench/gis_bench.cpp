// tesseramill-gis-bench: times the GIS program at the sizes its issue names.
//
//   tesseramill-gis-bench                 both measurements below
//   tesseramill-gis-bench --import N      import of GeoJSON layers of N vertices
//                                         in all (default 100000)
//   tesseramill-gis-bench --export CELLS  the mesher on the family's model of
//                                         about CELLS cells (1e3 .. 1e6, one
//                                         Lloyd pass), then the export timed
//   --repeat N                            runs of each timed program (default
//                                         3); the median is given
//   --folder DIR                          work in DIR and keep what is there
//                                         (layers, model, grid) afterwards
//
// The programs run as child processes from the folder of this binary, in a
// scratch folder that is removed at the end; each line gives the wall
// seconds and the peak memory of the timed program alone.
#include <unistd.h>

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iostream>
#include <sstream>
#include <string>
#include <vector>

#include "child_process.h"
#include "common/text_tools.h"
#include "model_family.h"

namespace fs = std::filesystem;
using tesseramill_bench::ChildRun;
using tesseramill_bench::run_child;

namespace {

fs::path program(const char* name) { return fs::read_symlink("/proc/self/exe").parent_path() / name; }

std::string geojson(const std::string& name, const std::string& features) {
  return "{\"type\":\"FeatureCollection\",\"name\":\"" + name +
         "\",\"crs\":{\"type\":\"name\",\"properties\":{\"name\":\"urn:ogc:def:crs:EPSG::32633\"}},\"features\":[" +
         features + "]}\n";
}

std::string feature(const std::string& type, const std::string& coordinates, double spacing) {
  std::ostringstream s;
  s << "{\"type\":\"Feature\",\"properties\":{\"spacing\":" << spacing << "},\"geometry\":{\"type\":\"" << type
    << "\",\"coordinates\":" << coordinates << "}}";
  return s.str();
}

// A ring of n vertices round (cx, cy) of mean radius r, digitised with a
// wiggle of `noise` metres, closed; as GeoJSON coordinates.
std::string wiggly_ring(tesseramill_bench::Random& random, double cx, double cy, double r, int n, double noise) {
  std::ostringstream s;
  s.precision(12);
  s << "[[";
  double first_x = 0.0;
  double first_y = 0.0;
  for (int k = 0; k <= n; ++k) {
    const double t = 2.0 * M_PI * (k % n) / n;
    const double rr = r * (1.0 + 0.1 * std::sin(5.0 * t)) + (k == n ? 0.0 : random.uniform(-noise, noise));
    double x = cx + rr * std::cos(t);
    double y = cy + rr * std::sin(t);
    if (k == 0) {
      first_x = x;
      first_y = y;
    }
    if (k == n) {
      x = first_x;
      y = first_y;
    }
    s << (k > 0 ? "," : "") << "[" << x << "," << y << "]";
  }
  s << "]]";
  return s.str();
}

std::string wiggly_line(tesseramill_bench::Random& random, double x0, double y0, double x1, double y1, int n,
                        double noise) {
  std::ostringstream s;
  s.precision(12);
  s << "[";
  for (int k = 0; k < n; ++k) {
    const double t = static_cast<double>(k) / (n - 1);
    const double wiggle = (k == 0 || k == n - 1) ? 0.0 : random.uniform(-noise, noise);
    s << (k > 0 ? "," : "") << "[" << x0 + t * (x1 - x0) + wiggle << "," << y0 + t * (y1 - y0) + 500.0 * std::sin(6.0 * t) << "]";
  }
  s << "]";
  return s.str();
}

void print(const std::string& what, const ChildRun& run) {
  std::cout << what << ": " << (run.ok ? "" : "FAILED, ") << run.wall << " s, peak " << run.peak_kib / 1024
            << " MiB\n";
}

// Runs a program `repeat` times and gives the run of median wall time (the
// largest peak of them all); each run is printed.
int repeat = 3;

ChildRun median_run(const std::string& what, const std::vector<std::string>& args, const fs::path& folder) {
  std::vector<ChildRun> runs;
  long peak = 0;
  for (int k = 0; k < repeat; ++k) {
    runs.push_back(run_child(args, folder));
    print(what + " (run " + std::to_string(k + 1) + ")", runs.back());
    peak = std::max(peak, runs.back().peak_kib);
    if (!runs.back().ok) return runs.back();
  }
  std::sort(runs.begin(), runs.end(), [](const ChildRun& a, const ChildRun& b) { return a.wall < b.wall; });
  ChildRun median = runs[runs.size() / 2];
  median.peak_kib = peak;
  print(what + ", median of " + std::to_string(repeat), median);
  return median;
}

void write_text(const fs::path& path, const std::string& text) { std::ofstream(path) << text; }

bool time_import(const fs::path& work, int vertices) {
  tesseramill_bench::Random random(19);
  const double cx = 500000.0;
  const double cy = 5100000.0;
  // Shares of the vertices: boundary 60 %, lake, two rivers and a zone 10 % each.
  const int boundary = vertices * 6 / 10;
  const int tenth = vertices / 10;
  write_text(work / "catchment.geojson",
             geojson("catchment", feature("Polygon", wiggly_ring(random, cx, cy, 20000.0, boundary, 1.0), 200.0)));
  write_text(work / "lakes.geojson",
             geojson("lakes", feature("Polygon", wiggly_ring(random, cx + 8000.0, cy, 2500.0, tenth, 0.5), 100.0)));
  write_text(work / "rivers.geojson",
             geojson("rivers", feature("LineString", wiggly_line(random, cx - 15000.0, cy - 4000.0, cx + 4000.0, cy - 4000.0, tenth, 0.5), 80.0) + "," +
                                   feature("LineString", wiggly_line(random, cx - 12000.0, cy + 6000.0, cx + 3000.0, cy + 6000.0, tenth, 0.5), 80.0)));
  write_text(work / "zones.geojson",
             geojson("zones", feature("Polygon", wiggly_ring(random, cx - 6000.0, cy + 1000.0, 2000.0, tenth, 0.5), 150.0)));
  std::string wells;
  for (int k = 0; k < 10; ++k) {
    std::ostringstream point;
    point.precision(12);
    point << "[" << cx - 9000.0 + 1500.0 * k << "," << cy - 8000.0 << "]";
    wells += (k > 0 ? "," : "") + feature("Point", point.str(), 20.0);
  }
  write_text(work / "wells.geojson", geojson("wells", wells));
  const ChildRun run = median_run(
      "import of " + std::to_string(boundary + 4 * tenth) + " vertices",
      {program("tesseramill-gis").string(), "import", "model", "--boundary", "catchment.geojson", "--holes",
       "lakes.geojson", "--lines", "rivers.geojson", "--points", "wells.geojson", "--zones", "zones.geojson",
       "--max-spacing", "1000", "--force"},
      work);
  std::istringstream lines(run.out);
  for (std::string line; std::getline(lines, line);) {
    if (line.find("vertices read") != std::string::npos) std::cout << line << "\n";
  }
  return run.ok;
}

bool time_export(const fs::path& work, double cells) {
  tesseramill_bench::ModelRecipe recipe = tesseramill_bench::family_model(cells);
  recipe.max_lloyd = 1;
  const fs::path folder = work / "grid";
  fs::create_directories(folder);
  const std::string control = tesseramill_bench::write_model(recipe, folder);
  const ChildRun mesher = run_child({program("tesseramill").string(), control}, folder);
  print("mesher on the family model of about " + std::to_string(static_cast<long>(cells)) + " cells (MAX_LLOYD 1)", mesher);
  if (!mesher.ok) return false;
  const ChildRun run = median_run("export", {program("tesseramill-gis").string(), "export", control}, folder);
  std::istringstream lines(run.out);
  for (std::string line; std::getline(lines, line);) {
    if (line.find(" - layer ") != std::string::npos) std::cout << line << "\n";
  }
  return run.ok;
}

}  // namespace

int main(int argc, char** argv) {
  const std::vector<std::string> args(argv + 1, argv + argc);
  int vertices = 100000;
  double cells = 1e6;
  std::string folder;
  bool do_import = args.empty();
  bool do_export = args.empty();
  for (std::size_t k = 0; k + 1 < args.size(); k += 2) {
    if (args[k] == "--import") {
      // A word that is no whole number in the range of an int is refused below.
      if (tesseramill::read_integer(args[k + 1], vertices) != 0) vertices = 0;
      do_import = true;
    } else if (args[k] == "--folder") {
      folder = args[k + 1];
    } else if (args[k] == "--repeat") {
      if (tesseramill::read_integer(args[k + 1], repeat) != 0) repeat = 0;
    } else if (args[k] == "--export") {
      cells = std::strtod(args[k + 1].c_str(), nullptr);
      do_export = true;
    }
  }
  if ((!do_import && !do_export) || args.size() % 2 != 0 || vertices < 100 || !(cells >= 1e3 && cells < INFINITY) ||
      repeat < 1) {
    std::cerr << "usage: tesseramill-gis-bench [--import VERTICES] [--export CELLS] [--repeat N] [--folder DIR]\n";
    return 2;
  }
  const fs::path work = !folder.empty() ? fs::absolute(folder)
                                        : fs::temp_directory_path() / ("tesseramill-gis-bench-" + std::to_string(::getpid()));
  fs::create_directories(work);
  bool ok = true;
  if (do_import) ok = time_import(work, vertices) && ok;
  if (do_export) ok = time_export(work, cells) && ok;
  if (folder.empty()) fs::remove_all(work);
  return ok ? 0 : 1;
}
