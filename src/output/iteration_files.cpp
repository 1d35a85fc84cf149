#include "output/iteration_files.h"

#include <algorithm>
#include <cmath>
#include <cstring>
#include <string_view>

#include "common/text_tools.h"
#include "output/number_format.h"
#include "output/text_file.h"

namespace tesseramill {

namespace {

std::string stamped_name(const RunState& state, const std::string& kind, const std::string& ending) {
  return trimmed(state.control.out_file_base) + kind + trimmed(state.iteration_stamp) + ending;
}

// One coordinate line: `lead` ("Center" or nothing), 10 blanks, then x and
// y each behind 2 blanks in 15 columns, 3 decimals.  The line is made up
// whole and appended at once, as the map files hold millions of them.
void coordinate_line(std::string& text, double x, double y, std::string_view lead = {}) {
  constexpr std::size_t kLongestLead = 6;
  char line[kLongestLead + 12 + 15 + 2 + 15 + 1];
  const std::size_t n = std::min(lead.size(), kLongestLead);
  if (n > 0) std::memcpy(line, lead.data(), n);  // an empty lead may hold no address
  std::memset(line + n, ' ', 12);
  char* p = put_fixed(line + n + 12, x, 15, 3);
  *p++ = ' ';
  *p++ = ' ';
  p = put_fixed(p, y, 15, 3);
  *p++ = '\n';
  text.append(line, static_cast<std::size_t>(p - line));
}

// Fills two sets of files, `first` and then `second` as one thread does, or
// side by side on a thread each when they hold `items` items, enough for a
// second thread to pay.  The files are apart, and each gets the bytes it
// gets when filled alone.  When `first` fails (memory that runs out), one
// thread would not have begun `second`: once it has stopped, its files are
// left empty again by `empty_second`, as they stood when opened, and the
// failure of `first` goes on.  A failure of `second` alone leaves the files
// one thread leaves, as `first` ends whole either way.
template <typename First, typename Second, typename EmptySecond>
void fill_side_by_side(std::size_t items, First first, Second second, EmptySecond empty_second) {
  if (items < smallest_shared_work.load(std::memory_order_relaxed)) {
    first();
    second();
    return;
  }
  BackgroundJob beside;
  beside.start(second);
  try {
    first();
  } catch (...) {
    try {
      beside.finish();
    } catch (...) {
      // The failure of `first` is the one that one thread meets.
    }
    empty_second();
    throw;
  }
  beside.finish();
}

}  // namespace

void open_triangle_map_files(RunState& state, TriangleMapFiles& files) {
  open_output(state, files.mif, stamped_name(state, "_triangles_", ".mif"));
  open_output(state, files.mid, stamped_name(state, "_triangles_", ".mid"));
}

namespace {

void fill_triangle_mif(const RunState& state, OutputFile& mif) {
  for (const char* head : {"Version 2", "Delimiter \",\"", "Columns 5", "   itri Integer",
                           "   tnbr_1 Integer", "   tnbr_2 Integer", "   tnbr_3 Integer",
                           "   itstat Integer", "Data"}) {
    put_line(mif, head);
  }
  const TriangleTable& tt = state.triangles;
  const std::vector<double>& p = state.mesh.mesh_points;
  // A triangle outside the domain has no lines in either file.
  put_items(mif, static_cast<std::size_t>(tt.triangle_count), [&](std::size_t k, std::string& text) {
    if (tt.itstat[k] == -1) return;
    text += " \nRegion 1\n   3\n";
    double corner[3][2];
    for (int e = 0; e < 3; ++e) {
      const std::size_t v = static_cast<std::size_t>(tt.tri_vertex[3 * k + static_cast<std::size_t>(e)] - 1);
      corner[e][0] = p[2 * v];
      corner[e][1] = p[2 * v + 1];
      coordinate_line(text, corner[e][0] + state.x_offset, corner[e][1] + state.y_offset);
    }
    const double cx = (corner[0][0] + corner[1][0] + corner[2][0]) * 0.3333333333333333 + state.x_offset;
    const double cy = (corner[0][1] + corner[1][1] + corner[2][1]) * 0.3333333333333333 + state.y_offset;
    coordinate_line(text, cx, cy, "Center");
  });
  close_output(mif);
}

void fill_triangle_mid(const RunState& state, OutputFile& mid) {
  const TriangleTable& tt = state.triangles;
  put_items(mid, static_cast<std::size_t>(tt.triangle_count), [&](std::size_t k, std::string& text) {
    if (tt.itstat[k] == -1) return;
    // The number, the three neighbours and the status, each in 6 columns,
    // made up whole and appended at once.
    char line[5 * 7];
    char* p = put_integer(line, static_cast<std::int64_t>(k + 1), 6);
    for (int e = 0; e < 3; ++e) {
      *p++ = ',';
      p = put_integer(p, tt.tri_neighbour[3 * k + static_cast<std::size_t>(e)], 6);
    }
    *p++ = ',';
    p = put_integer(p, tt.itstat[k], 6);
    *p++ = '\n';
    text.append(line, static_cast<std::size_t>(p - line));
  });
  close_output(mid);
}

}  // namespace

void fill_triangle_map_files(const RunState& state, TriangleMapFiles& files) {
  fill_side_by_side(
      static_cast<std::size_t>(std::max(state.triangles.triangle_count, 0)),
      [&] { fill_triangle_mif(state, files.mif); }, [&] { fill_triangle_mid(state, files.mid); },
      [&] { empty_output(files.mid); });
}

void write_triangle_map_files(RunState& state) {
  TriangleMapFiles files;
  open_triangle_map_files(state, files);
  fill_triangle_map_files(state, files);
}

namespace {

void fill_polygon_map_files(const RunState& state, OutputFile& mif, OutputFile& mid,
                            FillCores cores = FillCores::both) {
  for (const char* head : {"Version 2", "Delimiter \",\"", "Columns 2", "   icpl Integer",
                           "   cell_area  Float", "Data"}) {
    put_line(mif, head);
  }
  const CellTables& cells = state.cells;
  const std::size_t count = static_cast<std::size_t>(state.mesh.mesh_point_count);
  put_items(mif, count, [&](std::size_t k, std::string& text) {
    const std::int32_t m = cells.cell_vertex_count[k];
    const std::size_t first = static_cast<std::size_t>(cells.cell_first_vertex[k] - 1);
    char head[11 + 6 + 3];
    std::memcpy(head, " \nRegion 1\n", 11);
    char* p = put_integer(head + 11, m + 1, 6);
    std::memcpy(p, ", \n", 3);
    text.append(head, sizeof head);
    for (std::int32_t j = 0; j <= m; ++j) {
      const std::size_t c = first + static_cast<std::size_t>(j == m ? 0 : j);
      coordinate_line(text, cells.cell_vertices[2 * c] + state.x_offset, cells.cell_vertices[2 * c + 1] + state.y_offset);
    }
    coordinate_line(text, cells.cell_centroid[2 * k] + state.x_offset, cells.cell_centroid[2 * k + 1] + state.y_offset,
                    "Center");
  }, cores);
  put_items(mid, count, [&](std::size_t k, std::string& text) {
    char line[6 + 2 + 16 + 1];
    char* p = put_integer(line, static_cast<std::int64_t>(k + 1), 6);
    *p++ = ',';
    *p++ = ' ';
    p = put_scientific(p, std::fabs(cells.cell_area[k]), 16, 9);
    *p++ = '\n';
    text.append(line, static_cast<std::size_t>(p - line));
  }, cores);
  close_output(mif);
  close_output(mid);
}

void fill_polygon_bln_file(const RunState& state, OutputFile& bln, FillCores cores = FillCores::both) {
  const CellTables& cells = state.cells;
  put_items(bln, static_cast<std::size_t>(state.mesh.mesh_point_count), [&](std::size_t k, std::string& text) {
    const std::int32_t m = cells.cell_vertex_count[k];
    const std::size_t first = static_cast<std::size_t>(cells.cell_first_vertex[k] - 1);
    append_integer(text, m + 1, 10);
    append_integer(text, 1, 5);
    text += "   \"";
    append_integer(text, static_cast<std::int64_t>(k + 1));
    text += "\"\n";
    for (std::int32_t j = 0; j <= m; ++j) {
      const std::size_t c = first + static_cast<std::size_t>(j == m ? 0 : j);
      // Each number needs at most 10 + 9 columns.
      char line[2 * (2 + 19) + 1];
      char* p = line;
      for (const double value : {cells.cell_vertices[2 * c] + state.x_offset,
                                 cells.cell_vertices[2 * c + 1] + state.y_offset}) {
        *p++ = ' ';
        *p++ = ' ';
        p = put_scientific(p, value, 0, 10);
      }
      *p++ = '\n';
      text.append(line, static_cast<std::size_t>(p - line));
    }
  }, cores);
  close_output(bln);
}

void fill_polygon_centroid_table(const RunState& state, OutputFile& dat, FillCores cores = FillCores::both) {
  put_line(dat, "      icpl       centroid_x       centroid_y          cell_area");
  const CellTables& cells = state.cells;
  put_items(dat, static_cast<std::size_t>(state.mesh.mesh_point_count), [&](std::size_t k, std::string& text) {
    char line[10 + 3 * (3 + 15) + 1];
    char* p = put_integer(line, static_cast<std::int64_t>(k + 1), 10);
    for (const double value : {cells.cell_centroid[2 * k] + state.x_offset,
                               cells.cell_centroid[2 * k + 1] + state.y_offset, std::fabs(cells.cell_area[k])}) {
      std::memset(p, ' ', 3);
      p = put_fixed(p + 3, value, 15, 4);
    }
    *p++ = '\n';
    text.append(line, static_cast<std::size_t>(p - line));
  }, cores);
  close_output(dat);
}

}  // namespace

void open_cell_files(RunState& state, CellFiles& files) {
  open_output(state, files.mif, stamped_name(state, "_polygons_", ".mif"));
  open_output(state, files.mid, stamped_name(state, "_polygons_", ".mid"));
  // A file that cannot be opened ends the run with the files before it
  // written in full, as when each is written as soon as it is opened.
  const std::string bln = stamped_name(state, "_polygons_", ".bln");
  if (!try_open_output(files.bln, bln)) {
    fill_polygon_map_files(state, files.mif, files.mid);
    fail_to_open(state, files.bln);
  }
  const std::string dat = stamped_name(state, "_polygon_centroids_", ".dat");
  if (!try_open_output(files.dat, dat)) {
    fill_polygon_map_files(state, files.mif, files.mid);
    fill_polygon_bln_file(state, files.bln);
    fail_to_open(state, files.dat);
  }
}

void fill_cell_files(const RunState& state, CellFiles& files, FillCores cores) {
  if (cores == FillCores::one) {
    fill_polygon_map_files(state, files.mif, files.mid, cores);
    fill_polygon_bln_file(state, files.bln, cores);
    fill_polygon_centroid_table(state, files.dat, cores);
    return;
  }
  fill_side_by_side(
      static_cast<std::size_t>(std::max(state.mesh.mesh_point_count, 0)),
      [&] { fill_polygon_map_files(state, files.mif, files.mid); },
      [&] {
        fill_polygon_bln_file(state, files.bln);
        fill_polygon_centroid_table(state, files.dat);
      },
      [&] {
        empty_output(files.bln);
        empty_output(files.dat);
      });
}

void write_polygon_map_files(RunState& state) {
  OutputFile mif;
  OutputFile mid;
  open_output(state, mif, stamped_name(state, "_polygons_", ".mif"));
  open_output(state, mid, stamped_name(state, "_polygons_", ".mid"));
  fill_polygon_map_files(state, mif, mid);
}

void write_polygon_bln_file(RunState& state) {
  OutputFile bln;
  open_output(state, bln, stamped_name(state, "_polygons_", ".bln"));
  fill_polygon_bln_file(state, bln);
}

void write_polygon_centroid_table(RunState& state) {
  OutputFile dat;
  open_output(state, dat, stamped_name(state, "_polygon_centroids_", ".dat"));
  fill_polygon_centroid_table(state, dat);
}

}  // namespace tesseramill
