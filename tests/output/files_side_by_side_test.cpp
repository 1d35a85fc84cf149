// The map files of a pass are filled two sets at a time, on a thread each,
// once they hold enough items: the triangles' MIF beside their MID, and the
// cells' MIF and MID beside their BLN file and centroid table; or, kept to
// one core, one file after another.  Each file must hold what one thread
// writes, and when memory runs out in the first set, the second set must be
// left empty, as one thread would not have begun it.
#include <gtest/gtest.h>

#include <map>
#include <new>
#include <optional>
#include <string>

#include "common/run_state.h"
#include "output/iteration_files.h"
#include "support/failing_allocation.h"
#include "support/output_state.h"
#include "support/scratch.h"
#include "support/whole_run.h"

namespace tesseramill_test {
namespace {

using tesseramill::RunState;

constexpr int kItems = 30000;  // above the size from which work is shared

RunState state_in(const ScratchDir& dir) { return state_writing_into(dir, "2"); }

// kItems triangles, each over the same three points, numbered in turn.
RunState triangle_state(const ScratchDir& dir) {
  RunState state = state_in(dir);
  state.mesh.mesh_points = {1000, 1000, 1010, 1000, 1000, 1010};
  state.mesh.mesh_point_count = 3;
  tesseramill::TriangleTable& tt = state.triangles;
  tt.triangle_count = kItems;
  for (int k = 0; k < kItems; ++k) {
    tt.tri_vertex.insert(tt.tri_vertex.end(), {1, 2, 3});
    tt.tri_neighbour.insert(tt.tri_neighbour.end(), {k, -4, k + 2});
  }
  tt.itstat.assign(kItems, 0);
  return state;
}

// kItems square cells side by side along x.
RunState cell_state(const ScratchDir& dir) {
  RunState state = state_in(dir);
  state.mesh.mesh_point_count = kItems;
  tesseramill::CellTables& cells = state.cells;
  for (int k = 0; k < kItems; ++k) {
    cells.cell_vertex_count.push_back(4);
    cells.cell_first_vertex.push_back(4 * k + 1);
    const double x = 1000.0 + 10.0 * k;
    cells.cell_vertices.insert(cells.cell_vertices.end(), {x, 0.0, x + 10.0, 0.0, x + 10.0, 10.0, x, 10.0});
    cells.cell_centroid.insert(cells.cell_centroid.end(), {x + 5.0, 5.0});
    cells.cell_area.push_back(-100.0);
  }
  return state;
}

std::map<std::string, std::string> files_of(const ScratchDir& dir) {
  std::map<std::string, std::string> files;
  for (const std::string& name : dir.listing()) files[name] = dir.read(name);
  return files;
}

// The files of a state made by `make_state`, opened by `open` and filled by
// `fill` on one core or on two, and what they hold; with `fail_from` above
// 0, allocations of that many bytes and more fail while they are filled.
template <typename Files, typename Open, typename Fill>
std::map<std::string, std::string> filled(RunState (*make_state)(const ScratchDir&), Open open, Fill fill,
                                          bool one_core, std::size_t fail_from) {
  ScratchDir dir;
  RunState state = make_state(dir);
  std::optional<OneCore> one;
  if (one_core) one.emplace();
  {
    Files files;
    open(state, files);
    if (fail_from == 0) {
      fill(state, files);
    } else {
      const std::size_t refused = LargeAllocationsFail::refused();
      LargeAllocationsFail full(fail_from);
      EXPECT_THROW(fill(state, files), std::bad_alloc);
      EXPECT_GT(LargeAllocationsFail::refused(), refused);
    }
  }
  return files_of(dir);
}

std::map<std::string, std::string> triangle_files(bool one_core, std::size_t fail_from = 0) {
  return filled<tesseramill::TriangleMapFiles>(
      triangle_state, tesseramill::open_triangle_map_files,
      [](const RunState& state, tesseramill::TriangleMapFiles& files) {
        tesseramill::fill_triangle_map_files(state, files);
      },
      one_core, fail_from);
}

std::map<std::string, std::string> cell_files(bool one_core, std::size_t fail_from = 0,
                                              tesseramill::FillCores cores = tesseramill::FillCores::both) {
  return filled<tesseramill::CellFiles>(
      cell_state, tesseramill::open_cell_files,
      [cores](const RunState& state, tesseramill::CellFiles& files) {
        tesseramill::fill_cell_files(state, files, cores);
      },
      one_core, fail_from);
}

const char* const kTriangleMifHead =
    "Version 2\nDelimiter \",\"\nColumns 5\n   itri Integer\n   tnbr_1 Integer\n   tnbr_2 Integer\n"
    "   tnbr_3 Integer\n   itstat Integer\nData\n";

TEST(FilesSideBySide, TriangleFilesHoldWhatOneThreadWrites) {
  const std::map<std::string, std::string> one = triangle_files(true);
  const std::map<std::string, std::string> two = triangle_files(false);
  ASSERT_EQ(one.size(), 2u);
  EXPECT_EQ(one.at("t_triangles_2.mid").substr(0, 35), "     1,     0,    -4,     2,     0\n");
  EXPECT_EQ(one.at("t_triangles_2.mid").size(), 35u * kItems);
  EXPECT_TRUE(one == two);
}

TEST(FilesSideBySide, CellFilesHoldWhatOneThreadWrites) {
  const std::map<std::string, std::string> one = cell_files(true);
  const std::map<std::string, std::string> two = cell_files(false);
  ASSERT_EQ(one.size(), 4u);
  EXPECT_EQ(one.at("t_polygons_2.mid").substr(0, 25), "     1,  1.000000000E+02\n");
  EXPECT_TRUE(one == two);
}

// Filled beside the next pass's triangulation, the cell files keep to one
// core although two are there to share them, and hold the same.
TEST(FilesSideBySide, CellFilesKeptToOneCoreHoldWhatOneThreadWrites) {
  const std::map<std::string, std::string> one = cell_files(true);
  const std::map<std::string, std::string> kept = cell_files(false, 0, tesseramill::FillCores::one);
  ASSERT_EQ(one.size(), 4u);
  EXPECT_EQ(kept.at("t_polygon_centroids_2.dat").substr(0, 64),
            "      icpl       centroid_x       centroid_y          cell_area\n");
  EXPECT_TRUE(one == kept);
}

// A block of the triangles' MIF (4,096 triangles of 202 bytes) needs a
// text of more than 800 KB, one of their MID (35 bytes each) less than
// 150 KB: memory refused from 512 KiB on fails the MIF alone.  One thread
// leaves the MIF with its head lines and the MID empty, never begun; the
// MID filled beside it must be left so too.
TEST(FilesSideBySide, MemoryThatRunsOutInTheTriangleMifLeavesTheMidEmpty) {
  const std::map<std::string, std::string> one = triangle_files(true, 512 * 1024);
  const std::map<std::string, std::string> two = triangle_files(false, 512 * 1024);
  ASSERT_EQ(one.size(), 2u);
  EXPECT_EQ(one.at("t_triangles_2.mif"), kTriangleMifHead);
  EXPECT_EQ(one.at("t_triangles_2.mid"), "");
  EXPECT_TRUE(one == two);
}

// The same on the cells' files: the MIF fails, and the MID, the BLN file
// and the centroid table are left empty.
TEST(FilesSideBySide, MemoryThatRunsOutInTheCellMifLeavesTheOthersEmpty) {
  const std::map<std::string, std::string> one = cell_files(true, 512 * 1024);
  const std::map<std::string, std::string> two = cell_files(false, 512 * 1024);
  ASSERT_EQ(one.size(), 4u);
  EXPECT_EQ(one.at("t_polygons_2.mif"), "Version 2\nDelimiter \",\"\nColumns 2\n   icpl Integer\n"
                                        "   cell_area  Float\nData\n");
  for (const char* name : {"t_polygons_2.mid", "t_polygons_2.bln", "t_polygon_centroids_2.dat"}) {
    EXPECT_EQ(one.at(name), "") << name;
  }
  EXPECT_TRUE(one == two);
  EXPECT_TRUE(one == cell_files(false, 512 * 1024, tesseramill::FillCores::one));
}

}  // namespace
}  // namespace tesseramill_test
