// Closing checks of the control file that compare blocks with each other.
#include "common/failure.h"
#include "common/text_tools.h"
#include "input/control_file.h"

namespace tesseramill {

namespace {

struct NameList {
  const std::string* names;
  int count;
  const std::int32_t* line_block = nullptr;  // inner lines only
};

[[noreturn]] void fail_duplicate(RunState& state, const std::string& name) {
  fail(state, "BLN filename \"" + name + "\" duplicated in file " +
                  trimmed(state.control_file_name) + ".");
}

// Every name of `a` against every name of `b`.
void compare_lists(RunState& state, const NameList& a, const NameList& b) {
  for (int i = 0; i < a.count; ++i) {
    for (int j = 0; j < b.count; ++j) {
      if (a.names[i] == b.names[j]) fail_duplicate(state, a.names[i]);
    }
  }
}

// Every name of a list against every later name of the same list; the lines
// of one INNER_LINE block rightly share their file.
void compare_within(RunState& state, const NameList& list) {
  for (int i = 0; i < list.count; ++i) {
    for (int j = i + 1; j < list.count; ++j) {
      if (list.line_block != nullptr && list.line_block[i] == list.line_block[j]) continue;
      if (list.names[i] == list.names[j]) fail_duplicate(state, list.names[i]);
    }
  }
}

}  // namespace

void check_duplicate_bln_names(RunState& state) {
  const ControlData& c = state.control;
  const NameList outer{&c.outer_boundary_file, 1};
  const NameList boundaries{c.inner_boundary_files.data(), c.inner_boundary_count};
  const NameList lines{c.inner_line_files.data(), c.inner_line_count, c.inner_line_block.data()};
  const NameList points{c.inner_points_files.data(), c.inner_points_count};
  const NameList polygons{c.inner_polygon_files.data(), c.inner_polygon_count};

  compare_lists(state, outer, boundaries);
  compare_lists(state, outer, lines);
  compare_lists(state, outer, points);
  compare_lists(state, outer, polygons);
  compare_within(state, boundaries);
  compare_within(state, lines);
  compare_within(state, points);
  compare_within(state, polygons);
  compare_lists(state, boundaries, lines);
  compare_lists(state, boundaries, points);
  compare_lists(state, boundaries, polygons);
  compare_lists(state, lines, points);
  compare_lists(state, lines, polygons);
  compare_lists(state, points, polygons);
}

void check_control_totals(RunState& state) {
  const ControlData& c = state.control;
  for (int k = 0; k < c.inner_polygon_count; ++k) {
    if (c.inner_polygon_max_separation[static_cast<std::size_t>(k)] > c.max_centroid_separation) {
      fail(state, "Value for MAX_CENTROID_SEPARATION provided in the CONTROL block must be greater "
                  "than values provided for MAX_CENTROID_SEPARATION in INNER_POLYGON blocks.");
    }
  }
  const bool x_set = real_is_set(c.xorigin);
  const bool y_set = real_is_set(c.yorigin);
  if ((x_set && !y_set) || (!x_set && y_set)) {
    fail(state, "Values must be supplied for BOTH of XORIGIN and YORIGIN in CONTROL block of file " +
                    trimmed(state.control_file_name) +
                    " or for NEITHER of these variables.");
  }
}

}  // namespace tesseramill
