// Fuzz target: the input holds the five geometry files of a fixed model, an
// outer boundary, a hole, a file of two inner lines, inner points and an
// inner polygon, separated by lines of "##".  A file the input does not
// reach keeps a valid default.  The run stops after the boundary checks.
#include <string>
#include <vector>

#include "fuzz/fuzz_folder.h"

namespace {

const char* const kControl =
    "START CONTROL\n MAX_CENTROID_SEPARATION 100\n POLY_GROWTH_RATE 1.2\n OUT_FILE_BASE m\n"
    " MAX_CELLS 2000\n MAX_LLOYD 0\nEND CONTROL\n"
    "START MF6\n MF6_BASENAME m\n NLAY 1\nEND MF6\n"
    "START OUTER_BOUNDARY\n BLN_FILE outer.bln\nEND\n"
    "START INNER_BOUNDARY\n BLN_FILE hole.bln\nEND\n"
    "START INNER_LINE\n NUMLINES 2\n BLN_FILE lines.bln\nEND\n"
    "START INNER_POINTS\n BLN_FILE pts.bln\nEND\n"
    "START INNER_POLYGON\n BLN_FILE zone.bln\n MAX_CENTROID_SEPARATION 50\nEND\n";

const char* const kNames[] = {"outer.bln", "hole.bln", "lines.bln", "pts.bln", "zone.bln"};
const char* const kDefaults[] = {
    "5\n0 0 10\n100 0 10\n100 100 10\n0 100 10\n0 0 10\n",
    "5\n40 40 5\n60 40 5\n60 60 5\n40 60 5\n40 40 5\n",
    "2\n10 10 5\n30 30 5\n2\n70 10 5\n90 30 5\n",
    "1\n20 80 3\n",
    "5\n10 60\n30 60\n30 90\n10 90\n10 60\n",
};

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  tesseramill_fuzz::enter_fuzz_folder();
  const std::string input(reinterpret_cast<const char*>(data), size);
  std::vector<std::string> parts;
  std::size_t from = 0;
  while (parts.size() < 4) {
    const std::size_t at = input.find("##\n", from);
    if (at == std::string::npos) break;
    parts.push_back(input.substr(from, at - from));
    from = at + 3;
  }
  parts.push_back(input.substr(from));
  tesseramill_fuzz::write_file("t.in", kControl);
  for (std::size_t k = 0; k < 5; ++k) {
    tesseramill_fuzz::write_file(kNames[k], k < parts.size() ? parts[k] : std::string(kDefaults[k]));
  }
  tesseramill_fuzz::run_until(tesseramill::Phase::kCheckBoundaries);
  return 0;
}
