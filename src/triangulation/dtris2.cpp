#include "triangulation/dtris2.h"

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <ostream>

#include "common/pages_ahead.h"
#include "common/parallel.h"
#include "output/number_format.h"
#include "triangulation/dtris2_insertion.h"
#include "triangulation/dtris2_tests.h"

namespace tesseramill {

namespace dtris2_detail {

void print_fatal(std::ostream& screen, const char* routine, const char* text) {
  screen << " \n" << routine << " - Fatal error!\n" << text << "\n";
}

void print_fan_stack_full(std::ostream& screen, std::int32_t maxst, std::int32_t top) {
  print_fatal(screen, "DTRIS2", "  Ran out of stack space.");
  screen << "  MAXST = " << format_integer(maxst, 6) << "\n  TOP =   " << format_integer(top, 6) << "\n";
}

void print_swap_stack_full(std::ostream& screen, std::int32_t maxst, std::int32_t top) {
  print_fatal(screen, "SWAPEC", "  Ran out of stack storage.");
  screen << "  MAXST = " << format_integer(maxst, 6) << "\n  TOP =   " << format_integer(top, 6) << "\n";
  screen << " \nDTRIS2 - Fatal error!\n  SWAPEC returned IERROR = " << format_integer(8, 6) << "\n";
}

}  // namespace dtris2_detail

using namespace dtris2_detail;

namespace {

// The working view of one call: 1-based access to points and tables.  The
// corners and neighbours of triangle t start at [stride (t-1)] of their
// tables: stride 3 for the two tables of the result, or kTriangleRecord for
// the one table that keeps a triangle's corners and neighbours side by side.
struct Mesh {
  const double* points;
  std::int32_t* sort_index;
  std::int32_t* tri_vertex;
  std::int32_t* tri_neighbour;
  std::int32_t* stack;
  std::ostream& screen;
  std::size_t stride = 3;

  const double* point(std::int32_t k) const { return points + 2 * static_cast<std::size_t>(k - 1); }
  std::int32_t& sorted(std::int32_t i) { return sort_index[i - 1]; }
  std::int32_t& vertex(std::int32_t e, std::int32_t t) {
    return tri_vertex[stride * static_cast<std::size_t>(t - 1) + static_cast<std::size_t>(e - 1)];
  }
  std::int32_t& neighbour(std::int32_t e, std::int32_t t) {
    return tri_neighbour[stride * static_cast<std::size_t>(t - 1) + static_cast<std::size_t>(e - 1)];
  }
};

void sift_down(Mesh& m, std::int32_t l, std::int32_t u) {
  const std::int32_t t = m.sorted(l);
  std::int32_t p = l;
  while (2 * p <= u) {
    std::int32_t c = 2 * p;
    if (c < u && points_less(m.point(m.sorted(c)), m.point(m.sorted(c + 1)))) c = c + 1;
    if (points_less(m.point(m.sorted(c)), m.point(t))) break;
    m.sorted(p) = m.sorted(c);
    p = c;
  }
  m.sorted(p) = t;
}

// The edge of triangle `t` that ends in vertex `pivot`: the edge before the
// pivot's own position, so that stepping across it turns round the pivot.
std::int32_t edge_ending_at(Mesh& m, std::int32_t t, std::int32_t pivot) {
  if (m.vertex(1, t) == pivot) return 3;
  if (m.vertex(2, t) == pivot) return 1;
  return 2;
}

// Finds the first and last hull edges that the point sees.
void visible_boundary_edges(Mesh& m, double x, double y, std::int32_t& ltri, std::int32_t& ledg,
                            std::int32_t& rtri, std::int32_t& redg) {
  bool left_walk = false;
  if (ltri == 0) {
    ltri = rtri;
    ledg = redg;
    left_walk = true;
  }
  for (;;) {
    const std::int32_t l = -m.neighbour(redg, rtri);
    const std::int32_t t = l / 3;
    const std::int32_t e = l % 3 + 1;
    const std::int32_t a = m.vertex(e, t);
    const std::int32_t b = e <= 2 ? m.vertex(e + 1, t) : m.vertex(1, t);
    if (side_choice(x, y, m.point(a), m.point(b)) != 1) break;
    rtri = t;
    redg = e;
  }
  if (!left_walk) return;
  std::int32_t t = ltri;
  std::int32_t e = ledg;
  for (;;) {
    const std::int32_t b = m.vertex(e, t);
    e = I4_MODP(e - 2, 3) + 1;
    while (m.neighbour(e, t) > 0) {
      t = m.neighbour(e, t);
      e = edge_ending_at(m, t, b);
    }
    const std::int32_t a = m.vertex(e, t);
    if (side_choice(x, y, m.point(a), m.point(b)) != 1) break;
  }
  ltri = t;
  ledg = e;
}

// Replaces `from` by `to` among the neighbours of triangle `t`, first match.
void replace_neighbour(Mesh& m, std::int32_t t, std::int32_t from, std::int32_t to) {
  for (std::int32_t e = 1; e <= 3; ++e) {
    if (m.neighbour(e, t) == from) {
      m.neighbour(e, t) = to;
      return;
    }
  }
}

// Walks from edge `e` of triangle `t` round the vertex `pivot` through inner
// triangles to the hull edge there, and stores the hull link `link` in it.
void store_hull_link(Mesh& m, std::int32_t t, std::int32_t e, std::int32_t pivot, std::int32_t link) {
  while (m.neighbour(e, t) > 0) {
    t = m.neighbour(e, t);
    e = edge_ending_at(m, t, pivot);
  }
  m.neighbour(e, t) = link;
}

int SWAPEC(Mesh& m, std::int32_t i, std::int32_t& top, std::int32_t maxst, std::int32_t& btri,
           std::int32_t& bedg) {
  const double* pi = m.point(i);
  while (top > 0) {
    const std::int32_t t = m.stack[top - 1];
    top -= 1;
    std::int32_t e;
    std::int32_t b;
    if (m.vertex(1, t) == i) {
      e = 2;
      b = m.vertex(3, t);
    } else if (m.vertex(2, t) == i) {
      e = 3;
      b = m.vertex(1, t);
    } else {
      e = 1;
      b = m.vertex(2, t);
    }
    const std::int32_t a = m.vertex(e, t);
    const std::int32_t u = m.neighbour(e, t);
    std::int32_t f;
    std::int32_t c;
    if (m.neighbour(1, u) == t) {
      f = 1;
      c = m.vertex(3, u);
    } else if (m.neighbour(2, u) == t) {
      f = 2;
      c = m.vertex(1, u);
    } else {
      f = 3;
      c = m.vertex(2, u);
    }
    if (diagonal_choice(pi, m.point(a), m.point(c), m.point(b)) != 1) continue;

    const std::int32_t em1 = I4_MODP(e - 2, 3) + 1;
    const std::int32_t ep1 = I4_MODP(e, 3) + 1;
    const std::int32_t fm1 = I4_MODP(f - 2, 3) + 1;
    const std::int32_t fp1 = I4_MODP(f, 3) + 1;
    m.vertex(ep1, t) = c;
    m.vertex(fp1, u) = i;
    const std::int32_t r = m.neighbour(ep1, t);
    const std::int32_t s = m.neighbour(fp1, u);
    m.neighbour(ep1, t) = u;
    m.neighbour(fp1, u) = t;
    m.neighbour(e, t) = s;
    m.neighbour(f, u) = r;
    if (m.neighbour(fm1, u) > 0) {
      top += 1;
      m.stack[top - 1] = u;
    }
    if (s > 0) {
      replace_neighbour(m, s, u, t);
      top += 1;
      if (top > maxst) {
        print_swap_stack_full(m.screen, maxst, top);
        return 8;
      }
      m.stack[top - 1] = t;
    } else {
      if (u == btri && fp1 == bedg) {
        btri = t;
        bedg = e;
      }
      store_hull_link(m, t, em1, a, -(3 * t + e - 1));
    }
    if (r > 0) {
      replace_neighbour(m, r, t, u);
    } else {
      if (t == btri && ep1 == bedg) {
        btri = u;
        bedg = f;
      }
      store_hull_link(m, u, fm1, b, -(3 * u + f - 1));
    }
  }
  return 0;
}

void make_first_fan(Mesh& m, std::int32_t j, std::int32_t side, std::int32_t& triangle_count,
                    std::int32_t& ltri, std::int32_t& ledg) {
  const std::int32_t big_t = j - 2;
  const std::int32_t mp = m.sorted(j);
  for (std::int32_t i = 1; i <= big_t; ++i) {
    if (side == -1) {
      m.vertex(1, i) = m.sorted(i);
      m.vertex(2, i) = m.sorted(i + 1);
      m.vertex(3, i) = mp;
      m.neighbour(1, i) = i < big_t ? -3 * (i + 1) : -3 * big_t - 1;
      m.neighbour(2, i) = i < big_t ? i + 1 : -5;
      m.neighbour(3, i) = i == 1 ? -3 : i - 1;
    } else {
      m.vertex(1, i) = m.sorted(i + 1);
      m.vertex(2, i) = m.sorted(i);
      m.vertex(3, i) = mp;
      // Edge 1 of triangle i runs from s(i+1) down to s(i); the next hull
      // edge counter-clockwise is edge 1 of triangle i-1, or edge 2 of
      // triangle 1 at the bottom of the fan.
      m.neighbour(1, i) = i == 1 ? -4 : -3 * (i - 1);
      m.neighbour(2, i) = i == 1 ? -3 * big_t - 2 : i - 1;
      m.neighbour(3, i) = i < big_t ? i + 1 : -3 * big_t;
    }
  }
  triangle_count = big_t;
  ltri = side == -1 ? big_t : 1;
  ledg = 2;
}

}  // namespace

bool points_less(const double* a, const double* b) {
  if (coordinates_differ(a[0], b[0])) return a[0] < b[0];
  if (coordinates_differ(a[1], b[1])) return a[1] < b[1];
  return false;
}

int side_of_line(double x, double y, const double* a, const double* b) { return side_choice(x, y, a, b); }

int diagonal_test(const double* p0, const double* p1, const double* p2, const double* p3) {
  return diagonal_choice(p0, p1, p2, p3);
}

std::int32_t I4_MODP(std::int32_t i, std::int32_t j) {
  std::int32_t value = i % j;
  if (value < 0) value += j < 0 ? -j : j;
  return value;
}

namespace {

// The heap sort of sort_index by points_less.
void heap_sort(Mesh& m, std::int32_t n) {
  if (n < 2) return;
  for (std::int32_t l = n / 2; l >= 1; --l) sift_down(m, l, n);
  for (std::int32_t i = n; i >= 2; --i) {
    std::swap(m.sorted(1), m.sorted(i));
    sift_down(m, 1, i - 1);
  }
}

// Everything after the sort: the duplicate test, the first fan and the
// insertion of each further point in sorted order.
int triangulate_sorted(Mesh& m, std::int32_t n, std::int32_t& triangle_count) {
  std::ostream& screen = m.screen;
  triangle_count = 0;
  std::int32_t j = 3;
  std::int32_t side = 0;
  const int first = first_triangle_point(n, [&](std::int32_t i) { return m.point(m.sorted(i)); }, j, side, screen);
  if (first != 0) return first;

  std::int32_t ltri = 0;
  std::int32_t ledg = 0;
  make_first_fan(m, j, side, triangle_count, ltri, ledg);
  std::int32_t top = 0;
  const std::int32_t maxst = dtris2_stack_capacity_for_tests > 0 ? dtris2_stack_capacity_for_tests : n;

  for (std::int32_t i = j + 1; i <= n; ++i) {
    const std::int32_t mp = m.sorted(i);
    const double x = m.point(mp)[0];
    const double y = m.point(mp)[1];
    std::int32_t rtri;
    std::int32_t redg;
    const std::int32_t a = m.vertex(ledg, ltri);
    const std::int32_t b = ledg <= 2 ? m.vertex(ledg + 1, ltri) : m.vertex(1, ltri);
    if (side_choice(x, y, m.point(a), m.point(b)) == 1) {
      rtri = ltri;
      redg = ledg;
      ltri = 0;
    } else {
      const std::int32_t l = -m.neighbour(ledg, ltri);
      rtri = l / 3;
      redg = l % 3 + 1;
    }
    visible_boundary_edges(m, x, y, ltri, ledg, rtri, redg);

    const std::int32_t n1 = triangle_count + 1;
    std::int32_t l = -m.neighbour(ledg, ltri);
    for (;;) {
      const std::int32_t t = l / 3;
      const std::int32_t e = l % 3 + 1;
      l = -m.neighbour(e, t);
      const std::int32_t m2 = m.vertex(e, t);
      const std::int32_t m3 = e <= 2 ? m.vertex(e + 1, t) : m.vertex(1, t);
      triangle_count += 1;
      const std::int32_t k = triangle_count;
      m.neighbour(e, t) = k;
      m.vertex(1, k) = m3;
      m.vertex(2, k) = m2;
      m.vertex(3, k) = mp;
      m.neighbour(1, k) = t;
      m.neighbour(2, k) = k - 1;
      m.neighbour(3, k) = k + 1;
      if (top >= maxst) {
        print_fan_stack_full(screen, maxst, top);
        return 8;
      }
      top += 1;
      m.stack[top - 1] = k;
      if (t == rtri && e == redg) break;
    }
    m.neighbour(ledg, ltri) = -3 * n1 - 1;
    m.neighbour(2, n1) = -3 * triangle_count - 2;
    m.neighbour(3, triangle_count) = -l;

    ltri = n1;
    ledg = 2;
    const int ierror = SWAPEC(m, mp, top, maxst, ltri, ledg);
    if (ierror != 0) return ierror;
  }
  return 0;
}

// Sorts sort_index (1..n on entry) as the heap sort would, by a faster sort
// wherever that provably gives the same order; false when the heap sort must
// decide.
//
// Why the order is the same.  The points are first sorted exactly by x, then
// y, and gathered into runs of neighbours whose x the tolerant rule calls
// equal.  Whether the rule calls two x equal changes only once as the second
// grows away from the first (the gap grows faster than the tolerance), so it
// is enough to check that the distinct x of a run are equal by the rule two
// by two and each differs from the first x of the next run: then the runs
// are the classes of x that the rule calls equal, and points_less orders
// points of different runs by x, exactly as the sort did.  Within a run it
// orders by y alone; each run is sorted exactly by y, and when each two
// neighbours there differ by the rule, all its y do (two values a < b < c
// whose neighbours differ by the rule differ themselves), so points_less
// agrees there too.  It is then
// a strict total order on these points, and every correct sort, the heap
// sort among them, gives its one sorted order.  Values that are no numbers,
// x equal by the rule across runs, or y equal by the rule within one, leave
// it to the heap sort.
//
// The keys are made in the order the last call left them in, when it had
// as many points: each pass of the Lloyd loop moves its points a little,
// so they come nearly sorted, and the sort below takes less than half the
// time on the million cells' points (0.025 s against 0.055 to 0.069).  The
// order they come in changes nothing: where the sort is trusted there is
// only one sorted order, and where points are equal in x and y the heap
// sort decides from 1..n.  The keys left behind always hold each number
// 1..n once, as every step below only moves them, and keys that could not
// all be made are dropped.
bool sort_exactly(const double* points, std::int32_t n, std::int32_t* sort_index, std::vector<Dtris2Key>& keys) {
  const bool last_order = keys.size() == static_cast<std::size_t>(n);
  keys.resize(static_cast<std::size_t>(n));
  // Each key is made by itself, on both cores, in its own place.
  const PartFailure unsortable = run_in_parts(keys.size(), [&](std::size_t begin, std::size_t end, int) {
    for (std::size_t k = begin; k < end; ++k) {
      const std::size_t at = last_order ? static_cast<std::size_t>(keys[k].index - 1) : k;
      const double x = points[2 * at];
      const double y = points[2 * at + 1];
      if (!std::isfinite(x) || !std::isfinite(y)) return PartFailure{k, {}};
      keys[k] = {x, y, static_cast<std::int32_t>(at) + 1};
    }
    return PartFailure{};
  });
  if (unsortable.failed()) {
    keys.clear();
    return false;
  }
  // The first sort is shared between the two cores.  It gives the one
  // sorted order wherever no two points are equal in both x and y; two that
  // are fall in one run with y equal by the rule, which leaves the order to
  // the heap sort whichever way round they came out, as the checks below
  // read only the x and y values in their sorted sequence.
  sort_in_parts(keys.begin(), keys.end(), [](const Dtris2Key& a, const Dtris2Key& b) {
    return a.x < b.x || (a.x == b.x && a.y < b.y);
  });
  const std::size_t count = keys.size();
  std::size_t first = 0;
  while (first < count) {
    std::size_t end = first + 1;
    while (end < count && !coordinates_differ(keys[end - 1].x, keys[end].x)) ++end;
    for (std::size_t a = first; a < end; ++a) {
      if (a > first && keys[a].x == keys[a - 1].x) continue;  // each distinct x once
      for (std::size_t b = a + 1; b < end; ++b) {
        if (keys[b].x != keys[b - 1].x && coordinates_differ(keys[a].x, keys[b].x)) return false;
      }
      if (end < count && !coordinates_differ(keys[a].x, keys[end].x)) return false;
    }
    if (end - first > 1) {
      std::sort(keys.begin() + static_cast<std::ptrdiff_t>(first), keys.begin() + static_cast<std::ptrdiff_t>(end),
                [](const Dtris2Key& a, const Dtris2Key& b) { return a.y < b.y; });
      for (std::size_t a = first + 1; a < end; ++a) {
        if (!coordinates_differ(keys[a - 1].y, keys[a].y)) return false;
      }
    }
    first = end;
  }
  run_in_parts(keys.size(), [&](std::size_t begin, std::size_t end, int) {
    for (std::size_t k = begin; k < end; ++k) sort_index[k] = keys[k].index;
    return PartFailure{};
  });
  return true;
}

}  // namespace

int DTRIS2_reference(std::int32_t n, const double* points, std::int32_t* sort_index, std::int32_t& triangle_count,
                     std::int32_t* tri_vertex, std::int32_t* tri_neighbour, std::int32_t* stack, std::ostream& screen) {
  Mesh m{points, sort_index, tri_vertex, tri_neighbour, stack, screen};
  heap_sort(m, n);
  return triangulate_sorted(m, n, triangle_count);
}

int DTRIS2(std::int32_t n, const double* points, std::int32_t* sort_index, std::int32_t& triangle_count,
           std::int32_t* tri_vertex, std::int32_t* tri_neighbour, std::int32_t* stack, std::ostream& screen,
           Dtris2Workspace& work) {
  if (!sort_exactly(points, n, sort_index, work.keys)) {
    Mesh by_number{points, sort_index, tri_vertex, tri_neighbour, stack, screen};
    heap_sort(by_number, n);
  }
  // The points copied into sorted order and numbered 1..n in it, so that
  // each insertion reads its neighbours from nearby memory.  The steps look
  // at coordinates and compare point numbers only for equality, so the
  // numbering changes no decision; the numbers are put back at the end.
  work.sorted_points.resize(2 * static_cast<std::size_t>(n));
  work.identity.resize(static_cast<std::size_t>(n));
  // Each point is copied by itself, so the copying is shared between the
  // two cores, as is the copying back of each triangle below.
  run_in_parts(static_cast<std::size_t>(std::max(n, 0)), [&](std::size_t begin, std::size_t end, int) {
    for (std::size_t k = begin; k < end; ++k) {
      const std::size_t from = 2 * static_cast<std::size_t>(sort_index[k] - 1);
      work.sorted_points[2 * k] = points[from];
      work.sorted_points[2 * k + 1] = points[from + 1];
      work.identity[k] = static_cast<std::int32_t>(k) + 1;
    }
    return PartFailure{};
  });
  // Each triangle's corners and neighbours side by side, as the walks and
  // swaps read them together; copied into the two tables at the end.  The
  // insertion of dtris2_insertion.cpp takes the literal steps' every
  // decision (see there); where it cannot vouch for that, the literal steps
  // run on the same copy.  Room is made for 2n records and for moving the
  // first to a 64-byte line (see kTriangleRecord).
  constexpr std::size_t kLine = 64;
  work.triangles.resize(2 * kTriangleRecord * static_cast<std::size_t>(std::max(n, 2)) +
                        kLine / sizeof(std::int32_t));
  const std::size_t misalignment = reinterpret_cast<std::uintptr_t>(work.triangles.data()) % kLine;
  std::int32_t* const records =
      work.triangles.data() + (misalignment == 0 ? 0 : (kLine - misalignment) / sizeof(std::int32_t));
  work.hull_end.resize(static_cast<std::size_t>(n));
  int ierror = 0;
  // The insertion holds one core for most of the call, the other idle.
  PagesAhead ahead;
  touch_pages_ahead(ahead, work.touch_beside_insertion);
  const FastInsertion fast = insert_sorted_points(n, work.sorted_points.data(), records,
                                                  work.hull_end.data(), stack, triangle_count, ierror, screen);
  release_pages_ahead(ahead);
  if (fast != FastInsertion::kDone) {
    Mesh m{work.sorted_points.data(), work.identity.data(), records, records + 3, stack, screen, kTriangleRecord};
    ierror = triangulate_sorted(m, n, triangle_count);
  }
  // The fast insertion codes its entries with their edges (literal_entry).
  const bool coded = fast == FastInsertion::kDone;
  run_in_parts(static_cast<std::size_t>(std::max(triangle_count, 0)), [&](std::size_t begin, std::size_t end, int) {
    for (std::size_t t = begin; t < end; ++t) {
      const std::int32_t* from = &records[kTriangleRecord * t];
      for (std::size_t e = 0; e < 3; ++e) {
        tri_vertex[3 * t + e] = sort_index[from[e] - 1];
        const std::int32_t across = from[3 + e];
        tri_neighbour[3 * t + e] = coded ? literal_entry(across) : across;
      }
    }
    return PartFailure{};
  });
  return ierror;
}

}  // namespace tesseramill
