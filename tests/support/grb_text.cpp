#include "support/grb_text.h"

#include <bit>

namespace tesseramill_test {

namespace {

std::string padded(std::string text, std::size_t length) {
  text.resize(length - 1, ' ');
  return text + '\n';
}

void put_le(std::string& out, std::uint64_t value, int size) {
  for (int k = 0; k < size; ++k) out += static_cast<char>((value >> (8 * k)) & 0xff);
}

}  // namespace

void GrbWriter::integer(const std::string& name, std::int32_t value) {
  definitions.push_back(name + " INTEGER NDIM 0 # " + std::to_string(value));
  put_le(values, static_cast<std::uint32_t>(value), 4);
}

void GrbWriter::real(const std::string& name, double value) {
  definitions.push_back(name + " DOUBLE NDIM 0 # " + std::to_string(value));
  put_le(values, std::bit_cast<std::uint64_t>(value), 8);
}

void GrbWriter::integers(const std::string& name, const std::vector<std::int32_t>& list) {
  definitions.push_back(name + " INTEGER NDIM 1 " + std::to_string(list.size()));
  for (std::int32_t v : list) put_le(values, static_cast<std::uint32_t>(v), 4);
}

void GrbWriter::reals(const std::string& name, const std::vector<double>& list, const std::vector<int>& dims) {
  std::string definition = name + " DOUBLE NDIM " + std::to_string(dims.empty() ? 1 : dims.size());
  if (dims.empty()) definition += " " + std::to_string(list.size());
  for (int d : dims) definition += " " + std::to_string(d);
  definitions.push_back(definition);
  for (double v : list) put_le(values, std::bit_cast<std::uint64_t>(v), 8);
}

std::string GrbWriter::bytes(const std::string& type) const {
  std::string out = padded("GRID " + type, 50) + padded("VERSION 1", 50) +
                    padded("NTXT " + std::to_string(definitions.size()), 50) + padded("LENTXT 100", 50);
  for (const std::string& d : definitions) out += padded(d, 100);
  return out + values;
}

}  // namespace tesseramill_test
