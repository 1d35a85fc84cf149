#include "report/grid_quality.h"

#include <algorithm>
#include <cmath>

#include "common/correctly_rounded.h"
#include "common/text_tools.h"
#include "geometry/planar_tools.h"
#include "output/number_format.h"
#include "report/cell_geometry.h"

namespace tesseramill {

namespace {

constexpr double kDegrees = 57.29577951308232;
// A corner turns the wrong way when the sine of its turn exceeds this: the
// grid file keeps ten digits, which alone can bend a straight corner by
// about 1e-5 on the smallest cells.
constexpr double kTurnTolerance = 1e-3;
// Cell areas add up to the domain's area within this share, the ten digits
// of the grid file allowing for much less.
constexpr double kAreaTolerance = 1e-6;
constexpr std::int32_t kMostFaces = 30;

struct Face {
  std::int32_t low;
  std::int32_t high;
  std::int32_t cell;  // 0-based
};

double median_of(std::vector<double>& values) {
  if (values.empty()) return 0.0;
  std::sort(values.begin(), values.end());
  const std::size_t middle = values.size() / 2;
  return values.size() % 2 == 1 ? values[middle] : 0.5 * (values[middle - 1] + values[middle]);
}

// The distance from (x, y) to the closed ring, along its segments.
double distance_to_ring(const std::vector<double>& ring, double x, double y) {
  double nearest = INFINITY;
  for (std::size_t k = 0; k + 3 < ring.size(); k += 2) {
    nearest = std::min(nearest, distance_to_segment(x, y, ring[k], ring[k + 1], ring[k + 2], ring[k + 3]));
  }
  return nearest;
}

double ring_area(const std::vector<double>& ring) {
  const std::int32_t n = static_cast<std::int32_t>(ring.size() / 2);
  return std::fabs(0.5 * doubled_area(ring.data(), n));
}

void set_failure(ReadinessCheck& check, std::int32_t cell, std::string detail) {
  if (!check.passed) return;
  check.passed = false;
  check.first_cell = cell;
  check.detail = std::move(detail);
}

}  // namespace

GridQuality assess_grid(const DisvGrid& disv, const DomainRings& domain, double growth) {
  GridQuality q;
  q.cells = disv.ncpl;
  q.vertices = disv.nvert;
  q.growth = growth;
  for (const char* what : {"every cell clockwise with positive area", "no two vertex numbers at the same position",
                           "no zero-length edge",
                           "every interior face shared by exactly two cells through the same two vertex numbers",
                           "cell areas add up to the domain's area",
                           "every vertex number on the cell lines set apart by a blank"}) {
    q.checks.emplace_back();
    q.checks.back().what = what;
  }
  ReadinessCheck& clockwise = q.checks[kClockwiseCells];
  ReadinessCheck& same_place = q.checks[kDistinctVertices];
  ReadinessCheck& zero_edge = q.checks[kNoZeroLengthEdge];
  ReadinessCheck& faces_shared = q.checks[kFacesShared];
  ReadinessCheck& area_sum = q.checks[kAreasAddUp];
  ReadinessCheck& numbers_apart = q.checks[kNumbersApart];
  if (disv.first_joined_cell != 0) set_failure(numbers_apart, disv.first_joined_cell, "");

  const std::size_t cells = static_cast<std::size_t>(disv.ncpl);
  std::vector<double> areas(cells);
  std::vector<Face> faces;
  std::vector<double> xy;
  for (std::size_t c = 0; c < cells; ++c) {
    const std::int32_t cell = static_cast<std::int32_t>(c + 1);
    const std::int32_t n = corner_count(disv, c);
    cell_polygon(disv, c, xy);
    const double doubled = doubled_area(xy.data(), n);
    areas[c] = std::fabs(0.5 * doubled);
    q.cell_area_sum += areas[c];
    if (!(doubled < 0.0)) set_failure(clockwise, cell, "");
    if (n > kMostFaces && q.many_faces++ == 0) q.first_many_faces = cell;
    const double orientation = doubled < 0.0 ? -1.0 : 1.0;
    bool convex = true;
    for (std::int32_t i = 0; i < n; ++i) {
      const std::int32_t j = i + 1 == n ? 0 : i + 1;
      const std::int32_t k = j + 1 == n ? 0 : j + 1;
      const double ax = xy[2 * j] - xy[2 * i];
      const double ay = xy[2 * j + 1] - xy[2 * i + 1];
      const double bx = xy[2 * k] - xy[2 * j];
      const double by = xy[2 * k + 1] - xy[2 * j + 1];
      if (ax == 0.0 && ay == 0.0) set_failure(zero_edge, cell, "");
      const double turn = (ax * by - ay * bx) * orientation;
      if (turn < -kTurnTolerance * cr_hypot(ax, ay) * cr_hypot(bx, by)) convex = false;
      const std::int32_t v = corner(disv, c, i);
      const std::int32_t w = corner(disv, c, j);
      faces.push_back({std::min(v, w), std::max(v, w), static_cast<std::int32_t>(c)});
    }
    if (!convex && q.not_convex++ == 0) q.first_not_convex = cell;
  }

  // Vertices that cells name at one place: sorted by position, neighbours
  // compared.  A vertex that no cell names does not matter to MODFLOW 6.
  std::vector<char> used(static_cast<std::size_t>(disv.nvert) + 1, 0);
  for (std::int32_t v : disv.cell_vertices) used[static_cast<std::size_t>(v)] = 1;
  std::vector<std::int32_t> order;
  for (std::int32_t v = 1; v <= disv.nvert; ++v) {
    if (used[static_cast<std::size_t>(v)]) order.push_back(v);
  }
  std::sort(order.begin(), order.end(), [&](std::int32_t a, std::int32_t b) {
    return vertex_x(disv, a) < vertex_x(disv, b) || (vertex_x(disv, a) == vertex_x(disv, b) && vertex_y(disv, a) < vertex_y(disv, b));
  });
  std::vector<char> doubled_vertex(static_cast<std::size_t>(disv.nvert) + 1, 0);
  for (std::size_t k = 1; k < order.size(); ++k) {
    const std::int32_t a = order[k - 1];
    const std::int32_t b = order[k];
    if (vertex_x(disv, a) == vertex_x(disv, b) && vertex_y(disv, a) == vertex_y(disv, b)) {
      doubled_vertex[static_cast<std::size_t>(a)] = 1;
      doubled_vertex[static_cast<std::size_t>(b)] = 1;
    }
  }
  for (std::size_t c = 0; c < cells && same_place.passed; ++c) {
    for (std::int32_t i = 0; i < corner_count(disv, c); ++i) {
      const std::int32_t v = corner(disv, c, i);
      if (doubled_vertex[static_cast<std::size_t>(v)]) {
        set_failure(same_place, static_cast<std::int32_t>(c + 1), "vertex " + int_to_text(v));
        break;
      }
    }
  }

  // Faces by their two vertex numbers: two cells share an interior face, a
  // face on the domain's rim belongs to one.
  std::sort(faces.begin(), faces.end(), [](const Face& a, const Face& b) {
    return a.low < b.low || (a.low == b.low && (a.high < b.high || (a.high == b.high && a.cell < b.cell)));
  });
  const double width = std::max(1.0, std::sqrt(ring_area(domain.outer)));
  const double on_rim = 1e-6 * width;
  auto on_domain_rim = [&](std::int32_t v) {
    const double x = vertex_x(disv, v);
    const double y = vertex_y(disv, v);
    if (distance_to_ring(domain.outer, x, y) <= on_rim) return true;
    for (const std::vector<double>& hole : domain.holes) {
      if (distance_to_ring(hole, x, y) <= on_rim) return true;
    }
    return false;
  };
  std::vector<double> ratios_over;
  std::vector<double> angles;
  std::int32_t first_bad_face = 0;
  for (std::size_t k = 0; k < faces.size();) {
    std::size_t e = k + 1;
    while (e < faces.size() && faces[e].low == faces[k].low && faces[e].high == faces[k].high) ++e;
    const std::size_t shared = e - k;
    const std::int32_t cell = faces[k].cell + 1;
    if (shared == 2) {
      const std::size_t a = static_cast<std::size_t>(faces[k].cell);
      const std::size_t b = static_cast<std::size_t>(faces[k + 1].cell);
      q.neighbour_pairs += 1;
      // A cell of no area has no ratio to its neighbour; the clockwise
      // check names it.
      if (std::min(areas[a], areas[b]) > 0.0) {
        const double ratio = std::max(areas[a], areas[b]) / std::min(areas[a], areas[b]);
        q.largest_area_ratio = std::max(q.largest_area_ratio, ratio);
        if (ratio > growth) q.pairs_above_growth += 1;
      }
      const double ux = disv.centres[2 * b] - disv.centres[2 * a];
      const double uy = disv.centres[2 * b + 1] - disv.centres[2 * a + 1];
      const double fx = vertex_x(disv, faces[k].high) - vertex_x(disv, faces[k].low);
      const double fy = vertex_y(disv, faces[k].high) - vertex_y(disv, faces[k].low);
      // The face's normal is (fy, -fx): the angle between it and the centre line.
      angles.push_back(cr_atan2(std::fabs(ux * fx + uy * fy), std::fabs(ux * fy - uy * fx)) * kDegrees);
    } else if (shared > 2 || !(on_domain_rim(faces[k].low) && on_domain_rim(faces[k].high))) {
      const std::int32_t first = shared > 2 ? std::min(faces[k].cell, faces[k + 1].cell) + 1 : cell;
      if (first_bad_face == 0 || first < first_bad_face) first_bad_face = first;
    }
    k = e;
  }
  if (first_bad_face != 0) set_failure(faces_shared, first_bad_face, "");
  q.angle_largest = angles.empty() ? 0.0 : *std::max_element(angles.begin(), angles.end());
  q.angle_median = median_of(angles);

  std::vector<double> sorted_areas = areas;
  if (!sorted_areas.empty()) {
    q.area_smallest = *std::min_element(sorted_areas.begin(), sorted_areas.end());
    q.area_largest = *std::max_element(sorted_areas.begin(), sorted_areas.end());
  }
  q.area_median = median_of(sorted_areas);

  q.domain_area = ring_area(domain.outer);
  for (const std::vector<double>& hole : domain.holes) q.domain_area -= ring_area(hole);
  const double difference = std::fabs(q.cell_area_sum - q.domain_area) / q.domain_area;
  if (!(difference <= kAreaTolerance)) {
    area_sum.passed = false;
  }
  std::string detail = "sum ";
  append_scientific(detail, q.cell_area_sum, 0, 9);
  detail += ", domain ";
  append_scientific(detail, q.domain_area, 0, 9);
  detail += ", relative difference ";
  append_scientific(detail, difference, 0, 2);
  area_sum.detail = detail;
  return q;
}

std::string quality_text(const GridQuality& q, const std::string& file) {
  std::string text = "\n Grid quality of " + file + "\n";
  text += "   cells: " + format_integer(q.cells) + ", vertices: " + format_integer(q.vertices) + "\n";
  text += "   cell area: smallest " + format_scientific(q.area_smallest, 0, 5) + ", median " +
          format_scientific(q.area_median, 0, 5) + ", largest " + format_scientific(q.area_largest, 0, 5) + "\n";
  const double share = q.neighbour_pairs > 0 ? 100.0 * static_cast<double>(q.pairs_above_growth) /
                                                   static_cast<double>(q.neighbour_pairs)
                                             : 0.0;
  text += "   neighbouring cells: " + format_integer(q.neighbour_pairs) + " pairs, largest area ratio " +
          format_fixed(q.largest_area_ratio, 0, 4) + ", " + format_fixed(share, 0, 2) +
          "% of pairs above the growth rate " + format_fixed(q.growth, 0, 4) + "\n";
  text += "   angle between centre line and face normal: largest " + format_fixed(q.angle_largest, 0, 2) +
          " degrees, median " + format_fixed(q.angle_median, 0, 2) + " degrees\n";
  text += "   cells that are not convex: " + format_integer(q.not_convex);
  if (q.not_convex > 0) text += ", the first cell " + format_integer(q.first_not_convex);
  text += "\n   cells with more than 30 faces: " + format_integer(q.many_faces);
  if (q.many_faces > 0) text += ", the first cell " + format_integer(q.first_many_faces);
  text += "\n\n MODFLOW 6 readiness\n";
  for (const ReadinessCheck& check : q.checks) {
    text += check.passed ? "   pass  " : "   FAIL  ";
    text += check.what;
    if (!check.passed && check.first_cell > 0) text += ": first at cell " + format_integer(check.first_cell);
    if (!check.detail.empty()) text += " (" + check.detail + ")";
    text += "\n";
  }
  if (!q.checks[kDistinctVertices].passed) {
    // The grid file keeps ten digits of each coordinate: far from the origin
    // small cells lose their corners' differences.
    text += "\n Vertices at one place mean that the ten digits of the grid file cannot hold\n"
            " coordinates this large for cells this small: give XORIGIN and YORIGIN near\n"
            " the model's lower left corner in the MF6 block and run the mesher again.\n";
  }
  if (!q.checks[kNumbersApart].passed) {
    // A vertex number of seven digits fills its seven columns.
    text += "\n Vertex numbers of seven digits fill their seven columns and run together, and\n"
            " MODFLOW 6 cannot read them: set them apart with the command\n"
            " \"tesseramill-report --fix-grid infile\", which keeps the file as the mesher\n"
            " wrote it beside it, or keep the grid below 1,000,000 vertices (about 500,000\n"
            " cells).\n";
  }
  return text;
}

}  // namespace tesseramill
