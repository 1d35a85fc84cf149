#include "binary_grid.h"

#include <bit>
#include <sstream>

namespace tesseramill_mf6check {

namespace {

constexpr std::size_t kHeaderRecord = 50;
constexpr std::size_t kHeaderRecords = 4;
// Definitions far beyond the few dozen a grid has, or records far longer
// than the 100 characters written, mean a file of another kind.
constexpr long kMostDefinitions = 1000;
constexpr long kLongestDefinition = 10000;

std::vector<std::string> words_of(const std::string& text) {
  std::istringstream in(text);
  std::vector<std::string> words;
  std::string word;
  while (in >> word) words.push_back(word);
  return words;
}

bool whole_number(const std::string& word, long& value) {
  if (word.empty() || word.size() > 12) return false;
  value = 0;
  for (char c : word) {
    if (c < '0' || c > '9') return false;
    value = value * 10 + (c - '0');
  }
  return true;
}

// Header record `k`: its keyword and its value.
bool header_record(const std::string& bytes, std::size_t k, const std::string& keyword, std::string& value) {
  const std::vector<std::string> words = words_of(bytes.substr(k * kHeaderRecord, kHeaderRecord));
  if (words.size() != 2 || words[0] != keyword) return false;
  value = words[1];
  return true;
}

std::uint64_t little_endian(const std::string& bytes, std::size_t at, int size) {
  std::uint64_t value = 0;
  for (int k = size - 1; k >= 0; --k) {
    value = (value << 8) | static_cast<unsigned char>(bytes[at + static_cast<std::size_t>(k)]);
  }
  return value;
}

const GrbVariable* find(const BinaryGrid& grid, const std::string& name, GrbType type) {
  for (const GrbVariable& v : grid.variables) {
    if (v.name == name) return v.type == type ? &v : nullptr;
  }
  return nullptr;
}

}  // namespace

bool read_binary_grid(std::string bytes, BinaryGrid& grid, std::string& error) {
  grid = BinaryGrid{};
  std::string type;
  std::string version;
  std::string ntxt_word;
  std::string lentxt_word;
  long ntxt = 0;
  long lentxt = 0;
  if (bytes.size() < kHeaderRecords * kHeaderRecord) {
    error = "it is shorter than the header of a binary grid file";
    return false;
  }
  const std::vector<std::string> first = words_of(bytes.substr(0, kHeaderRecord));
  if (first.size() != 2 || first[0] != "GRID") {
    error = "its first record is not GRID and a grid type";
    return false;
  }
  type = first[1];
  if (!header_record(bytes, 1, "VERSION", version) || !header_record(bytes, 2, "NTXT", ntxt_word) ||
      !header_record(bytes, 3, "LENTXT", lentxt_word) || !whole_number(ntxt_word, ntxt) ||
      !whole_number(lentxt_word, lentxt) || ntxt < 1 || ntxt > kMostDefinitions || lentxt < 1 ||
      lentxt > kLongestDefinition) {
    error = "its header records are not VERSION, NTXT and LENTXT with their values";
    return false;
  }
  std::size_t at = kHeaderRecords * kHeaderRecord;
  const std::size_t record = static_cast<std::size_t>(lentxt);
  if (bytes.size() < at + static_cast<std::size_t>(ntxt) * record) {
    error = "it ends within its " + std::to_string(ntxt) + " definitions";
    return false;
  }
  std::size_t data = at + static_cast<std::size_t>(ntxt) * record;
  for (long k = 0; k < ntxt; ++k, at += record) {
    const std::vector<std::string> words = words_of(bytes.substr(at, record));
    GrbVariable v;
    long ndim = 0;
    if (words.size() < 4 || words[2] != "NDIM" || !whole_number(words[3], ndim) ||
        (words[1] != "INTEGER" && words[1] != "DOUBLE")) {
      error = "definition " + std::to_string(k + 1) + " is not NAME TYPE NDIM n";
      return false;
    }
    v.name = words[0];
    v.type = words[1] == "INTEGER" ? GrbType::kInteger : GrbType::kDouble;
    v.count = 1;
    if (ndim > 0) {
      if (words.size() != 4 + static_cast<std::size_t>(ndim)) {
        error = "definition " + std::to_string(k + 1) + " (" + v.name + ") does not give its " +
                std::to_string(ndim) + " dimensions";
        return false;
      }
      for (long d = 0; d < ndim; ++d) {
        long size = 0;
        if (!whole_number(words[4 + static_cast<std::size_t>(d)], size) ||
            v.count > (std::size_t{1} << 40) / (static_cast<std::size_t>(size) + 1)) {
          error = "definition " + std::to_string(k + 1) + " (" + v.name + ") has a dimension that is no size";
          return false;
        }
        v.count *= static_cast<std::size_t>(size);
      }
    }
    v.offset = data;
    data += v.count * (v.type == GrbType::kInteger ? 4 : 8);
    grid.variables.push_back(v);
  }
  if (bytes.size() != data) {
    error = "it holds " + std::to_string(bytes.size()) + " bytes where its definitions need " + std::to_string(data);
    return false;
  }
  grid.grid_type = type;
  grid.bytes = std::move(bytes);
  return true;
}

bool grb_integers(const BinaryGrid& grid, const std::string& name, std::vector<std::int32_t>& values) {
  const GrbVariable* v = find(grid, name, GrbType::kInteger);
  if (v == nullptr) return false;
  values.resize(v->count);
  for (std::size_t k = 0; k < v->count; ++k) {
    values[k] = static_cast<std::int32_t>(static_cast<std::uint32_t>(little_endian(grid.bytes, v->offset + 4 * k, 4)));
  }
  return true;
}

bool grb_doubles(const BinaryGrid& grid, const std::string& name, std::vector<double>& values) {
  const GrbVariable* v = find(grid, name, GrbType::kDouble);
  if (v == nullptr) return false;
  values.resize(v->count);
  for (std::size_t k = 0; k < v->count; ++k) {
    values[k] = std::bit_cast<double>(little_endian(grid.bytes, v->offset + 8 * k, 8));
  }
  return true;
}

}  // namespace tesseramill_mf6check
