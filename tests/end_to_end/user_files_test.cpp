// What a user meets with names, folders and line ends, on Linux and on
// Windows alike: names with blanks and letters beyond ASCII, control and
// BLN files with CR LF line ends, paths with backslashes, a folder that
// refuses new files, and the line ends of the screen and of the files.
#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <string>
#include <utility>
#include <vector>

#include "common/platform.h"
#include "support/scratch.h"

namespace tesseramill_test {
namespace {

namespace fs = std::filesystem;

const std::string kRing = "5\n0 0 20\n100 0 20\n100 100 20\n0 100 20\n0 0 20\n";

// A small model: about 40 cells, no Lloyd pass, so that it runs in a blink
// under Wine too.  `ring` and `base` go into the control file as written,
// quotes included.
std::string control(const std::string& ring, const std::string& base, const std::string& stem) {
  return "START CONTROL\n MAX_CENTROID_SEPARATION 20\n POLY_GROWTH_RATE 1.2\n OUT_FILE_BASE " + base +
         "\n MAX_CELLS 2000\n MAX_LLOYD 0\nEND\nSTART MF6\n MF6_BASENAME " + stem +
         "\n NLAY 1\nEND\nSTART OUTER_BOUNDARY\n BLN_FILE " + ring + "\nEND\n";
}

// Every line end of `text` as CR LF.
std::string crlf(const std::string& text) {
  std::string out;
  for (char c : text) {
    if (c == '\n') out += '\r';
    out += c;
  }
  return out;
}

std::string replaced(std::string text, const std::vector<std::pair<std::string, std::string>>& names) {
  for (const auto& [from, to] : names) {
    for (std::size_t at = text.find(from); at != std::string::npos; at = text.find(from, at + to.size())) {
      text.replace(at, from.size(), to);
    }
  }
  return text;
}

// The model with plain names (control ctl.in, ring ring.bln, map files
// maps_*, grid files grid.*), run in `dir`.
RunResult plain_run(const ScratchDir& dir) {
  dir.write("ring.bln", kRing);
  dir.write("ctl.in", control("ring.bln", "maps", "grid"));
  return run_binary(dir, {"ctl.in"});
}

// The files of the plain run that hold no name: the grid and the map tables.
const std::vector<std::string> kNamelessFiles = {"grid.disv", "maps_triangles_0.mif", "maps_polygons_0.mid",
                                                 "maps_polygon_centroids_0.dat", "maps_boundary_cells.dat"};

TEST(UserFiles, NamesWithBlanksAndLettersBeyondAscii) {
  ScratchDir plain;
  const RunResult expected = plain_run(plain);
  ASSERT_NE(expected.screen.find(" - file grid.oc written ok.\n"), std::string::npos) << expected.screen;

  // Names in UTF-8, as the control file holds them when saved as UTF-8 and
  // as the command line gives them on either system.
  const std::string control_name = "Modell Grünau ärø.in";
  const std::string ring_name = "Außengrenze Süd.bln";
  const std::string base = "Karte Øster";
  const std::string stem = "grünau";
  ScratchDir dir;
  dir.write(ring_name, kRing);
  dir.write(control_name, control("\"" + ring_name + "\"", "\"" + base + "\"", stem));
  const RunResult result = run_binary(dir, {control_name});
  EXPECT_EQ(result.screen,
            replaced(expected.screen,
                     {{"ctl.in", control_name}, {"ring.bln", ring_name}, {"maps", base}, {"grid.", stem + "."}}));
  const std::vector<std::string> names = dir.listing();
  for (const std::string& name : kNamelessFiles) {
    const std::string renamed = replaced(name, {{"maps", base}, {"grid.", stem + "."}});
    EXPECT_NE(std::find(names.begin(), names.end(), renamed), names.end()) << renamed;
    EXPECT_EQ(dir.read(renamed), plain.read(name)) << renamed;
  }
  EXPECT_EQ(dir.read("mfsim.nam"), replaced(plain.read("mfsim.nam"), {{"grid.", stem + "."}}));
}

// A control file and a BLN file written by a Windows editor: every line
// ends in CR LF.  The run is the same as with LF alone, byte for byte.
TEST(UserFiles, ControlAndBlnFilesWithCrLfLineEnds) {
  ScratchDir plain;
  const RunResult expected = plain_run(plain);
  ScratchDir dir;
  dir.write("ring.bln", crlf(kRing));
  dir.write("ctl.in", crlf(control("ring.bln", "maps", "grid")));
  const RunResult result = run_binary(dir, {"ctl.in"});
  EXPECT_EQ(result.screen, expected.screen);
  EXPECT_EQ(dir.listing(), plain.listing());
  for (const std::string& name : plain.listing()) {
    if (name != "ctl.in" && name != "ring.bln") {
      EXPECT_EQ(dir.read(name), plain.read(name)) << name;
    }
  }
}

// Names are handed to the system as they stand.  On Windows a backslash
// parts folders, so the files are found in, and written to, the folders
// named; on Linux it is a letter of the name like any other.  The screen
// and the files are the same on both.
TEST(UserFiles, PathsWithBackslashes) {
  ScratchDir plain;
  const RunResult expected = plain_run(plain);
  ScratchDir dir;
  fs::create_directory(dir.path() / "in");
  fs::create_directory(dir.path() / "out");
  dir.write("in\\ring.bln", kRing);
  dir.write("in\\ctl.in", control("in\\ring.bln", "out\\maps", "grid"));
  const RunResult result = run_binary(dir, {"in\\ctl.in"});
  EXPECT_EQ(result.screen, replaced(expected.screen, {{"ctl.in", "in\\ctl.in"},
                                                      {"ring.bln", "in\\ring.bln"},
                                                      {"maps", "out\\maps"}}));
  EXPECT_EQ(dir.read("out\\maps_triangles_0.mif"), plain.read("maps_triangles_0.mif"));
  EXPECT_EQ(dir.read("grid.disv"), plain.read("grid.disv"));
  const bool backslash_parts_folders = fs::path::preferred_separator == '\\';
  EXPECT_EQ(fs::exists(dir.path() / "out" / "maps_triangles_0.mif"), backslash_parts_folders);
}

// The map files go into a folder that refuses new files.  Where the system
// enforces that (a user without the right to write there), the run stops
// at the first map file with the message for it, and nothing else is
// written; where it lets the writer through (root on Linux, an
// administrator, Wine, which applies no Windows access rules), the run is
// complete.  The probe tells the two apart the way the program meets them.
TEST(UserFiles, ReadOnlyOutputFolder) {
  ScratchDir dir;
  dir.write("ring.bln", kRing);
  dir.write("ctl.in", control("ring.bln", "maps/m", "grid"));
  fs::create_directory(dir.path() / "maps");
  ASSERT_TRUE(tesseramill::make_folder_read_only(dir.path() / "maps"));
  const std::string probe = tesseramill::path_to_utf8(dir.path() / "maps" / "probe");
  std::FILE* file = tesseramill::open_file(probe, "wb");
  const bool refused = file == nullptr;
  if (file != nullptr) {
    std::fclose(file);
    fs::remove(dir.path() / "maps" / "probe");
  }
  const RunResult result = run_binary(dir, {"ctl.in"});
  if (refused) {
    const std::string tail = "\n - commencing Lloyd iterations...\n\n Cannot write to file maps/m_triangles_0.mif.\n";
    EXPECT_EQ(screen_tail(result.screen, tail.size()), tail);
    EXPECT_TRUE(fs::is_empty(dir.path() / "maps"));
    EXPECT_EQ(dir.listing(), (std::vector<std::string>{"ctl.in", "maps", "ring.bln"}));
  } else {
    EXPECT_EQ(screen_tail(result.screen, 28), " - file grid.oc written ok.\n");
    EXPECT_FALSE(dir.read("maps/m_triangles_0.mif").empty());
  }
  EXPECT_EQ(result.status, 0);
}

// A control file saved as "UTF-8 with BOM" starts with the three bytes of
// the byte order mark, which make its first line no keyword.
TEST(UserFiles, ControlFileWithByteOrderMark) {
  ScratchDir dir;
  dir.write("ring.bln", kRing);
  dir.write("ctl.in", "\xEF\xBB\xBF" + control("ring.bln", "maps", "grid"));
  const RunResult result = run_binary(dir, {"ctl.in"});
  EXPECT_EQ(result.screen, reading("ctl.in") + "\n Unknown keyword at line 1 of file ctl.in.\n");
}

// The screen ends its lines as the system's console programs do (CR LF on
// Windows, LF on Linux); the files end every line with LF alone on both.
TEST(UserFiles, ScreenAndFileLineEnds) {
  ScratchDir dir;
  const RunResult result = plain_run(dir);
  ASSERT_NE(result.screen.find(" - file grid.oc written ok.\n"), std::string::npos) << result.screen;
  EXPECT_EQ(result.raw_screen, replaced(result.screen, {{"\n", tesseramill::screen_line_end()}}));
  for (const std::string& name : dir.listing()) {
    const std::string text = dir.read(name);
    ASSERT_FALSE(text.empty()) << name;
    EXPECT_EQ(text.find('\r'), std::string::npos) << name;
    EXPECT_EQ(text.back(), '\n') << name;
  }
}

}  // namespace
}  // namespace tesseramill_test
