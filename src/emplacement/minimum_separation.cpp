#include "emplacement/minimum_separation.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <vector>

#include "common/parallel.h"

namespace tesseramill {

namespace {

constexpr double kLargest = 1.7976931348623157e+308;

}  // namespace

double minimum_separation_reference(const MeshPointList& mesh) {
  double min2 = kLargest;
  const double* p = mesh.mesh_points.data();
  for (std::int32_t a = 0; a < mesh.mesh_point_count; ++a) {
    for (std::int32_t b = a + 1; b < mesh.mesh_point_count; ++b) {
      const double dx = p[2 * a] - p[2 * b];
      const double dy = p[2 * a + 1] - p[2 * b + 1];
      min2 = std::min(min2, dx * dx + dy * dy);
    }
  }
  return std::sqrt(min2);
}

namespace {

struct Place {
  double x;
  double y;
};

bool before_in_x(const Place& a, const Place& b) { return a.x < b.x; }

// The smallest of `least` and the squared distances of the pairs whose
// first point is one of sorted[begin, end) and whose second comes after it
// in `sorted`, points sorted by x.  The squared distance of a pair is the
// same bit for bit whichever point comes first, since a rounded difference
// only changes sign when its operands swap.  For a point, the later points
// have differences in x that only grow, and their squares with them; once
// that square reaches the smallest so far, the rounded sum with dy * dy
// does too, so no later point can lower it and the scan moves on.
double scan_sorted(const std::vector<Place>& sorted, std::size_t begin, std::size_t end, double least) {
  for (std::size_t i = begin; i < end; ++i) {
    const double xi = sorted[i].x;
    const double yi = sorted[i].y;
    for (std::size_t j = i + 1; j < sorted.size(); ++j) {
      const double dx = xi - sorted[j].x;
      const double dx2 = dx * dx;
      if (dx2 >= least) break;
      const double dy = yi - sorted[j].y;
      least = std::min(least, dx2 + dy * dy);
    }
  }
  return least;
}

// The smallest squared distance by a sweep over the points sorted by x.
double sweep_minimum(const double* p, std::int32_t n) {
  // The points themselves, sorted by x: the scan then reads them in the
  // order it visits them.  Points of equal x may stand in any order, since
  // the difference in x of such a pair is 0 and never stops the scan.
  std::vector<Place> sorted(static_cast<std::size_t>(n));
  for (std::int32_t a = 0; a < n; ++a) sorted[static_cast<std::size_t>(a)] = {p[2 * a], p[2 * a + 1]};
  sort_in_parts(sorted.begin(), sorted.end(), before_in_x);
  // The first points of the pairs are shared between the two cores, each
  // part with a minimum of its own: a part's minimum is that of all the
  // pairs whose first point is its own (scan_sorted), the smaller of the
  // two minima is that of all pairs, and taking a minimum rounds nothing.
  double part_min2[2] = {kLargest, kLargest};
  run_in_parts(sorted.size(), [&](std::size_t begin, std::size_t end, int part) {
    part_min2[part] = scan_sorted(sorted, begin, end, kLargest);
    return PartFailure{};
  });
  return std::min(part_min2[0], part_min2[1]);
}

// The smallest squared distance over the pairs of points in the same or in
// neighbouring bands of the box that holds them, bands of equal height
// across it, about as many as the root of the number of points; false when
// that cannot be the smallest over all pairs.
//
// Why no other pair can be smaller.  A point's band is the rounded
// (y - ylo) * inverse_height, rounded down; the two roundings move that
// value by a relative 2^-52 at most, and it is at most bands + 1 < 2^17,
// so by 2^-35 at most.  Two points two or more bands apart (the last band
// also takes the few values just past it, which only lowers the larger of
// two bands) have values more than 1 apart, so they lie more than
// (1 - 2^-34) / inverse_height apart in y, and 1 / inverse_height is the
// band's height within a relative 2^-53: the rounded square of their
// rounded difference in y, which adding dx * dx cannot lower, is above
// height * height (1 - 1e-9), and above `floor`.  When the smallest over
// the pairs of neighbouring bands lies below the floor, no other pair
// reaches it.  The mesh points' closest pair lies far closer than their
// mean spacing, near the rings and the wells, so the bands nearly always
// serve; a lattice does not, and the sweep over all points decides.
//
// Each two neighbouring bands, their points merged in x order, are swept
// by scan_sorted as sweep_minimum sweeps all points, and the pairs within
// one band are met twice, which changes no minimum.  On the family's
// million cells the sweep over all points reads some 500 points for each
// point, as a column of the domain holds about a thousand; a band holds
// about 30.
bool band_minimum(const double* p, std::int32_t n, double& min2) {
  double ylo = p[1];
  double yhi = p[1];
  for (std::int32_t a = 1; a < n; ++a) {
    ylo = std::min(ylo, p[2 * a + 1]);
    yhi = std::max(yhi, p[2 * a + 1]);
  }
  const std::int32_t bands = static_cast<std::int32_t>(std::min(std::sqrt(static_cast<double>(n)), 65536.0));
  const double height = (yhi - ylo) / bands;
  if (bands < 3 || !(height > 0.0) || !std::isfinite(height)) return false;
  // A height below 2^-1024 has no finite inverse.
  const double inverse_height = 1.0 / height;
  if (!std::isfinite(inverse_height)) return false;
  // The values are never below 0, as ylo is the least.
  auto band_of = [&](std::int32_t a) {
    const double v = std::floor((p[2 * a + 1] - ylo) * inverse_height);
    return v >= bands - 1 ? bands - 1 : static_cast<std::int32_t>(v);
  };
  // The points counted into the bands, then placed backwards from each
  // band's end, so that `start` ends at each band's first point; each band
  // is then sorted by x, the bands shared between the two cores.
  std::vector<std::int32_t> start(static_cast<std::size_t>(bands) + 1, 0);
  for (std::int32_t a = 0; a < n; ++a) ++start[static_cast<std::size_t>(band_of(a))];
  for (std::size_t k = 1; k < start.size(); ++k) start[k] += start[k - 1];
  std::vector<Place> placed(static_cast<std::size_t>(n));
  for (std::int32_t a = n - 1; a >= 0; --a) {
    placed[static_cast<std::size_t>(--start[static_cast<std::size_t>(band_of(a))])] = {p[2 * a], p[2 * a + 1]};
  }
  // Few bands hold many points, so the bands are shared between the cores
  // by the number of points.
  const std::size_t shared_from = static_cast<std::size_t>(n) >= smallest_shared_work.load(std::memory_order_relaxed)
                                      ? 2
                                      : std::numeric_limits<std::size_t>::max();
  run_in_parts(static_cast<std::size_t>(bands), [&](std::size_t begin, std::size_t end, int) {
    for (std::size_t k = begin; k < end; ++k) {
      std::sort(placed.begin() + start[k], placed.begin() + start[k + 1], before_in_x);
    }
    return PartFailure{};
  }, shared_from);
  double part_min2[2] = {kLargest, kLargest};
  run_in_parts(static_cast<std::size_t>(bands - 1), [&](std::size_t begin, std::size_t end, int part) {
    double least = kLargest;
    std::vector<Place> pair;
    for (std::size_t k = begin; k < end; ++k) {
      pair.resize(static_cast<std::size_t>(start[k + 2] - start[k]));
      std::merge(placed.begin() + start[k], placed.begin() + start[k + 1], placed.begin() + start[k + 1],
                 placed.begin() + start[k + 2], pair.begin(), before_in_x);
      least = scan_sorted(pair, 0, pair.size(), least);
    }
    part_min2[part] = least;
    return PartFailure{};
  }, shared_from);
  min2 = std::min(part_min2[0], part_min2[1]);
  const double floor = height * height * (1.0 - 1e-6);
  return min2 < floor;
}

}  // namespace

double minimum_separation(const MeshPointList& mesh) {
  const double* p = mesh.mesh_points.data();
  const std::int32_t n = mesh.mesh_point_count;
  for (std::int32_t a = 0; a < 2 * n; ++a) {
    // Values that are no numbers cannot be sorted; the pairs decide.
    if (!std::isfinite(p[a])) return minimum_separation_reference(mesh);
  }
  double min2 = kLargest;
  if (n < 2 || !band_minimum(p, n, min2)) min2 = sweep_minimum(p, n);
  return std::sqrt(min2);
}

}  // namespace tesseramill
