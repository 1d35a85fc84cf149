// Reading of the BLN files that the control file names, the test of their
// separations, and the shift of every coordinate.
#include <ostream>

#include "common/text_tools.h"
#include "emplacement/interior_emplacement.h"
#include "input/bln_reader.h"
#include "input/coordinate_shift.h"
#include "run/phases.h"

namespace tesseramill {

namespace {

void read_ring_file(RunState& state, const std::string& file_name, BoundaryRing& ring,
                    bool read_separations) {
  std::ostream& screen = *state.screen;
  const std::string file = trimmed(file_name);
  screen << "\n - reading file " << file << "...\n";
  LineReader reader;
  std::int32_t line_number = 0;
  read_bln_polyline(state, reader, file_name, ring, read_separations, true, true, line_number);
  test_ring_closure(state, ring, file_name);
  ring.closed = -1;
  screen << " - file " << file << " read ok.\n";
}

// Reads every inner line; the lines of one file are neighbours in the table
// and share one open file.
void read_inner_lines(RunState& state) {
  const ControlData& c = state.control;
  std::ostream& screen = *state.screen;
  state.inner_lines.assign(static_cast<std::size_t>(c.inner_line_count), BoundaryRing{});
  LineReader reader;
  std::int32_t line_number = 0;
  std::int32_t lines_in_file = 0;
  for (std::int32_t i = 0; i < c.inner_line_count; ++i) {
    const std::string& name = c.inner_line_files[static_cast<std::size_t>(i)];
    const bool open_file = i == 0 || c.inner_line_files[static_cast<std::size_t>(i - 1)] != name;
    const bool close_file =
        i + 1 == c.inner_line_count || c.inner_line_files[static_cast<std::size_t>(i + 1)] != name;
    const std::string file = trimmed(name);
    lines_in_file = open_file ? 1 : lines_in_file + 1;
    if (open_file) screen << "\n - reading file " << file << "...\n";
    read_bln_polyline(state, reader, name, state.inner_lines[static_cast<std::size_t>(i)], true,
                      open_file, close_file, line_number);
    if (close_file) {
      if (lines_in_file == 1) {
        screen << " - 1 inner line read from file " << file << ".\n";
      } else {
        screen << " - " << lines_in_file << " inner lines read from file " << file << ".\n";
      }
    }
  }
}

}  // namespace

void read_boundary_files(RunState& state) {
  ControlData& c = state.control;
  std::ostream& screen = *state.screen;
  // MAX_LLOYD and NSDIM take their defaults only now, after the control file
  // has been reported read, since the emplacement grid is sized from NSDIM.
  if (c.max_lloyd < 0) c.max_lloyd = kDefaultMaxLloyd;
  if (c.nsdim < 0) c.nsdim = kDefaultNsdim;
  create_emplacement_grid(state);

  read_ring_file(state, c.outer_boundary_file, state.outer_boundary, true);

  state.inner_boundaries.assign(static_cast<std::size_t>(c.inner_boundary_count), BoundaryRing{});
  for (std::int32_t i = 0; i < c.inner_boundary_count; ++i) {
    read_ring_file(state, c.inner_boundary_files[static_cast<std::size_t>(i)],
                   state.inner_boundaries[static_cast<std::size_t>(i)], true);
  }

  read_inner_lines(state);

  state.inner_point_sets.assign(static_cast<std::size_t>(c.inner_points_count), PointSet{});
  for (std::int32_t i = 0; i < c.inner_points_count; ++i) {
    const std::string& name = c.inner_points_files[static_cast<std::size_t>(i)];
    screen << "\n - reading file " << trimmed(name) << "...\n";
    read_point_file(state, name, state.inner_point_sets[static_cast<std::size_t>(i)]);
    screen << " - file " << trimmed(name) << " read ok.\n";
  }

  state.inner_polygons.assign(static_cast<std::size_t>(c.inner_polygon_count), BoundaryRing{});
  for (std::int32_t i = 0; i < c.inner_polygon_count; ++i) {
    read_ring_file(state, c.inner_polygon_files[static_cast<std::size_t>(i)],
                   state.inner_polygons[static_cast<std::size_t>(i)], false);
  }

  check_separations_and_shift(state);
}

}  // namespace tesseramill
