// A family of realistic models for benchmarks and tests: a catchment in UTM
// coordinates with an irregular outer boundary, a lake cut out of it, a
// river, a well field and a zone of finer cells.  The largest spacing is the
// family's base spacing times `scale`, and each feature's spacing a fixed
// ratio of it, so that the geometry stays the same while the number of cells
// grows about as 1 / scale^2 for large models.  The files are made from a
// seeded generator of its own, so they are the same on every machine.
#pragma once

#include <cstdint>
#include <filesystem>
#include <string>

namespace tesseramill_bench {

// splitmix64: a small generator whose output is fixed by its seed alone, on
// every machine and with every standard library.
struct Random {
  std::uint64_t state;
  explicit Random(std::uint64_t seed) : state(seed) {}
  std::uint64_t next() {
    std::uint64_t z = (state += 0x9E3779B97F4A7C15ULL);
    z = (z ^ (z >> 30)) * 0xBF58476D1CE4E5B9ULL;
    z = (z ^ (z >> 27)) * 0x94D049BB133111EBULL;
    return z ^ (z >> 31);
  }
  // Uniform in [lo, hi).
  double uniform(double lo, double hi) {
    return lo + (hi - lo) * (static_cast<double>(next() >> 11) * (1.0 / 9007199254740992.0));
  }
};

struct ModelRecipe {
  std::uint64_t seed = 1;
  double scale = 1.0;           // multiplies every spacing
  // The features' spacings are the largest spacing times their ratio to it
  // raised to this power: 1 keeps the family's ratios, smaller values give
  // milder refinement and fewer levels of growth round each feature.
  double refinement = 1.0;
  double radius = 20000.0;      // mean radius of the outer boundary, metres
  int outline_vertices = 64;    // vertices of the outer boundary, closing one apart
  double outline_roughness = 0.0;  // share of the radius in small wiggles of the outline
  bool lake = true;
  bool river = true;
  int wells = 6;
  bool zone = true;
  double growth = 1.2;
  int max_lloyd = -1;           // MAX_LLOYD, or the default when negative
  int nsdim = -1;               // NSDIM, or the default when negative
  int safety = -1;              // SAFETY, or the default when negative
  double lloyd_fac = -1.0;      // LLOYD_FAC, or the default when negative
  int max_cells = 0;            // MAX_CELLS, or a generous value from the scale when 0
  // When above 0, the model is the GIS-like one instead (gis_model): a
  // digitised catchment divide of this many vertices and a long river.
  int gis_divide_vertices = 0;
};

// Writes model.in and its BLN files into `folder`; gives the control file's name.
std::string write_model(const ModelRecipe& recipe, const std::filesystem::path& folder);

// A rough number of cells the model will have, for choosing MAX_CELLS; the
// run itself tells the real number.
double expected_cells(const ModelRecipe& recipe);

// The family's model of about `cells` cells (1e3, 1e4, 3e4, 1e5 or 1e6):
// milder refinement and fewer wells for the small ones, whose cells would
// otherwise all go to the levels of growth round the features.
ModelRecipe family_model(double cells);

// The GIS-like model with a divide of `divide_vertices` vertices: the
// outline as a modeller digitises it, wiggling at every scale down to a few
// vertices, with 150 m asked at each vertex; a meandering river of half as
// many vertices with 60 m asked at each; MAX_CENTROID_SEPARATION 400 m,
// POLY_GROWTH_RATE 1.25, MAX_LLOYD 3.  The domain's area grows with the
// number of vertices, so that the cells do too (about 29 per divide vertex).
ModelRecipe gis_model(int divide_vertices);

}  // namespace tesseramill_bench
