// Each point's list of internal triangles, on the fast path (counted and
// listed in one sweep in later passes) and on the reference path (counted,
// then listed), for the model with every kind of input and the model with
// two holes: the same counts, the same extremes and the same columns,
// whether the rows hold every list or must be made anew; and the same
// external marks, made with the centroids or by a sweep of their own.
#include <gtest/gtest.h>

#include <algorithm>
#include <sstream>
#include <string>
#include <vector>

#include "common/platform.h"
#include "run/program.h"
#include "support/model_state.h"
#include "support/scratch.h"
#include "triangulation/triangulate_points.h"

namespace tesseramill_test {
namespace {

using tesseramill::Phase;
using tesseramill::RunState;

struct Model {
  std::string folder;
  std::string control;
};

// The first pass's triangles and lists, then the second pass's
// triangulation, on the reference paths or not.
void through_second_triangulation(RunState& state, std::ostringstream& screen, const ScratchDir& dir,
                                  const Model& model, bool reference) {
  // The points are placed on the fast path either way (they are the same);
  // the triangles are counted and listed on the path asked for.
  ASSERT_TRUE(run_phases_until(state, dir.path(), model.control, Phase::kPopulateInterior, screen));
  state.reference_paths = reference;
  tesseramill::triangulate_points(state);
  tesseramill::build_connected_triangles(state);
  state.lloyd_iteration = 1;
  tesseramill::triangulate_points(state);
}

// The first `count` entries of point p's column.
std::vector<std::int32_t> column_of(const RunState& state, std::int32_t p) {
  const tesseramill::TriangleTable& tt = state.triangles;
  const std::size_t start = static_cast<std::size_t>(p) * static_cast<std::size_t>(tt.row_capacity);
  const std::int32_t count = tt.point_tri_count[static_cast<std::size_t>(p)];
  return {tt.connected_triangles.begin() + static_cast<std::ptrdiff_t>(start),
          tt.connected_triangles.begin() + static_cast<std::ptrdiff_t>(start) + count};
}

// One model on the fast path and on the reference path, each in a scratch
// folder of its own.
struct BothPaths {
  ScratchDir fast_dir;
  ScratchDir reference_dir;
  RunState fast;
  RunState reference;
  std::ostringstream fast_screen;
  std::ostringstream reference_screen;
};

// Runs both paths of `model` through the second pass's triangulation.
void through_second_triangulation(BothPaths& both, const Model& model) {
  copy_folder(source_path(model.folder), both.fast_dir.path());
  copy_folder(source_path(model.folder), both.reference_dir.path());
  through_second_triangulation(both.fast, both.fast_screen, both.fast_dir, model, false);
  through_second_triangulation(both.reference, both.reference_screen, both.reference_dir, model, true);
}

void expect_same_lists(const Model& model, bool rows_too_few) {
  BothPaths both;
  through_second_triangulation(both, model);
  RunState& fast = both.fast;
  RunState& reference = both.reference;
  if (rows_too_few) {
    // As though the rows had been made for two triangles.
    fast.triangles.row_capacity = 2;
    std::vector<std::int32_t>(2 * static_cast<std::size_t>(fast.mesh.mesh_point_count))
        .swap(fast.triangles.connected_triangles);
  }
  tesseramill::build_connected_triangles(fast);
  tesseramill::build_connected_triangles(reference);
  const std::string what = model.folder + (rows_too_few ? ", rows too few" : ", rows enough");
  ASSERT_EQ(fast.mesh.mesh_point_count, reference.mesh.mesh_point_count) << what;
  EXPECT_EQ(fast.triangles.largest_tri_count, reference.triangles.largest_tri_count) << what;
  EXPECT_EQ(fast.triangles.smallest_tri_count, reference.triangles.smallest_tri_count) << what;
  // Rows made anew fit the busiest point and two more.
  if (rows_too_few) {
    EXPECT_EQ(fast.triangles.row_capacity, fast.triangles.largest_tri_count + 2) << what;
  }
  EXPECT_GE(fast.triangles.largest_tri_count, 3) << what;
  for (std::int32_t p = 0; p < fast.mesh.mesh_point_count; ++p) {
    ASSERT_EQ(fast.triangles.point_tri_count[static_cast<std::size_t>(p)],
              reference.triangles.point_tri_count[static_cast<std::size_t>(p)])
        << what << " point " << p + 1;
    ASSERT_EQ(column_of(fast, p), column_of(reference, p)) << what << " point " << p + 1;
  }
}

const Model kModels[] = {{"examples/full", "model.in"}, {"tests/models/two_holes", "m.in"}};

TEST(ConnectedTriangles, ListedWhileCountedAsWhenCountedFirst) {
  for (const Model& model : kModels) expect_same_lists(model, false);
}

// The external marks made as the centroids are worked out (the fast path)
// against those of the sweep after them (the reference path), and the
// count the first pass prints: the same marks, some triangles of each model
// external, and the same line.
TEST(ConnectedTriangles, ExternalMarksMadeWithTheCentroidsAsByTheirOwnSweep) {
  for (const Model& model : kModels) {
    BothPaths both;
    through_second_triangulation(both, model);
    const tesseramill::TriangleTable& f = both.fast.triangles;
    const tesseramill::TriangleTable& r = both.reference.triangles;
    const std::ostringstream& fast_screen = both.fast_screen;
    const std::ostringstream& reference_screen = both.reference_screen;
    ASSERT_EQ(f.triangle_count, r.triangle_count) << model.folder;
    const auto marks_end = static_cast<std::ptrdiff_t>(f.triangle_count);
    EXPECT_TRUE(std::equal(f.itstat.begin(), f.itstat.begin() + marks_end, r.itstat.begin())) << model.folder;
    EXPECT_GT(std::count(f.itstat.begin(), f.itstat.begin() + marks_end, -1), 0) << model.folder;
    EXPECT_TRUE(std::equal(f.tri_centroid.begin(), f.tri_centroid.begin() + 2 * marks_end, r.tri_centroid.begin()))
        << model.folder;
    const std::string external = " of these are external to domain\n";
    const std::size_t at = fast_screen.str().find(external);
    ASSERT_NE(at, std::string::npos) << model.folder;
    const std::size_t line = fast_screen.str().rfind(" - ", at);
    ASSERT_NE(line, std::string::npos) << model.folder;
    EXPECT_EQ(fast_screen.str().substr(line, at - line), reference_screen.str().substr(line, at - line))
        << model.folder;
  }
}

TEST(ConnectedTriangles, RowsMadeAnewWhenTooFewForTheCounts) {
  for (const Model& model : kModels) expect_same_lists(model, true);
}

// Only the first insertion has pages touched beside it, for the lists and
// cells that pass makes after it: at least the cells' corners and codes of
// six triangles a point, 20 bytes each, and less than 400 bytes a point in
// all.  Later passes make no new tables.  Where freed memory is not kept
// (elsewhere than with GNU's C library, and under the sanitizers'
// allocator), none.
TEST(ConnectedTriangles, PagesTouchedBesideTheFirstInsertionAlone) {
  const bool kept = tesseramill::keep_freed_memory();
  for (const Model& model : kModels) {
    ScratchDir dir;
    copy_folder(source_path(model.folder), dir.path());
    RunState state;
    std::ostringstream screen;
    ASSERT_TRUE(run_phases_until(state, dir.path(), model.control, Phase::kPopulateInterior, screen));
    tesseramill::triangulate_points(state);
    const std::size_t n = static_cast<std::size_t>(state.mesh.mesh_point_count);
    if (kept) {
      EXPECT_GE(state.triangles.dtris2.touch_beside_insertion, 6 * 20 * n) << model.folder;
      EXPECT_LT(state.triangles.dtris2.touch_beside_insertion, 400 * n) << model.folder;
    } else {
      EXPECT_EQ(state.triangles.dtris2.touch_beside_insertion, 0u) << model.folder;
    }
    tesseramill::build_connected_triangles(state);
    state.lloyd_iteration = 1;
    tesseramill::triangulate_points(state);
    EXPECT_EQ(state.triangles.dtris2.touch_beside_insertion, 0u) << model.folder;
  }
}

}  // namespace
}  // namespace tesseramill_test
