#include "support/csv_rows.h"

#include <gtest/gtest.h>

#include <sstream>

namespace tesseramill_test {

std::vector<Row> csv_rows(const std::string& text, const std::string& header) {
  std::istringstream in(text);
  std::string line;
  std::getline(in, line);
  EXPECT_EQ(line, header);
  std::vector<Row> rows;
  while (std::getline(in, line)) {
    Row row(1);
    bool quoted = false;
    for (std::size_t k = 0; k < line.size(); ++k) {
      const char c = line[k];
      if (quoted && c == '"' && k + 1 < line.size() && line[k + 1] == '"') {
        row.back() += '"';
        ++k;
      } else if (c == '"') {
        quoted = !quoted;
      } else if (c == ',' && !quoted) {
        row.emplace_back();
      } else {
        row.back() += c;
      }
    }
    rows.push_back(row);
  }
  return rows;
}

}  // namespace tesseramill_test
