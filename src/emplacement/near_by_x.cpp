#include "emplacement/near_by_x.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <cstdint>

namespace tesseramill {

namespace {

// The longest list placed by buckets; longer ones are sorted.  A seed lists
// some 23 points.
constexpr std::size_t kBucketedMost = 512;

// Whether a stands before b: x below, or x equal and number below.
bool before(const MeshPointIndex::Entry& a, const MeshPointIndex::Entry& b) {
  return a.x < b.x || (a.x == b.x && a.number < b.number);
}

}  // namespace

void lay_out_near_by_sort(MeshPointIndex::EntryList& near, bool sloped, NearArrays out) {
  std::sort(near.begin(), near.end(), before);
  out.numbers.clear();
  out.xs.clear();
  out.ys.clear();
  out.strikes.clear();
  for (const MeshPointIndex::Entry& e : near) {
    out.numbers.push_back(e.number);
    out.xs.push_back(e.x);
    out.ys.push_back(e.y);
    out.strikes.push_back(sloped ? e.strike : 0.0);
  }
}

// Why the order is that of the sort.  With no x that is no number, "x
// below, or x equal and number below" is a strict order, total among points
// of distinct numbers (the index holds a point once), and a sort by it has
// one outcome, whatever order it starts from; the insertion sort below is
// such a sort.  It starts from the points dealt into buckets of x, in the
// buckets' order, which only saves it work: a sort of some 23 points in the
// order the index gives them spends most of its time on comparisons it
// mispredicts, while from the buckets it moves only the points that share
// one, and nearly all its comparisons are of points already in order,
// which it predicts.  The bucket of x is (x - lowest) * scale cut to an
// integer, each step a rounded operation that never falls as x rises, so a
// point in a lower bucket never belongs after one in a higher; held to the
// last bucket, it is a whole number from 0 to buckets - 1.  Lists whose x
// are not all numbers, or all one, or spread so widely or so narrowly that
// the spread or the scale is no finite number, are sorted as they stand.
void lay_out_near_by_x(const MeshPointIndex::EntryList& near, bool sloped, NearArrays out) {
  const std::size_t n = near.size();
  double lowest = INFINITY;
  double highest = -INFINITY;
  bool numeric = true;
  for (const MeshPointIndex::Entry& e : near) {
    lowest = std::min(lowest, e.x);
    highest = std::max(highest, e.x);
    numeric = numeric && e.x == e.x;
  }
  const double spread = highest - lowest;
  auto sort_as_they_stand = [&] {
    MeshPointIndex::EntryList sorted = near;
    lay_out_near_by_sort(sorted, sloped, out);
  };
  if (n > kBucketedMost || !numeric || !(spread > 0.0) || !(spread < INFINITY)) {
    sort_as_they_stand();
    return;
  }
  // Two buckets or more per point, a power of two, so that few share one.
  std::uint32_t buckets = 2;
  while (buckets < 2 * n) buckets *= 2;
  const double scale = static_cast<double>(buckets) / spread;
  if (!(scale < INFINITY)) {
    sort_as_they_stand();
    return;
  }
  // The highest x lands at or about `buckets`, one past the last bucket,
  // and is held to the last.
  std::uint16_t bucket_of[kBucketedMost];
  std::uint16_t starts[2 * kBucketedMost + 1];
  std::fill(starts, starts + buckets + 1, std::uint16_t{0});
  for (std::size_t i = 0; i < n; ++i) {
    const double at = std::min((near[i].x - lowest) * scale, static_cast<double>(buckets - 1));
    bucket_of[i] = static_cast<std::uint16_t>(at);
    ++starts[bucket_of[i] + 1];
  }
  for (std::uint32_t b = 0; b < buckets; ++b) starts[b + 1] = static_cast<std::uint16_t>(starts[b + 1] + starts[b]);
  std::uint16_t order[kBucketedMost];
  for (std::size_t i = 0; i < n; ++i) order[starts[bucket_of[i]]++] = static_cast<std::uint16_t>(i);
  for (std::size_t k = 1; k < n; ++k) {
    const std::uint16_t moving = order[k];
    std::size_t m = k;
    while (m > 0 && before(near[moving], near[order[m - 1]])) {
      order[m] = order[m - 1];
      --m;
    }
    order[m] = moving;
  }
  out.numbers.resize(n);
  out.xs.resize(n);
  out.ys.resize(n);
  out.strikes.resize(n);
  for (std::size_t p = 0; p < n; ++p) {
    const MeshPointIndex::Entry& e = near[order[p]];
    out.numbers[p] = e.number;
    out.xs[p] = e.x;
    out.ys[p] = e.y;
    out.strikes[p] = sloped ? e.strike : 0.0;
  }
}

}  // namespace tesseramill
