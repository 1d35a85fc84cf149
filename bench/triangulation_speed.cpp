#include "triangulation_speed.h"

#include <algorithm>
#include <array>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iostream>
#include <sstream>
#include <vector>

#include "common/failure.h"
#include "common/platform.h"
#include "common/run_state.h"
#include "model_family.h"
#include "run/phases.h"
#include "run/program.h"
#include "triangulation/dtris2.h"

namespace fs = std::filesystem;

namespace tesseramill_bench {

namespace {

// The mesh points of the family model of `size` cells after its last Lloyd
// pass (MAX_LLOYD 3), in the program's shifted coordinates: the points the
// next pass would hand to DTRIS2.  Empty when the run failed.
std::vector<double> family_mesh_points(double size) {
  const fs::path folder = tesseramill::fresh_temporary_folder("tesseramill_bench_");
  ModelRecipe recipe = family_model(size);
  recipe.max_lloyd = 3;
  const std::string control = write_model(recipe, folder);
  const fs::path here = fs::current_path();
  fs::current_path(folder);
  std::vector<double> points;
  {
    tesseramill::RunState state;
    std::ostringstream screen;
    state.screen = &screen;
    tesseramill::initialise_run_state(state);
    state.control_file_name = control;
    try {
      for (int k = 0; k <= static_cast<int>(tesseramill::Phase::kLloydIterations); ++k) {
        tesseramill::run_phase(state, static_cast<tesseramill::Phase>(k));
      }
      points.assign(state.mesh.mesh_points.begin(),
                    state.mesh.mesh_points.begin() + 2 * static_cast<std::ptrdiff_t>(state.mesh.mesh_point_count));
    } catch (const tesseramill::RunFailure&) {
      std::cerr << screen.str() << state.message_buffer << "\n";
    }
  }
  fs::current_path(here);
  fs::remove_all(folder);
  return points;
}

// x and y of each point as doubles in the machine's byte order.
std::vector<double> read_points(const fs::path& file) {
  std::ifstream in(file, std::ios::binary);
  std::vector<double> points;
  double value = 0.0;
  while (in.read(reinterpret_cast<char*>(&value), sizeof value)) points.push_back(value);
  return points;
}

void write_points(const fs::path& file, const std::vector<double>& points) {
  std::ofstream out(file, std::ios::binary);
  out.write(reinterpret_cast<const char*>(points.data()), static_cast<std::streamsize>(points.size() * sizeof(double)));
}

std::string seconds_text(double value) {
  char text[32];
  std::snprintf(text, sizeof text, "%.3f", value);
  return text;
}

// Runs the CGAL yardstick when it was built beside this program; gives its
// median in seconds, or a negative value.
double time_cgal(const fs::path& points_file) {
  std::error_code error;
  const fs::path self = fs::canonical(tesseramill::own_program_path(), error);
  const fs::path cgal = self.parent_path() / "tesseramill-cgal-bench";
  if (error || !fs::exists(cgal)) {
    std::cout << "CGAL: not built (install libcgal-dev and configure again)\n";
    return -1.0;
  }
  const tesseramill::ChildRun run =
      tesseramill::run_child(fs::current_path(), cgal.string(), {fs::absolute(points_file).string()});
  std::cout << run.output;
  const std::size_t at = run.output.rfind(" s (median");
  const std::size_t from = run.output.rfind(' ', at == std::string::npos ? 0 : at - 1);
  if (run.status != 0 || at == std::string::npos || from == std::string::npos) return -1.0;
  return std::atof(run.output.substr(from + 1, at - from - 1).c_str());
}

}  // namespace

int time_triangulation(double size, const std::string& points_file) {
  const fs::path scratch = tesseramill::fresh_temporary_folder("tesseramill_bench_");
  const fs::path file = points_file.empty() ? scratch / "points.bin" : fs::path(points_file);
  std::vector<double> points;
  if (!points_file.empty() && fs::exists(file)) {
    points = read_points(file);
  } else {
    points = family_mesh_points(size);
    write_points(file, points);
  }
  const std::int32_t n = static_cast<std::int32_t>(points.size() / 2);
  if (n < 3) {
    std::cerr << "no points for the model of size " << size << "\n";
    fs::remove_all(scratch);
    return 1;
  }
  const std::size_t room = 6 * static_cast<std::size_t>(n);
  std::vector<std::int32_t> index(static_cast<std::size_t>(n)), stack(static_cast<std::size_t>(n));
  std::vector<std::int32_t> vertex(room), neighbour(room), vertex_ref(room), neighbour_ref(room);
  std::int32_t count = 0, count_ref = 0;
  tesseramill::Dtris2Workspace work;
  std::ostringstream screen;
  auto median_of_three = [&](auto call) {
    std::array<double, 3> seconds{};
    for (double& t : seconds) {
      for (std::int32_t k = 0; k < n; ++k) index[static_cast<std::size_t>(k)] = k + 1;
      const auto start = std::chrono::steady_clock::now();
      call();
      t = std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
    }
    std::sort(seconds.begin(), seconds.end());
    return seconds[1];
  };
  const double fast = median_of_three([&] {
    // Each call sorts from the points' own order, as the first Lloyd pass
    // does: from the order the call before left, these same points would
    // come sorted already.
    work.keys.clear();
    tesseramill::DTRIS2(n, points.data(), index.data(), count, vertex.data(), neighbour.data(), stack.data(), screen,
                        work);
  });
  const double reference = median_of_three([&] {
    tesseramill::DTRIS2_reference(n, points.data(), index.data(), count_ref, vertex_ref.data(), neighbour_ref.data(),
                                  stack.data(), screen);
  });
  const bool same = count == count_ref && vertex == vertex_ref && neighbour == neighbour_ref;
  std::cout << "DTRIS2 of " << n << " mesh points: " << count << " triangles, " << seconds_text(fast)
            << " s; reference " << seconds_text(reference) << " s (median of 3 each); same tables: "
            << (same ? "yes" : "NO") << "\n";
  const double cgal = time_cgal(file);
  if (cgal > 0.0) std::cout << "DTRIS2 / CGAL: " << seconds_text(fast / cgal) << "\n";
  fs::remove_all(scratch);
  return same ? 0 : 1;
}

}  // namespace tesseramill_bench
