// MODFLOW 6's view of a grid against the grid file: a binary grid built
// here as the solver builds it from unit squares in two layers, and each
// kind of difference the check must find.
#include <gtest/gtest.h>

#include <algorithm>
#include <functional>
#include <set>

#include "binary_grid.h"
#include "grid_agreement.h"
#include "support/grb_text.h"
#include "support/hand_grid.h"

namespace tesseramill_test {
namespace {

using tesseramill_mf6check::BinaryGrid;
using tesseramill_mf6check::GridAgreement;

struct GrbTables {
  std::int32_t nlay = 0;
  std::int32_t ncpl = 0;
  std::int32_t nvert = 0;
  std::vector<std::int32_t> iavert;
  std::vector<std::int32_t> javert;
  std::vector<std::int32_t> ia;
  std::vector<std::int32_t> ja;
};

// The tables MODFLOW 6 writes for `grid` in `nlay` layers: each cell's
// vertices with the first again, and rows of connections that begin with
// the cell, then its neighbours in ascending order.  Neighbours within a
// layer are found by shared corners here, which for unit squares is the
// same as shared faces but for the corner-only touches left out.
GrbTables tables_for(const tesseramill::DisvGrid& grid, int nlay) {
  GrbTables t;
  t.nlay = nlay;
  t.ncpl = grid.ncpl;
  t.nvert = grid.nvert;
  t.iavert.push_back(1);
  for (std::size_t c = 0; c < static_cast<std::size_t>(grid.ncpl); ++c) {
    const std::int32_t m = tesseramill::corner_count(grid, c);
    for (std::int32_t i = 0; i <= m; ++i) t.javert.push_back(tesseramill::corner(grid, c, i % m));
    t.iavert.push_back(static_cast<std::int32_t>(t.javert.size()) + 1);
  }
  auto centre = [&](std::size_t c) { return std::make_pair(grid.centres[2 * c], grid.centres[2 * c + 1]); };
  t.ia.push_back(1);
  for (int layer = 0; layer < nlay; ++layer) {
    for (std::size_t c = 0; c < static_cast<std::size_t>(grid.ncpl); ++c) {
      const std::int32_t n = layer * grid.ncpl + static_cast<std::int32_t>(c) + 1;
      std::vector<std::int32_t> row;
      for (std::size_t d = 0; d < static_cast<std::size_t>(grid.ncpl); ++d) {
        const auto [x0, y0] = centre(c);
        const auto [x1, y1] = centre(d);
        if (std::abs(x0 - x1) + std::abs(y0 - y1) == 1.0) row.push_back(layer * grid.ncpl + static_cast<std::int32_t>(d) + 1);
      }
      if (layer > 0) row.push_back(n - grid.ncpl);
      if (layer + 1 < nlay) row.push_back(n + grid.ncpl);
      std::sort(row.begin(), row.end());
      t.ja.push_back(n);
      t.ja.insert(t.ja.end(), row.begin(), row.end());
      t.ia.push_back(static_cast<std::int32_t>(t.ja.size()) + 1);
    }
  }
  return t;
}

BinaryGrid binary(const GrbTables& t, const std::string& type = "DISV") {
  GrbWriter w;
  w.integer("NCELLS", t.nlay * t.ncpl);
  w.integer("NLAY", t.nlay);
  w.integer("NCPL", t.ncpl);
  w.integer("NVERT", t.nvert);
  w.integer("NJAVERT", static_cast<std::int32_t>(t.javert.size()));
  w.integer("NJA", static_cast<std::int32_t>(t.ja.size()));
  w.integers("IAVERT", t.iavert);
  w.integers("JAVERT", t.javert);
  w.integers("IA", t.ia);
  w.integers("JA", t.ja);
  BinaryGrid grid;
  std::string error;
  EXPECT_TRUE(read_binary_grid(w.bytes(type), grid, error)) << error;
  return grid;
}

tesseramill::DisvGrid two_layers_of_squares() {
  tesseramill::DisvGrid grid = unit_squares(3, 2, {5});
  grid.nlay = 2;
  return grid;
}

TEST(GridAgreement, AgreesWithTheSolversTables) {
  const tesseramill::DisvGrid grid = two_layers_of_squares();
  const GridAgreement a = tesseramill_mf6check::compare_grids(binary(tables_for(grid, 2)), grid);
  EXPECT_TRUE(a.agrees) << a.difference;
  EXPECT_EQ(a.difference, "");
  // Five squares in an L of 4 faces, twice, and 5 pairs between the layers:
  // every connection counted from both of its cells.
  EXPECT_EQ(a.connections_compared, 2 * (2 * 4 + 5));
}

struct Difference {
  const char* name;
  std::function<void(GrbTables&)> change;
  std::string type;
  std::string message;
};

class GridDifferences : public testing::TestWithParam<Difference> {};

TEST_P(GridDifferences, AreFoundAndNamed) {
  const tesseramill::DisvGrid grid = two_layers_of_squares();
  GrbTables t = tables_for(grid, 2);
  GetParam().change(t);
  const GridAgreement a = tesseramill_mf6check::compare_grids(binary(t, GetParam().type), grid);
  EXPECT_FALSE(a.agrees);
  EXPECT_EQ(a.difference, GetParam().message);
}

INSTANTIATE_TEST_SUITE_P(
    Cases, GridDifferences,
    testing::Values(
        Difference{"GridType", [](GrbTables&) {}, "DIS", "the binary grid is of type DIS, not DISV"},
        Difference{"Layers", [](GrbTables& t) { t.nlay = 3; }, "DISV",
                   "NLAY is 3 in the binary grid and 2 in the grid file"},
        Difference{"Vertices", [](GrbTables& t) { t.nvert = 11; }, "DISV",
                   "NVERT is 11 in the binary grid and 12 in the grid file"},
        Difference{"VertexOfACell", [](GrbTables& t) { t.javert[7] = 9; }, "DISV",
                   "JAVERT holds vertex 9 where the grid file has 7 at cell 2"},
        Difference{"FirstVertexNotRepeated",
                   [](GrbTables& t) {
                     t.javert.erase(t.javert.begin() + 4);
                     for (std::size_t k = 1; k < t.iavert.size(); ++k) t.iavert[k] -= 1;
                   },
                   "DISV",
                   "IAVERT gives 4 entries where the grid file has 4 vertices and the first again at cell 1"},
        Difference{"MissingConnection",
                   [](GrbTables& t) {
                     // Cell 1's row: 1, 2, 4, 6 (its neighbours and the cell below); drop 2.
                     t.ja.erase(t.ja.begin() + 1);
                     for (std::size_t k = 1; k < t.ia.size(); ++k) t.ia[k] -= 1;
                   },
                   "DISV",
                   "IA/JA connect 2 cells where the grid file's faces and layers give 3 at cell 1"},
        Difference{"RowWithoutItsCell", [](GrbTables& t) { std::swap(t.ja[0], t.ja[1]); }, "DISV",
                   "the row of IA/JA does not begin with the cell itself at cell 1"}),
    [](const testing::TestParamInfo<Difference>& info) { return std::string(info.param.name); });

}  // namespace
}  // namespace tesseramill_test
