// Whole runs compared with reviewed output: the screen and every written
// file byte for byte, and the DISV grid judged from the file alone.
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <fstream>
#include <optional>
#include <set>
#include <sstream>

#include "common/platform.h"
#include "support/disv_check.h"
#include "support/scratch.h"

namespace tesseramill_test {
namespace {

namespace fs = std::filesystem;

std::set<std::string> names_in(const fs::path& folder) {
  std::set<std::string> names;
  for (const auto& entry : fs::directory_iterator(folder)) names.insert(entry.path().filename().string());
  return names;
}

// Runs a model and compares everything it writes with the golden folder.
void expect_golden_run(const fs::path& inputs, const std::string& control, const fs::path& golden) {
  ScratchDir dir;
  copy_folder(inputs, dir.path());
  RunResult result = run_binary(dir, {control});
  EXPECT_EQ(result.screen, read_file(golden / "screen.txt"));
  std::set<std::string> written = names_in(dir.path());
  for (const std::string& input : names_in(inputs)) written.erase(input);
  std::set<std::string> expected = names_in(golden);
  expected.erase("screen.txt");
  EXPECT_EQ(written, expected);
  for (const std::string& name : expected) {
    EXPECT_EQ(read_file(dir.path() / name), read_file(golden / name)) << name;
  }
  expect_ready_for_modflow(dir.path(), control);
}

TEST(Golden, SquareModel) {
  expect_golden_run(source_path("tests/models/square"), "square.in", source_path("tests/golden/square"));
}

TEST(Golden, ModelWithEveryKindOfInput) {
  expect_golden_run(source_path("examples/full"), "model.in", source_path("tests/golden/full"));
}

// The bundled example: its screen is part of what README shows.
TEST(Golden, CatchmentExample) {
  expect_golden_run(source_path("examples/catchment"), "catchment.in", source_path("tests/golden/catchment"));
}

TEST(Golden, TwoHolesCrossingLinesAndWells) {
  expect_golden_run(source_path("tests/models/two_holes"), "m.in", source_path("tests/golden/two_holes"));
}

// Counts the rows of the boundary cell table: one per ring point.
int boundary_rows(const std::string& table) {
  int rows = -1;  // the head line
  std::istringstream in(table);
  std::string line;
  while (std::getline(in, line)) ++rows;
  return rows;
}

// Judges a written DISV file: counts, numbering, orientation, shared ring
// midpoints and the area of the whole grid.
void check_grid(const std::string& disv, const std::string& boundary_table, double domain_area) {
  const DisvGrid grid = read_disv(disv);
  EXPECT_EQ(grid.nvert, grid.vertex_lines);
  EXPECT_EQ(grid.nvert, static_cast<int>(grid.vertices.size()));
  EXPECT_EQ(grid.ncpl, static_cast<int>(grid.cells.size()));
  for (int v = 1; v <= grid.nvert; ++v) EXPECT_EQ(grid.vertices.count(v), 1u) << v;
  std::vector<int> uses(static_cast<std::size_t>(grid.nvert) + 1, 0);
  double total = 0.0;
  for (std::size_t c = 0; c < grid.cells.size(); ++c) {
    const std::vector<int>& cell = grid.cells[c];
    ASSERT_GE(cell.size(), 3u) << "cell " << c + 1;
    std::set<int> distinct(cell.begin(), cell.end());
    EXPECT_EQ(distinct.size(), cell.size()) << "cell " << c + 1 << " repeats a vertex";
    for (int v : cell) {
      ASSERT_GE(v, 1);
      ASSERT_LE(v, grid.nvert);
      uses[static_cast<std::size_t>(v)] += 1;
    }
    const double a = doubled_area(grid, cell);
    EXPECT_LT(a, 0.0) << "cell " << c + 1 << " is not clockwise";
    total += -0.5 * a;
  }
  // Ring points belong to their own cell alone; each ring midpoint is shared
  // by the two ring cells beside it; each triangle centroid by its three
  // corners' cells.
  const int ring_vertices = 2 * boundary_rows(boundary_table);
  for (int v = 1; v <= grid.nvert; ++v) {
    const int expected = v > ring_vertices ? 3 : (v % 2 == 1 ? 1 : 2);
    EXPECT_EQ(uses[static_cast<std::size_t>(v)], expected) << "vertex " << v;
  }
  EXPECT_NEAR(total, domain_area, 1e-9 * domain_area);
}

// Runs a model in `dir` and expects it to run to its last file.
void run_model(const ScratchDir& dir, const std::string& model, const std::string& control, const std::string& last) {
  copy_folder(source_path(model), dir.path());
  const RunResult result = run_binary(dir, {control});
  ASSERT_NE(result.screen.find(" - file " + last + " written ok.\n"), std::string::npos) << result.screen;
}

// What the program writes now is judged, not the reviewed copies.
TEST(GridValidity, SquareModel) {
  ScratchDir dir;
  run_model(dir, "tests/models/square", "square.in", "square.oc");
  check_grid(dir.read("square.disv"), dir.read("sq_boundary_cells.dat"), 10000.0);
}

TEST(GridValidity, ModelWithEveryKindOfInput) {
  ScratchDir dir;
  run_model(dir, "examples/full", "model.in", "ev.oc");
  const double area = bln_ring_area(dir.read("outer.bln")) - bln_ring_area(dir.read("pond.bln"));
  check_grid(dir.read("ev.disv"), dir.read("ev_boundary_cells.dat"), area);
}

TEST(GridValidity, TwoHolesCrossingLinesAndWells) {
  ScratchDir dir;
  run_model(dir, "tests/models/two_holes", "m.in", "m.oc");
  const double area = bln_ring_area(dir.read("outer.bln")) - bln_ring_area(dir.read("hole1.bln")) -
                      bln_ring_area(dir.read("hole2.bln"));
  check_grid(dir.read("m.disv"), dir.read("m_boundary_cells.dat"), area);
  expect_ready_for_modflow(dir.path(), "m.in");
}

TEST(GridValidity, CatchmentExample) {
  ScratchDir dir;
  run_model(dir, "examples/catchment", "catchment.in", "catchment.oc");
  const double area = bln_ring_area(dir.read("divide.bln")) - bln_ring_area(dir.read("lake.bln"));
  check_grid(dir.read("catchment.disv"), dir.read("catchment_boundary_cells.dat"), area);
  expect_ready_for_modflow(dir.path(), "catchment.in");
}

int mif_regions(const std::string& mif) {
  int regions = 0;
  std::istringstream in(mif);
  std::string line;
  while (std::getline(in, line)) regions += line == "Region 1";
  return regions;
}

// The map files of a fresh run open in GDAL's reader with one feature per
// region.  CI installs the reader (Debian package gdal-bin), so that the
// check is skipped only on a machine without it, and says so.
TEST(MapFiles, OpenInAGisReader) {
  const std::optional<fs::path> ogrinfo = tesseramill::find_on_path("ogrinfo");
  if (!ogrinfo) {
    GTEST_SKIP() << "SKIPPED: ogrinfo (Debian package gdal-bin) is not installed, so the MIF files were not "
                    "opened in a GIS reader";
  }
  ScratchDir dir;
  run_model(dir, "examples/full", "model.in", "ev.oc");
  for (const char* name : {"ev_triangles_0.mif", "ev_polygons_0.mif", "ev_triangles_3.mif", "ev_polygons_3.mif"}) {
    const RunResult out = run_executable(dir.path(), ogrinfo->string(), {"-ro", "-al", "-so", name});
    const int regions = mif_regions(dir.read(name));
    EXPECT_GT(regions, 100) << name;
    EXPECT_NE(out.screen.find("Feature Count: " + std::to_string(regions) + "\n"), std::string::npos) << out.screen;
  }
}

}  // namespace
}  // namespace tesseramill_test

namespace tesseramill_test {
namespace {

// The lines of a file that a fresh run of a model writes.
std::vector<std::string> fresh_lines(const ScratchDir& dir, const std::string& name) {
  std::vector<std::string> lines;
  std::istringstream in(dir.read(name));
  std::string line;
  while (std::getline(in, line)) lines.push_back(line);
  return lines;
}

bool has_line(const std::vector<std::string>& lines, const std::string& wanted) {
  return std::find(lines.begin(), lines.end(), wanted) != lines.end();
}

TEST(GoldenDetails, GridWithoutOriginAndWithoutHoles) {
  ScratchDir dir;
  run_model(dir, "tests/models/square", "square.in", "square.oc");
  const std::vector<std::string> disv = fresh_lines(dir, "square.disv");
  EXPECT_EQ(disv[1], "  XORIGIN   0.000000000E+00");
  EXPECT_EQ(disv[2], "  YORIGIN   0.000000000E+00");
  // 20 ring points: 40 ring vertices, so the first triangle centre is 41.
  const auto at = std::find(disv.begin(), disv.end(), "BEGIN VERTICES");
  ASSERT_NE(at, disv.end());
  EXPECT_EQ(at[1], "         1   0.000000000E+00   0.000000000E+00");
  EXPECT_EQ(at[2], "         2   1.000000000E+01   0.000000000E+00");
  EXPECT_EQ(at[41].substr(0, 10), "        41");
  const std::vector<std::string> table = fresh_lines(dir, "sq_boundary_cells.dat");
  EXPECT_EQ(table[0],
            "     ICPL     Centroid_x          Centroid_y          Cell_area           "
            "Length_in_cell      Accum_length        Boundary");
  EXPECT_EQ(table[1].substr(0, 10), "         1");
  // Constant spacing 20: cell k + 1 has Accum_length 20 k.
  EXPECT_EQ(table[6].substr(94), " 0.100000000E+03outer_boundary");
  EXPECT_EQ(table.size(), 21u);
}

TEST(GoldenDetails, GridWithOriginLayersAndInnerPoints) {
  ScratchDir dir;
  run_model(dir, "examples/full", "model.in", "ev.oc");
  const std::vector<std::string> disv = fresh_lines(dir, "ev.disv");
  EXPECT_EQ(disv[1], "  XORIGIN   0.100000000E+04");
  EXPECT_EQ(disv[2], "  YORIGIN   0.200000000E+04");
  EXPECT_TRUE(has_line(disv, "  NLAY 3"));
  // The outer ring starts at world (1000, 2000): written as (0, 0).
  const auto at = std::find(disv.begin(), disv.end(), "BEGIN VERTICES");
  ASSERT_NE(at, disv.end());
  EXPECT_EQ(at[1], "         1   0.000000000E+00   0.000000000E+00");
  const auto botm = std::find(disv.begin(), disv.end(), "  BOTM LAYERED");
  ASSERT_NE(botm, disv.end());
  EXPECT_EQ(botm[1], "    CONSTANT -1.0000000E+01");
  EXPECT_EQ(botm[2], "    CONSTANT -2.0000000E+01");
  EXPECT_EQ(botm[3], "    CONSTANT -3.0000000E+01");
  EXPECT_EQ(botm[4], " ");
  EXPECT_EQ(fresh_lines(dir, "ev.ic"),
            (std::vector<std::string>{"BEGIN OPTIONS", "END OPTIONS", " ", "BEGIN GRIDDATA", "  STRT LAYERED",
                                      "    CONSTANT 0.0", "    CONSTANT 0.0", "    CONSTANT 0.0",
                                      "END GRIDDATA"}));
  const std::vector<std::string> table = fresh_lines(dir, "ev_boundary_cells.dat");
  // Two inner points come first, so the outer ring's first row is cell 3.
  EXPECT_EQ(table[1].substr(0, 10), "         3");
  EXPECT_EQ(table[1].substr(94), " 0.000000000E+00outer_boundary");
  // The pond's rows go on with the next numbers and start again at zero.
  std::size_t first_pond = 0;
  for (std::size_t k = 1; k < table.size(); ++k) {
    if (table[k].size() > 110 && table[k].substr(110) == "inner_boundary_1") {
      first_pond = k;
      break;
    }
  }
  ASSERT_GT(first_pond, 1u);
  EXPECT_EQ(std::stoi(table[first_pond].substr(2, 8)), std::stoi(table[first_pond - 1].substr(2, 8)) + 1);
  EXPECT_EQ(table[first_pond].substr(94, 16), " 0.000000000E+00");
}

}  // namespace
}  // namespace tesseramill_test
