// Fuzz target: the input is the grid file of a fixed small model (a square
// with an inner line that leaves it, a point and a zone), and the report
// program reads it with the model's control and BLN files, then writes its
// tables, picture and quality report.
#include <sstream>
#include <string>

#include "fuzz/fuzz_folder.h"
#include "report/report_program.h"

namespace {

const char* const kControl =
    "START CONTROL\n MAX_CENTROID_SEPARATION 40\n POLY_GROWTH_RATE 1.2\n OUT_FILE_BASE m\n"
    " MAX_CELLS 2000\n MAX_LLOYD 2\nEND CONTROL\n"
    "START MF6\n MF6_BASENAME m\n NLAY 1\nEND MF6\n"
    "START OUTER_BOUNDARY\n BLN_FILE outer.bln\nEND\n"
    "START INNER_LINE\n NUMLINES 1\n BLN_FILE line.bln\nEND\n"
    "START INNER_POINTS\n BLN_FILE pts.bln\nEND\n"
    "START INNER_POLYGON\n BLN_FILE zone.bln\n MAX_CENTROID_SEPARATION 30\nEND\n";

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  tesseramill_fuzz::enter_fuzz_folder();
  tesseramill_fuzz::write_file("t.in", kControl);
  tesseramill_fuzz::write_file("outer.bln", "5\n0 0 40\n100 0 40\n100 100 40\n0 100 40\n0 0 40\n");
  tesseramill_fuzz::write_file("line.bln", "2\n-10 20 30\n90 70 30\n");
  tesseramill_fuzz::write_file("pts.bln", "1\n70 30 25\n");
  tesseramill_fuzz::write_file("zone.bln", "5\n10 60\n40 60\n40 90\n10 90\n10 60\n");
  tesseramill_fuzz::write_file("m.disv", data, size);
  std::ostringstream screen;
  const char* argv[] = {"tesseramill-report", "t.in"};
  tesseramill::run_report(2, argv, screen);
  return 0;
}
