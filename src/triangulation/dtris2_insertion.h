// The insertion of the sorted points, step for step as DTRIS2's, on tables
// that let every step find what it looks for without a search.
#pragma once

#include <cstddef>
#include <cstdint>
#include <iosfwd>

namespace tesseramill {

// Where the fast insertion ended.
enum class FastInsertion {
  kDone,           // tables made, or a failure code given (its message printed)
  kTwoEdgesShared, // met two triangles that share two edges: nothing printed,
                   // the tables are of no use, and the literal steps must run
  kTooManyPoints   // more points than its codes can number (see
                   // kMostCodedPoints): nothing done, the literal steps must run
};

// The most points the fast insertion takes: their at most 2n triangles'
// codes 4t + e, and the hull links -(4t + e), must fit in 32 bits, so
// 8n + 2 <= 2^31 - 1.  The literal steps, whose codes are 3t + e, take up
// to (2^31 - 3) / 6 points; a set between the two is left to them.
inline constexpr std::int32_t kMostCodedPoints = (2147483647 - 2) / 8;

// For the library's tests alone: when above 0, the most points the fast
// insertion takes in place of kMostCodedPoints, so that a test can reach
// the hand-over, which no set that fits in memory here can.  The program
// never sets it.
inline std::int32_t most_coded_points_for_tests = 0;

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
// lies across it, coded as 4u + f for edge f (0-based) of triangle u, or the
// hull link -(4u + f) of the next hull edge, then two unused.  `hull_end`
// needs n entries, `stack` n.
// `ierror` receives 0 or the failure code of DTRIS2.
FastInsertion insert_sorted_points(std::int32_t n, const double* points, std::int32_t* triangles,
                                   std::int32_t* hull_end, std::int32_t* stack, std::int32_t& triangle_count,
                                   int& ierror, std::ostream& screen);

// A triangle and one of its edges in one entry, 4t + e: t and e are then
// taken back by a shift and a mask.  With 3t + e, as the literal tables
// code their hull links, they took a division by 3 (a multiplication and
// shifts) on the path from one test of SWAPEC to the next.  The insertion
// of the million cells' 1,076,876 points took 0.692 s with 3t + e and
// 0.649 s with 4t + e (the medians of nine rounds of 5 to 7 calls, the two
// builds in turn).  The codes then number fewer points (kMostCodedPoints).
// A code is never negative where t and e are taken back.
inline std::int32_t entry_code(std::int32_t t, std::int32_t e) { return 4 * t + e; }
inline std::int32_t coded_triangle(std::int32_t code) { return code >> 2; }
inline std::int32_t coded_edge(std::int32_t code) { return code & 3; }

// An entry of such a table as the literal tables hold it: the neighbour
// alone for 4u + f, the hull link -(3u + f) for -(4u + f), and 0 as 0.
inline std::int32_t literal_entry(std::int32_t entry) {
  if (entry > 0) return coded_triangle(entry);
  const std::int32_t link = -entry;
  return -(3 * coded_triangle(link) + coded_edge(link));
}

// Whether the entry `code` of such a table names triangle `t` (at least
// 1): code > 0 and code / 4 == t, that is 4t <= code <= 4t + 2 (no code
// ends in edge 3), asked without a shift as whether code - 4t, taken
// modulo 2^32, is below 3.  The two agree wherever 4t and |code| are at
// most 2^31 - 6, as they are for the at most 2n triangles of n points up
// to kMostCodedPoints (8n is then at most 2^31 - 8): for code > 0 the
// difference is code - 4t itself when that is not negative, and above
// 2^31 otherwise; for code 0 it is 2^32 - 4t; for code < 0 it is
// 2^32 - |code| - 4t, at least 14.
inline bool code_names_triangle(std::int32_t code, std::int32_t t) {
  return static_cast<std::uint32_t>(code) - static_cast<std::uint32_t>(4 * t) < 3u;
}

}  // namespace tesseramill
