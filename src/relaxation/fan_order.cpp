#include "relaxation/fan_order.h"

#include "common/text_tools.h"

namespace tesseramill {

namespace {

std::int32_t neighbour_of(const std::int32_t* tri_neighbour, std::int32_t e, std::int32_t t) {
  return tri_neighbour[3 * static_cast<std::size_t>(t - 1) + static_cast<std::size_t>(e - 1)];
}

// Position (0-based) of `t` among the first `c` entries of `col`, or -1.
std::int32_t find_in(const std::int32_t* col, std::int32_t c, std::int32_t t) {
  for (std::int32_t m = 0; m < c; ++m) {
    if (col[m] == t) return m;
  }
  return -1;
}

const char* const kSubOptimal =
    "Sub-optimal triangulation. This can sometimes be rectified by decreasing requested cell density along "
    "inner lines (especially if close to model boundary) or increasing requested cell density along outer "
    "polygonal boundary.";

std::string anomaly(std::int32_t m, std::int32_t p) {
  return "Connection anomaly for connected triangle " + int_to_text(m + 1) + "of point " + int_to_text(p) + ".";
}

std::string missing_neighbour(std::int32_t p) { return "Missing triangle local neighbour: cell = " + int_to_text(p); }

// Fans of at most this many triangles take the fast way; a point seldom has
// more than a dozen, and the literal routine takes any larger one.
constexpr std::int32_t kLargestFastFan = 32;

}  // namespace

std::string order_fan(const std::int32_t* tri_neighbour, std::int32_t* col, std::int32_t c, std::int32_t p,
                      std::int32_t* work) {
  std::int32_t start = 0;
  for (std::int32_t m = 0; m < c; ++m) {
    const std::int32_t t = col[m];
    int matches = 0;
    for (std::int32_t e = 1; e <= 3; ++e) {
      if (find_in(col, c, neighbour_of(tri_neighbour, e, t)) >= 0) ++matches;
    }
    if (matches == 1) {
      start = m;
      break;
    }
    if (matches == 3) return anomaly(m, p);
  }
  work[0] = col[start];
  col[start] = 0;
  if (c > 2) {
    for (std::int32_t i = 1; i < c - 1; ++i) {
      const std::int32_t t = work[i - 1];
      bool taken = false;
      for (std::int32_t e = 1; e <= 3 && !taken; ++e) {
        const std::int32_t next = neighbour_of(tri_neighbour, e, t);
        const std::int32_t at = find_in(col, c, next);
        if (at >= 0 && next > 0) {
          work[i] = next;
          col[at] = 0;
          taken = true;
        }
      }
      if (!taken) return missing_neighbour(p);
    }
  }
  if (c != 1) {
    std::int32_t last = -1;
    for (std::int32_t m = 0; m < c; ++m) {
      if (col[m] != 0) {
        last = m;
        break;
      }
    }
    if (last < 0) return kSubOptimal;
    work[c - 1] = col[last];
  }
  for (std::int32_t m = 0; m < c; ++m) col[m] = work[m];
  return std::string();
}

// Why the result is the literal one.  The literal routine asks, for each
// neighbour of a triangle, where it stands among the column's entries that
// are not yet taken (a taken entry is set to 0, which no neighbour entry
// is).  The entries are distinct triangle numbers, so each neighbour stands
// at one place of the column or at none; that place is worked out once for
// every neighbour of every triangle, and "not yet taken" is kept beside the
// column.  Every choice (the start, each step of the walk, the last entry,
// the failures and their order) is then made from the same facts in the
// same order.  The column is changed only at the end, as the literal
// routine leaves it on success; on a failure the run ends, and the column
// no longer matters.
std::string order_fan_fast(const std::int32_t* tri_neighbour, std::int32_t* col, std::int32_t c, std::int32_t p,
                           std::int32_t* work) {
  if (c < 1 || c > kLargestFastFan) return order_fan(tri_neighbour, col, c, p, work);
  std::int8_t place[kLargestFastFan][3];
  for (std::int32_t k = 0; k < c; ++k) {
    const std::int32_t* across = tri_neighbour + 3 * static_cast<std::size_t>(col[k] - 1);
    for (std::int32_t e = 0; e < 3; ++e) {
      const std::int32_t t = across[e];
      std::int32_t at = -1;
      for (std::int32_t j = 0; j < c; ++j) at = col[j] == t ? j : at;
      place[k][e] = static_cast<std::int8_t>(at);
    }
  }
  std::int32_t start = 0;
  for (std::int32_t m = 0; m < c; ++m) {
    const int matches = (place[m][0] >= 0) + (place[m][1] >= 0) + (place[m][2] >= 0);
    if (matches == 1) {
      start = m;
      break;
    }
    if (matches == 3) return anomaly(m, p);
  }
  bool taken[kLargestFastFan] = {};
  work[0] = col[start];
  taken[start] = true;
  std::int32_t at = start;
  for (std::int32_t i = 1; i < c - 1; ++i) {
    std::int32_t next = -1;
    for (std::int32_t e = 0; e < 3 && next < 0; ++e) {
      const std::int32_t j = place[at][e];
      if (j >= 0 && !taken[j]) next = j;
    }
    if (next < 0) return missing_neighbour(p);
    work[i] = col[next];
    taken[next] = true;
    at = next;
  }
  if (c != 1) {
    std::int32_t last = -1;
    for (std::int32_t m = 0; m < c && last < 0; ++m) {
      if (!taken[m]) last = m;
    }
    if (last < 0) return kSubOptimal;
    work[c - 1] = col[last];
  }
  for (std::int32_t m = 0; m < c; ++m) col[m] = work[m];
  return std::string();
}

}  // namespace tesseramill
