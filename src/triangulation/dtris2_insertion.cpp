// The insertion steps of DTRIS2 in the same order, with the same tests and
// the same triangle numbers, on tables that spare the searches:
//
// - Each neighbour entry names the edge across which the neighbour lies as
//   well as the neighbour (4u + f, and the hull links likewise), so that
//   SWAPEC finds the shared edge of u, and the entry of s or r that names
//   the swapped triangle, without trying positions 1, 2, 3.  The literal
//   steps take the first position that names the triangle; the coded edge is
//   that position unless the two triangles share two edges, which the steps
//   check before they trust it and hand back to the literal routine.
// - `hull_end` keeps for each hull point the hull edge that ends in it.  The
//   literal steps find that edge by turning round the point through inner
//   triangles (store_hull_link and the left walk of
//   visible_boundary_edges).  Every point's triangles form one fan (an
//   insertion adds a new point's fan and lengthens two fans at their hull
//   ends, and a swap moves one triangle from the fans of a and b to those of
//   i and c without splitting or joining any), and every point stands at
//   most once on the hull (an insertion replaces a chain of hull edges by
//   two through the new point), so the turn always ends at the one hull edge
//   that ends in the point: the edge that `hull_end` names.  It changes where
//   a hull edge is made (the first fan, each new fan) or moved to another
//   triangle (a swap next to the hull), and is set there.
#include "triangulation/dtris2_insertion.h"

#include "triangulation/dtris2.h"
#include "triangulation/dtris2_tests.h"

namespace tesseramill {

using namespace dtris2_detail;

namespace {

struct Tables {
  const double* points;
  std::int32_t* triangles;
  std::int32_t* hull_end;
  std::int32_t* stack;

  const double* point(std::int32_t k) const { return points + 2 * static_cast<std::size_t>(k - 1); }
  std::int32_t& vertex(std::int32_t t, std::int32_t e) {
    return triangles[kTriangleRecord * static_cast<std::size_t>(t - 1) + static_cast<std::size_t>(e)];
  }
  std::int32_t& across(std::int32_t t, std::int32_t e) {
    return triangles[kTriangleRecord * static_cast<std::size_t>(t - 1) + 3 + static_cast<std::size_t>(e)];
  }
  std::int32_t& hull_edge_ending_at(std::int32_t k) { return hull_end[k - 1]; }
};

inline std::int32_t next_edge(std::int32_t e) { return e == 2 ? 0 : e + 1; }
inline std::int32_t previous_edge(std::int32_t e) { return e == 0 ? 2 : e - 1; }

// Whether an entry of triangle t before edge `edge` names triangle `other`
// too: the literal steps would then take that earlier entry.  Both entries
// that can come before are read and tested whatever `edge` is, and the
// answers joined without a branch: the answer is that of the loop over
// g < edge, and the extra reads stay inside t's six entries.  The loop's
// trip count (0, 1 or 2) is as random as the edges, and each of the three
// calls per swap then cost a mispredicted branch.  With the corner below
// chosen the same way, the insertion alone of the million cells' points
// takes 1.06 s against 1.37 s with the loop and the branches; with the
// test of an entry made without its division (code_names_triangle), 0.99 s.
inline bool named_earlier(Tables& m, std::int32_t t, std::int32_t edge, std::int32_t other) {
  const bool at_first = (edge > 0) & code_names_triangle(m.across(t, 0), other);
  const bool at_second = (edge > 1) & code_names_triangle(m.across(t, 1), other);
  return at_first | at_second;
}

// Stores the hull link `link` in the hull edge that ends in point `pivot`.
inline void store_hull_link(Tables& m, std::int32_t pivot, std::int32_t link) {
  const std::int32_t h = m.hull_edge_ending_at(pivot);
  m.across(coded_triangle(h), coded_edge(h)) = link;
}

void make_first_fan(Tables& m, std::int32_t j, std::int32_t side, std::int32_t& triangle_count,
                    std::int32_t& ltri, std::int32_t& ledg) {
  const std::int32_t big_t = j - 2;
  for (std::int32_t i = 1; i <= big_t; ++i) {
    if (side == -1) {
      m.vertex(i, 0) = i;
      m.vertex(i, 1) = i + 1;
      m.vertex(i, 2) = j;
      m.across(i, 0) = i < big_t ? -entry_code(i + 1, 0) : -entry_code(big_t, 1);
      m.across(i, 1) = i < big_t ? entry_code(i + 1, 2) : -entry_code(1, 2);
      m.across(i, 2) = i == 1 ? -entry_code(1, 0) : entry_code(i - 1, 1);
      m.hull_edge_ending_at(i + 1) = entry_code(i, 0);
    } else {
      m.vertex(i, 0) = i + 1;
      m.vertex(i, 1) = i;
      m.vertex(i, 2) = j;
      m.across(i, 0) = i == 1 ? -entry_code(1, 1) : -entry_code(i - 1, 0);
      m.across(i, 1) = i == 1 ? -entry_code(big_t, 2) : entry_code(i - 1, 2);
      m.across(i, 2) = i < big_t ? entry_code(i + 1, 1) : -entry_code(big_t, 0);
      m.hull_edge_ending_at(i) = entry_code(i, 0);
    }
  }
  if (side == -1) {
    m.hull_edge_ending_at(j) = entry_code(big_t, 1);
    m.hull_edge_ending_at(1) = entry_code(1, 2);
  } else {
    m.hull_edge_ending_at(j) = entry_code(1, 1);
    m.hull_edge_ending_at(big_t + 1) = entry_code(big_t, 2);
  }
  triangle_count = big_t;
  ltri = side == -1 ? big_t : 1;
  ledg = 1;
}

void visible_boundary_edges(Tables& m, double x, double y, std::int32_t& ltri, std::int32_t& ledg,
                            std::int32_t& rtri, std::int32_t& redg) {
  bool left_walk = false;
  if (ltri == 0) {
    ltri = rtri;
    ledg = redg;
    left_walk = true;
  }
  for (;;) {
    const std::int32_t l = -m.across(rtri, redg);
    const std::int32_t t = coded_triangle(l);
    const std::int32_t e = coded_edge(l);
    const std::int32_t a = m.vertex(t, e);
    const std::int32_t b = m.vertex(t, next_edge(e));
    if (side_choice(x, y, m.point(a), m.point(b)) != 1) break;
    rtri = t;
    redg = e;
  }
  if (!left_walk) return;
  std::int32_t t = ltri;
  std::int32_t e = ledg;
  for (;;) {
    const std::int32_t b = m.vertex(t, e);
    const std::int32_t h = m.hull_edge_ending_at(b);
    t = coded_triangle(h);
    e = coded_edge(h);
    const std::int32_t a = m.vertex(t, e);
    if (side_choice(x, y, m.point(a), m.point(b)) != 1) break;
  }
  ltri = t;
  ledg = e;
}

// SWAPEC for the new point i; false when two triangles share two edges.
//
// After a swap across an inner edge (s > 0) the literal steps push t and
// pop it at once: the next test is of t again.  The push is made as theirs
// is, with its test of the stack's room, and the pop takes t back off; what
// the pop would read from the tables is taken from what the swap has just
// written, so the next test need not wait for the selection of the edge
// again.  It finds the same, unless the swap met one of the cases checked
// below:
// - t's corners: the swap writes only corner ep1 of t (c), and corner fp1
//   of u (i), which is t's only when u is t.  i keeps its corner before e,
//   the first to hold i when t was popped, and c != i, so the selection
//   still gives edge e, whose corners are a and now c.
// - the entry across e, s: after it, the swap writes u's entries (t's only
//   when u is t), st's (when st is t), rt's for an inner r (when rt is t),
//   or, for a hull edge r, the link in the hull edge that ends in b (when
//   that is t's edge e).
// In any of those cases t is popped as the literal steps pop it.  None of
// them arises in a triangulation where no two triangles share two edges.
// A search of some millions of small lattices with their coordinates moved
// by a few multiples of 1e-14 met only c == i, a few dozen times, and no
// set whose tables any of the checks changes; they are kept so that the
// steps agree whatever the table.  Seldom true and off the path from one
// test to the next, they cost the insertion about one per cent.
//
// The pop waited on the stores of the swap just made.  The insertion of
// the million cells' 1,076,876 points takes 0.674 s against 0.713 s with the
// round trip (medians of 11 pairs, the two in turn; the time with the round
// trip over the time without, 1.061 in the median pair, 1.025 to 1.097).
bool swap_edges(Tables& m, std::int32_t i, std::int32_t& top, std::int32_t maxst, std::int32_t& btri,
                std::int32_t& bedg, int& ierror, std::ostream& screen) {
  const double* pi = m.point(i);
  while (top > 0) {
    const std::int32_t t = m.stack[top - 1];
    top -= 1;
    // The edge of t opposite i, and the corner b that ends it, chosen by
    // selection rather than by branches, as which corner holds i follows no
    // pattern; the corners are tested in the same turn as the literal
    // steps', so the first that holds i decides in both.
    const std::int32_t v0 = m.vertex(t, 0);
    const std::int32_t v1 = m.vertex(t, 1);
    const std::int32_t v2 = m.vertex(t, 2);
    const std::int32_t e = v0 == i ? 1 : v1 == i ? 2 : 0;
    const std::int32_t ep1 = next_edge(e);
    const std::int32_t a = m.vertex(t, e);
    std::int32_t b = v0 == i ? v2 : v1 == i ? v0 : v1;
    std::int32_t across_e = m.across(t, e);
    for (;;) {
      const std::int32_t u = coded_triangle(across_e);
      const std::int32_t f = coded_edge(across_e);
      if (named_earlier(m, u, f, t)) return false;
      const std::int32_t c = m.vertex(u, previous_edge(f));
      if (diagonal_choice(pi, m.point(a), m.point(c), m.point(b)) != 1) break;

      const std::int32_t fm1 = previous_edge(f);
      const std::int32_t fp1 = next_edge(f);
      m.vertex(t, ep1) = c;
      m.vertex(u, fp1) = i;
      const std::int32_t r = m.across(t, ep1);
      const std::int32_t s = m.across(u, fp1);
      m.across(t, ep1) = entry_code(u, fp1);
      m.across(u, fp1) = entry_code(t, ep1);
      m.across(t, e) = s;
      m.across(u, f) = r;
      if (m.across(u, fm1) > 0) {
        top += 1;
        m.stack[top - 1] = u;
      }
      bool test_t_again = s > 0;
      if (test_t_again) {
        const std::int32_t st = coded_triangle(s);
        const std::int32_t sg = coded_edge(s);
        if (named_earlier(m, st, sg, u)) return false;
        m.across(st, sg) = entry_code(t, e);
        top += 1;
        if (top > maxst) {
          print_swap_stack_full(screen, maxst, top);
          ierror = 8;
          return true;
        }
        m.stack[top - 1] = t;
        if ((u == t) | (st == t) | (c == i)) [[unlikely]] test_t_again = false;
      } else {
        if (u == btri && fp1 == bedg) {
          btri = t;
          bedg = e;
        }
        // The hull edge a-c now lies in t; the one before it ends in a.
        m.hull_edge_ending_at(c) = entry_code(t, e);
        store_hull_link(m, a, -entry_code(t, e));
      }
      if (r > 0) {
        const std::int32_t rt = coded_triangle(r);
        const std::int32_t rg = coded_edge(r);
        if (named_earlier(m, rt, rg, t)) return false;
        m.across(rt, rg) = entry_code(u, f);
        if (rt == t) [[unlikely]] test_t_again = false;
      } else {
        if (t == btri && ep1 == bedg) {
          btri = u;
          bedg = f;
        }
        // The hull edge b-i now lies in u; the one before it ends in b.
        m.hull_edge_ending_at(i) = entry_code(u, f);
        if (m.hull_edge_ending_at(b) == entry_code(t, e)) [[unlikely]] test_t_again = false;
        store_hull_link(m, b, -entry_code(u, f));
      }
      if (!test_t_again) break;
      top -= 1;
      b = c;
      across_e = s;
    }
  }
  return true;
}

}  // namespace

FastInsertion insert_sorted_points(std::int32_t n, const double* points, std::int32_t* triangles,
                                   std::int32_t* hull_end, std::int32_t* stack, std::int32_t& triangle_count,
                                   int& ierror, std::ostream& screen) {
  const std::int32_t most = most_coded_points_for_tests > 0 ? most_coded_points_for_tests : kMostCodedPoints;
  if (n > most) return FastInsertion::kTooManyPoints;
  Tables m{points, triangles, hull_end, stack};
  // The stack holds n entries, as the literal routine's does (a test may
  // lower it to reach the routine's full-stack failures).
  const std::int32_t maxst = dtris2_stack_capacity_for_tests > 0 ? dtris2_stack_capacity_for_tests : n;
  triangle_count = 0;
  std::int32_t j = 3;
  std::int32_t side = 0;
  ierror = first_triangle_point(n, [&](std::int32_t k) { return m.point(k); }, j, side, screen);
  if (ierror != 0) return FastInsertion::kDone;

  std::int32_t ltri = 0;
  std::int32_t ledg = 0;
  make_first_fan(m, j, side, triangle_count, ltri, ledg);
  std::int32_t top = 0;

  for (std::int32_t mp = j + 1; mp <= n; ++mp) {
    const double x = m.point(mp)[0];
    const double y = m.point(mp)[1];
    std::int32_t rtri;
    std::int32_t redg;
    const std::int32_t a = m.vertex(ltri, ledg);
    const std::int32_t b = m.vertex(ltri, next_edge(ledg));
    if (side_choice(x, y, m.point(a), m.point(b)) == 1) {
      rtri = ltri;
      redg = ledg;
      ltri = 0;
    } else {
      const std::int32_t l = -m.across(ltri, ledg);
      rtri = coded_triangle(l);
      redg = coded_edge(l);
    }
    visible_boundary_edges(m, x, y, ltri, ledg, rtri, redg);

    const std::int32_t n1 = triangle_count + 1;
    std::int32_t l = -m.across(ltri, ledg);
    std::int32_t m3 = 0;
    for (;;) {
      const std::int32_t t = coded_triangle(l);
      const std::int32_t e = coded_edge(l);
      l = -m.across(t, e);
      const std::int32_t m2 = m.vertex(t, e);
      m3 = m.vertex(t, next_edge(e));
      triangle_count += 1;
      const std::int32_t k = triangle_count;
      m.across(t, e) = entry_code(k, 0);
      m.vertex(k, 0) = m3;
      m.vertex(k, 1) = m2;
      m.vertex(k, 2) = mp;
      m.across(k, 0) = entry_code(t, e);
      m.across(k, 1) = entry_code(k - 1, 2);
      m.across(k, 2) = entry_code(k + 1, 1);
      if (top >= maxst) {
        print_fan_stack_full(screen, maxst, top);
        ierror = 8;
        return FastInsertion::kDone;
      }
      top += 1;
      m.stack[top - 1] = k;
      if (t == rtri && e == redg) break;
    }
    m.across(ltri, ledg) = -entry_code(n1, 1);
    m.across(n1, 1) = -entry_code(triangle_count, 2);
    m.across(triangle_count, 2) = -l;
    m.hull_edge_ending_at(mp) = entry_code(n1, 1);
    m.hull_edge_ending_at(m3) = entry_code(triangle_count, 2);

    ltri = n1;
    ledg = 1;
    if (!swap_edges(m, mp, top, maxst, ltri, ledg, ierror, screen)) return FastInsertion::kTwoEdgesShared;
    if (ierror != 0) return FastInsertion::kDone;
  }
  return FastInsertion::kDone;
}

}  // namespace tesseramill
