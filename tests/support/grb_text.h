// Binary grid files of MODFLOW 6 written by the tests, in the layout the
// solver writes: header records of 50 characters, definitions of 100, then
// the values, little-endian.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

namespace tesseramill_test {

struct GrbWriter {
  std::vector<std::string> definitions;
  std::string values;

  void integer(const std::string& name, std::int32_t value);
  void real(const std::string& name, double value);
  void integers(const std::string& name, const std::vector<std::int32_t>& list);
  // `dims` as the definition gives them; their product is the list's size.
  void reals(const std::string& name, const std::vector<double>& list, const std::vector<int>& dims = {});

  // The whole file for a grid of type `type`.
  std::string bytes(const std::string& type) const;
};

}  // namespace tesseramill_test
