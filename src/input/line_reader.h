// Reads text files line by line for the input readers.  A line ends at LF; a
// CR just before the LF (or before the end of the file) belongs to the line
// ending.  Only the first `keep` characters of a line are kept; the rest is
// dropped unseen.
#pragma once

#include <cstdint>
#include <cstdio>
#include <limits>
#include <string>

namespace tesseramill {

enum class LineStatus { kLine, kEnd, kError };

struct LineReader {
  std::FILE* file = nullptr;
  // The file is read in blocks; a line is cut out of the block where its LF
  // stands, which costs far less than a call per character on the files of
  // a million lines that the report reads.
  std::string block;
  std::size_t position = 0;

  LineReader() = default;
  LineReader(const LineReader&) = delete;
  LineReader& operator=(const LineReader&) = delete;
  ~LineReader();
};

// Opens `name` for reading; false when the open fails.
bool open_lines(LineReader& reader, const std::string& name);
void close_lines(LineReader& reader);
LineStatus read_line(LineReader& reader, std::string& line, std::size_t keep);

// Adds a line to a line count.  A file of more than 2,147,483,647 lines
// leaves its count at that number rather than wrapping round.
inline void count_line(std::int32_t& line_number) {
  if (line_number < std::numeric_limits<std::int32_t>::max()) line_number += 1;
}

}  // namespace tesseramill
