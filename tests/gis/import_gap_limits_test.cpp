// The import refuses a hole closer to the boundary than half the smaller of
// their spacings, and a well closer to a side than its own spacing.  Just
// outside those limits the model it writes must mesh to the end: these are
// the tightest cases of a sweep over the ratios of the spacings (36 cases
// at 1.02 and 1.5 times the limit, all of which meshed).
#include <gtest/gtest.h>

#include <algorithm>
#include <sstream>

#include "gis/layer_fixtures.h"
#include "support/scratch.h"

namespace tesseramill_test {
namespace {

namespace fs = std::filesystem;

enum class Near { kHole, kWell };

struct GapCase {
  const char* name;
  Near what;
  double boundary_spacing;
  double spacing;  // of the hole or the well
};

std::string rectangle(double x0, double y0, double w, double h) {
  std::ostringstream s;
  s.precision(17);
  s << x0 << " " << y0 << ", " << x0 + w << " " << y0 << ", " << x0 + w << " " << y0 + h << ", " << x0 << " "
    << y0 + h << ", " << x0 << " " << y0;
  return s.str();
}

class GapLimits : public testing::TestWithParam<GapCase> {};

TEST_P(GapLimits, JustOutsideTheLimitTheModelMeshesToTheEnd) {
  const GapCase& c = GetParam();
  ScratchDir dir;
  const double x0 = 500000.0;
  const double y0 = 5100000.0;
  write_layer(dir.path() / "boundary.geojson", "GeoJSON", "boundary", 32633,
              {{"POLYGON ((" + rectangle(x0, y0, 4000, 3000) + "))", c.boundary_spacing}});
  std::vector<std::string> args = {"import", (dir.path() / "model").string(), "--boundary",
                                   (dir.path() / "boundary.geojson").string(), "--max-spacing", "400"};
  if (c.what == Near::kHole) {
    const double gap = 1.02 * 0.5 * std::min(c.boundary_spacing, c.spacing);
    write_layer(dir.path() / "hole.geojson", "GeoJSON", "hole", 32633,
                {{"POLYGON ((" + rectangle(x0 + gap, y0 + 1000, 800, 600) + "))", c.spacing}});
    args.insert(args.end(), {"--holes", (dir.path() / "hole.geojson").string()});
  } else {
    std::ostringstream point;
    point.precision(17);
    point << "POINT (" << x0 + 1.02 * c.spacing << " " << y0 + 1500 << ")";
    write_layer(dir.path() / "well.geojson", "GeoJSON", "well", 32633, {{point.str(), c.spacing}});
    args.insert(args.end(), {"--points", (dir.path() / "well.geojson").string()});
  }
  const GisRun imported = run_gis(args);
  ASSERT_EQ(imported.status, 0) << imported.screen;
  const RunResult mesher = run_executable(dir.path() / "model", TESSERAMILL_BINARY, {"model.in"});
  EXPECT_NE(mesher.screen.find(" - file model.oc written ok."), std::string::npos) << mesher.screen;
}

INSTANTIATE_TEST_SUITE_P(Tightest, GapLimits,
                         testing::Values(GapCase{"HoleFineBoundaryFinerHole", Near::kHole, 50, 20},
                                         GapCase{"HoleCoarseBoundaryFineHole", Near::kHole, 400, 20},
                                         GapCase{"HoleEqualSpacings", Near::kHole, 150, 150},
                                         GapCase{"WellFineBoundaryFineWell", Near::kWell, 50, 10},
                                         GapCase{"WellCoarseBoundaryFineWell", Near::kWell, 400, 10},
                                         GapCase{"WellCoarseBoundaryCoarseWell", Near::kWell, 400, 60}),
                         [](const testing::TestParamInfo<GapCase>& info) { return std::string(info.param.name); });

}  // namespace
}  // namespace tesseramill_test
