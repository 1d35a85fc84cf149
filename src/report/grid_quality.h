// How good a grid's cells are, and whether MODFLOW 6 will accept the grid.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "report/disv_grid.h"

namespace tesseramill {

// One readiness check: passed, or the first cell (1-based) that fails it.
struct ReadinessCheck {
  const char* what;
  bool passed = true;
  std::int32_t first_cell = 0;
  std::string detail;
};

// The readiness checks, in the order the report gives them.
enum Readiness : std::size_t {
  kClockwiseCells,
  kDistinctVertices,
  kNoZeroLengthEdge,
  kFacesShared,
  kAreasAddUp,
  kNumbersApart,
};

struct GridQuality {
  std::int32_t cells = 0;
  std::int32_t vertices = 0;
  double area_smallest = 0.0;
  double area_median = 0.0;
  double area_largest = 0.0;
  std::int64_t neighbour_pairs = 0;
  double largest_area_ratio = 0.0;
  std::int64_t pairs_above_growth = 0;
  double growth = 0.0;
  double angle_largest = 0.0;  // degrees between the centre line and the face normal
  double angle_median = 0.0;
  std::int32_t not_convex = 0;
  std::int32_t first_not_convex = 0;
  std::int32_t many_faces = 0;
  std::int32_t first_many_faces = 0;
  double cell_area_sum = 0.0;
  double domain_area = 0.0;
  std::vector<ReadinessCheck> checks;  // indexed by Readiness
};

// The domain as the grid should fill it: the outer ring and the holes, as
// closed x,y pair lists in the grid's frame.
struct DomainRings {
  std::vector<double> outer;
  std::vector<std::vector<double>> holes;
};

// Assesses the grid; `growth` is the run's POLY_GROWTH_RATE.
GridQuality assess_grid(const DisvGrid& disv, const DomainRings& domain, double growth);

// The report's lines, each ending in a line end, as the screen and the
// quality file show them; `file` names the grid file.
std::string quality_text(const GridQuality& quality, const std::string& file);

}  // namespace tesseramill
