#include "input/bln_reader.h"

#include <algorithm>
#include <cmath>
#include <new>
#include <ostream>

#include "common/failure.h"
#include "common/text_tools.h"
#include "input/bln_lines.h"

namespace tesseramill {

namespace {

// Counts the segments shorter than the separation at either of their ends.
std::int32_t count_short_segments(const BoundaryRing& ring) {
  std::int32_t count = 0;
  for (std::int32_t k = 0; k + 1 < ring.vertex_count; ++k) {
    const double dx = ring.vertices[2 * k + 2] - ring.vertices[2 * k];
    const double dy = ring.vertices[2 * k + 3] - ring.vertices[2 * k + 1];
    const double length = std::sqrt(dx * dx + dy * dy);
    if (length < ring.vertex_separation[k] || length < ring.vertex_separation[k + 1]) ++count;
  }
  return count;
}

// Room made at once for the vertices of a group; beyond it the tables grow
// as lines are read, so that a header announcing more vertices than the file
// holds costs no memory for the ones that never come.
constexpr std::size_t kFirstRoom = std::size_t{1} << 16;

// Reads `count` vertex lines into `coords` and, when `with_separation`, into
// `separations`.  Memory that cannot be obtained on the way ends the run
// with `memory_message`.
void read_vertex_table(RunState& state, LineReader& reader, const std::string& file,
                       std::int32_t& line_number, std::int32_t count, bool with_separation,
                       std::vector<double>& coords, std::vector<double>& separations,
                       const char* memory_message) {
  try {
    const std::size_t room = std::min(static_cast<std::size_t>(count), kFirstRoom);
    coords.clear();
    coords.reserve(2 * room);
    separations.clear();
    if (with_separation) separations.reserve(room);
    for (std::int32_t k = 0; k < count; ++k) {
      double x = 0.0;
      double y = 0.0;
      double separation = 0.0;
      read_vertex_line(state, reader, file, line_number, with_separation, x, y, separation);
      coords.push_back(x);
      coords.push_back(y);
      if (with_separation) separations.push_back(separation);
    }
  } catch (const std::bad_alloc&) {
    fail(state, memory_message);
  } catch (const std::length_error&) {
    fail(state, memory_message);
  }
}

void read_ring_group(RunState& state, LineReader& reader, const std::string& file,
                     BoundaryRing& ring, bool read_separations, std::int32_t& line_number) {
  std::int32_t count = 0;
  switch (read_group_count(reader, count)) {
    case CountStatus::kEnd: fail(state, "Premature end encountered to file " + file + ".");
    case CountStatus::kBad:
      fail(state, "Error reading integer on line " + int_to_text(line_number) + " of file " + file + ".");
    case CountStatus::kOk: break;
  }
  if (count < 2) {
    fail(state, "Illegal number of points provided on line " + int_to_text(line_number) +
                    " of file " + file + ".");
  }
  read_vertex_table(state, reader, file, line_number, count, read_separations, ring.vertices,
                    ring.vertex_separation, "Error allocating memory to hold line data.");
  ring.vertex_count = count;
  if (read_separations) {
    std::int32_t short_segments = count_short_segments(ring);
    if (short_segments > 0) {
      *state.screen << " *** " << short_segments
                    << " line vertex separations less than requested local centroid separations\n";
    }
  }
}

}  // namespace

void read_bln_polyline(RunState& state, LineReader& reader, const std::string& file_name,
                       BoundaryRing& ring, bool read_separations, bool open_file, bool close_file,
                       std::int32_t& line_number) {
  const std::string file = trimmed(file_name);
  if (open_file) {
    if (!open_lines(reader, file_name)) fail(state, "Cannot open file " + file + ".");
    line_number = 1;
  } else {
    count_line(line_number);
  }
  read_ring_group(state, reader, file, ring, read_separations, line_number);
  if (close_file) close_lines(reader);
}

void read_point_file(RunState& state, const std::string& file_name, PointSet& points) {
  const std::string file = trimmed(file_name);
  LineReader reader;
  if (!open_lines(reader, file_name)) fail(state, "Cannot open file " + file + ".");
  std::int32_t count = 0;
  switch (read_group_count(reader, count)) {
    case CountStatus::kEnd: fail(state, "Premature end encountered to file " + file + ".");
    case CountStatus::kBad: fail(state, "Error reading first line of file " + file + ".");
    case CountStatus::kOk: break;
  }
  if (count < 1) fail(state, "Illegal number of points provided on first line of file " + file + ".");
  std::int32_t line_number = 1;
  read_vertex_table(state, reader, file, line_number, count, true, points.coords, points.separation,
                    "Error allocating memory to hold points data.");
  points.count = count;
}

void test_ring_closure(RunState& state, const BoundaryRing& ring, const std::string& file_name) {
  const std::size_t last = 2 * static_cast<std::size_t>(ring.vertex_count - 1);
  if (std::fabs(ring.vertices[last] - ring.vertices[0]) > 1e-5 ||
      std::fabs(ring.vertices[last + 1] - ring.vertices[1]) > 1e-5) {
    fail(state, "Coordinates of first and last points in file " + trimmed(file_name) +
                    " must be the same.");
  }
}

}  // namespace tesseramill
