// Writing of the output text files: whole lines gathered in memory and
// handed to the file in large pieces.
#pragma once

#include <cstdio>
#include <algorithm>
#include <functional>
#include <string>

#include "common/parallel.h"
#include "common/platform.h"
#include "common/run_state.h"

namespace tesseramill {

struct OutputFile {
  std::FILE* file = nullptr;
  std::string name;
  std::string pending;
  // Set when a write or the close did not take all the bytes (a full disc).
  // The mesher's writers go on regardless; a caller that replaces a file
  // asks close_output_checked.
  bool failed = false;
  // What the file has been given, and how much of it has been let go of.
  WrittenSpan written;
  // Set when the file is written over where it stands and must be cut at
  // its length when closed (open_file_replacing).
  bool cut_at_close = false;

  OutputFile() = default;
  OutputFile(const OutputFile&) = delete;
  OutputFile& operator=(const OutputFile&) = delete;
  ~OutputFile();
};

// Opens `name` for writing, replacing a file of that name; a file that
// cannot be opened ends the run with "Cannot write to file {name}.".
void open_output(RunState& state, OutputFile& out, const std::string& name);

// The same, but false instead of ending the run; fail_to_open then ends it
// with that message.
bool try_open_output(OutputFile& out, const std::string& name);
[[noreturn]] void fail_to_open(RunState& state, const OutputFile& out);

// Appends `line` and a line end.
void put_line(OutputFile& out, const std::string& line);

// Appends text that already ends its lines.
void put_text(OutputFile& out, const std::string& text);

// Appends the text of blocks 0 .. blocks-1 in their order:
// format_block(block, text) appends that block's lines to `text`.  With
// `shared`, two threads take the blocks in turn, each formatting its next
// block while the other writes, and each writing only when every block
// before its own has been written, so the file is the same as from one pass.
using BlockFormat = std::function<void(std::size_t block, std::string& text)>;

// The cores a file's filling may take: both, or one when it runs beside
// work that keeps the other busy.
enum class FillCores { both, one };
void put_blocks(OutputFile& out, std::size_t blocks, const BlockFormat& format_block, bool shared);

// Appends the lines of items 0 .. count-1 in their order: format(item, text)
// appends item's lines, each with its line end, to `text`.  The items go out
// in blocks of kItemsPerBlock (put_blocks), shared between the two cores
// when the file has enough items for a second thread to pay; a block's text
// is about a megabyte at most, whatever the number of items.
template <typename Format>
void put_items(OutputFile& out, std::size_t count, Format format, FillCores cores = FillCores::both) {
  constexpr std::size_t kItemsPerBlock = 4096;
  const std::size_t blocks = (count + kItemsPerBlock - 1) / kItemsPerBlock;
  put_blocks(
      out, blocks,
      [&](std::size_t block, std::string& text) {
        const std::size_t end = std::min(count, (block + 1) * kItemsPerBlock);
        for (std::size_t item = block * kItemsPerBlock; item < end; ++item) format(item, text);
      },
      cores == FillCores::both && count >= smallest_shared_work.load(std::memory_order_relaxed));
}

// Writes what is pending and closes the file.
void close_output(OutputFile& out);

// Closes the file if open and leaves the file of its name empty, as it
// stood when opened: for a file that one thread would not have begun
// filling when the run failed.
void empty_output(OutputFile& out);

// The same, and tells whether every byte reached the file.
bool close_output_checked(OutputFile& out);

}  // namespace tesseramill
