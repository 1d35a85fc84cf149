#include "report/disv_grid.h"

#include <cstdlib>
#include <string_view>

#include "common/failure.h"
#include "common/text_tools.h"
#include "input/line_reader.h"

namespace tesseramill {

namespace {

// The longest line the reader keeps: a cell line holds up to 1000 vertex
// numbers of 7 columns.
constexpr std::size_t kLongestLine = 1 << 20;

struct Reader {
  explicit Reader(RunState& run) : state(run) {}

  RunState& state;
  LineReader lines;
  std::string name;
  std::int32_t line_number = 0;
  std::string line;
  std::vector<std::string_view> tokens;
  std::size_t next = 0;

  [[noreturn]] void fail_line() {
    fail(state, "Error reading line " + int_to_text(line_number) + " of file " + name + ".");
  }

  // Reads the next line that is not blank into its tokens; false at the end.
  bool next_line() {
    for (;;) {
      count_line(line_number);
      const LineStatus status = read_line(lines, line, kLongestLine);
      if (status == LineStatus::kEnd) return false;
      if (status == LineStatus::kError) fail_line();
      tokens.clear();
      next = 0;
      std::size_t p = 0;
      while (p < line.size()) {
        while (p < line.size() && (line[p] == ' ' || line[p] == '\t')) ++p;
        std::size_t q = p;
        while (q < line.size() && line[q] != ' ' && line[q] != '\t') ++q;
        if (q > p) tokens.emplace_back(line.data() + p, q - p);
        p = q;
      }
      if (!tokens.empty()) return true;
    }
  }

  // The next token, reading on over further lines; false at the end.
  bool token(std::string_view& out) {
    while (next >= tokens.size()) {
      if (!next_line()) return false;
    }
    out = tokens[next++];
    return true;
  }

  double real() {
    std::string_view t;
    double value = 0.0;
    if (!token(t) || read_real(t, value) != 0) fail_line();
    return value;
  }

  std::int32_t integer() {
    std::string_view t;
    std::int32_t value = 0;
    if (!token(t) || read_integer(t, value) != 0) fail_line();
    return value;
  }
};

// The mesher writes up to this many vertex numbers on a cell's line and
// goes on over the next lines.
constexpr std::size_t kNumbersOnALine = 1000;

// The count and the vertex numbers of a cell, read as blank-separated
// numbers from the token after the cell's y on: as many numbers as the count
// says, on the cell's line, or a full line of them and the rest on the next
// lines.  False, with nothing added, when the line holds anything else: a
// count that ran together with the first number is far larger than the
// numbers behind it.
bool read_cell_numbers(Reader& r, std::vector<std::int32_t>& out) {
  const std::size_t first = r.next;
  std::int32_t count = 0;
  if (first >= r.tokens.size() || read_integer(r.tokens[first], count) != 0 || count < 3) return false;
  const std::size_t wanted = static_cast<std::size_t>(count);
  const std::size_t on_line = r.tokens.size() - first - 1;
  if (on_line != wanted && !(on_line == kNumbersOnALine && wanted > kNumbersOnALine)) return false;
  const std::size_t size = out.size();
  for (std::size_t i = 0; i < on_line; ++i) {
    std::int32_t v = 0;
    if (read_integer(r.tokens[first + 1 + i], v) != 0) {
      out.resize(size);
      return false;
    }
    out.push_back(v);
  }
  r.next = r.tokens.size();
  for (std::size_t i = on_line; i < wanted; ++i) out.push_back(r.integer());
  return true;
}

bool column_integer(std::string_view field, std::int32_t& value) {
  const std::size_t first = field.find_first_not_of(' ');
  return first != std::string_view::npos && read_integer(field.substr(first), value) == 0;
}

// The same from the columns the mesher writes them in: the count in the 5
// columns behind the cell's y, then a number in each 7 columns.  A number
// of seven digits fills its columns and runs into the one before it, so
// that only the columns tell them apart (and MODFLOW 6, which reads numbers
// between blanks, cannot).  False when the line is not of that layout.
bool read_cell_columns(Reader& r, std::vector<std::int32_t>& out) {
  if (r.next == 0 || r.next > r.tokens.size()) return false;
  const std::string_view y = r.tokens[r.next - 1];
  const std::size_t after_y = static_cast<std::size_t>(y.data() - r.line.data()) + y.size();
  const std::string_view rest = std::string_view(r.line).substr(after_y);
  std::int32_t count = 0;
  if (rest.size() < 5 || !column_integer(rest.substr(0, 5), count) || count < 3) return false;
  if (rest.size() != 5 + 7 * static_cast<std::size_t>(count)) return false;
  for (std::size_t i = 0; i < static_cast<std::size_t>(count); ++i) {
    std::int32_t v = 0;
    if (!column_integer(rest.substr(5 + 7 * i, 7), v)) {
      out.resize(out.size() - i);
      return false;
    }
    out.push_back(v);
  }
  r.next = r.tokens.size();
  return true;
}

// A number that does not fit its columns is written as a field of
// asterisks; on a cell line that is a vertex number of 10,000,000 or more in
// its seven columns.
bool holds_asterisks(const Reader& r) {
  return r.line.find("*******") != std::string::npos;
}

bool word_is(std::string_view token, std::string_view word) {
  if (token.size() != word.size()) return false;
  for (std::size_t k = 0; k < word.size(); ++k) {
    char c = token[k];
    if (c >= 'a' && c <= 'z') c = static_cast<char>(c - 'a' + 'A');
    if (c != word[k]) return false;
  }
  return true;
}

}  // namespace

void read_disv_grid(RunState& state, const std::string& name, const std::string& command, DisvGrid& grid) {
  Reader r{state};
  r.name = name;
  if (!open_lines(r.lines, name)) {
    fail(state, "Cannot open file " + name + ". It is the MODFLOW 6 grid that the command \"" + command +
                    "\" writes: run that command in this folder first.");
  }
  grid = DisvGrid{};
  bool have_vertices = false;
  bool have_cells = false;
  while (r.next_line()) {
    if (!word_is(r.tokens[0], "BEGIN") || r.tokens.size() < 2) continue;
    // The tokens look into the current line, which the next read replaces:
    // a block's name and a keyword are told apart before any value is read.
    const std::string_view block = r.tokens[1];
    const bool pairs = word_is(block, "OPTIONS") || word_is(block, "DIMENSIONS");
    const bool vertices = word_is(block, "VERTICES");
    const bool cells = word_is(block, "CELL2D");
    r.next = r.tokens.size();
    if (pairs) {
      // Keyword and value pairs up to the block's END; a value missing from
      // its keyword's line is read from the lines after it.
      while (r.next_line() && !word_is(r.tokens[0], "END")) {
        const std::string_view key = r.tokens[0];
        r.next = 1;
        if (word_is(key, "XORIGIN")) {
          grid.xorigin = r.real();
        } else if (word_is(key, "YORIGIN")) {
          grid.yorigin = r.real();
        } else if (word_is(key, "NLAY")) {
          grid.nlay = r.integer();
        } else if (word_is(key, "NCPL")) {
          grid.ncpl = r.integer();
        } else if (word_is(key, "NVERT")) {
          grid.nvert = r.integer();
        }
      }
    } else if (vertices) {
      // The lines are read before the table is sized, so that memory follows
      // what the file holds and not what its NVERT claims.
      if (grid.nvert < 1) r.fail_line();
      std::vector<std::int32_t> numbers;
      std::vector<double> xy;
      for (std::int32_t k = 1; k <= grid.nvert; ++k) {
        const std::int32_t number = r.integer();
        if (number < 1 || number > grid.nvert) r.fail_line();
        numbers.push_back(number);
        xy.push_back(r.real());
        xy.push_back(r.real());
      }
      grid.vertices.assign(2 * static_cast<std::size_t>(grid.nvert), 0.0);
      for (std::size_t k = 0; k < numbers.size(); ++k) {
        grid.vertices[2 * static_cast<std::size_t>(numbers[k] - 1)] = xy[2 * k];
        grid.vertices[2 * static_cast<std::size_t>(numbers[k] - 1) + 1] = xy[2 * k + 1];
      }
      have_vertices = true;
    } else if (cells) {
      // Grown as the cells are read, for the same reason.
      if (grid.ncpl < 1) r.fail_line();
      grid.cells_line = r.line_number;
      grid.centres.clear();
      grid.cell_vertices.clear();
      grid.cell_start.assign(1, 0);
      for (std::int32_t k = 1; k <= grid.ncpl; ++k) {
        if (r.integer() != k) r.fail_line();
        grid.centres.push_back(r.real());
        grid.centres.push_back(r.real());
        if (!read_cell_numbers(r, grid.cell_vertices)) {
          if (!read_cell_columns(r, grid.cell_vertices)) {
            if (holds_asterisks(r)) {
              fail(state, "Cell " + int_to_text(k) + " of file " + name +
                              " has vertex numbers of 10,000,000 or more, which the seven columns of the grid"
                              " file fill with asterisks: the numbers are lost. Make a grid of fewer than"
                              " 10,000,000 vertices (about 5,000,000 cells) and run the mesher again.");
            }
            r.fail_line();
          }
          if (grid.first_joined_cell == 0) grid.first_joined_cell = k;
        }
        grid.cell_start.push_back(static_cast<std::int32_t>(grid.cell_vertices.size()));
      }
      have_cells = true;
    }
  }
  if (!have_vertices || !have_cells) {
    fail(state, "File " + name + " holds no complete grid: its VERTICES or CELL2D block is missing.");
  }
  // Each block was read with the NVERT or NCPL in force when it began; a
  // DIMENSIONS block further down may have changed them since.  Everything
  // that reads the grid goes by NVERT and NCPL, so the tables must hold
  // exactly that many vertices and cells, and every vertex number must name
  // one of them; both are checked only now that every block is in.
  if (grid.vertices.size() != 2 * static_cast<std::size_t>(grid.nvert) ||
      grid.cell_start.size() != static_cast<std::size_t>(grid.ncpl) + 1) {
    fail(state, "File " + name + " holds no complete grid: its VERTICES and CELL2D blocks do not hold the NVERT " +
                    int_to_text(grid.nvert) + " vertices and NCPL " + int_to_text(grid.ncpl) +
                    " cells that its DIMENSIONS give.");
  }
  for (std::size_t c = 0; c + 1 < grid.cell_start.size(); ++c) {
    for (std::int32_t i = 0; i < corner_count(grid, c); ++i) {
      const std::int32_t v = corner(grid, c, i);
      if (v < 1 || v > grid.nvert) {
        fail(state, "Cell " + int_to_text(static_cast<std::int32_t>(c + 1)) + " of file " + name +
                        " names vertex " + int_to_text(v) + ", which the file does not hold.");
      }
    }
  }
}

}  // namespace tesseramill
