// The shift of all coordinates after reading.
#include <gtest/gtest.h>

#include <sstream>

#include "common/failure.h"
#include "run/phases.h"
#include "support/scratch.h"

namespace tesseramill {
namespace {

using tesseramill_test::ScratchDir;

struct ReadModel {
  ScratchDir dir;
  std::ostringstream screen;
  RunState state;
};

void read_model(ReadModel& m, const std::string& outer, const std::string& extra_blocks) {
  const std::string d = m.dir.path().string() + "/";
  m.dir.write("outer.bln", outer);
  m.dir.write("t.in", "START CONTROL\n MAX_CENTROID_SEPARATION 100\n POLY_GROWTH_RATE 1.2\n"
                      " OUT_FILE_BASE m\n MAX_CELLS 5000\nEND\nSTART MF6\n MF6_BASENAME m\n NLAY 1\nEND\n"
                      "START OUTER_BOUNDARY\n BLN_FILE \"" + d + "outer.bln\"\nEND\n" + extra_blocks);
  m.state.screen = &m.screen;
  initialise_run_state(m.state);
  m.state.control_file_name = d + "t.in";
  try {
    read_control_file(m.state);
    read_boundary_files(m.state);
  } catch (const RunFailure&) {
    FAIL() << m.state.message_buffer;
  }
}

TEST(CoordinateShift, SmallestOuterCoordinatesBecome1000) {
  ReadModel m;
  const std::string d = m.dir.path().string() + "/";
  m.dir.write("wells.bln", "1\n-600 7 5\n");
  m.dir.write("river.bln", "2\n-700 10 5\n0 10 5\n");
  m.dir.write("zone.bln", "4\n-500 0\n0 0\n0 50\n-500 0\n");
  read_model(m, "5\n-500 -20 10\n100 -20 10\n100 100 10\n-500 100 10\n-500 -20 10\n",
             "START INNER_POINTS\n BLN_FILE \"" + d + "wells.bln\"\nEND\n"
             "START INNER_LINE\n NUMLINES 1\n BLN_FILE \"" + d + "river.bln\"\nEND\n"
             "START INNER_POLYGON\n BLN_FILE \"" + d + "zone.bln\"\n MAX_CENTROID_SEPARATION 9\nEND\n");
  EXPECT_EQ(m.state.x_offset, -1500.0);
  EXPECT_EQ(m.state.y_offset, -1020.0);
  const std::vector<double>& outer = m.state.outer_boundary.vertices;
  EXPECT_EQ(outer[0], 1000.0);
  EXPECT_EQ(outer[1], 1000.0);
  EXPECT_EQ(outer[2], 1600.0);
  EXPECT_EQ(outer[5], 1120.0);
  // What leaves the program has the offset added back.
  EXPECT_EQ(outer[2] + m.state.x_offset, 100.0);
  // Lines and points to the left of the outer boundary fall below 1000.
  EXPECT_EQ(m.state.inner_point_sets[0].coords[0], 900.0);
  EXPECT_EQ(m.state.inner_point_sets[0].coords[1], 1027.0);
  EXPECT_EQ(m.state.inner_lines[0].vertices[0], 800.0);
  EXPECT_EQ(m.state.inner_polygons[0].vertices[4], 1500.0);
  EXPECT_EQ(m.state.inner_polygons[0].vertices[5], 1070.0);
  // Separations are not shifted.
  EXPECT_EQ(m.state.inner_point_sets[0].separation[0], 5.0);
  EXPECT_EQ(m.state.outer_boundary.closed, -1);
  EXPECT_EQ(m.state.inner_lines[0].closed, 0);
  EXPECT_EQ(m.state.inner_polygons[0].closed, -1);
  EXPECT_TRUE(m.state.inner_polygons[0].vertex_separation.empty());
}

TEST(CoordinateShift, ClosingVertexIsKeptAsRead) {
  ReadModel m;
  read_model(m, "5\n0 0 10\n100 0 10\n100 100 10\n0 100 10\n0.000004 0 10\n", "");
  const BoundaryRing& ring = m.state.outer_boundary;
  ASSERT_EQ(ring.vertex_count, 5);
  EXPECT_EQ(ring.vertices[8], 0.000004 - m.state.x_offset);
  EXPECT_EQ(ring.vertices[0], 1000.0);
}

}  // namespace
}  // namespace tesseramill
