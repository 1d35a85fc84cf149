// Writing of the output text files: whole lines gathered in memory and
// handed to the file in large pieces.
#pragma once

#include <cstdio>
#include <algorithm>
#include <string>

#include "common/parallel.h"
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

  OutputFile() = default;
  OutputFile(const OutputFile&) = delete;
  OutputFile& operator=(const OutputFile&) = delete;
  ~OutputFile();
};

// Opens `name` for writing, replacing a file of that name; a file that
// cannot be opened ends the run with "Cannot write to file {name}.".
void open_output(RunState& state, OutputFile& out, const std::string& name);

// Appends `line` and a line end.
void put_line(OutputFile& out, const std::string& line);

// Appends text that already ends its lines.
void put_text(OutputFile& out, const std::string& text);

// Appends the lines of items 0 .. count-1 in their order: format(item, text)
// appends item's lines, each with its line end, to `text`.  The items go out
// in blocks; when the file has enough items for a second thread to pay, each
// block is formatted on the two cores side by side, its halves written in
// order, so the file is the same as from one pass.  A block holds at most
// kItemsPerPart items per core, which keeps the text held at once to about a
// megabyte per core whatever the number of items.
template <typename Format>
void put_items(OutputFile& out, std::size_t count, Format format) {
  constexpr std::size_t kItemsPerPart = 4096;
  const bool shared = count >= kSmallestSharedWork;
  const std::size_t block = shared ? 2 * kItemsPerPart : kItemsPerPart;
  const std::size_t smallest_shared_block = shared ? kItemsPerPart : kSmallestSharedWork;
  std::string texts[2];
  for (std::size_t start = 0; start < count; start += block) {
    const std::size_t end = std::min(count, start + block);
    texts[0].clear();
    texts[1].clear();
    run_in_parts(
        end - start,
        [&](std::size_t begin, std::size_t stop, int part) {
          for (std::size_t item = start + begin; item < start + stop; ++item) format(item, texts[part]);
          return PartFailure{};
        },
        smallest_shared_block);
    put_text(out, texts[0]);
    put_text(out, texts[1]);
  }
}

// Writes what is pending and closes the file.
void close_output(OutputFile& out);

// The same, and tells whether every byte reached the file.
bool close_output_checked(OutputFile& out);

}  // namespace tesseramill
