#include "geometry/polygon_integrity.h"

#include <algorithm>
#include <cmath>

#include "common/text_tools.h"

namespace tesseramill {

namespace {

constexpr double kTolerance = 1e-6;

struct Vertex {
  double x;
  double y;
};

bool coincide(const Vertex& a, const Vertex& b) {
  return std::fabs(a.x - b.x) <= kTolerance && std::fabs(a.y - b.y) <= kTolerance;
}

double side(const Vertex& u, const Vertex& v, const Vertex& w) {
  return (v.x - u.x) * (w.y - u.y) - (v.y - u.y) * (w.x - u.x);
}

int report(RunState& state, const std::string& message) {
  state.message_buffer = message;
  return 1;
}

}  // namespace

int check_polygon_integrity(RunState& state, const BoundaryRing& ring, const std::string& file_name) {
  const std::int32_t n = ring.vertex_count;
  if (n < 3) return 0;
  const std::string file = trimmed(file_name);
  // vertex(k) is 1-based, as the numbers in the messages are.
  auto vertex = [&](std::int32_t k) {
    return Vertex{ring.vertices[2 * static_cast<std::size_t>(k - 1)],
                  ring.vertices[2 * static_cast<std::size_t>(k - 1) + 1]};
  };

  // Vertices against segments.  The last segment is never the segment of the
  // test and the closing vertex never the vertex: it repeats vertex 1.
  for (std::int32_t i = 1; i <= n - 2; ++i) {
    const Vertex a = vertex(i);
    const Vertex b = vertex(i + 1);
    for (std::int32_t k = 1; k <= n - 1; ++k) {
      if (k == i || k == i + 1) continue;
      const Vertex p = vertex(k);
      if (coincide(p, a)) {
        return report(state, "Polygon vertex " + int_to_text(k) + " coincides with polygon vertex " +
                                 int_to_text(i) + " in file " + file + ".");
      }
      if (coincide(p, b)) {
        return report(state, "Polygon vertex " + int_to_text(k) + " coincides with polygon vertex " +
                                 int_to_text(i + 1) + " in file " + file + ".");
      }
      const double cross = (p.y - a.y) * (b.x - a.x) - (p.x - a.x) * (b.y - a.y);
      if (std::fabs(cross) <= kTolerance && p.x >= std::min(a.x, b.x) && p.x <= std::max(a.x, b.x) &&
          p.y >= std::min(a.y, b.y) && p.y <= std::max(a.y, b.y)) {
        return report(state, "Polygon vertex " + int_to_text(k) +
                                 " is on the line that joins vertices " + int_to_text(i) + " and " +
                                 int_to_text(i + 1) + " in file " + file + ".");
      }
    }
  }

  // Segments against segments; touching or overlapping segments pass here.
  if (n < 4) return 0;
  for (std::int32_t a = 1; a <= n - 3; ++a) {
    const Vertex p = vertex(a);
    const Vertex q = vertex(a + 1);
    for (std::int32_t c = a + 2; c <= n - 1; ++c) {
      const Vertex r = vertex(c);
      const Vertex s = vertex(c + 1);
      if (side(p, q, s) * side(p, q, r) >= 0.0) continue;
      if (side(r, s, q) * side(r, s, p) >= 0.0) continue;
      return report(state, "Line segment joining points " + int_to_text(a) + " and " +
                               int_to_text(a + 1) + " crosses line segment joining points " +
                               int_to_text(c) + " and " + int_to_text(c + 1) + " in file " + file +
                               ".");
    }
  }
  return 0;
}

}  // namespace tesseramill
