#include "report/grid_fix.h"

#include <cstdio>
#include <filesystem>
#include <ostream>
#include <string_view>
#include <system_error>
#include <vector>

#include "common/failure.h"
#include "common/text_tools.h"
#include "input/line_reader.h"
#include "output/number_format.h"
#include "output/text_file.h"

namespace tesseramill {

namespace {

// The mesher writes up to this many vertex numbers on a line; a cell of more
// goes on over the next lines, and so does the fixed file.
constexpr std::size_t kNumbersOnALine = 1000;
// Columns of the count and of each vertex number in the fixed file: one more
// than the largest number that a readable grid holds needs (counts up to
// 9,999 and vertex numbers up to 9,999,999), so that a blank always stands
// before each.
constexpr int kCountColumns = 5;
constexpr int kNumberColumns = 8;

// A number right-aligned in `width` columns when it leaves at least one of
// them blank, and otherwise a blank and its digits: a number a hand-edited
// file holds beyond the mesher's range still stands apart.
void append_apart(std::string& out, std::int64_t value, int width) {
  std::int64_t limit = 1;
  for (int k = 1; k < width; ++k) limit *= 10;
  if (value >= 0 && value < limit) {
    append_integer(out, value, width);
  } else {
    out += ' ';
    append_integer(out, value);
  }
}

// Blank- and tab-separated tokens of a line, as the grid reader splits it.
void split_tokens(std::string_view line, std::vector<std::string_view>& tokens) {
  tokens.clear();
  std::size_t p = 0;
  while (p < line.size()) {
    while (p < line.size() && (line[p] == ' ' || line[p] == '\t')) ++p;
    std::size_t q = p;
    while (q < line.size() && line[q] != ' ' && line[q] != '\t') ++q;
    if (q > p) tokens.push_back(line.substr(p, q - p));
    p = q;
  }
}

bool is_end(std::string_view token) {
  return token.size() == 3 && (token[0] == 'E' || token[0] == 'e') && (token[1] == 'N' || token[1] == 'n') &&
         (token[2] == 'D' || token[2] == 'd');
}

std::string text_of_file(const std::string& name, bool& ok) {
  std::string text;
  ok = false;
  std::FILE* file = std::fopen(name.c_str(), "rb");
  if (file == nullptr) return text;
  char buffer[1 << 16];
  std::size_t got = 0;
  while ((got = std::fread(buffer, 1, sizeof buffer, file)) > 0) text.append(buffer, got);
  ok = std::ferror(file) == 0;
  std::fclose(file);
  return text;
}

// Writes `text` to `name` and tells whether all of it arrived.
bool write_whole_file(RunState& state, const std::string& name, const std::string& text) {
  OutputFile out;
  open_output(state, out, name);
  put_text(out, text);
  return close_output_checked(out);
}

[[noreturn]] void fail_to_write(RunState& state, const std::string& part, const std::string& name) {
  std::error_code ignored;
  std::filesystem::remove(part, ignored);
  fail(state, "Cannot write the whole of file " + part + ": the disc may be full. File " + name +
                  " is left as it was.");
}

}  // namespace

void set_numbers_apart(RunState& state, const std::string& name, const std::string& text, const DisvGrid& grid,
                       std::string& out, OutputFile* sink) {
  out.clear();
  // Text handed to the sink in pieces of about this size.
  constexpr std::size_t kPiece = 1 << 20;
  if (sink == nullptr) out.reserve(text.size() + text.size() / 8);
  auto pass_on = [&]() {
    if (sink != nullptr && out.size() >= kPiece) {
      put_text(*sink, out);
      out.clear();
    }
  };
  std::vector<std::string_view> tokens;
  std::int32_t line_number = 0;
  std::size_t cells_done = 0;
  // Vertex numbers of the cell just rewritten that its first line did not
  // hold: they stand on the lines after it, which the rewrite replaces.
  std::size_t numbers_to_skip = 0;
  bool in_cells = false;
  std::size_t start = 0;
  while (start < text.size()) {
    std::size_t end = text.find('\n', start);
    const bool has_newline = end != std::string::npos;
    if (!has_newline) end = text.size();
    // A CR before the LF belongs to the line end and stays there.
    std::size_t content_end = end;
    if (content_end > start && text[content_end - 1] == '\r') --content_end;
    const std::string_view line(text.data() + start, content_end - start);
    const std::string_view line_end(text.data() + content_end, end + (has_newline ? 1 : 0) - content_end);
    start = end + (has_newline ? 1 : 0);
    count_line(line_number);
    pass_on();

    if (!in_cells) {
      out.append(line);
      out.append(line_end);
      in_cells = line_number == grid.cells_line;
      continue;
    }
    split_tokens(line, tokens);
    if (tokens.empty()) {
      out.append(line);
      out.append(line_end);
      continue;
    }
    if (numbers_to_skip > 0) {
      numbers_to_skip -= std::min(numbers_to_skip, tokens.size());
      continue;
    }
    if (is_end(tokens[0]) || cells_done == static_cast<std::size_t>(grid.ncpl)) {
      out.append(line);
      out.append(line_end);
      in_cells = false;
      continue;
    }
    // A cell line: its number, its centre's x and y, and the count.
    const std::int32_t cell = static_cast<std::int32_t>(cells_done + 1);
    std::int32_t number = 0;
    if (tokens.size() < 4 || read_integer(tokens[0], number) != 0 || number != cell) {
      fail(state, "Cell " + int_to_text(cell) + " of file " + name +
                      " does not stand on a line of its own with its centre and count, as the mesher writes"
                      " it, so its vertex numbers cannot be set apart. Run the mesher again to write the grid"
                      " afresh.");
    }
    const std::size_t count = static_cast<std::size_t>(corner_count(grid, cells_done));
    // Numbers between blanks fill the rest of the line, or a whole line of
    // them begins a longer list; numbers in columns never go on.
    const std::size_t on_line = tokens.size() - 4;
    if (on_line == count || (on_line == kNumbersOnALine && count > kNumbersOnALine)) numbers_to_skip = count - on_line;
    const std::string_view y = tokens[2];
    out.append(line.substr(0, static_cast<std::size_t>(y.data() + y.size() - line.data())));
    append_apart(out, static_cast<std::int64_t>(count), kCountColumns);
    for (std::size_t i = 0; i < count; ++i) {
      if (i > 0 && i % kNumbersOnALine == 0) out.append(line_end.empty() ? std::string_view("\n") : line_end);
      append_apart(out, corner(grid, cells_done, static_cast<std::int32_t>(i)), kNumberColumns);
    }
    out.append(line_end);
    cells_done += 1;
  }
  if (sink != nullptr) {
    put_text(*sink, out);
    out.clear();
  }
}

void fix_grid_file(RunState& state, const std::string& name, const std::string& command) {
  std::ostream& screen = *state.screen;
  screen << "\n - reading file " << name << "...\n";
  DisvGrid grid;
  read_disv_grid(state, name, command, grid);
  screen << " - file " << name << " read ok.\n";
  if (grid.first_joined_cell == 0) {
    screen << " - vertex numbers of file " << name << " already set apart: the file is left as it is.\n";
    return;
  }

  screen << "\n - setting apart the vertex numbers of file " << name << "...\n";
  bool read_ok = false;
  const std::string text = text_of_file(name, read_ok);
  if (!read_ok) fail(state, "Error reading file " + name + ".");

  // The fixed file, the copy of the original, and then the fixed file again
  // are each complete under a name of their own before they are renamed
  // into place: a rename within a folder replaces the file at once, so there
  // is always a whole grid under `name`.  The fixed text goes to the file
  // as it is made, which keeps a second copy of the grid out of memory.
  const std::string part = name + ".part";
  std::error_code error;
  {
    OutputFile out;
    open_output(state, out, part);
    std::string buffer;
    try {
      set_numbers_apart(state, name, text, grid, buffer, &out);
    } catch (const RunFailure&) {
      close_output(out);
      std::filesystem::remove(part, error);
      throw;
    }
    if (!close_output_checked(out)) fail_to_write(state, part, name);
  }

  const std::string original = name + ".orig";
  if (std::filesystem::exists(original, error)) {
    screen << " - file " << original << " kept as it was, from an earlier fix.\n";
  } else {
    // A second name for the file as it stands costs nothing where the file
    // system has hard links; elsewhere the copy is written out.
    const std::string original_part = original + ".part";
    std::filesystem::remove(original_part, error);
    std::filesystem::create_hard_link(name, original_part, error);
    if (error && !write_whole_file(state, original_part, text)) {
      std::filesystem::remove(part, error);
      fail_to_write(state, original_part, name);
    }
    std::filesystem::rename(original_part, original, error);
    if (error) {
      std::filesystem::remove(part, error);
      fail(state, "Cannot write to file " + original + ".");
    }
    screen << " - file " << original << " written ok: the grid as the mesher wrote it.\n";
  }
  std::filesystem::rename(part, name, error);
  if (error) {
    std::filesystem::remove(part, error);
    fail(state, "Cannot write to file " + name + ".");
  }
  screen << " - file " << name << " written ok: every vertex number of its " << format_integer(grid.ncpl)
         << " cells set apart by a blank.\n";
}

}  // namespace tesseramill
