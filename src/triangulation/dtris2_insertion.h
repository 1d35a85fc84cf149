// The insertion of the sorted points, step for step as DTRIS2's, on tables
// that let every step find what it looks for without a search.
#pragma once

#include <cstdint>
#include <iosfwd>

namespace tesseramill {

// Where the fast insertion ended.
enum class FastInsertion {
  kDone,          // tables made, or a failure code given (its message printed)
  kTwoEdgesShared // met two triangles that share two edges: nothing printed,
                  // the tables are of no use, and the literal steps must run
};

// Inserts the n points (x,y pairs, already in sorted order and numbered 1..n
// in it) as DTRIS2 does.  `triangles` holds 6 entries per triangle, room for
// 2n triangles: the three corners, then per edge what lies across it, coded
// as 3u + f for edge f (0-based) of triangle u, or the hull link
// -(3u + f) of the next hull edge.  `hull_end` needs n entries, `stack` n.
// `ierror` receives 0 or the failure code of DTRIS2.
FastInsertion insert_sorted_points(std::int32_t n, const double* points, std::int32_t* triangles,
                                   std::int32_t* hull_end, std::int32_t* stack, std::int32_t& triangle_count,
                                   int& ierror, std::ostream& screen);

}  // namespace tesseramill
