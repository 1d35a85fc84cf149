// Mesh point placement on whole models: the order of the list, the screen
// lines of both phases, and their failures.
#include <gtest/gtest.h>

#include <sstream>

#include "common/failure.h"
#include "run/phases.h"
#include "support/scratch.h"

namespace tesseramill_test {
namespace {

using namespace tesseramill;

const char* const kTwoHolesScreen =
    "\n"
    " TESSERAMILL version 1.21 by Larkspur Analytics.\n"
    "\n"
    " - reading file m.in...\n"
    " - file m.in read ok.\n"
    "\n"
    " - reading file outer.bln...\n"
    " - file outer.bln read ok.\n"
    "\n"
    " - reading file hole1.bln...\n"
    " - file hole1.bln read ok.\n"
    "\n"
    " - reading file hole2.bln...\n"
    " - file hole2.bln read ok.\n"
    "\n"
    " - reading file lines.bln...\n"
    " - 2 inner lines read from file lines.bln.\n"
    "\n"
    " - reading file wells.bln...\n"
    " - file wells.bln read ok.\n"
    "\n"
    " - checking integrity of boundary polygons...\n"
    " - outer boundary ok.\n"
    " - inner boundary # 1 ok.\n"
    " - inner boundary # 2 ok.\n"
    "\n"
    " - populating user-supplied boundaries/lines with mesh points...\n"
    " - repopulating user-supplied boundaries/lines with mesh points...\n"
    " - populating internal model domain with mesh points...\n"
    " - points emplacement cycle 1\n"
    " - points emplacement cycle 2\n"
    " - points emplacement cycle 3\n"
    " - points emplacement cycle 4\n"
    " - points emplacement cycle 5\n"
    " - points emplacement cycle 6\n"
    " - points emplacement cycle 7\n"
    " - 701 points emplaced\n"
    " - minimum points separation =        4.758\n";

TEST(MeshPoints, TwoHolesTwoLinesAndWellsScreen) {
  ScratchDir dir;
  copy_model(dir, "two_holes");
  RunResult result = run_binary(dir, {"m.in"});
  EXPECT_EQ(result.screen.substr(0, std::string(kTwoHolesScreen).size()), kTwoHolesScreen);
  EXPECT_EQ(result.status, 0);
}

struct Placed {
  ScratchDir dir;
  std::ostringstream screen;
  RunState state;
};

// Runs the phases up to the end of `populate_interior` in-process.
void place(Placed& p, const std::string& model, bool interior) {
  copy_model(p.dir, model);
  p.state.screen = &p.screen;
  initialise_run_state(p.state);
  const std::filesystem::path here = std::filesystem::current_path();
  std::filesystem::current_path(p.dir.path());
  p.state.control_file_name = "m.in";
  try {
    read_control_file(p.state);
    read_boundary_files(p.state);
    check_boundaries(p.state);
    populate_boundaries(p.state);
    if (interior) populate_interior(p.state);
  } catch (const RunFailure&) {
    ADD_FAILURE() << p.state.message_buffer;
  }
  std::filesystem::current_path(here);
}

TEST(MeshPoints, FixedOrderOfTheListAndItsLabels) {
  Placed p;
  place(p, "two_holes", false);
  const RunState& s = p.state;
  std::vector<std::int32_t> expected = {-3, -3};
  auto append = [&](std::int32_t label, std::int32_t count) { expected.insert(expected.end(), count, label); };
  append(-1, s.outer_boundary.point_count - 1);
  append(-2, s.inner_boundaries[0].point_count - 1);
  append(-2, s.inner_boundaries[1].point_count - 1);
  append(-4, s.inner_lines[0].point_count - s.inner_lines[0].omitted_count);
  append(-4, s.inner_lines[1].point_count - s.inner_lines[1].omitted_count);
  append(1, 12);
  EXPECT_EQ(s.mesh.mesh_point_label, expected);
  // The inner points come first, in file order.
  EXPECT_EQ(s.mesh.mesh_points[0], 60.0 - s.x_offset);
  EXPECT_EQ(s.mesh.mesh_points[2], 250.0 - s.x_offset);
  // Ring points are numbered along the outer boundary from its first vertex.
  EXPECT_EQ(s.outer_boundary.point_mesh_index[0], 3);
  EXPECT_EQ(s.mesh.mesh_points[4], 1000.0);
  EXPECT_EQ(s.mesh.mesh_points[5], 1000.0);
  // The earlier line keeps all its points; the later one, crossing it, loses
  // those within one step of them.
  EXPECT_EQ(s.inner_lines[0].omitted_count, 0);
  EXPECT_GT(s.inner_lines[1].omitted_count, 0);
  for (std::int32_t j = 0; j < s.inner_lines[1].point_count; ++j) {
    const std::int32_t index = s.inner_lines[1].point_mesh_index[j];
    if (index != 0) {
      EXPECT_EQ(s.mesh.mesh_point_label[index - 1], -4);
    }
  }
}

TEST(MeshPoints, TwoRunsPlaceTheSamePointsBitForBit) {
  Placed first;
  Placed second;
  place(first, "two_holes", true);
  place(second, "two_holes", true);
  ASSERT_GT(first.state.mesh.mesh_point_count, 600);
  EXPECT_EQ(first.state.mesh.mesh_points, second.state.mesh.mesh_points);
  EXPECT_EQ(first.state.mesh.mesh_point_label, second.state.mesh.mesh_point_label);
  EXPECT_EQ(first.screen.str(), second.screen.str());
}

TEST(MeshPoints, LabelsRiseAlongTheList) {
  Placed p;
  place(p, "two_holes", true);
  const std::vector<std::int32_t>& labels = p.state.mesh.mesh_point_label;
  std::int32_t highest = -5;
  for (std::size_t k = 18; k < labels.size(); ++k) {
    if (labels[k] > 0) {
      EXPECT_GE(labels[k], highest);
      highest = labels[k];
    }
  }
  // Cycle 7 found nothing, so the last label is 6.
  EXPECT_EQ(highest, 6);
}

struct Small {
  ScratchDir dir;
  std::string control =
      "START CONTROL\n MAX_CENTROID_SEPARATION 40\n POLY_GROWTH_RATE 1.3\n OUT_FILE_BASE m\n"
      " MAX_CELLS 1001\nEND\nSTART MF6\n MF6_BASENAME m\n NLAY 1\nEND\n"
      "START OUTER_BOUNDARY\n BLN_FILE outer.bln\nEND\n";
  RunResult run() {
    dir.write("t.in", control);
    return run_binary(dir, {"t.in"});
  }
};

TEST(MeshPoints, LineLosingEveryPointStopsTheRun) {
  Small m;
  m.dir.write("outer.bln", "5\n0 0 30\n300 0 30\n300 200 30\n0 200 30\n0 0 30\n");
  m.dir.write("lines.bln", "2\n100 100 10\n150 100 10\n2\n400 50 10\n500 50 10\n");
  m.control += "START INNER_LINE\n NUMLINES 2\n BLN_FILE lines.bln\nEND\n";
  RunResult r = m.run();
  const std::string tail =
      "\n - populating user-supplied boundaries/lines with mesh points...\n"
      " - repopulating user-supplied boundaries/lines with mesh points...\n"
      "\n One or more lines depicted in file lines.bln lie entirely outside the active \n"
      "   model boundary or one line is too close to another line.\n";
  EXPECT_EQ(screen_tail(r.screen, tail.size()), tail);
}

TEST(MeshPoints, CapacityReachedDuringTheCycles) {
  Small m;
  m.dir.write("outer.bln", "5\n0 0 5\n300 0 5\n300 200 5\n0 200 5\n0 0 5\n");
  RunResult r = m.run();
  const std::string tail =
      "\n Number of cell centres is greater than MAX_CELLS value of 1001. Alter value \n"
      "   for this variable in CONTROL block of TESSERAMILL input file.\n";
  EXPECT_EQ(screen_tail(r.screen, tail.size()), tail);
  EXPECT_NE(r.screen.find(" - points emplacement cycle 1\n"), std::string::npos);
}

TEST(MeshPoints, TooFewPointsToPopulateTheDomain) {
  Small m;
  m.dir.write("outer.bln", "4\n0 0 40\n10 0 40\n0 10 40\n0 0 40\n");
  RunResult r = m.run();
  EXPECT_EQ(r.screen,
            reading("t.in") + " - file t.in read ok.\n\n - reading file outer.bln...\n"
            " *** 3 line vertex separations less than requested local centroid separations\n"
            " - file outer.bln read ok.\n\n - checking integrity of boundary polygons...\n"
            " - outer boundary ok.\n\n"
            " - populating user-supplied boundaries/lines with mesh points...\n"
            " - repopulating user-supplied boundaries/lines with mesh points...\n"
            " - populating internal model domain with mesh points...\n\n"
            " Only 4 mesh points were placed on the boundaries, lines and points of the \n"
            "   model; at least 5 are needed to populate the model domain. Reduce the \n"
            "   centroid separations provided in the BLN files.\n");
}

}  // namespace
}  // namespace tesseramill_test
