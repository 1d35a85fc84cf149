#include "grid_agreement.h"

#include <algorithm>
#include <utility>
#include <vector>

namespace tesseramill_mf6check {

namespace {

using tesseramill::DisvGrid;

std::string at_cell(std::size_t cell) { return " at cell " + std::to_string(cell + 1); }

// The cells of one layer that share a face: every edge of every cell keyed
// by its two vertex numbers, the smaller first; an edge that two cells hold
// is a face between them.
std::vector<std::vector<std::int32_t>> face_neighbours(const DisvGrid& disv) {
  const std::size_t ncpl = static_cast<std::size_t>(disv.ncpl);
  std::vector<std::pair<std::uint64_t, std::int32_t>> edges;
  edges.reserve(disv.cell_vertices.size());
  for (std::size_t c = 0; c < ncpl; ++c) {
    const std::int32_t m = tesseramill::corner_count(disv, c);
    for (std::int32_t i = 0; i < m; ++i) {
      const std::uint64_t a = static_cast<std::uint32_t>(tesseramill::corner(disv, c, i));
      const std::uint64_t b = static_cast<std::uint32_t>(tesseramill::corner(disv, c, (i + 1) % m));
      edges.emplace_back(std::min(a, b) << 32 | std::max(a, b), static_cast<std::int32_t>(c));
    }
  }
  std::sort(edges.begin(), edges.end());
  std::vector<std::vector<std::int32_t>> neighbours(ncpl);
  for (std::size_t k = 0; k < edges.size();) {
    std::size_t end = k + 1;
    while (end < edges.size() && edges[end].first == edges[k].first) ++end;
    if (end - k == 2 && edges[k].second != edges[k + 1].second) {
      neighbours[static_cast<std::size_t>(edges[k].second)].push_back(edges[k + 1].second);
      neighbours[static_cast<std::size_t>(edges[k + 1].second)].push_back(edges[k].second);
    }
    k = end;
  }
  return neighbours;
}

bool scalar_is(const BinaryGrid& grb, const std::string& name, std::int64_t expected, std::string& difference) {
  std::vector<std::int32_t> value;
  if (!grb_integers(grb, name, value) || value.size() != 1) {
    difference = "the binary grid has no " + name;
    return false;
  }
  if (value[0] != expected) {
    difference = name + " is " + std::to_string(value[0]) + " in the binary grid and " + std::to_string(expected) +
                 " in the grid file";
    return false;
  }
  return true;
}

bool compare_vertices(const BinaryGrid& grb, const DisvGrid& disv, std::string& difference) {
  std::vector<std::int32_t> iavert;
  std::vector<std::int32_t> javert;
  const std::size_t ncpl = static_cast<std::size_t>(disv.ncpl);
  if (!grb_integers(grb, "IAVERT", iavert) || !grb_integers(grb, "JAVERT", javert) || iavert.size() != ncpl + 1) {
    difference = "the binary grid has no IAVERT of NCPL + 1 entries, or no JAVERT";
    return false;
  }
  for (std::size_t c = 0; c < ncpl; ++c) {
    const std::int32_t m = tesseramill::corner_count(disv, c);
    const std::int64_t first = static_cast<std::int64_t>(iavert[c]) - 1;
    const std::int64_t last = static_cast<std::int64_t>(iavert[c + 1]) - 1;
    if (first < 0 || last > static_cast<std::int64_t>(javert.size()) || last - first != m + 1) {
      difference = "IAVERT gives " + std::to_string(last - first) + " entries where the grid file has " +
                   std::to_string(m) + " vertices and the first again" + at_cell(c);
      return false;
    }
    for (std::int32_t i = 0; i <= m; ++i) {
      const std::int32_t expected = tesseramill::corner(disv, c, i % m);
      const std::int32_t got = javert[static_cast<std::size_t>(first + i)];
      if (got != expected) {
        difference = "JAVERT holds vertex " + std::to_string(got) + " where the grid file has " +
                     std::to_string(expected) + at_cell(c);
        return false;
      }
    }
  }
  return true;
}

bool compare_connections(const BinaryGrid& grb, const DisvGrid& disv, std::int64_t& compared,
                         std::string& difference) {
  const std::int64_t ncpl = disv.ncpl;
  const std::int64_t nlay = disv.nlay;
  const std::int64_t ncells = ncpl * nlay;
  std::vector<std::int32_t> ia;
  std::vector<std::int32_t> ja;
  if (!grb_integers(grb, "IA", ia) || !grb_integers(grb, "JA", ja) ||
      static_cast<std::int64_t>(ia.size()) != ncells + 1) {
    difference = "the binary grid has no IA of NCELLS + 1 entries, or no JA";
    return false;
  }
  const std::vector<std::vector<std::int32_t>> neighbours = face_neighbours(disv);
  std::vector<std::int64_t> expected;
  std::vector<std::int64_t> row;
  for (std::int64_t n = 0; n < ncells; ++n) {
    const std::int64_t layer = n / ncpl;
    const std::size_t c = static_cast<std::size_t>(n % ncpl);
    const std::int64_t first = static_cast<std::int64_t>(ia[static_cast<std::size_t>(n)]) - 1;
    const std::int64_t last = static_cast<std::int64_t>(ia[static_cast<std::size_t>(n) + 1]) - 1;
    if (first < 0 || last > static_cast<std::int64_t>(ja.size()) || last <= first ||
        ja[static_cast<std::size_t>(first)] != n + 1) {
      difference = "the row of IA/JA does not begin with the cell itself" + at_cell(static_cast<std::size_t>(n));
      return false;
    }
    expected.clear();
    for (std::int32_t other : neighbours[c]) expected.push_back(layer * ncpl + other + 1);
    if (layer > 0) expected.push_back(n - ncpl + 1);
    if (layer + 1 < nlay) expected.push_back(n + ncpl + 1);
    std::sort(expected.begin(), expected.end());
    row.assign(ja.begin() + first + 1, ja.begin() + last);
    std::sort(row.begin(), row.end());
    if (row != expected) {
      difference = "IA/JA connect " + std::to_string(row.size()) + " cells where the grid file's faces and layers give " +
                   std::to_string(expected.size()) + at_cell(static_cast<std::size_t>(n));
      return false;
    }
    compared += static_cast<std::int64_t>(row.size());
  }
  return true;
}

}  // namespace

GridAgreement compare_grids(const BinaryGrid& grb, const DisvGrid& disv) {
  GridAgreement result;
  if (grb.grid_type != "DISV") {
    result.difference = "the binary grid is of type " + grb.grid_type + ", not DISV";
    return result;
  }
  if (!scalar_is(grb, "NLAY", disv.nlay, result.difference) || !scalar_is(grb, "NCPL", disv.ncpl, result.difference) ||
      !scalar_is(grb, "NVERT", disv.nvert, result.difference) ||
      !scalar_is(grb, "NCELLS", static_cast<std::int64_t>(disv.nlay) * disv.ncpl, result.difference) ||
      !compare_vertices(grb, disv, result.difference) ||
      !compare_connections(grb, disv, result.connections_compared, result.difference)) {
    return result;
  }
  result.agrees = true;
  return result;
}

}  // namespace tesseramill_mf6check
