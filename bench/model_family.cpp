#include "model_family.h"

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <fstream>
#include <vector>

#include "common/correctly_rounded.h"

namespace tesseramill_bench {

namespace {

constexpr double kPi = 3.141592653589793;

struct Point {
  double x;
  double y;
};

// The largest spacing of the family at scale 1, in metres, and the ratio of
// each feature's spacing to it.
constexpr double kMaxSeparation = 400.0;
constexpr double kOuterRatio = 0.5;
constexpr double kLakeRatio = 0.25;
constexpr double kRiverRatio = 0.15;
constexpr double kWellRatio = 0.0375;
constexpr double kZoneRatio = 0.375;

std::string number(double value) {
  char text[64];
  std::snprintf(text, sizeof text, "%.3f", value);
  return text;
}

// A star-shaped ring round (cx, cy): vertices at rising angles, so that the
// ring is simple whatever its wiggles, as long as the radius stays positive.
std::vector<Point> star_ring(Random& random, double cx, double cy, double radius, int vertices,
                             double roughness) {
  struct Wave {
    int k;
    double amplitude;
    double phase;
  };
  std::vector<Wave> waves = {{2, 0.12, random.uniform(0, 2 * kPi)},
                             {3, 0.08, random.uniform(0, 2 * kPi)},
                             {5, 0.05, random.uniform(0, 2 * kPi)}};
  if (roughness > 0.0) {
    // Small wiggles of many wavelengths, their amplitudes falling with k.
    double weight = 0.0;
    for (int k = 7; k <= vertices / 8; ++k) weight += tesseramill::cr_pow(k, -0.8);
    for (int k = 7; k <= vertices / 8; ++k) {
      waves.push_back({k, roughness * tesseramill::cr_pow(k, -0.8) / weight, random.uniform(0, 2 * kPi)});
    }
  }
  std::vector<Point> ring;
  for (int i = 0; i < vertices; ++i) {
    const double theta = 2 * kPi * i / vertices;
    double r = 1.0;
    for (const Wave& w : waves) r += w.amplitude * std::sin(w.k * theta + w.phase);
    ring.push_back({cx + radius * r * std::cos(theta), cy + radius * r * std::sin(theta)});
  }
  ring.push_back(ring.front());
  return ring;
}

void write_bln(const std::filesystem::path& path, const std::vector<Point>& points, double separation) {
  std::ofstream out(path, std::ios::binary);
  out << points.size() << ",1\n";
  for (const Point& p : points) {
    out << number(p.x) << "  " << number(p.y);
    if (separation > 0.0) out << "  " << number(separation);
    out << "\n";
  }
}

// The CONTROL block of a model: the cap, the growth rate and MAX_CELLS, and
// the keywords the recipe sets.
void write_control_block(std::ostream& control, const ModelRecipe& recipe, double largest, int max_cells) {
  control << "START CONTROL\n"
          << "  MAX_CENTROID_SEPARATION = " << number(largest) << "\n"
          << "  POLY_GROWTH_RATE = " << recipe.growth << "\n"
          << "  OUT_FILE_BASE = model\n"
          << "  MAX_CELLS = " << max_cells << "\n";
  if (recipe.max_lloyd >= 0) control << "  MAX_LLOYD = " << recipe.max_lloyd << "\n";
  if (recipe.nsdim > 0) control << "  NSDIM = " << recipe.nsdim << "\n";
  if (recipe.safety >= 0) control << "  SAFETY = " << recipe.safety << "\n";
  if (recipe.lloyd_fac > 0) control << "  LLOYD_FAC = " << recipe.lloyd_fac << "\n";
  control << "END CONTROL\n";
}

// sin and cos from additions, multiplications and divisions alone, in a
// fixed order, so that the GIS-like model's files are the same bytes on
// every machine: the system's sin and cos differ in the last bits from one
// library to the next.  The angle is brought to [-pi/4, pi/4] by quarter
// turns and the Taylor series taken to the term of degree 18 (below 3e-17
// there).  A few ulps from the true values for the angles used here, which
// is all a generator of shapes needs.
void steady_sin_cos(double theta, double& sine, double& cosine) {
  const double quarters = std::nearbyint(theta * (2.0 / kPi));
  const double r = theta - quarters * (kPi / 2.0);
  const double r2 = r * r;
  double s = 1.0;
  double c = 1.0;
  for (int n = 17; n >= 3; n -= 2) s = 1.0 - s * r2 / ((n - 1) * n);
  s *= r;
  for (int n = 18; n >= 2; n -= 2) c = 1.0 - c * r2 / ((n - 1) * n);
  switch (static_cast<long long>(quarters) & 3) {
    case 0: sine = s; cosine = c; break;
    case 1: sine = c; cosine = -s; break;
    case 2: sine = -s; cosine = -c; break;
    default: sine = -c; cosine = s; break;
  }
}

double steady_sin(double theta) {
  double s = 0.0;
  double c = 0.0;
  steady_sin_cos(theta, s, c);
  return s;
}

struct Harmonic {
  int k;
  double amplitude;
  double phase;
};

// Waves of every wavenumber from `first` to `last`, their amplitudes falling
// as 1/k and adding up to `total`, as the wiggles of a digitised line do.
void add_wiggles(std::vector<Harmonic>& waves, Random& random, int first, int last, double total) {
  double weight = 0.0;
  for (int k = first; k <= last; ++k) weight += 1.0 / k;
  for (int k = first; k <= last; ++k) waves.push_back({k, total / (k * weight), random.uniform(0, 2 * kPi)});
}

double wave_sum(const std::vector<Harmonic>& waves, double theta) {
  double sum = 0.0;
  for (const Harmonic& w : waves) sum += w.amplitude * steady_sin(w.k * theta + w.phase);
  return sum;
}

// The GIS-like model's constants: spacings asked at the vertices, the cap
// and growth, and the divide's mean radius at 2,000 vertices.
constexpr double kGisDivideSeparation = 150.0;
constexpr double kGisRiverSeparation = 60.0;
constexpr double kGisMaxSeparation = 400.0;
constexpr double kGisGrowth = 1.25;
constexpr double kGisRadiusAt2000 = 32000.0;

std::string write_gis_model(const ModelRecipe& recipe, const std::filesystem::path& folder) {
  Random random(recipe.seed * 0x2545F4914F6CDD1DULL + 777);
  const int n = std::max(16, recipe.gis_divide_vertices);
  const double cx = 512000.0;
  const double cy = 6234000.0;
  // The area, and so the number of cells, grows with the vertices.
  const double R = kGisRadiusAt2000 * std::sqrt(n / 2000.0);

  // The divide: star-shaped round the centre, vertices at rising angles, so
  // that it is simple whatever its wiggles; the radius never falls below
  // 0.63 R, as the amplitudes add up to 0.37.
  std::vector<Harmonic> waves = {{2, 0.12, random.uniform(0, 2 * kPi)},
                                 {3, 0.08, random.uniform(0, 2 * kPi)},
                                 {5, 0.05, random.uniform(0, 2 * kPi)}};
  add_wiggles(waves, random, 7, std::max(7, n / 4), 0.12);
  std::vector<Point> divide;
  for (int i = 0; i < n; ++i) {
    const double theta = 2 * kPi * i / n;
    const double r = R * (1.0 + wave_sum(waves, theta));
    double s = 0.0;
    double c = 0.0;
    steady_sin_cos(theta, s, c);
    divide.push_back({cx + r * c, cy + r * s});
  }
  divide.push_back(divide.front());
  write_bln(folder / "divide.bln", divide, kGisDivideSeparation);

  // The river: half as many vertices, meandering across the middle of the
  // catchment as a graph over its straight course, so that it never crosses
  // itself; it stays within 0.61 R of the centre, inside the divide.
  const Point from{cx - 0.5 * R, cy - 0.12 * R};
  const Point to{cx + 0.45 * R, cy + 0.18 * R};
  const double dx = to.x - from.x;
  const double dy = to.y - from.y;
  const double length = tesseramill::cr_hypot(dx, dy);
  std::vector<Harmonic> meanders = {{3, 0.05, random.uniform(0, 2 * kPi)},
                                    {7, 0.025, random.uniform(0, 2 * kPi)},
                                    {17, 0.012, random.uniform(0, 2 * kPi)}};
  const int m = std::max(8, n / 2);
  add_wiggles(meanders, random, 20, std::max(20, m / 8), 0.01);
  std::vector<Point> river;
  for (int i = 0; i < m; ++i) {
    const double t = static_cast<double>(i) / (m - 1);
    const double bend = R * wave_sum(meanders, 2 * kPi * t);
    river.push_back({from.x + t * dx - bend * dy / length, from.y + t * dy + bend * dx / length});
  }
  write_bln(folder / "river.bln", river, kGisRiverSeparation);

  const int max_cells = recipe.max_cells > 0 ? recipe.max_cells : 100 * n + 20000;
  std::ofstream control(folder / "model.in", std::ios::binary);
  write_control_block(control, recipe, kGisMaxSeparation, max_cells);
  control << "\nSTART OUTER_BOUNDARY\n  BLN_FILE = divide.bln\nEND OUTER_BOUNDARY\n"
          << "\nSTART INNER_LINE\n  NUMLINES = 1\n  BLN_FILE = river.bln\nEND INNER_LINE\n"
          << "\nSTART MF6\n  MF6_BASENAME = model\n  NLAY = 2\nEND MF6\n";
  return "model.in";
}

}  // namespace

double expected_cells(const ModelRecipe& recipe) {
  // Measured on the family: about 8,918 / scale^2 + 14,388 / scale cells at
  // a radius of 20 km, the first part growing with the area.
  const double r = recipe.radius / 20000.0;
  return 8918.0 * r * r / (recipe.scale * recipe.scale) + 14388.0 * r / recipe.scale;
}

ModelRecipe family_model(double cells) {
  // Scales measured on the family to give about the number of cells asked for.
  ModelRecipe recipe;
  if (cells <= 1e3) {
    recipe.scale = 10.5;
    recipe.refinement = 0.5;
    recipe.wells = 1;
  } else if (cells <= 1e4) {
    recipe.scale = 1.6;
    recipe.refinement = 0.75;
    recipe.wells = 3;
  } else {
    // Cells are about 8,918 / scale^2 for the area plus 14,388 / scale for
    // the bands of finer cells along the boundaries and the river.
    const double inverse = (-14388.0 + std::sqrt(14388.0 * 14388.0 + 4.0 * 8918.0 * cells)) / (2.0 * 8918.0);
    recipe.scale = 1.0 / inverse;
  }
  // An outline of segments about as long as its spacing, up to 64 of them.
  const double outer_spacing = kMaxSeparation * recipe.scale * tesseramill::cr_pow(kOuterRatio, recipe.refinement);
  recipe.outline_vertices = std::clamp(static_cast<int>(2 * kPi * recipe.radius / outer_spacing), 16, 64);
  return recipe;
}

ModelRecipe gis_model(int divide_vertices) {
  ModelRecipe recipe;
  recipe.gis_divide_vertices = divide_vertices;
  recipe.growth = kGisGrowth;
  recipe.max_lloyd = 3;
  return recipe;
}

std::string write_model(const ModelRecipe& recipe, const std::filesystem::path& folder) {
  std::filesystem::create_directories(folder);
  if (recipe.gis_divide_vertices > 0) return write_gis_model(recipe, folder);
  Random random(recipe.seed * 0x2545F4914F6CDD1DULL + 12345);
  const double cx = 512000.0;
  const double cy = 6234000.0;
  const double R = recipe.radius;
  const double largest = kMaxSeparation * recipe.scale;
  auto spacing = [&](double ratio) { return largest * tesseramill::cr_pow(ratio, recipe.refinement); };

  const std::vector<Point> outer = star_ring(random, cx, cy, R, recipe.outline_vertices, recipe.outline_roughness);
  write_bln(folder / "outer.bln", outer, spacing(kOuterRatio));

  const double lake_x = cx - 0.3 * R;
  const double lake_y = cy + 0.2 * R;
  // Rings and lines have about as many vertices as their spacing asks for:
  // a segment shorter than its spacing would make the chain finer.
  auto vertices_for = [](double length, double step, int fewest, int most) {
    return std::clamp(static_cast<int>(length / step), fewest, most);
  };
  if (recipe.lake) {
    const int n = vertices_for(2 * kPi * 0.1 * R, spacing(kLakeRatio), 8, 48);
    write_bln(folder / "lake.bln", star_ring(random, lake_x, lake_y, 0.1 * R, n, 0.0), spacing(kLakeRatio));
  }

  if (recipe.river) {
    // From beyond the boundary in the south-east, meandering towards the lake.
    std::vector<Point> river;
    const Point from{cx + 0.9 * R, cy - 0.9 * R};
    const Point to{lake_x + 0.25 * R, lake_y - 0.1 * R};
    const double phase = random.uniform(0, 2 * kPi);
    const int n = vertices_for(1.1 * tesseramill::cr_hypot(to.x - from.x, to.y - from.y), spacing(kRiverRatio), 6, 48);
    for (int i = 0; i <= n; ++i) {
      const double t = static_cast<double>(i) / n;
      const double dx = to.x - from.x;
      const double dy = to.y - from.y;
      const double length = tesseramill::cr_hypot(dx, dy);
      const double bend = 0.04 * R * std::sin(6 * kPi * t + phase);
      river.push_back({from.x + t * dx - bend * dy / length, from.y + t * dy + bend * dx / length});
    }
    write_bln(folder / "river.bln", river, spacing(kRiverRatio));
  }

  if (recipe.wells > 0) {
    // A well field east of the centre, on a loose grid whose wells keep
    // well clear of one another's separations.
    // Coarse models fit fewer wells in the field's 0.3 R.
    const double step = std::max(0.06 * R, 3.0 * spacing(kWellRatio));
    const int fit = 1 + static_cast<int>(0.3 * R / step);
    const int columns = std::min(3, fit);
    const int count = std::min(recipe.wells, columns * fit);
    std::vector<Point> wells;
    for (int i = 0; i < count; ++i) {
      wells.push_back({cx + 0.25 * R + (i % columns) * step + random.uniform(-0.01, 0.01) * R,
                       cy + 0.3 * R + (i / columns) * step + random.uniform(-0.01, 0.01) * R});
    }
    std::ofstream out(folder / "wells.bln", std::ios::binary);
    out << wells.size() << "\n";
    for (const Point& p : wells) out << number(p.x) << "  " << number(p.y) << "  " << number(spacing(kWellRatio)) << "\n";
  }

  if (recipe.zone) {
    // A rotated rectangle in the south-west where the cells stay finer.
    const double zx = cx - 0.35 * R;
    const double zy = cy - 0.35 * R;
    const double angle = random.uniform(0, kPi);
    const double a = 0.18 * R;
    const double b = 0.1 * R;
    std::vector<Point> zone;
    for (const Point& c : {Point{-a, -b}, Point{a, -b}, Point{a, b}, Point{-a, b}, Point{-a, -b}}) {
      zone.push_back({zx + c.x * std::cos(angle) - c.y * std::sin(angle),
                      zy + c.x * std::sin(angle) + c.y * std::cos(angle)});
    }
    write_bln(folder / "zone.bln", zone, 0.0);
  }

  const int max_cells = recipe.max_cells > 0 ? recipe.max_cells
                                           : static_cast<int>(std::max(5000.0, 3.0 * expected_cells(recipe)));
  std::ofstream control(folder / "model.in", std::ios::binary);
  write_control_block(control, recipe, largest, max_cells);
  control << "\nSTART OUTER_BOUNDARY\n  BLN_FILE = outer.bln\nEND OUTER_BOUNDARY\n";
  if (recipe.lake) control << "\nSTART INNER_BOUNDARY\n  BLN_FILE = lake.bln\nEND INNER_BOUNDARY\n";
  if (recipe.river) control << "\nSTART INNER_LINE\n  NUMLINES = 1\n  BLN_FILE = river.bln\nEND INNER_LINE\n";
  if (recipe.wells > 0) control << "\nSTART INNER_POINTS\n  BLN_FILE = wells.bln\nEND INNER_POINTS\n";
  if (recipe.zone) {
    control << "\nSTART INNER_POLYGON\n  BLN_FILE = zone.bln\n  MAX_CENTROID_SEPARATION = "
            << number(spacing(kZoneRatio)) << "\nEND INNER_POLYGON\n";
  }
  control << "\nSTART MF6\n  MF6_BASENAME = model\n  NLAY = 2\nEND MF6\n";
  return "model.in";
}

}  // namespace tesseramill_bench
