#include "output/text_file.h"

#include "common/failure.h"
#include "common/limits.h"
#include "common/platform.h"
#include "common/text_tools.h"

namespace tesseramill {

namespace {

constexpr std::size_t kFlushSize = 1 << 16;

void flush(OutputFile& out) {
  if (!out.pending.empty() && out.file != nullptr) {
    if (std::fwrite(out.pending.data(), 1, out.pending.size(), out.file) != out.pending.size()) out.failed = true;
  }
  out.pending.clear();
}

}  // namespace

OutputFile::~OutputFile() { close_output(*this); }

void open_output(RunState& state, OutputFile& out, const std::string& name) {
  close_output(out);
  out.name = fit_field(name, kFileNameLength);
  // A name holding a NUL byte names no file; the part before it is another file.
  if (out.name.find('\0') == std::string::npos) out.file = open_file(out.name, "wb");
  if (out.file == nullptr) fail(state, "Cannot write to file " + out.name + ".");
  out.failed = false;
  out.pending.reserve(kFlushSize + 4096);
}

void put_line(OutputFile& out, const std::string& line) {
  out.pending += line;
  out.pending += '\n';
  if (out.pending.size() >= kFlushSize) flush(out);
}

void put_text(OutputFile& out, const std::string& text) {
  // A text of a flush or more (a block of put_items) goes to the file as it
  // stands, after what is pending, instead of being copied into `pending`
  // first: the file gets the same bytes in the same order, and the run does
  // not hold a second copy of the block.
  if (text.size() >= kFlushSize) {
    flush(out);
    if (out.file != nullptr && std::fwrite(text.data(), 1, text.size(), out.file) != text.size()) out.failed = true;
    return;
  }
  out.pending += text;
  if (out.pending.size() >= kFlushSize) flush(out);
}

void close_output(OutputFile& out) {
  if (out.file == nullptr) return;
  flush(out);
  if (std::fclose(out.file) != 0) out.failed = true;
  out.file = nullptr;
}

bool close_output_checked(OutputFile& out) {
  close_output(out);
  return !out.failed;
}

}  // namespace tesseramill
