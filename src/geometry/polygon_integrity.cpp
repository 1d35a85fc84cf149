#include "geometry/polygon_integrity.h"

#include <algorithm>
#include <cmath>
#include <vector>

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

// The ring's vertices, 1-based as the numbers in the messages are.
struct Ring {
  const BoundaryRing& ring;
  std::string file;
  Vertex vertex(std::int32_t k) const {
    return Vertex{ring.vertices[2 * static_cast<std::size_t>(k - 1)],
                  ring.vertices[2 * static_cast<std::size_t>(k - 1) + 1]};
  }
};

// The tests of vertex k against segment i (vertices i and i + 1), in their
// order; reports the first that fails.
bool vertex_fails(RunState& state, const Ring& r, std::int32_t i, std::int32_t k) {
  const Vertex a = r.vertex(i);
  const Vertex b = r.vertex(i + 1);
  const Vertex p = r.vertex(k);
  if (coincide(p, a)) {
    report(state, "Polygon vertex " + int_to_text(k) + " coincides with polygon vertex " + int_to_text(i) +
                      " in file " + r.file + ".");
    return true;
  }
  if (coincide(p, b)) {
    report(state, "Polygon vertex " + int_to_text(k) + " coincides with polygon vertex " + int_to_text(i + 1) +
                      " in file " + r.file + ".");
    return true;
  }
  const double cross = (p.y - a.y) * (b.x - a.x) - (p.x - a.x) * (b.y - a.y);
  if (std::fabs(cross) <= kTolerance && p.x >= std::min(a.x, b.x) && p.x <= std::max(a.x, b.x) &&
      p.y >= std::min(a.y, b.y) && p.y <= std::max(a.y, b.y)) {
    report(state, "Polygon vertex " + int_to_text(k) + " is on the line that joins vertices " + int_to_text(i) +
                      " and " + int_to_text(i + 1) + " in file " + r.file + ".");
    return true;
  }
  return false;
}

// The test of segment a against segment c; touching or overlapping
// segments pass.
bool segments_cross(RunState& state, const Ring& r, std::int32_t a, std::int32_t c) {
  const Vertex p = r.vertex(a);
  const Vertex q = r.vertex(a + 1);
  const Vertex u = r.vertex(c);
  const Vertex s = r.vertex(c + 1);
  if (side(p, q, s) * side(p, q, u) >= 0.0) return false;
  if (side(u, s, q) * side(u, s, p) >= 0.0) return false;
  report(state, "Line segment joining points " + int_to_text(a) + " and " + int_to_text(a + 1) +
                    " crosses line segment joining points " + int_to_text(c) + " and " + int_to_text(c + 1) +
                    " in file " + r.file + ".");
  return true;
}

// The vertices in runs of kRun, each run with the box of its vertices and
// of the first vertex of the next run, so that every segment that starts in
// a run lies in its box; the runs are the leaves of a binary tree whose
// nodes hold the boxes of their leaves.
constexpr std::int32_t kRun = 8;

struct Box {
  double xlo = INFINITY;
  double xhi = -INFINITY;
  double ylo = INFINITY;
  double yhi = -INFINITY;
  void add(const Box& b) {
    xlo = std::min(xlo, b.xlo);
    xhi = std::max(xhi, b.xhi);
    ylo = std::min(ylo, b.ylo);
    yhi = std::max(yhi, b.yhi);
  }
};

struct RunTree {
  std::int32_t n = 0;       // vertices
  std::int32_t leaves = 1;  // a power of two, at least the runs
  std::vector<Box> boxes;   // node t at boxes[t], its children 2t and 2t + 1; leaf b at leaves + b
};

RunTree build_run_tree(const Ring& r, std::int32_t n) {
  RunTree tree;
  tree.n = n;
  const std::int32_t runs = static_cast<std::int32_t>((std::int64_t{n} + kRun - 1) / kRun);
  while (tree.leaves < runs) tree.leaves *= 2;
  tree.boxes.assign(2 * static_cast<std::size_t>(tree.leaves), Box{});
  for (std::int32_t b = 0; b < runs; ++b) {
    Box& box = tree.boxes[static_cast<std::size_t>(tree.leaves + b)];
    const std::int32_t first = static_cast<std::int32_t>(std::int64_t{b} * kRun + 1);
    const std::int32_t last = static_cast<std::int32_t>(std::min<std::int64_t>(n, (std::int64_t{b} + 1) * kRun + 1));
    for (std::int32_t k = first; k <= last; ++k) {
      const Vertex v = r.vertex(k);
      box.add(Box{v.x, v.x, v.y, v.y});
    }
  }
  for (std::int32_t t = tree.leaves - 1; t >= 1; --t) {
    tree.boxes[static_cast<std::size_t>(t)] = tree.boxes[static_cast<std::size_t>(2 * t)];
    tree.boxes[static_cast<std::size_t>(t)].add(tree.boxes[static_cast<std::size_t>(2 * t + 1)]);
  }
  return tree;
}

// Calls test(k) for k = from .. to in ascending order, except in the runs
// whose box `passes` says no k there can fail, until test returns true.
template <typename Passes, typename Test>
bool first_failure(const RunTree& tree, std::int32_t from, std::int32_t to, Passes passes, Test test) {
  if (from > to) return false;
  // The numbers a node covers are worked out in 64 bits: the last leaves
  // of a ring of more than 2^30 vertices reach past 2^31.
  auto walk = [&](auto& self, std::int32_t t, std::int32_t first_leaf, std::int32_t leaf_count) -> bool {
    const std::int64_t lo = std::int64_t{first_leaf} * kRun + 1;
    const std::int64_t hi = (std::int64_t{first_leaf} + leaf_count) * kRun;
    if (hi < from || lo > to) return false;
    if (passes(tree.boxes[static_cast<std::size_t>(t)])) return false;
    if (leaf_count == 1) {
      const std::int32_t last = static_cast<std::int32_t>(std::min<std::int64_t>(hi, to));
      for (std::int32_t k = static_cast<std::int32_t>(std::max<std::int64_t>(lo, from)); k <= last; ++k) {
        if (test(k)) return true;
      }
      return false;
    }
    const std::int32_t half = leaf_count / 2;
    return self(self, 2 * t, first_leaf, half) || self(self, 2 * t + 1, first_leaf + half, half);
  };
  return walk(walk, 1, 0, tree.leaves);
}

// Whether no vertex p in [lo, hi] along one axis can meet the tests of the
// segment whose ends lie at u and w along it: p lies outside [min(u, w),
// max(u, w)], so the on-the-line test fails, and p - u and p - w as rounded
// exceed the tolerance in size, so neither end coincides.  A rounded
// difference never falls as p rises, so it is checked at the box's edge
// nearest the segment, and -(u - p) rounds as -(p - u) does.
bool apart_along(double lo, double hi, double u, double w) {
  if (lo > std::max(u, w)) return lo - u > kTolerance && lo - w > kTolerance;
  if (hi < std::min(u, w)) return u - hi > kTolerance && w - hi > kTolerance;
  return false;
}

// Whether side(p, q, w), as rounded, has one sign (zero included) at every
// point w of the box.  Its two products are each rounded from a rounded
// difference that never falls as w.y (or w.x) rises, times a factor that
// does not depend on w, so each lies between its values at the box's two
// edges; and the rounded difference of the products never falls as the
// first rises or the second falls.  So the rounded side lies between the
// two values worked out below from those extremes: when one of them is at
// least 0 or the other at most 0, every side is.  Every product of two
// sides of the box is then at least 0, as the crossing test asks.  The
// coordinates are finite and below 1e150, so nothing here overflows.
bool one_side_of(const Vertex& p, const Vertex& q, const Box& box) {
  const double a = q.x - p.x;
  const double c = q.y - p.y;
  const double x1 = a * (box.ylo - p.y);
  const double x2 = a * (box.yhi - p.y);
  const double y1 = c * (box.xlo - p.x);
  const double y2 = c * (box.xhi - p.x);
  const double least = std::min(x1, x2) - std::max(y1, y2);
  const double most = std::max(x1, x2) - std::min(y1, y2);
  return least >= 0.0 || most <= 0.0;
}

// The literal tests, every vertex against every segment, then every pair of
// segments.
int check_every_pair(RunState& state, const Ring& r, std::int32_t n) {
  // Vertices against segments.  The last segment is never the segment of the
  // test and the closing vertex never the vertex: it repeats vertex 1.
  for (std::int32_t i = 1; i <= n - 2; ++i) {
    for (std::int32_t k = 1; k <= n - 1; ++k) {
      if (k == i || k == i + 1) continue;
      if (vertex_fails(state, r, i, k)) return 1;
    }
  }
  // Segments against segments.
  if (n < 4) return 0;
  for (std::int32_t a = 1; a <= n - 3; ++a) {
    for (std::int32_t c = a + 2; c <= n - 1; ++c) {
      if (segments_cross(state, r, a, c)) return 1;
    }
  }
  return 0;
}

}  // namespace

int check_polygon_integrity_reference(RunState& state, const BoundaryRing& ring, const std::string& file_name) {
  const std::int32_t n = ring.vertex_count;
  if (n < 3) return 0;
  return check_every_pair(state, Ring{ring, trimmed(file_name)}, n);
}

// The same tests in the same order, with the runs of vertices passed over
// whose boxes show that none of their tests can fail (apart_along,
// one_side_of): the first failure met is the first of the literal order.
// Rings with a coordinate that is no finite number, or of 1e150 or more in
// size, take every pair.
int check_polygon_integrity(RunState& state, const BoundaryRing& ring, const std::string& file_name) {
  const std::int32_t n = ring.vertex_count;
  if (n < 3) return 0;
  const Ring r{ring, trimmed(file_name)};
  bool boxed = !state.reference_paths;
  for (std::size_t k = 0; k < 2 * static_cast<std::size_t>(n) && boxed; ++k) {
    boxed = std::fabs(ring.vertices[k]) < 1e150;
  }
  if (!boxed) return check_every_pair(state, r, n);
  const RunTree tree = build_run_tree(r, n);
  for (std::int32_t i = 1; i <= n - 2; ++i) {
    const Vertex a = r.vertex(i);
    const Vertex b = r.vertex(i + 1);
    auto passes = [&](const Box& box) {
      return apart_along(box.xlo, box.xhi, a.x, b.x) || apart_along(box.ylo, box.yhi, a.y, b.y);
    };
    auto test = [&](std::int32_t k) { return k != i && k != i + 1 && vertex_fails(state, r, i, k); };
    if (first_failure(tree, 1, n - 1, passes, test)) return 1;
  }
  if (n < 4) return 0;
  for (std::int32_t a = 1; a <= n - 3; ++a) {
    const Vertex p = r.vertex(a);
    const Vertex q = r.vertex(a + 1);
    auto passes = [&](const Box& box) { return one_side_of(p, q, box); };
    auto test = [&](std::int32_t c) { return segments_cross(state, r, a, c); };
    if (first_failure(tree, a + 2, n - 1, passes, test)) return 1;
  }
  return 0;
}

}  // namespace tesseramill
