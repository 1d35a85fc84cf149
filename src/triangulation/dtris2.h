// Delaunay triangulation of planar points by sorted incremental insertion
// with edge swapping.
#pragma once

#include <cstddef>
#include <cstdint>
#include <iosfwd>
#include <vector>

namespace tesseramill {

// The relative tolerance of every test of the triangulation: 100 times the
// double-precision machine epsilon.
inline constexpr double kTriangulationTolerance = 2.220446049250313e-14;

// Room the fast DTRIS2 keeps between calls.
struct Dtris2Key {
  double x;
  double y;
  std::int32_t index;
};
struct Dtris2Workspace {
  // The points' keys in the order the last call sorted them, each number
  // 1..n once; the next call of as many points starts from that order.
  std::vector<Dtris2Key> keys;
  std::vector<double> sorted_points;
  std::vector<std::int32_t> identity;
  std::vector<std::int32_t> triangles;  // corners and neighbours, 6 per triangle
  std::vector<std::int32_t> hull_end;   // per point, the hull edge that ends in it
  // Bytes of memory to touch ahead (PagesAhead) on the second core while
  // the insertion holds the first, for what the caller allocates after the
  // call; 0 for none.
  std::size_t touch_beside_insertion = 0;
};

// Triangulates the n points held as x,y pairs in `points`.  `sort_index`
// must hold 1..n on entry and holds the sorted order on return.  The tables
// need room for 2n triangles, `stack` for n entries.  Fault messages go to
// `screen`.  Returns 0, or 224 (duplicate points), 225 (fewer than three
// points or all on a line) or 8 (stack exhausted).
//
// DTRIS2 sorts with a faster sort where it provably gives the heap sort's
// order and inserts the points from a copy in that order;
// DTRIS2_reference is the literal routine, heap sort and all.  Both give the
// same tables.
int DTRIS2(std::int32_t n, const double* points, std::int32_t* sort_index, std::int32_t& triangle_count,
           std::int32_t* tri_vertex, std::int32_t* tri_neighbour, std::int32_t* stack, std::ostream& screen,
           Dtris2Workspace& work);
int DTRIS2_reference(std::int32_t n, const double* points, std::int32_t* sort_index, std::int32_t& triangle_count,
                     std::int32_t* tri_vertex, std::int32_t* tri_neighbour, std::int32_t* stack, std::ostream& screen);

// For the library's tests alone: when above 0, the capacity of DTRIS2's
// stack in place of n, so that a test can fill it, which no set of n points
// can.  The program never sets it.
inline std::int32_t dtris2_stack_capacity_for_tests = 0;

// Whether point a stands before point b in the tolerant lexicographic order.
bool points_less(const double* a, const double* b);

// +1 when (x, y) lies right of the directed line from a to b, -1 left of it,
// 0 on it within the tolerance.
int side_of_line(double x, double y, const double* a, const double* b);

// For the quadrilateral P0..P3 in counter-clockwise order: +1 to use the
// diagonal P0-P2, -1 to use P1-P3, 0 to leave it as it is.
int diagonal_test(const double* p0, const double* p1, const double* p2, const double* p3);

// The non-negative remainder of i by j.
std::int32_t I4_MODP(std::int32_t i, std::int32_t j);

}  // namespace tesseramill
