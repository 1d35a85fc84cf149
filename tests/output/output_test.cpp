// The output writers on hand-made tables, and failures of the last phases.
#include <gtest/gtest.h>

#include <sstream>

#include "common/failure.h"
#include "output/disv_file.h"
#include "output/iteration_files.h"
#include "support/output_state.h"
#include "support/scratch.h"

namespace tesseramill {
namespace {

using tesseramill_test::RunResult;
using tesseramill_test::ScratchDir;

// A run state whose files go into `dir`.
RunState state_in(const ScratchDir& dir) { return tesseramill_test::state_writing_into(dir, "7"); }

std::vector<std::string> lines_of(const std::string& text) {
  std::vector<std::string> lines;
  std::istringstream in(text);
  std::string line;
  while (std::getline(in, line)) lines.push_back(line);
  return lines;
}

TEST(TriangleMapFiles, NumbersOfAMillionAreAsterisksAndExternalTrianglesAreLeftOut) {
  ScratchDir dir;
  RunState state = state_in(dir);
  state.mesh.mesh_points = {1000, 1000, 1010, 1000, 1000, 1010};
  state.mesh.mesh_point_count = 3;
  TriangleTable& tt = state.triangles;
  tt.triangle_count = 1000000;
  tt.tri_vertex.assign(3000000, 1);
  tt.tri_neighbour.assign(3000000, -4);
  tt.itstat.assign(1000000, -1);
  tt.itstat[999999] = 0;
  tt.tri_vertex[2999997] = 1;
  tt.tri_vertex[2999998] = 2;
  tt.tri_vertex[2999999] = 3;
  tt.tri_neighbour[2999998] = 999998;
  write_triangle_map_files(state);
  EXPECT_EQ(dir.read("t_triangles_7.mid"), "******,    -4,999998,    -4,     0\n");
  EXPECT_EQ(lines_of(dir.read("t_triangles_7.mif")),
            (std::vector<std::string>{"Version 2", "Delimiter \",\"", "Columns 5", "   itri Integer",
                                      "   tnbr_1 Integer", "   tnbr_2 Integer", "   tnbr_3 Integer",
                                      "   itstat Integer", "Data", " ", "Region 1", "   3",
                                      "                      0.000         1500.000",
                                      "                     10.000         1500.000",
                                      "                      0.000         1510.000",
                                      "Center                      3.333         1503.333"}));
}

TEST(PolygonMapFiles, HundredCornersGiveACountOf101AndAClosedRing) {
  ScratchDir dir;
  RunState state = state_in(dir);
  state.mesh.mesh_point_count = 1;
  CellTables& cells = state.cells;
  cells.cell_vertex_count = {100};
  cells.cell_first_vertex = {1};
  for (int k = 0; k < 100; ++k) {
    cells.cell_vertices.push_back(1000.0 + k);
    cells.cell_vertices.push_back(k % 2 == 0 ? 0.0 : 1.0);
  }
  cells.cell_centroid = {1050.0, 0.5};
  cells.cell_area = {-1234.5};
  write_polygon_map_files(state);
  const std::vector<std::string> mif = lines_of(dir.read("t_polygons_7.mif"));
  ASSERT_EQ(mif.size(), 6u + 3u + 101u + 1u);
  EXPECT_EQ(mif[8], "   101, ");
  EXPECT_EQ(mif[9], mif[109]);
  EXPECT_EQ(mif[9], "                      0.000          500.000");
  EXPECT_EQ(mif[110], "Center                     50.000          500.500");
  EXPECT_EQ(dir.read("t_polygons_7.mid"), "     1,  1.234500000E+03\n");
}

TEST(PolygonTables, BlnHeadAndCentroidTableAsterisks) {
  ScratchDir dir;
  RunState state = state_in(dir);
  state.mesh.mesh_point_count = 1;
  CellTables& cells = state.cells;
  cells.cell_vertex_count = {5};
  cells.cell_first_vertex = {1};
  cells.cell_vertices = {1000, 0, 1010, 0, 1010, 10, 1005, 15, 1000, 10};
  cells.cell_centroid = {1005.0, 6.0};
  cells.cell_area = {1.0e12};
  write_polygon_bln_file(state);
  write_polygon_centroid_table(state);
  const std::vector<std::string> bln = lines_of(dir.read("t_polygons_7.bln"));
  ASSERT_EQ(bln.size(), 7u);
  EXPECT_EQ(bln[0], "         6    1   \"1\"");
  EXPECT_EQ(bln[1], "  0.0000000000E+00  5.0000000000E+02");
  EXPECT_EQ(bln[6], bln[1]);
  EXPECT_EQ(dir.read("t_polygon_centroids_7.dat"),
            "      icpl       centroid_x       centroid_y          cell_area\n"
            "         1            5.0000          506.0000   ***************\n");
}

TEST(ChdFile, HeadLines) {
  EXPECT_EQ(head_line(1, 20.0), "  1         1   0.2000000E+02");
  EXPECT_EQ(head_line(1234, 10.0), "  1      1234   0.1000000E+02");
}

std::string model_control(const std::string& base, const std::string& stem) {
  return "START CONTROL\n MAX_CENTROID_SEPARATION 20\n POLY_GROWTH_RATE 1.2\n OUT_FILE_BASE " + base +
         "\n MAX_CELLS 2000\n MAX_LLOYD 0\nEND\nSTART MF6\n MF6_BASENAME " + stem +
         "\n NLAY 1\nEND\nSTART OUTER_BOUNDARY\n BLN_FILE outer.bln\nEND\n";
}

RunResult run_small(ScratchDir& dir, const std::string& base, const std::string& stem) {
  dir.write("outer.bln", "5\n0 0 20\n100 0 20\n100 100 20\n0 100 20\n0 0 20\n");
  dir.write("t.in", model_control(base, stem));
  return tesseramill_test::run_binary(dir, {"t.in"});
}

TEST(LastPhaseFailure, UnwritableGridFileLeavesEveryEarlierFile) {
  ScratchDir dir;
  std::filesystem::create_directory(dir.path() / "grid.disv");
  RunResult r = run_small(dir, "m", "grid");
  const std::string tail =
      " - files m_boundary_cells.dat written ok.\n"
      " \n - writing MODFLOW 6 DISV and other files...\n"
      "\n Cannot write to file grid.disv.\n";
  EXPECT_EQ(tesseramill_test::screen_tail(r.screen, tail.size()), tail);
  EXPECT_EQ(dir.listing(), (std::vector<std::string>{
                               "grid.disv", "m_boundary_cells.dat", "m_polygon_centroids_0.dat",
                               "m_polygons_0.bln", "m_polygons_0.mid", "m_polygons_0.mif",
                               "m_triangles_0.mid", "m_triangles_0.mif", "outer.bln", "t.in"}));
  EXPECT_FALSE(dir.read("m_boundary_cells.dat").empty());
}

TEST(LastPhaseFailure, UnwritableSimulationNameFileLeavesTheGrid) {
  ScratchDir dir;
  std::filesystem::create_directory(dir.path() / "mfsim.nam");
  RunResult r = run_small(dir, "m", "grid");
  const std::string tail =
      " - file grid.disv written ok.\n"
      "\n Cannot write to file mfsim.nam.\n";
  EXPECT_EQ(tesseramill_test::screen_tail(r.screen, tail.size()), tail);
  EXPECT_NE(dir.read("grid.disv").find("END CELL2D\n"), std::string::npos);
}

TEST(MapFileFailure, MissingFolderOfTheBaseStopsTheRun) {
  ScratchDir dir;
  RunResult r = run_small(dir, "nowhere/m", "grid");
  const std::string tail =
      "\n - commencing Lloyd iterations...\n"
      "\n Cannot write to file nowhere/m_triangles_0.mif.\n";
  EXPECT_EQ(tesseramill_test::screen_tail(r.screen, tail.size()), tail);
}

TEST(Mf6Files, StemNamesEveryFileButMfsim) {
  ScratchDir dir;
  RunResult r = run_small(dir, "maps", "model");
  EXPECT_EQ(dir.read("model.nam"),
            "BEGIN OPTIONS\nEND OPTIONS\n \nBEGIN PACKAGES\n  IC6   model.ic\n  NPF6  model.npf\n"
            "  CHD6  model.chd\n  DISV6 model.disv\n  OC6 model.oc\nEND PACKAGES\n");
  EXPECT_EQ(dir.read("model.oc"),
            "BEGIN OPTIONS\n  HEAD FILEOUT model.hds\nEND OPTIONS\n \nBEGIN PERIOD 1\n  SAVE HEAD ALL\n"
            "END PERIOD\n");
  EXPECT_NE(dir.read("mfsim.nam").find("  GWF6 model.nam  GWF_Model\n"), std::string::npos);
  const std::string tail =
      " - file model.disv written ok.\n - file mfsim.nam written ok.\n - file model.tdis written ok.\n"
      " - file model.ims written ok.\n - file model.nam written ok.\n - file model.ic written ok.\n"
      " - file model.npf written ok.\n - file model.chd written ok.\n - file model.oc written ok.\n";
  EXPECT_EQ(tesseramill_test::screen_tail(r.screen, tail.size()), tail);
}

}  // namespace
}  // namespace tesseramill

namespace tesseramill {
namespace {

TEST(NumberGridVertices, RingVerticesMustAgreeWithTheEdgeCodes) {
  RunState state;
  state.outer_boundary.point_count = 5;
  state.cells.edge_code_base = 6;
  try {
    number_grid_vertices(state);
    FAIL();
  } catch (const RunFailure&) {
    EXPECT_EQ(state.message_buffer, "Logical error type 4.");
  }
}

TEST(NumberGridVertices, UsedTrianglesFollowTheRingVerticesWithoutGaps) {
  RunState state;
  state.outer_boundary.point_count = 5;
  state.cells.edge_code_base = 8;
  state.triangles.triangle_count = 4;
  // Triangle 2 is named by no corner.
  state.cells.cell_vertex_code = {-1, -2, 1, 3, 3, -8, 4, 0};
  const GridVertices grid = number_grid_vertices(state);
  EXPECT_EQ(grid.triangle_use_count, (std::vector<std::int32_t>{1, 0, 2, 1}));
  EXPECT_EQ(grid.triangle_vertex_number[0], 9);
  EXPECT_EQ(grid.triangle_vertex_number[2], 10);
  EXPECT_EQ(grid.triangle_vertex_number[3], 11);
  EXPECT_EQ(grid.nvert, 11);
}

}  // namespace
}  // namespace tesseramill
