// The report's CSV tables read back by the tests.
#pragma once

#include <string>
#include <vector>

namespace tesseramill_test {

using Row = std::vector<std::string>;

// The rows of a CSV text after its header, which must be `header`; quoted
// fields lose their quotes.
std::vector<Row> csv_rows(const std::string& text, const std::string& header);

}  // namespace tesseramill_test
