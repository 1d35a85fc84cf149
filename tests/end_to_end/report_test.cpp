// The report program after whole runs of the mesher: its exact screen, and
// its tables checked against computations of the test's own on the grid
// file.
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <sstream>

#include "support/csv_rows.h"
#include "support/disv_check.h"
#include "support/planar_check.h"
#include "support/scratch.h"
#include "support/xml_check.h"

namespace tesseramill_test {
namespace {

namespace fs = std::filesystem;

// A cell's corners as x,y pairs, from the test's own reading of the grid.
std::vector<double> cell_corners(const DisvGrid& grid, int cell) {
  std::vector<double> xy;
  for (int v : grid.cells[static_cast<std::size_t>(cell - 1)]) {
    xy.push_back(grid.vertices.at(v).first);
    xy.push_back(grid.vertices.at(v).second);
  }
  return xy;
}

// The cell whose polygon holds (x, y), by trying every cell; 0 for none.
int cell_by_search(const DisvGrid& grid, double x, double y) {
  for (int c = 1; c <= grid.ncpl; ++c) {
    if (inside_polygon(cell_corners(grid, c), x, y)) return c;
  }
  return 0;
}

std::vector<double> shifted(std::vector<double> xy, double dx, double dy) {
  for (std::size_t k = 0; k + 1 < xy.size(); k += 2) {
    xy[k] -= dx;
    xy[k + 1] -= dy;
  }
  return xy;
}

struct Example {
  std::string folder;
  std::string control;
  std::string stem;
  double xorigin;
  double yorigin;
  std::string outer;
  std::vector<std::string> holes;
  std::vector<std::string> line_files;  // one entry per file, in the control file's order
  std::vector<std::string> point_files;
  std::vector<std::string> zone_files;
  std::string golden_screen;
};

// Runs the mesher and then the report on an example, and checks everything
// the report writes.
void check_report_on(const Example& e) {
  ScratchDir dir;
  copy_folder(source_path(e.folder), dir.path());
  const RunResult mesher = run_binary(dir, {e.control});
  ASSERT_NE(mesher.screen.find(" - file " + e.stem + ".oc written ok.\n"), std::string::npos) << mesher.screen;
  const RunResult report = run_report_binary(dir, {e.control});
  EXPECT_EQ(report.status, 0);
  EXPECT_EQ(report.screen, read_file(source_path(e.golden_screen)));
  for (const char* suffix : {"_reaches.csv", "_points.csv", "_zones.csv", "_grid.svg", "_quality.txt"}) {
    EXPECT_NE(report.screen.find(" - file " + e.stem + suffix + " written ok.\n"), std::string::npos) << suffix;
  }
  // The quality file holds what the screen shows last.
  const std::string quality = dir.read(e.stem + "_quality.txt");
  ASSERT_FALSE(quality.empty());
  EXPECT_EQ(report.screen.substr(report.screen.size() - quality.size()), quality);

  const DisvGrid grid = read_disv(dir.read(e.stem + ".disv"));
  const std::vector<double> outer = shifted(bln_groups(dir.read(e.outer))[0], e.xorigin, e.yorigin);
  std::vector<std::vector<double>> holes;
  for (const std::string& hole : e.holes) holes.push_back(shifted(bln_groups(dir.read(hole))[0], e.xorigin, e.yorigin));

  // Reaches: in each cell the table names, the middle of the reach lies;
  // lengths add up to each line's length inside the domain.
  const std::vector<Row> reaches = csv_rows(dir.read(e.stem + "_reaches.csv"), "line,bln_file,cell,length,start,end");
  int line_number = 0;
  std::size_t checked_reaches = 0;
  for (const std::string& file : e.line_files) {
    for (const std::vector<double>& world : bln_groups(dir.read(file))) {
      ++line_number;
      const std::vector<double> line = shifted(world, e.xorigin, e.yorigin);
      double sum = 0.0;
      for (const Row& row : reaches) {
        ASSERT_EQ(row.size(), 6u);
        if (std::stoi(row[0]) != line_number) continue;
        EXPECT_EQ(row[1], file);
        const int cell = std::stoi(row[2]);
        const double length = std::stod(row[3]);
        const double start = std::stod(row[4]);
        const double end = std::stod(row[5]);
        EXPECT_NEAR(end - start, length, 1e-9 * length);
        double x = 0.0;
        double y = 0.0;
        point_along(line, 0.5 * (start + end), x, y);
        EXPECT_EQ(cell_by_search(grid, x, y), cell) << "line " << line_number << " reach from " << start;
        sum += length;
        ++checked_reaches;
      }
      const double inside = length_inside(line, outer, holes);
      EXPECT_GT(inside, 0.0);
      EXPECT_NEAR(sum, inside, 1e-9 * inside) << "line " << line_number;
    }
  }
  EXPECT_EQ(checked_reaches, reaches.size());

  // Points: the cell that holds each, found by search.
  const std::vector<Row> points = csv_rows(dir.read(e.stem + "_points.csv"), "point,bln_file,x,y,cell");
  std::size_t point_row = 0;
  for (const std::string& file : e.point_files) {
    const std::vector<double> world = bln_groups(dir.read(file))[0];
    for (std::size_t k = 0; k + 1 < world.size(); k += 2, ++point_row) {
      ASSERT_LT(point_row, points.size());
      const Row& row = points[point_row];
      EXPECT_EQ(std::stoi(row[0]), static_cast<int>(k / 2 + 1));
      EXPECT_EQ(row[1], file);
      EXPECT_NEAR(std::stod(row[2]), world[k], 1e-9 * std::fabs(world[k]));
      EXPECT_NEAR(std::stod(row[3]), world[k + 1], 1e-9 * std::fabs(world[k + 1]));
      EXPECT_EQ(std::stoi(row[4]), cell_by_search(grid, world[k] - e.xorigin, world[k + 1] - e.yorigin));
    }
  }
  EXPECT_EQ(point_row, points.size());

  // Zones: every cell whose centre lies inside, with its share by clipping
  // (the example zones are convex).
  const std::vector<Row> zones = csv_rows(dir.read(e.stem + "_zones.csv"), "polygon,bln_file,cell,share");
  std::size_t zone_row = 0;
  for (std::size_t z = 0; z < e.zone_files.size(); ++z) {
    std::vector<double> zone = shifted(bln_groups(dir.read(e.zone_files[z]))[0], e.xorigin, e.yorigin);
    zone.resize(zone.size() - 2);  // the repeated closing corner
    for (int c = 1; c <= grid.ncpl; ++c) {
      const auto& centre = grid.centres[static_cast<std::size_t>(c - 1)];
      if (!inside_polygon(zone, centre.first, centre.second)) continue;
      ASSERT_LT(zone_row, zones.size());
      const Row& row = zones[zone_row++];
      EXPECT_EQ(std::stoi(row[0]), static_cast<int>(z + 1));
      EXPECT_EQ(row[1], e.zone_files[z]);
      EXPECT_EQ(std::stoi(row[2]), c);
      const std::vector<double> corners = cell_corners(grid, c);
      const double area = 0.5 * std::fabs(doubled_area(grid, grid.cells[static_cast<std::size_t>(c - 1)]));
      EXPECT_NEAR(std::stod(row[3]), clipped_area(corners, zone) / area, 1e-9) << "cell " << c;
    }
  }
  EXPECT_EQ(zone_row, zones.size());

  // The picture: well-formed, one shape per cell.
  const std::string svg = dir.read(e.stem + "_grid.svg");
  std::string error;
  EXPECT_TRUE(well_formed_xml(svg, error)) << error;
  std::size_t shapes = 0;
  for (std::size_t p = svg.find("<path class=\"cell "); p != std::string::npos; p = svg.find("<path class=\"cell ", p + 1)) {
    ++shapes;
  }
  EXPECT_EQ(shapes, static_cast<std::size_t>(grid.ncpl));
}

TEST(ReportEndToEnd, CatchmentExample) {
  check_report_on({"examples/catchment", "catchment.in", "catchment", 0.0, 0.0, "divide.bln", {"lake.bln"},
                   {"river.bln"}, {"well.bln"}, {}, "tests/golden/report/catchment_screen.txt"});
}

TEST(ReportEndToEnd, ExampleWithEveryKindOfInput) {
  check_report_on({"examples/full", "model.in", "ev", 1000.0, 2000.0, "outer.bln", {"pond.bln"}, {"drains.bln"},
                   {"wells.bln"}, {"zone.bln"}, "tests/golden/report/full_screen.txt"});
}

std::size_t failures_in(const std::string& screen) {
  std::size_t count = 0;
  for (std::size_t p = screen.find("   FAIL  "); p != std::string::npos; p = screen.find("   FAIL  ", p + 1)) ++count;
  return count;
}

// The screen ends with `expected`; shown whole when it does not.
void expect_screen_ends_with(const std::string& screen, const std::string& expected) {
  EXPECT_EQ(screen_tail(screen, expected.size()), expected) << screen;
}

const std::string kReportBanner = "\n TESSERAMILL-REPORT version 1.21 by Larkspur Analytics.\n";

TEST(ReportEndToEnd, UsageWithoutAnArgument) {
  ScratchDir dir;
  for (const std::vector<std::string>& args : {std::vector<std::string>{}, std::vector<std::string>{"   "}}) {
    const RunResult result = run_report_binary(dir, args);
    EXPECT_EQ(result.screen, kReportBanner +
                                 "\n"
                                 " TESSERAMILL-REPORT is run using the command:\n"
                                 "\n"
                                 "   tesseramill-report infile\n"
                                 "\n"
                                 " or, to set apart the vertex numbers of a grid of a million vertices or\n"
                                 " more so that MODFLOW 6 can read it,\n"
                                 "\n"
                                 "   tesseramill-report --fix-grid infile\n"
                                 "\n"
                                 " where\n"
                                 "\n"
                                 "   infile is the name of the TESSERAMILL input file of a finished run,\n"
                                 "   run in the folder of that run.\n");
    EXPECT_EQ(result.status, 0);
  }
}

TEST(ReportEndToEnd, NamesTheCommandWhenTheGridIsMissing) {
  ScratchDir dir;
  copy_folder(source_path("examples/catchment"), dir.path());
  const RunResult result = run_report_binary(dir, {"catchment.in"});
  expect_screen_ends_with(result.screen,
                          " - file well.bln read ok.\n"
                          "\n - reading file catchment.disv...\n"
                          "\n Cannot open file catchment.disv. It is the MODFLOW 6 grid that the command \n"
                          "   \"tesseramill catchment.in\" writes: run that command in this folder first.\n");
  EXPECT_EQ(result.status, 0);
  EXPECT_FALSE(fs::exists(dir.path() / "catchment_reaches.csv"));
}

TEST(ReportEndToEnd, NamesAGridFileItCannotRead) {
  ScratchDir dir;
  copy_folder(source_path("examples/catchment"), dir.path());
  dir.write("catchment.disv", "BEGIN DIMENSIONS\n  NCPL 2\n  NVERT 3\nEND DIMENSIONS\nBEGIN VERTICES\n 1 0.0 0.0\n 2 x 1\n");
  RunResult result = run_report_binary(dir, {"catchment.in"});
  expect_screen_ends_with(result.screen,
                          "\n - reading file catchment.disv...\n\n Error reading line 7 of file catchment.disv.\n");
  dir.write("catchment.disv", "BEGIN DIMENSIONS\n  NCPL 1\n  NVERT 3\nEND DIMENSIONS\n");
  result = run_report_binary(dir, {"catchment.in"});
  expect_screen_ends_with(result.screen,
                          "\n - reading file catchment.disv...\n"
                          "\n File catchment.disv holds no complete grid: its VERTICES or CELL2D block is \n"
                          "   missing.\n");
  dir.write("catchment.disv", "BEGIN DIMENSIONS\n NCPL 1\n NVERT 3\nEND DIMENSIONS\nBEGIN VERTICES\n 1 0 0\n 2 0 1\n"
                              " 3 1 1\nEND VERTICES\nBEGIN CELL2D\n 1 0.3 0.6 3 1 2 4\nEND CELL2D\n");
  result = run_report_binary(dir, {"catchment.in"});
  expect_screen_ends_with(result.screen,
                          "\n - reading file catchment.disv...\n"
                          "\n Cell 1 of file catchment.disv names vertex 4, which the file does not hold.\n");
}

// The report reads the control and BLN files with the mesher's readers: a
// broken input ends both with the same message.
TEST(ReportEndToEnd, SameMessagesAsTheMesherOnBrokenInput) {
  ScratchDir dir;
  copy_folder(source_path("examples/catchment"), dir.path());
  dir.write("lake.bln", "5\n513100 6235300 40\n513400 6235300 40\n");
  const RunResult mesher = run_binary(dir, {"catchment.in"});
  const RunResult report = run_report_binary(dir, {"catchment.in"});
  const std::string mesher_banner = "\n TESSERAMILL version 1.21 by Larkspur Analytics.\n";
  ASSERT_EQ(mesher.screen.substr(0, mesher_banner.size()), mesher_banner);
  ASSERT_EQ(report.screen.substr(0, kReportBanner.size()), kReportBanner);
  EXPECT_EQ(report.screen.substr(kReportBanner.size()), mesher.screen.substr(mesher_banner.size()));
  EXPECT_NE(report.screen.find("Premature end encountered to file lake.bln."), std::string::npos) << report.screen;
}

// A square of side 100 at 1e12: the grid file's ten digits put every
// vertex at one place, and the report says so; with XORIGIN and YORIGIN
// the file holds small numbers and the grid passes.
TEST(ReportEndToEnd, FlagsCoordinatesTooLargeForTheGridFile) {
  const std::string control =
      "START CONTROL\n MAX_CENTROID_SEPARATION 100\n POLY_GROWTH_RATE 1.2\n OUT_FILE_BASE m\n MAX_CELLS 5000\n"
      " MAX_LLOYD 0\nEND CONTROL\nSTART OUTER_BOUNDARY\n BLN_FILE outer.bln\nEND OUTER_BOUNDARY\n"
      "START MF6\n MF6_BASENAME m\n NLAY 1\n";
  const std::string square =
      "5\n1e12 1e12 10\n1.0000000001e12 1e12 10\n1.0000000001e12 1.0000000001e12 10\n1e12 1.0000000001e12 10\n"
      "1e12 1e12 10\n";
  for (const bool origin : {false, true}) {
    ScratchDir dir;
    dir.write("t.in", control + (origin ? " XORIGIN 1e12\n YORIGIN 1e12\n" : "") + "END MF6\n");
    dir.write("outer.bln", square);
    ASSERT_NE(run_binary(dir, {"t.in"}).screen.find(" - file m.oc written ok.\n"), std::string::npos);
    const std::string screen = run_report_binary(dir, {"t.in"}).screen;
    const std::string readiness = screen.substr(screen.find("\n MODFLOW 6 readiness\n"));
    if (origin) {
      EXPECT_EQ(failures_in(readiness), 0u) << readiness;
    } else {
      EXPECT_EQ(readiness,
                "\n MODFLOW 6 readiness\n"
                "   FAIL  every cell clockwise with positive area: first at cell 1\n"
                "   FAIL  no two vertex numbers at the same position: first at cell 1 (vertex 1)\n"
                "   FAIL  no zero-length edge: first at cell 1\n"
                "   pass  every interior face shared by exactly two cells through the same two vertex numbers\n"
                "   FAIL  cell areas add up to the domain's area (sum 0.000000000E+00, domain 1.000000000E+04, "
                "relative difference 1.00E+00)\n"
                "   pass  every vertex number on the cell lines set apart by a blank\n"
                "\n Vertices at one place mean that the ten digits of the grid file cannot hold\n"
                " coordinates this large for cells this small: give XORIGIN and YORIGIN near\n"
                " the model's lower left corner in the MF6 block and run the mesher again.\n");
    }
  }
}

// ---- readiness checks on broken copies of a grid file ----------------------

// The tokens of the cell lines of a grid file, and the rest of its lines.
struct GridText {
  std::vector<std::string> lines;
  std::size_t first_cell_line = 0;

  explicit GridText(const std::string& text) {
    std::istringstream in(text);
    std::string line;
    while (std::getline(in, line)) lines.push_back(line);
    for (std::size_t k = 0; k < lines.size(); ++k) {
      if (lines[k] == "BEGIN CELL2D") first_cell_line = k + 1;
    }
  }
  std::vector<std::string> cell(int c) const {
    std::istringstream words(lines[first_cell_line + static_cast<std::size_t>(c - 1)]);
    std::vector<std::string> tokens;
    std::string token;
    while (words >> token) tokens.push_back(token);
    return tokens;
  }
  void set_cell(int c, const std::vector<std::string>& tokens) {
    std::string line;
    for (const std::string& token : tokens) line += " " + token;
    lines[first_cell_line + static_cast<std::size_t>(c - 1)] = line;
  }
  // Replaces the line that starts with `key` (after blanks) by `key value`.
  void set_value(const std::string& key, int value) {
    for (std::string& line : lines) {
      if (line.find_first_not_of(' ') != std::string::npos && line.substr(line.find_first_not_of(' ')).rfind(key + " ", 0) == 0) {
        line = "  " + key + " " + std::to_string(value);
      }
    }
  }
  std::string text() const {
    std::string out;
    for (const std::string& line : lines) out += line + "\n";
    return out;
  }
};

std::string report_on_grid(const std::string& grid_text) {
  ScratchDir dir;
  copy_folder(source_path("examples/full"), dir.path());
  dir.write("ev.disv", grid_text);
  return run_report_binary(dir, {"model.in"}).screen;
}

const std::string kClockwise = "every cell clockwise with positive area";
const std::string kSamePlace = "no two vertex numbers at the same position";
const std::string kZeroEdge = "no zero-length edge";
const std::string kFaces = "every interior face shared by exactly two cells through the same two vertex numbers";

class BrokenGrid : public testing::Test {
 protected:
  const std::string original = read_file(source_path("tests/golden/full/ev.disv"));
  const DisvGrid grid = read_disv(original);
  GridText text{original};
};

TEST_F(BrokenGrid, UnbrokenPassesEveryCheck) {
  const std::string screen = report_on_grid(original);
  EXPECT_EQ(failures_in(screen), 0u) << screen;
  EXPECT_NE(screen.find("   pass  " + kFaces + "\n"), std::string::npos) << screen;
}

TEST_F(BrokenGrid, ReversedCell) {
  std::vector<std::string> cell = text.cell(5);
  std::reverse(cell.begin() + 4, cell.end());
  text.set_cell(5, cell);
  const std::string screen = report_on_grid(text.text());
  EXPECT_NE(screen.find("   FAIL  " + kClockwise + ": first at cell 5\n"), std::string::npos) << screen;
  EXPECT_EQ(failures_in(screen), 1u) << screen;
}

TEST_F(BrokenGrid, DuplicatedVertex) {
  // A new vertex at the place of a corner that cell 7 shares with other
  // cells takes that corner's number in cell 7 only.
  std::vector<std::string> cell = text.cell(7);
  std::size_t corner = 4;
  auto users = [&](int v) {
    int count = 0;
    for (const std::vector<int>& c : grid.cells) count += static_cast<int>(std::count(c.begin(), c.end(), v));
    return count;
  };
  while (users(std::stoi(cell[corner])) < 2) ++corner;
  const int old_vertex = std::stoi(cell[corner]);
  const int new_vertex = grid.nvert + 1;
  cell[corner] = std::to_string(new_vertex);
  text.set_cell(7, cell);
  const auto& place = grid.vertices.at(old_vertex);
  std::ostringstream vertex_line;
  vertex_line.precision(17);
  vertex_line << new_vertex << " " << place.first << " " << place.second;
  text.lines.insert(text.lines.begin() + static_cast<std::ptrdiff_t>(text.first_cell_line - 3), vertex_line.str());
  text.first_cell_line += 1;
  text.set_value("NVERT", new_vertex);
  // The first cell that names either number, and the first of them in it.
  int first = 0;
  for (int c = 1; c <= grid.ncpl && first == 0; ++c) {
    for (int v : grid.cells[static_cast<std::size_t>(c - 1)]) first = v == old_vertex ? c : first;
  }
  const int named = first == 7 ? new_vertex : old_vertex;
  const std::string screen = report_on_grid(text.text());
  EXPECT_NE(screen.find("   FAIL  " + kSamePlace + ": first at cell " + std::to_string(first) + " (vertex " +
                        std::to_string(named) + ")\n"),
            std::string::npos)
      << screen;
}

TEST_F(BrokenGrid, ZeroLengthEdge) {
  std::vector<std::string> cell = text.cell(9);
  cell.insert(cell.begin() + 5, cell[4]);
  cell[3] = std::to_string(std::stoi(cell[3]) + 1);
  text.set_cell(9, cell);
  const std::string screen = report_on_grid(text.text());
  EXPECT_NE(screen.find("   FAIL  " + kZeroEdge + ": first at cell 9\n"), std::string::npos) << screen;
}

TEST_F(BrokenGrid, FaceSharedByOneCell) {
  // Without its last cell, the faces that cell shared are left to one cell
  // each: the first of its neighbours is named.
  const int last = grid.ncpl;
  const std::vector<int>& gone = grid.cells.back();
  int first = 0;
  for (int c = 1; c < last && first == 0; ++c) {
    const std::vector<int>& cell = grid.cells[static_cast<std::size_t>(c - 1)];
    for (std::size_t i = 0; i < cell.size() && first == 0; ++i) {
      const int a = cell[i];
      const int b = cell[(i + 1) % cell.size()];
      for (std::size_t j = 0; j < gone.size(); ++j) {
        const int p = gone[j];
        const int q = gone[(j + 1) % gone.size()];
        if ((a == p && b == q) || (a == q && b == p)) first = c;
      }
    }
  }
  ASSERT_GT(first, 0);
  text.lines.erase(text.lines.begin() + static_cast<std::ptrdiff_t>(text.first_cell_line + static_cast<std::size_t>(last - 1)));
  text.set_value("NCPL", last - 1);
  const std::string screen = report_on_grid(text.text());
  EXPECT_NE(screen.find("   FAIL  " + kFaces + ": first at cell " + std::to_string(first) + "\n"), std::string::npos)
      << screen;
  EXPECT_NE(screen.find("   FAIL  cell areas add up to the domain's area (sum "), std::string::npos) << screen;
}

}  // namespace
}  // namespace tesseramill_test
