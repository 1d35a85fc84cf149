#include "input/bln_lines.h"

#include "common/failure.h"
#include "common/limits.h"
#include "common/text_tools.h"

namespace tesseramill {

namespace {

bool is_header_delimiter(char c) { return c == ' ' || c == ',' || c == '\t'; }

}  // namespace

CountStatus read_group_count(LineReader& reader, std::int32_t& count) {
  std::string line;
  std::size_t start = 0;
  for (;;) {
    // Like every line of a BLN file, a header keeps its first 100
    // characters; the rest is dropped unseen.
    LineStatus status = read_line(reader, line, kBlnLineLength);
    if (status == LineStatus::kEnd) return CountStatus::kEnd;
    if (status == LineStatus::kError) return CountStatus::kBad;
    start = line.find_first_not_of(" \t");
    if (start != std::string::npos) break;
  }
  std::size_t end = start;
  while (end < line.size() && !is_header_delimiter(line[end])) ++end;
  std::string token = line.substr(start, std::min(end - start, kNumericTokenLength));
  if (token.find('.') != std::string::npos) return CountStatus::kBad;
  return read_integer(token, count) == 0 ? CountStatus::kOk : CountStatus::kBad;
}

void read_vertex_line(RunState& state, LineReader& reader, const std::string& file,
                      std::int32_t& line_number, bool with_separation, double& x, double& y,
                      double& separation) {
  std::string line;
  for (;;) {
    count_line(line_number);
    LineStatus status = read_line(reader, line, kBlnLineLength);
    if (status == LineStatus::kEnd) fail(state, "Premature end encountered to file " + file + ".");
    if (status == LineStatus::kError) {
      fail(state, "Error reading line " + int_to_text(line_number) + " of file " + file + ".");
    }
    if (line.find_first_not_of(' ') != std::string::npos) break;
  }
  const int wanted = with_separation ? 3 : 2;
  int first[3];
  int last[3];
  if (split_line(wanted, line, first, last) != 0) {
    fail(state, "Insufficient entries on line " + int_to_text(line_number) + " of file " + file + ".");
  }
  double values[3] = {0.0, 0.0, 0.0};
  for (int k = 0; k < wanted; ++k) {
    std::string_view token(line.data() + first[k], static_cast<std::size_t>(last[k] - first[k] + 1));
    if (read_real(token, values[k]) != 0) {
      fail(state, "Error reading line " + int_to_text(line_number) + " of file " + file + ".");
    }
  }
  x = values[0];
  y = values[1];
  if (with_separation) {
    separation = values[2];
    if (!(separation > 0.0)) {
      fail(state, "Centroid separation must be greater than zero at line " +
                      int_to_text(line_number) + " of file " + file + ".");
    }
  }
}

}  // namespace tesseramill
