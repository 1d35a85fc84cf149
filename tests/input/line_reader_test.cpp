// Lines read from files: line ends of LF, CR LF or none at the end, CRs
// inside a line, lines cut to the kept length, and lines that cross the
// blocks in which the file is read.
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "input/line_reader.h"
#include "support/scratch.h"

namespace tesseramill_test {
namespace {

std::vector<std::string> lines_of(const std::string& content, std::size_t keep) {
  ScratchDir dir;
  dir.write("f.txt", content);
  tesseramill::LineReader reader;
  EXPECT_TRUE(tesseramill::open_lines(reader, (dir.path() / "f.txt").string()));
  std::vector<std::string> lines;
  std::string line;
  tesseramill::LineStatus status;
  while ((status = tesseramill::read_line(reader, line, keep)) == tesseramill::LineStatus::kLine) lines.push_back(line);
  EXPECT_EQ(status, tesseramill::LineStatus::kEnd);
  return lines;
}

struct LineCase {
  const char* name;
  std::string content;
  std::size_t keep;
  std::vector<std::string> lines;
};

class LineReaderCases : public testing::TestWithParam<LineCase> {};

TEST_P(LineReaderCases, GivesTheLines) { EXPECT_EQ(lines_of(GetParam().content, GetParam().keep), GetParam().lines); }

const std::size_t kBlock = 1 << 16;

INSTANTIATE_TEST_SUITE_P(
    Cases, LineReaderCases,
    testing::Values(LineCase{"Empty", "", 100, {}}, LineCase{"OneLineWithoutEnd", "abc", 100, {"abc"}},
                    LineCase{"LfAndCrLf", "a\nb\r\n\nc", 100, {"a", "b", "", "c"}},
                    LineCase{"CrBeforeTheEndOfTheFile", "a\r", 100, {"a"}},
                    LineCase{"CrInsideALine", "a\rb\r\r\n", 100, {"a\rb\r"}},
                    LineCase{"CutToTheKeptLength", "abcdef\r\nxy\n", 3, {"abc", "xy"}},
                    LineCase{"CrJustPastTheKeptLength", "abc\rd\n", 3, {"abc"}},
                    LineCase{"CrLfAcrossTheBlockBoundary", std::string(kBlock - 1, 'x') + "\r\ny\n", kBlock,
                             {std::string(kBlock - 1, 'x'), "y"}},
                    LineCase{"CrThenTextAcrossTheBlockBoundary", std::string(kBlock - 1, 'x') + "\rz\n", kBlock + 5,
                             {std::string(kBlock - 1, 'x') + "\rz"}},
                    LineCase{"LineLongerThanTwoBlocks", std::string(3 * kBlock, 'q') + "\nend", 4 * kBlock,
                             {std::string(3 * kBlock, 'q'), "end"}}),
    [](const testing::TestParamInfo<LineCase>& info) { return std::string(info.param.name); });

}  // namespace
}  // namespace tesseramill_test
