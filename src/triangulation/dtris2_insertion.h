// The insertion of the sorted points, step for step as DTRIS2's, on tables
// that let every step find what it looks for without a search.
#pragma once

#include <cstddef>
#include <cstdint>
#include <iosfwd>

namespace tesseramill {

// Where the fast insertion ended.
enum class FastInsertion {
  kDone,          // tables made, or a failure code given (its message printed)
  kTwoEdgesShared // met two triangles that share two edges: nothing printed,
                  // the tables are of no use, and the literal steps must run
};

// Entries per triangle in the insertion's table: six in use and two left
// empty, so that a record of 32 bytes, in a table that starts on a 64-byte
// line, never straddles two lines.  With records of 24 bytes a quarter of
// them did, and a test reading such a triangle waited on two lines.  On the
// million cells with 12 passes an insertion took 0.968 s against 1.002 s
// packed (medians of 8 runs of its 13 insertions, the two builds in turn;
// 7 of the 8 pairs in favour), for 16 more bytes a point.
inline constexpr std::size_t kTriangleRecord = 8;

// Inserts the n points (x,y pairs, already in sorted order and numbered 1..n
// in it) as DTRIS2 does.  `triangles` holds kTriangleRecord entries per
// triangle, room for 2n triangles: the three corners, then per edge what
// lies across it, coded as 3u + f for edge f (0-based) of triangle u, or the
// hull link -(3u + f) of the next hull edge, then two unused.  `hull_end`
// needs n entries, `stack` n.
// `ierror` receives 0 or the failure code of DTRIS2.
FastInsertion insert_sorted_points(std::int32_t n, const double* points, std::int32_t* triangles,
                                   std::int32_t* hull_end, std::int32_t* stack, std::int32_t& triangle_count,
                                   int& ierror, std::ostream& screen);

// Whether the entry `code` of such a table names triangle `t` (at least
// 1): code > 0 and code / 3 == t, that is 3t <= code <= 3t + 2, asked
// without a division as whether code - 3t, taken modulo 2^32, is below 3.
// The two agree wherever the codes fit in 32 bits, as the hull links
// -(3u + f) already need (at most 2n triangles for n up to (2^31 - 3) / 6,
// so 3t and |code| are at most 2^31 - 6): for code > 0 the difference is
// code - 3t itself when that is not negative, and at least 2^32 - 2^31
// otherwise; for code 0 it is 2^32 - 3t; for code < 0 it is
// 2^32 - |code| - 3t, at least 12.
inline bool code_names_triangle(std::int32_t code, std::int32_t t) {
  return static_cast<std::uint32_t>(code) - static_cast<std::uint32_t>(3 * t) < 3u;
}

}  // namespace tesseramill
