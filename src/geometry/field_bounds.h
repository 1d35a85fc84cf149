// Safe bounds of the separation field over a rectangle and at the points in
// it, from which most decisions that need the field can be taken without
// its logarithms and powers.
#pragma once

#include <algorithm>
#include <vector>

#include "geometry/size_bounds.h"

namespace tesseramill {

struct RunState;

struct FieldBounds {
  // False when the growth rate or the sources leave no safe bounds; every
  // value must then come from local_separation itself.
  bool usable = false;
  // local_separation at every point of the rectangle lies in [lo, hi].
  double lo = 0.0;
  double hi = 0.0;
  // lo equals hi: the field is exactly that value over the whole rectangle.
  bool flat = false;
  // An inner polygon's edge comes near the rectangle: its cap is looked up
  // point by point.  Otherwise `cap` holds the caps' value everywhere.
  bool caps_vary = false;
  double cap = 0.0;
  // The caps at every point of the rectangle are at least this.
  double cap_lo = 0.0;
  // The sources that can give the smallest size somewhere in the rectangle;
  // every other source asks for more than the field is anywhere there.
  std::vector<double> xs;
  std::vector<double> ys;
  std::vector<double> separations;
  // Each kept source's lower bound over the whole rectangle.
  std::vector<double> lowers;
};

// How fast the field can fall away from a point where its value is known.
// In exact arithmetic every source's size, max(s, (s + d (growth - 1)) /
// growth^1.5) (see size_bounds.h), changes by at most slope = (growth - 1) /
// growth^1.5 per unit of distance, and so does the smallest of them and of
// one cap; the caps of inner polygons would break that at their edges, so
// the slope holds over [xlo, xhi] x [ylo, yhi] only when each inner
// polygon holds the whole rectangle or none of it.  The run's field lies
// within a relative 5e-13 of the exact field while it stays below
// kLargestSafeA (size_bounds.h), and the slope as worked out here within
// an ulp or two of its true value; field_floor widens by kRelative at each
// step, far beyond these, and by kAbsolute.  False where there is no
// slope over the rectangle.
bool field_slope(const RunState& state, double xlo, double xhi, double ylo, double yhi, double& slope);

// The two halves of field_slope: the slope of the run's growth rate, the
// same for every rectangle (false when the growth rate has none), and
// whether it holds over the rectangle (no inner polygon's edge comes in).
bool growth_slope(const RunState& state, double& slope);
bool slope_holds_over(const RunState& state, double xlo, double xhi, double ylo, double yhi);

// A lower bound of the field at every point within distance r of a point
// where the field is `value` (at most kLargestSafeA), given the slope.
inline double field_floor(double slope, double value, double r) {
  const double spread = slope * r * (1.0 + kRelative);
  return std::max(0.0, (value * (1.0 - kRelative) - spread) * (1.0 - kRelative) - kAbsolute);
}

// An upper bound of the field at every point within distance r of a point
// where the field is at most `value`, given the slope: field_floor's
// mirror, widened upwards by the same margins.  It holds while the bound
// it gives is at most kLargestSafeA, below which the run's field keeps to
// within a relative 5e-13 of the exact field at both points.
inline double field_ceiling(double slope, double value, double r) {
  const double spread = slope * r * (1.0 + kRelative);
  return (value * (1.0 + kRelative) + spread) * (1.0 + kRelative) + kAbsolute;
}

// Bounds the field over [xlo, xhi] x [ylo, yhi] with the run's growth rate.
void bound_field(const RunState& state, double xlo, double xhi, double ylo, double yhi, FieldBounds& bounds);

// Bounds the field at (x, y), which lies in the rectangle of `bounds`.
void bound_field_at(const RunState& state, const FieldBounds& bounds, double x, double y, double& lo, double& hi);

// The sources of a tile: a smaller rectangle inside that of `bounds`.
struct TileSources {
  // local_separation at every point of the tile lies in [lo, hi].
  double lo = 0.0;
  double hi = 0.0;
  std::vector<double> xs;
  std::vector<double> ys;
  std::vector<double> separations;
  // Each kept source's lower bound over the whole tile.
  std::vector<double> lowers;
  // Every kept source's upper_size passes its tests of range at every
  // point of the tile, so that bound_tile_at may widen the smallest
  // algebraic size once each way.
  bool in_range = false;
};

// Keeps of the sources of `bounds` those that can give the smallest size
// somewhere in [xlo, xhi] x [ylo, yhi], which lies in the rectangle of
// `bounds`: bound_tile_at then gives the very bits of bound_field_at at
// every point of the tile, from fewer sources.  Also bounds the field over
// the tile.
void keep_tile_sources(const RunState& state, const FieldBounds& bounds, double xlo, double xhi, double ylo, double yhi,
                       TileSources& tile);

// bound_field_at at (x, y), a point of the tile that `tile` was kept for.
void bound_tile_at(const RunState& state, const FieldBounds& bounds, const TileSources& tile, double x, double y,
                   double& lo, double& hi);

}  // namespace tesseramill
