#include "relaxation/cell_polygons.h"

#include <algorithm>
#include <cmath>

#include "common/failure.h"
#include "common/parallel.h"
#include "common/prefetch.h"
#include "common/text_tools.h"
#include "relaxation/fan_order.h"

namespace tesseramill {

namespace {

std::int32_t* column(RunState& state, std::int32_t p) {
  TriangleTable& tt = state.triangles;
  return tt.connected_triangles.data() + static_cast<std::size_t>(p - 1) * static_cast<std::size_t>(tt.row_capacity);
}

void put_corner(CellTables& cells, std::int32_t position, double x, double y, std::int32_t code) {
  cells.cell_vertices[2 * static_cast<std::size_t>(position - 1)] = x;
  cells.cell_vertices[2 * static_cast<std::size_t>(position - 1) + 1] = y;
  cells.cell_vertex_code[static_cast<std::size_t>(position - 1)] = code;
}

std::string too_few_triangles(std::int32_t reported_number) {
  return "Only a single triangle, or zero triangles, is connected to emplaced point number " +
         int_to_text(reported_number) + ". This is an internal point.";
}

void plain_cell(RunState& state, CellCursor& cursor, std::int32_t p, std::int32_t reported_number) {
  CellTables& cells = state.cells;
  const TriangleTable& tt = state.triangles;
  const std::int32_t c = tt.point_tri_count[static_cast<std::size_t>(p - 1)];
  cells.cell_vertex_count[static_cast<std::size_t>(p - 1)] = c;
  cells.cell_first_vertex[static_cast<std::size_t>(p - 1)] = cursor.last_vertex + 1;
  if (c < 2) fail(state, too_few_triangles(reported_number));
  const std::int32_t* col = column(state, p);
  for (std::int32_t k = 1; k <= c; ++k) {
    const std::int32_t t = col[k - 1];
    put_corner(cells, cursor.last_vertex + k, tt.tri_centroid[2 * static_cast<std::size_t>(t - 1)],
               tt.tri_centroid[2 * static_cast<std::size_t>(t - 1) + 1], t);
  }
  cursor.last_vertex += c;
  cursor.last_point = p;
}

// The counts and first corners of the plain cells of mesh points first to
// n, which follow the ring points: where each cell's corners go is the
// running sum of the counts before it.  A point of fewer than two
// triangles ends the run with the message the cell-by-cell loop meets
// first, that of the lowest such point; the tables a failing run leaves are
// never read.
void number_plain_cells(RunState& state, CellCursor& cursor, std::int32_t first, std::int32_t n) {
  if (first > n) return;
  CellTables& cells = state.cells;
  const TriangleTable& tt = state.triangles;
  std::int32_t last_vertex = cursor.last_vertex;
  for (std::int32_t p = first; p <= n; ++p) {
    const std::size_t at = static_cast<std::size_t>(p - 1);
    const std::int32_t c = tt.point_tri_count[at];
    if (c < 2) fail(state, too_few_triangles(p));
    cells.cell_vertex_count[at] = c;
    cells.cell_first_vertex[at] = last_vertex + 1;
    last_vertex += c;
  }
  cursor.last_vertex = last_vertex;
  cursor.last_point = n;
}

// The plain cells of mesh points first to n.  Once numbered, each cell
// reads its own column and writes its own corners alone, so the two halves
// of the points are filled side by side with the same result.
void plain_cells(RunState& state, CellCursor& cursor, std::int32_t first, std::int32_t n) {
  if (first > n) return;
  number_plain_cells(state, cursor, first, n);
  CellTables& cells = state.cells;
  const TriangleTable& tt = state.triangles;
  run_in_parts(static_cast<std::size_t>(n - first + 1), [&](std::size_t begin, std::size_t end, int) {
    for (std::size_t k = begin; k < end; ++k) {
      const std::int32_t p = first + static_cast<std::int32_t>(k);
      const std::size_t at = static_cast<std::size_t>(p - 1);
      const std::int32_t* col = column(state, p);
      const std::int32_t base = cells.cell_first_vertex[at] - 1;
      for (std::int32_t v = 1; v <= cells.cell_vertex_count[at]; ++v) {
        const std::int32_t t = col[v - 1];
        put_corner(cells, base + v, tt.tri_centroid[2 * static_cast<std::size_t>(t - 1)],
                   tt.tri_centroid[2 * static_cast<std::size_t>(t - 1) + 1], t);
      }
    }
    return PartFailure{};
  });
}

// The cells of the inner points and of the ring points, in their order,
// which come before the plain cells.
void fixed_point_cells(RunState& state, CellCursor& cursor) {
  const std::int32_t n = state.mesh.mesh_point_count;
  for (const PointSet& points : state.inner_point_sets) {
    for (std::int32_t k = 0; k < points.count; ++k) {
      // An inner point that fails is reported by the number after the last
      // mesh point, whichever inner point it was.
      plain_cell(state, cursor, cursor.last_point + 1, n + 1);
    }
  }
  if (!populate_boundary_with_polys(state, cursor, state.outer_boundary)) throw RunFailure{};
  for (const BoundaryRing& ring : state.inner_boundaries) {
    if (!populate_boundary_with_polys(state, cursor, ring)) throw RunFailure{};
  }
}

// The area and centroid of every cell, each by itself in a polygon buffer
// of its own part.  The corners of the plain cells from mesh point
// `first_gathered` on are gathered from their columns and the triangles'
// centroids, as plain_cells writes them, with their codes written as it
// writes them; every other cell's corners are read from cell_vertices.
void measure_cells_from(RunState& state, std::int32_t first_gathered) {
  CellTables& cells = state.cells;
  const TriangleTable& tt = state.triangles;
  cells.second_polygon_buffer.resize(cells.polygon_buffer.size());
  const std::size_t gathered = static_cast<std::size_t>(std::max(first_gathered, 1) - 1);
  const PartFailure failure =
      run_in_parts(static_cast<std::size_t>(state.mesh.mesh_point_count), [&](std::size_t begin, std::size_t end, int part) {
        std::vector<double>& buffer = part == 0 ? cells.polygon_buffer : cells.second_polygon_buffer;
        for (std::size_t k = begin; k < end; ++k) {
          const std::int32_t v = cells.cell_vertex_count[k];
          if (v > kMaxPolyVert) {
            return PartFailure{k, "Maximum permitted vertices in any one Voronoi polygon is 100. Increase "
                                  "MAXPOLYVERT and recompile program."};
          }
          const std::size_t first = static_cast<std::size_t>(cells.cell_first_vertex[k] - 1);
          // The centroids a gathered cell some places on will read lie
          // scattered; they are asked for while this cell is measured, whose
          // sums wait on each other and would otherwise leave the loads of
          // the cells after it to wait their turn.  A hint changes no value.
          if (k >= gathered && k + kPrefetchAhead < end) {
            const std::size_t ahead = k + kPrefetchAhead;
            const std::int32_t* ahead_col = column(state, static_cast<std::int32_t>(ahead + 1));
            for (std::int32_t j = 0; j < cells.cell_vertex_count[ahead] && j < kMaxPolyVert; ++j) {
              prefetch(&tt.tri_centroid[2 * static_cast<std::size_t>(ahead_col[j] - 1)]);
            }
          }
          if (k >= gathered) {
            const std::int32_t* col = column(state, static_cast<std::int32_t>(k + 1));
            for (std::int32_t j = 0; j < v; ++j) {
              const std::int32_t t = col[j];
              buffer[2 * static_cast<std::size_t>(j)] = tt.tri_centroid[2 * static_cast<std::size_t>(t - 1)];
              buffer[2 * static_cast<std::size_t>(j) + 1] = tt.tri_centroid[2 * static_cast<std::size_t>(t - 1) + 1];
              cells.cell_vertex_code[first + static_cast<std::size_t>(j)] = t;
            }
          } else {
            std::copy(cells.cell_vertices.begin() + static_cast<std::ptrdiff_t>(2 * first),
                      cells.cell_vertices.begin() + static_cast<std::ptrdiff_t>(2 * first + 2 * static_cast<std::size_t>(v)),
                      buffer.begin());
          }
          const AreaCentroid result = polygon_area_centroid(v, buffer.data());
          cells.cell_centroid[2 * k] = result.x;
          cells.cell_centroid[2 * k + 1] = result.y;
          cells.cell_area[k] = result.area;
          if (result.area == 0.0) {
            return PartFailure{k, "The area of the Voronoi polygon associated with cell number " +
                                      int_to_text(static_cast<std::int32_t>(k + 1)) + " is zero."};
          }
        }
        return PartFailure{};
      });
  if (failure.failed()) fail(state, failure.message);
}

}  // namespace

bool ring_point_cell(RunState& state, CellCursor& cursor, const BoundaryRing& ring, std::int32_t i) {
  CellTables& cells = state.cells;
  const TriangleTable& tt = state.triangles;
  const std::vector<double>& mesh = state.mesh.mesh_points;
  const std::int32_t big_n = ring.point_count;
  const std::int32_t p = cursor.last_point + 1;
  const std::int32_t c = tt.point_tri_count[static_cast<std::size_t>(p - 1)];
  cells.cell_vertex_count[static_cast<std::size_t>(p - 1)] = c + 3;
  cells.cell_first_vertex[static_cast<std::size_t>(p - 1)] = cursor.last_vertex + 1;

  std::int32_t prev_pos;
  std::int32_t prev_point;
  std::int32_t next_pos;
  std::int32_t next_point;
  if (i == 1) {
    prev_pos = big_n - 1;
    prev_point = ring.point_mesh_index[static_cast<std::size_t>(big_n - 2)];
    next_pos = 2;
    next_point = p + 1;
  } else if (i == big_n - 1) {
    prev_pos = big_n - 2;
    prev_point = p - 1;
    next_pos = 1;
    next_point = ring.point_mesh_index[0];
  } else {
    prev_pos = i - 1;
    prev_point = p - 1;
    next_pos = i + 1;
    next_point = p + 1;
  }

  // The fan's first triangle tells at which ring neighbour the fan starts.
  const std::int32_t* col = column(state, p);
  const std::int32_t t1 = col[0];
  int starts_at = 0;  // +1 next neighbour, -1 previous neighbour
  for (std::int32_t e = 1; e <= 3 && starts_at == 0; ++e) {
    const std::int32_t corner = tt.tri_vertex[3 * static_cast<std::size_t>(t1 - 1) + static_cast<std::size_t>(e - 1)];
    if (corner == next_point) {
      starts_at = 1;
    } else if (corner == prev_point) {
      starts_at = -1;
    }
  }
  if (starts_at == 0) {
    cursor.last_point = p;
    state.message_buffer =
        "Conceptual error in function populate_boundary_with_polys(). If this occurs during Lloyd "
        "iterations, consider reducing the LLOYD_FAC control variable.";
    return false;
  }
  const std::int32_t code_prev = 2 * prev_pos;
  const std::int32_t code_next = 2 * next_pos - 2 == 0 ? 2 * big_n - 2 : 2 * next_pos - 2;
  const std::int32_t first_pos = starts_at == 1 ? next_pos : prev_pos;
  const std::int32_t last_pos = starts_at == 1 ? prev_pos : next_pos;
  const std::int32_t first_code = starts_at == 1 ? code_next : code_prev;
  const std::int32_t last_code = starts_at == 1 ? code_prev : code_next;

  const double px = mesh[2 * static_cast<std::size_t>(p - 1)];
  const double py = mesh[2 * static_cast<std::size_t>(p - 1) + 1];
  const double fx = ring.points[2 * static_cast<std::size_t>(first_pos - 1)];
  const double fy = ring.points[2 * static_cast<std::size_t>(first_pos - 1) + 1];
  const double lx = ring.points[2 * static_cast<std::size_t>(last_pos - 1)];
  const double ly = ring.points[2 * static_cast<std::size_t>(last_pos - 1) + 1];
  const std::int32_t base = cursor.last_vertex;
  const std::int32_t ecb = cells.edge_code_base;
  put_corner(cells, base + 1, px, py, -(ecb + 2 * i - 1));
  const double mx = (fx + px) * 0.5;
  const double my = (fy + py) * 0.5;
  put_corner(cells, base + 2, mx, my, -(ecb + first_code));
  for (std::int32_t k = 1; k <= c; ++k) {
    const std::int32_t t = col[k - 1];
    put_corner(cells, base + 2 + k, tt.tri_centroid[2 * static_cast<std::size_t>(t - 1)],
               tt.tri_centroid[2 * static_cast<std::size_t>(t - 1) + 1], t);
  }
  put_corner(cells, base + c + 3, (lx + px) * 0.5, (ly + py) * 0.5, -(ecb + last_code));
  const double dx = mx - px;
  const double dy = my - py;
  cells.boundary_spacing[static_cast<std::size_t>(p - 1)] = 2.0 * std::sqrt(dx * dx + dy * dy);
  cursor.last_vertex += c + 3;
  cursor.last_point = p;
  return true;
}

bool populate_boundary_with_polys(RunState& state, CellCursor& cursor, const BoundaryRing& ring) {
  const std::int32_t big_n = ring.point_count;
  if (big_n > 1) {
    for (std::int32_t i = 1; i <= big_n - 1; ++i) {
      if (!ring_point_cell(state, cursor, ring, i)) return false;
    }
  }
  state.cells.edge_code_base += 2 * big_n - 2;
  return true;
}

namespace {

}  // namespace

void size_cell_tables(RunState& state) {
  CellTables& cells = state.cells;
  const TriangleTable& tt = state.triangles;
  const std::size_t n = static_cast<std::size_t>(state.mesh.mesh_point_count);
  std::size_t total = 0;
  for (std::size_t p = 0; p < n; ++p) total += static_cast<std::size_t>(tt.point_tri_count[p]);
  std::size_t ring_points = state.outer_boundary.point_count > 1 ? state.outer_boundary.point_count - 1 : 0;
  for (const BoundaryRing& ring : state.inner_boundaries) {
    ring_points += ring.point_count > 1 ? static_cast<std::size_t>(ring.point_count - 1) : 0;
  }
  total += 3 * ring_points;
  if (cells.cell_vertex_count.size() != n) {
    cells.cell_vertex_count.assign(n, 0);
    cells.cell_first_vertex.assign(n, 0);
    cells.cell_centroid.assign(2 * n, 0.0);
    cells.cell_area.assign(n, 0.0);
    cells.boundary_spacing.assign(n, 0.0);
    cells.polygon_buffer.assign(2 * static_cast<std::size_t>(kMaxPolyVert), 0.0);
  }
  if (cells.cell_vertex_code.size() < total) {
    cells.cell_vertices.resize(2 * total, 0.0);
    cells.cell_vertex_code.resize(total, 0);
  }
}

void order_connected_triangles(RunState& state) {
  // Each column is reordered by itself, with scratch space of its own part,
  // so the points may be taken in any order: they are taken in the
  // triangulation's sorted order (the reference path keeps the order of
  // the points), in which neighbouring points have
  // triangles of nearby numbers, and so the triangles' entries are read from
  // nearby memory.  A failure is reported for the lowest point that fails,
  // as a pass in the order of the points would meet it first; the other
  // columns then no longer matter, since the run ends.
  TriangleTable& tt = state.triangles;
  const std::size_t room = static_cast<std::size_t>(std::max(tt.largest_tri_count, 1));
  if (state.mesh.work_list.size() < room) state.mesh.work_list.resize(room);
  if (tt.second_scratch.size() < room) tt.second_scratch.resize(room);
  const std::size_t n = static_cast<std::size_t>(state.mesh.mesh_point_count);
  const bool sorted = !state.reference_paths && tt.sort_index.size() == n;
  PartFailure lowest[2];
  run_in_parts(n, [&](std::size_t begin, std::size_t end, int part) {
    std::int32_t* work = part == 0 ? state.mesh.work_list.data() : tt.second_scratch.data();
    PartFailure& failure = lowest[part];
    for (std::size_t k = begin; k < end; ++k) {
      // The column and count of the point twice some places on in the
      // sorted order, which lie scattered, are asked for while this one is
      // ordered, and the neighbour entries of the triangles of the point
      // half as far on, whose column and count were asked for so before.
      if (sorted && k + 2 * kPrefetchAhead < end) {
        const std::int32_t ahead = tt.sort_index[k + 2 * kPrefetchAhead];
        prefetch(column(state, ahead));
        prefetch(&tt.point_tri_count[static_cast<std::size_t>(ahead - 1)]);
      }
      if (sorted && k + kPrefetchAhead < end) {
        const std::int32_t near = tt.sort_index[k + kPrefetchAhead];
        const std::int32_t* near_column = column(state, near);
        const std::int32_t near_count = tt.point_tri_count[static_cast<std::size_t>(near - 1)];
        for (std::int32_t m = 0; m < near_count; ++m) {
          prefetch(&tt.tri_neighbour[3 * static_cast<std::size_t>(near_column[m] - 1)]);
        }
      }
      const std::int32_t p = sorted ? tt.sort_index[k] : static_cast<std::int32_t>(k + 1);
      std::int32_t* col = column(state, p);
      const std::int32_t c = tt.point_tri_count[static_cast<std::size_t>(p - 1)];
      std::string message = state.reference_paths ? order_fan(tt.tri_neighbour.data(), col, c, p, work)
                                                  : order_fan_fast(tt.tri_neighbour.data(), col, c, p, work);
      const std::size_t at = static_cast<std::size_t>(p - 1);
      if (!message.empty() && at < failure.at) failure = PartFailure{at, std::move(message)};
    }
    return PartFailure{};
  });
  const PartFailure& first = lowest[0].at <= lowest[1].at ? lowest[0] : lowest[1];
  if (first.failed()) fail(state, first.message);
}

void assemble_cell_polygons(RunState& state) {
  size_cell_tables(state);
  CellCursor cursor;
  state.cells.edge_code_base = 0;
  fixed_point_cells(state, cursor);
  plain_cells(state, cursor, cursor.last_point + 1, state.mesh.mesh_point_count);
}

void measure_cells(RunState& state) { measure_cells_from(state, state.mesh.mesh_point_count + 1); }

void assemble_and_measure_cells(RunState& state) {
  size_cell_tables(state);
  CellCursor cursor;
  state.cells.edge_code_base = 0;
  fixed_point_cells(state, cursor);
  const std::int32_t first_plain = cursor.last_point + 1;
  number_plain_cells(state, cursor, first_plain, state.mesh.mesh_point_count);
  measure_cells_from(state, first_plain);
}

AreaCentroid polygon_area_centroid(std::int32_t count, double* corners) {
  AreaCentroid result;
  if (count < 1) return result;
  const double x0 = corners[2 * (count - 1)];
  const double y0 = corners[2 * (count - 1) + 1];
  for (std::int32_t i = 0; i < count; ++i) {
    corners[2 * i] -= x0;
    corners[2 * i + 1] -= y0;
  }
  double a = 0.0;
  double sx = 0.0;
  double sy = 0.0;
  for (std::int32_t i = 0; i + 1 < count; ++i) {
    const double xi = corners[2 * i];
    const double yi = corners[2 * i + 1];
    const double xj = corners[2 * i + 2];
    const double yj = corners[2 * i + 3];
    const double cross = xi * yj - xj * yi;
    a += cross;
    sx += (xi + xj) * cross;
    sy += (yi + yj) * cross;
  }
  result.area = 0.5 * a;
  if (result.area == 0.0) return result;
  const double f = 0.3333333333333333 / a;
  result.x = sx * f + x0;
  result.y = sy * f + y0;
  return result;
}

}  // namespace tesseramill
