// MODFLOW 6's binary grid file (STEM.disv.grb), which the solver writes
// from the grid it has read: what it saw as cells, vertices and
// connections.
//
// The file describes itself: four text records of 50 characters ("GRID
// DISV", "VERSION 1", "NTXT n", "LENTXT m"), n definition records of m
// characters ("NAME TYPE NDIM k d1 .. dk", scalars with "# value" behind),
// then the variables in the order of their definitions, INTEGER as 4-byte
// and DOUBLE as 8-byte little-endian values, arrays as plain runs.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

namespace tesseramill_mf6check {

enum class GrbType { kInteger, kDouble };

struct GrbVariable {
  std::string name;
  GrbType type = GrbType::kInteger;
  std::size_t count = 0;   // values: the product of the dimensions, 1 for a scalar
  std::size_t offset = 0;  // where its values begin in the file
};

struct BinaryGrid {
  std::string grid_type;  // "DISV"
  std::vector<GrbVariable> variables;
  std::string bytes;      // the whole file
};

// Reads the bytes of a binary grid file.  False, with the reason in `error`,
// when the header is not that of a binary grid, a definition cannot be read,
// or the file holds fewer or more bytes than its definitions need.
bool read_binary_grid(std::string bytes, BinaryGrid& grid, std::string& error);

// The values of variable `name`; false when the file has no such variable
// of that type.
bool grb_integers(const BinaryGrid& grid, const std::string& name, std::vector<std::int32_t>& values);
bool grb_doubles(const BinaryGrid& grid, const std::string& name, std::vector<double>& values);

}  // namespace tesseramill_mf6check
