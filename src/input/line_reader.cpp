#include "input/line_reader.h"

#include <algorithm>
#include <cstring>

#include "common/platform.h"

namespace tesseramill {

LineReader::~LineReader() { close_lines(*this); }

bool open_lines(LineReader& reader, const std::string& name) {
  close_lines(reader);
  // No file name can hold a NUL byte; handing the name over would open the
  // file named by the part before it.
  if (name.find('\0') != std::string::npos) return false;
  reader.file = open_file(name, "rb");
  return reader.file != nullptr;
}

void close_lines(LineReader& reader) {
  if (reader.file != nullptr) {
    std::fclose(reader.file);
    reader.file = nullptr;
  }
  reader.block.clear();
  reader.position = 0;
}

namespace {

constexpr std::size_t kBlockSize = 1 << 16;

// Refills the block with what follows in the file; false at the end of the
// file or on an error, which `ferror` then tells.
bool refill(LineReader& reader) {
  reader.block.resize(kBlockSize);
  const std::size_t got = std::fread(reader.block.data(), 1, kBlockSize, reader.file);
  reader.block.resize(got);
  reader.position = 0;
  return got > 0;
}

}  // namespace

LineStatus read_line(LineReader& reader, std::string& line, std::size_t keep) {
  line.clear();
  if (reader.file == nullptr) return LineStatus::kError;
  bool any = false;
  // Whether the characters gathered so far end in a CR that has not been
  // kept: it belongs to the line end if the LF or the end of the file comes
  // next, and to the line otherwise.
  bool pending_cr = false;
  auto append = [&](const char* first, std::size_t count) {
    if (count == 0) return;
    if (pending_cr && line.size() < keep) line.push_back('\r');
    pending_cr = first[count - 1] == '\r';
    if (pending_cr) count -= 1;
    if (line.size() < keep) line.append(first, std::min(count, keep - line.size()));
  };
  for (;;) {
    if (reader.position >= reader.block.size() && !refill(reader)) {
      if (std::ferror(reader.file)) return LineStatus::kError;
      if (!any) return LineStatus::kEnd;
      break;
    }
    any = true;
    const char* first = reader.block.data() + reader.position;
    const std::size_t available = reader.block.size() - reader.position;
    const void* lf = std::memchr(first, '\n', available);
    if (lf != nullptr) {
      const std::size_t count = static_cast<std::size_t>(static_cast<const char*>(lf) - first);
      append(first, count);
      reader.position += count + 1;
      break;
    }
    append(first, available);
    reader.position += available;
  }
  return LineStatus::kLine;
}

}  // namespace tesseramill
