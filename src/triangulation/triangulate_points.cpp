#include "triangulation/triangulate_points.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <numeric>
#include <ostream>

#include "common/failure.h"
#include "common/parallel.h"
#include "common/platform.h"
#include "common/prefetch.h"
#include "common/text_tools.h"
#include "emplacement/mesh_point_list.h"
#include "geometry/planar_tools.h"
#include "output/number_format.h"
#include "triangulation/dtris2.h"

namespace tesseramill {

namespace {

bool on_ring(std::int32_t label) { return label == kOuterRingLabel || label == kInnerRingLabel; }

// Sizes the per-triangle tables for the largest triangulation that n points
// can have, so that no later pass can overrun them.
void create_tables(RunState& state, std::int32_t n) {
  // Hull links are coded as -(3t + e - 1) in 32-bit integers, which numbers
  // at most 2n triangles for n up to this; larger sets cannot be held.
  constexpr std::int32_t kMostPoints = (std::numeric_limits<std::int32_t>::max() - 2) / 6;
  if (n > kMostPoints) fail(state, "Unable to allocate sufficient memory to continue execution.");
  TriangleTable& tt = state.triangles;
  const std::size_t triangles = 2 * static_cast<std::size_t>(n);
  tt.sort_index.assign(static_cast<std::size_t>(n), 0);
  tt.tri_vertex.assign(3 * triangles, 0);
  tt.tri_neighbour.assign(3 * triangles, 0);
  tt.stack.assign(static_cast<std::size_t>(n), 0);
  tt.itstat.assign(triangles, 0);
  tt.tri_centroid.assign(2 * triangles, 0.0);
  tt.point_tri_count.assign(static_cast<std::size_t>(n), 0);
}

std::string collapse_message(const RunState& state, std::int32_t t, const double* c1, const double* c2,
                             const double* c3) {
  std::string message = "Triangle # " + int_to_text(t) + " collapsed with vertices ";
  for (const double* c : {c1, c2, c3}) {
    message += "(";
    append_zero_led(message, c[0] + state.x_offset, 14, 7);
    message += ",";
    append_zero_led(message, c[1] + state.y_offset, 14, 7);
    message += ")";
  }
  return message;
}

// Whether triangle k (0-based), not collapsed, with its centroid worked
// out, lies outside the domain: all three corners on rings and the centroid
// outside.
bool outside_domain(const RunState& state, std::size_t k) {
  const TriangleTable& tt = state.triangles;
  const std::vector<std::int32_t>& label = state.mesh.mesh_point_label;
  return on_ring(label[static_cast<std::size_t>(tt.tri_vertex[3 * k] - 1)]) &&
         on_ring(label[static_cast<std::size_t>(tt.tri_vertex[3 * k + 1] - 1)]) &&
         on_ring(label[static_cast<std::size_t>(tt.tri_vertex[3 * k + 2] - 1)]) &&
         !point_in_domain(state, tt.tri_centroid[2 * k], tt.tri_centroid[2 * k + 1]);
}

// The circumcircle and centroid of triangles begin + 1 .. end (1-based).
// With `external` given, each triangle is also marked external as
// mark_external marks it (see there), from the centroid just worked out,
// and counted there.  With `keep_circles` false the circles and the marks
// of centres inside are not worked out: only whether each triangle has
// collapsed (triangle_collapsed), which is all of the circle that anything
// after reads.
PartFailure compute_triangle_range(RunState& state, std::size_t begin, std::size_t end,
                                   std::int32_t* external = nullptr, bool keep_circles = true) {
  TriangleTable& tt = state.triangles;
  const std::vector<double>& p = state.mesh.mesh_points;
  const std::vector<std::int32_t>& label = state.mesh.mesh_point_label;
  for (std::size_t k = begin; k < end; ++k) {
    // The corners of a triangle some places on, which lie scattered among
    // the points, are asked for while this one is worked out.
    if (k + kPrefetchAhead < end) {
      for (std::size_t e = 0; e < 3; ++e) {
        prefetch(&p[2 * static_cast<std::size_t>(tt.tri_vertex[3 * (k + kPrefetchAhead) + e] - 1)]);
      }
    }
    const std::int32_t t = static_cast<std::int32_t>(k + 1);
    const std::size_t base = 3 * k;
    const double* c1 = &p[2 * static_cast<std::size_t>(tt.tri_vertex[base] - 1)];
    const double* c2 = &p[2 * static_cast<std::size_t>(tt.tri_vertex[base + 1] - 1)];
    const double* c3 = &p[2 * static_cast<std::size_t>(tt.tri_vertex[base + 2] - 1)];
    const Circumcircle circle =
        keep_circles ? triangle_circumcentre(c1[0], c1[1], c2[0], c2[1], c3[0], c3[1]) : Circumcircle{};
    const bool collapsed =
        keep_circles ? circle.status != 0 : triangle_collapsed(c1[0], c1[1], c2[0], c2[1], c3[0], c3[1]);
    if (collapsed) {
      // Only the first corner decides whether a collapse is fatal.
      if (!on_ring(label[static_cast<std::size_t>(tt.tri_vertex[base] - 1)])) {
        return PartFailure{k, collapse_message(state, t, c1, c2, c3)};
      }
      tt.itstat[k] = -1;
      if (external != nullptr) *external += 1;
      continue;
    }
    if (keep_circles) {
      tt.tri_circumcentre[2 * k] = circle.centre_x;
      tt.tri_circumcentre[2 * k + 1] = circle.centre_y;
      tt.tri_circumradius[k] = circle.radius;
      const double cx = circle.centre_x;
      const double cy = circle.centre_y;
      const bool outside = (c2[1] - c1[1]) * (cx - c1[0]) > (c2[0] - c1[0]) * (cy - c1[1]) ||
                           (c3[1] - c2[1]) * (cx - c2[0]) > (c3[0] - c2[0]) * (cy - c2[1]) ||
                           (c1[1] - c3[1]) * (cx - c3[0]) > (c1[0] - c3[0]) * (cy - c3[1]);
      tt.tri_centre_inside[k] = outside ? 0 : -1;
    }
    tt.tri_centroid[2 * k] = (c2[0] + c1[0] + c3[0]) * 0.3333333333333333;
    tt.tri_centroid[2 * k + 1] = (c2[1] + c1[1] + c3[1]) * 0.3333333333333333;
    if (external != nullptr && outside_domain(state, k)) {
      tt.itstat[k] = -1;
      *external += 1;
    }
  }
  return PartFailure{};
}

// About what the first pass allocates after its insertion, which the
// insertion has the pages of touched ahead (PagesAhead): the lists of each
// point's triangles (rows of 12, for the 9 to 10 most that meshes of any
// size have had), each list's fill, the cells' corners and codes (the
// internal triangles' corners, at most 6 a point, and 3 more for each
// ring point) and the cells' tables of one or two entries a point.  Taken
// short, the rest is touched at its first use as before; taken long, the
// pages left over stay with the process unused.  None where freed memory
// is not kept (the block would go back to the system when freed), and at
// most 1 GiB: the heap's top is kept only up to 2 GiB, and a larger top
// left by the freed block would be given back.
std::size_t memory_after_first_insertion(const RunState& state, std::int32_t n) {
  constexpr std::size_t kMostTouchedAhead = std::size_t{1} << 30;
  if (!freed_memory_kept()) return 0;
  const std::size_t points = static_cast<std::size_t>(std::max(n, 0));
  std::size_t ring_points = static_cast<std::size_t>(std::max(state.outer_boundary.point_count, 0));
  for (const BoundaryRing& ring : state.inner_boundaries) {
    ring_points += static_cast<std::size_t>(std::max(ring.point_count, 0));
  }
  const std::size_t lists = points * (12 + 1) * sizeof(std::int32_t);
  const std::size_t corners = (6 * points + 3 * ring_points) * (2 * sizeof(double) + sizeof(std::int32_t));
  const std::size_t cells = points * (2 * sizeof(std::int32_t) + 5 * sizeof(double));
  return std::min(lists + corners + cells, kMostTouchedAhead);
}

// Circumcircles and centroids of every triangle; each triangle by itself,
// so the work is shared between the two cores.  The tables of the circles
// are made here, at the size of the others, the first time they are
// needed: only this path keeps circles.
void compute_triangles(RunState& state) {
  TriangleTable& tt = state.triangles;
  if (tt.tri_circumradius.size() != tt.itstat.size()) {
    tt.tri_circumcentre.assign(2 * tt.itstat.size(), 0.0);
    tt.tri_circumradius.assign(tt.itstat.size(), 0.0);
    tt.tri_centre_inside.assign(tt.itstat.size(), 0);
  }
  const PartFailure failure = run_in_parts(
      static_cast<std::size_t>(state.triangles.triangle_count),
      [&](std::size_t begin, std::size_t end, int) { return compute_triangle_range(state, begin, end); });
  if (failure.failed()) fail(state, failure.message);
}

// Each triangle is marked by itself, so the two halves of the table are
// marked side by side and their counts added.
std::int32_t mark_external(RunState& state) {
  TriangleTable& tt = state.triangles;
  std::int32_t external[2] = {0, 0};
  const std::size_t triangles = static_cast<std::size_t>(std::max(tt.triangle_count, 0));
  run_in_parts(triangles, [&](std::size_t begin, std::size_t end, int part) {
    std::int32_t count = 0;
    for (std::size_t k = begin; k < end; ++k) {
      if (tt.itstat[k] == -1) {
        ++count;
        continue;
      }
      if (outside_domain(state, k)) {
        tt.itstat[k] = -1;
        ++count;
      }
    }
    external[part] = count;
    return PartFailure{};
  });
  return external[0] + external[1];
}

// Centroids, collapses and external marks in one sweep.  A triangle's
// mark reads only its own corners and centroid, and its centroid is worked
// out just before, so the marks and their count are mark_external's; a
// collapse that ends the run ends it with compute_triangles' message, the
// count then no longer mattering.  The circles are left out: nothing reads
// them, and a collapse is found without them (triangle_collapsed), so the
// sweep skips four square roots and a division a triangle and the writing
// of some 60 MB a pass at a million cells.
std::int32_t compute_and_mark_triangles(RunState& state) {
  std::int32_t external[2] = {0, 0};
  const PartFailure failure = run_in_parts(
      static_cast<std::size_t>(state.triangles.triangle_count), [&](std::size_t begin, std::size_t end, int part) {
        return compute_triangle_range(state, begin, end, &external[part], false);
      });
  if (failure.failed()) fail(state, failure.message);
  return external[0] + external[1];
}

// Calls visit(p, t) for each corner p (0-based) of each internal triangle
// t, in ascending triangle order, the points taken in two halves side by
// side: each half sweeps every triangle and is given only its own points,
// so whatever visit keeps per point it gets in the same order as one sweep.
// ahead(p) is called for the corners of the triangle kPrefetchAhead places
// on that belong to the half, to ask for what visit will touch there: the
// points' entries lie scattered, and a hint changes no value.
template <typename Visit, typename Ahead>
void sweep_corners_in_halves(const TriangleTable& tt, std::int32_t n, Visit visit, Ahead ahead) {
  run_in_parts(static_cast<std::size_t>(n), [&](std::size_t begin, std::size_t end, int) {
    for (std::int32_t t = 1; t <= tt.triangle_count; ++t) {
      const std::size_t k = static_cast<std::size_t>(t - 1);
      if (t <= tt.triangle_count - kPrefetchAhead) {
        for (std::size_t e = 0; e < 3; ++e) {
          const std::size_t p = static_cast<std::size_t>(tt.tri_vertex[3 * (k + kPrefetchAhead) + e] - 1);
          if (p >= begin && p < end) ahead(p);
        }
      }
      if (tt.itstat[k] == -1) continue;
      for (int e = 0; e < 3; ++e) {
        const std::size_t p = static_cast<std::size_t>(tt.tri_vertex[3 * k + e] - 1);
        if (p >= begin && p < end) visit(p, t);
      }
    }
    return PartFailure{};
  });
}

// The largest and smallest count of internal triangles at a point.
void note_extreme_counts(TriangleTable& tt, std::int32_t n) {
  tt.largest_tri_count = 0;
  tt.smallest_tri_count = 2147483647;
  for (std::int32_t p = 0; p < n; ++p) {
    tt.largest_tri_count = std::max(tt.largest_tri_count, tt.point_tri_count[static_cast<std::size_t>(p)]);
    tt.smallest_tri_count = std::min(tt.smallest_tri_count, tt.point_tri_count[static_cast<std::size_t>(p)]);
  }
}

// A sweep over the internal triangles counts them at each corner.
void count_point_triangles(RunState& state) {
  TriangleTable& tt = state.triangles;
  const std::int32_t n = state.mesh.mesh_point_count;
  std::fill(tt.point_tri_count.begin(), tt.point_tri_count.begin() + n, 0);
  sweep_corners_in_halves(
      tt, n, [&](std::size_t p, std::int32_t) { tt.point_tri_count[p] += 1; },
      [](std::size_t) {});
  note_extreme_counts(tt, n);
}

// One sweep that counts the internal triangles at each corner and lists
// them in its column as far as the rows hold them; true when every list
// fits.  The counts are those of count_point_triangles, as both count the
// same visits; and where every count fits the rows, each column holds what
// build_connected_triangles' own sweep writes there (the first count
// entries, in ascending triangle order), the entries below left as they
// were, as that sweep leaves them.
bool count_and_list_triangles(RunState& state) {
  TriangleTable& tt = state.triangles;
  const std::int32_t n = state.mesh.mesh_point_count;
  std::fill(tt.point_tri_count.begin(), tt.point_tri_count.begin() + n, 0);
  const std::size_t rows = static_cast<std::size_t>(tt.row_capacity);
  sweep_corners_in_halves(
      tt, n,
      [&](std::size_t p, std::int32_t t) {
        const std::size_t place = static_cast<std::size_t>(tt.point_tri_count[p]++);
        if (place < rows) tt.connected_triangles[p * rows + place] = t;
      },
      [&](std::size_t p) {
        prefetch(&tt.point_tri_count[p]);
        prefetch(&tt.connected_triangles[p * rows]);
      });
  note_extreme_counts(tt, n);
  return tt.largest_tri_count <= tt.row_capacity;
}

}  // namespace

Circumcircle triangle_circumcentre(double x1, double y1, double x2, double y2, double x3, double y3) {
  Circumcircle result;
  const double a = std::sqrt((x2 - x1) * (x2 - x1) + (y2 - y1) * (y2 - y1));
  const double b = std::sqrt((x3 - x2) * (x3 - x2) + (y3 - y2) * (y3 - y2));
  const double c = std::sqrt((x1 - x3) * (x1 - x3) + (y1 - y3) * (y1 - y3));
  const double bot = (b + a - c) * (a - b + c) * ((b - a + c) * (b + a + c));
  if (bot <= 0.0) {
    result.radius = -1.0;
    return result;
  }
  result.radius = a * b * c / std::sqrt(bot);
  const double dx2 = x2 - x1;
  const double dy2 = y2 - y1;
  const double dx3 = x3 - x1;
  const double dy3 = y3 - y1;
  const double f2 = dx2 * dx2 + dy2 * dy2;
  const double f3 = dx3 * dx3 + dy3 * dy3;
  const double det = dy3 * dx2 - dx3 * dy2;
  if (det == 0.0) {
    result.status = 1;
    return result;
  }
  const double q = 0.5 / det;
  result.centre_x = x1 + q * (dy3 * f2 - f3 * dy2);
  result.centre_y = y1 + q * (f3 * dx2 - dx3 * f2);
  return result;
}

// triangle_circumcentre gives status 1 only where its determinant is 0
// and `bot` is above 0; everywhere else status 0.  The determinant is
// worked out here from the same differences in the same order, so it is 0
// exactly where there it is 0, and only then is the rest of the circle
// worked out, by triangle_circumcentre itself, to tell.
bool triangle_collapsed(double x1, double y1, double x2, double y2, double x3, double y3) {
  const double dx2 = x2 - x1;
  const double dy2 = y2 - y1;
  const double dx3 = x3 - x1;
  const double dy3 = y3 - y1;
  const double det = dy3 * dx2 - dx3 * dy2;
  if (det != 0.0) return false;
  return triangle_circumcentre(x1, y1, x2, y2, x3, y3).status != 0;
}

void triangulate_points(RunState& state) {
  std::ostream& screen = *state.screen;
  TriangleTable& tt = state.triangles;
  const std::int32_t n = state.mesh.mesh_point_count;
  const bool first_pass = state.lloyd_iteration == 0;
  state.iteration_stamp = int_to_text(state.lloyd_iteration);
  if (first_pass) {
    screen << "\n - generating triangles...\n";
    create_tables(state, n);
  }
  std::iota(tt.sort_index.begin(), tt.sort_index.end(), 1);
  tt.dtris2.touch_beside_insertion = first_pass ? memory_after_first_insertion(state, n) : 0;
  const double* points = state.mesh.mesh_points.data();
  const int ierror =
      state.reference_paths
          ? DTRIS2_reference(n, points, tt.sort_index.data(), tt.triangle_count, tt.tri_vertex.data(),
                             tt.tri_neighbour.data(), tt.stack.data(), screen)
          : DTRIS2(n, points, tt.sort_index.data(), tt.triangle_count, tt.tri_vertex.data(), tt.tri_neighbour.data(),
                   tt.stack.data(), screen, tt.dtris2);
  if (ierror != 0) fail(state, "Exit from subroutine DTRIS2: IERROR=" + int_to_text(ierror) + ".");
  if (after_dtris2_for_tests != nullptr) after_dtris2_for_tests(state);
  if (first_pass) {
    screen << " - " << tt.triangle_count << " triangles generated\n";
    tt.first_triangle_count = tt.triangle_count;
  }
  std::fill(tt.itstat.begin(), tt.itstat.end(), 0);
  std::int32_t external = 0;
  if (state.reference_paths) {
    compute_triangles(state);
    external = mark_external(state);
  } else {
    external = compute_and_mark_triangles(state);
  }
  if (first_pass) screen << " - " << external << " of these are external to domain\n";
  // In later passes the fast path counts each point's triangles as it lists
  // them (build_connected_triangles): one sweep over the triangles instead
  // of two.  Nothing reads the counts before then.
  if (first_pass || state.reference_paths) count_point_triangles(state);
  if (first_pass) {
    screen << " - maximum number of internal triangles associated with any point = "
           << tt.largest_tri_count << "\n"
           << " - minimum number of internal triangles associated with any point = "
           << tt.smallest_tri_count << "\n\n - commencing Lloyd iterations...\n";
  }
}

void build_connected_triangles(RunState& state) {
  TriangleTable& tt = state.triangles;
  const std::int32_t n = state.mesh.mesh_point_count;
  const bool first_pass = state.lloyd_iteration == 0;
  // In later passes the fast path lists the columns as it counts; where the
  // rows prove too few, they are made anew below and the columns listed
  // again, as when the counts came first.
  const bool listed = !first_pass && !state.reference_paths && count_and_list_triangles(state);
  // The fast path clears the table only when it is made: a later pass
  // overwrites the first point_tri_count(p) entries of each column below,
  // and no step reads further down a column, so clearing it again (some
  // 50 MB a pass at a million cells) would change no result.  The
  // reference path clears it in every pass.
  if (!listed && (first_pass || tt.largest_tri_count > tt.row_capacity)) {
    tt.row_capacity = tt.largest_tri_count + 2;
    try {
      tt.connected_triangles.assign(static_cast<std::size_t>(tt.row_capacity) * static_cast<std::size_t>(n), 0);
    } catch (const std::bad_alloc&) {
      fail(state, first_pass ? "Unable to allocate sufficient memory to continue execution."
                             : "Error reallocating MAXCONTRI array.");
    }
  } else if (state.reference_paths) {
    std::fill(tt.connected_triangles.begin(), tt.connected_triangles.end(), 0);
  }
  std::vector<std::int32_t>& work = state.mesh.work_list;
  if (static_cast<std::int32_t>(work.size()) < tt.largest_tri_count) {
    work.resize(static_cast<std::size_t>(tt.largest_tri_count));
  }
  if (listed) return;
  // A sweep over the triangles appends each to its corners' columns, in
  // ascending triangle order.
  std::vector<std::int32_t>& fill = tt.column_fill;
  fill.assign(static_cast<std::size_t>(n), 0);
  const std::size_t rows = static_cast<std::size_t>(tt.row_capacity);
  sweep_corners_in_halves(
      tt, n, [&](std::size_t p, std::int32_t t) { tt.connected_triangles[p * rows + static_cast<std::size_t>(fill[p]++)] = t; },
      [&](std::size_t p) {
        prefetch(&fill[p]);
        prefetch(&tt.connected_triangles[p * rows]);
      });
}

}  // namespace tesseramill
