#include "output/text_file.h"

#include <atomic>
#include <exception>
#include <limits>
#include <thread>

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

bool try_open_output(OutputFile& out, const std::string& name) {
  close_output(out);
  out.name = fit_field(name, kFileNameLength);
  // A name holding a NUL byte names no file; the part before it is another file.
  if (out.name.find('\0') == std::string::npos) out.file = open_file(out.name, "wb");
  if (out.file == nullptr) return false;
  out.failed = false;
  out.pending.reserve(kFlushSize + 4096);
  return true;
}

void fail_to_open(RunState& state, const OutputFile& out) { fail(state, "Cannot write to file " + out.name + "."); }

void open_output(RunState& state, OutputFile& out, const std::string& name) {
  if (!try_open_output(out, name)) fail_to_open(state, out);
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

void put_blocks(OutputFile& out, std::size_t blocks, const BlockFormat& format_block, bool shared) {
  if (!shared || blocks < 2) {
    std::string text;
    for (std::size_t block = 0; block < blocks; ++block) {
      text.clear();
      format_block(block, text);
      put_text(out, text);
    }
    return;
  }
  // Both threads write straight to the file, after what is pending.
  flush(out);
  // `turn` counts the blocks written; its top bit is set when a block's
  // formatting failed, so that a thread waiting for its turn wakes and
  // sees `failed_at`.  The blocks before the failed one are still written,
  // in order, so the file holds the same text whichever thread failed.
  constexpr std::size_t kFailedBit = std::size_t{1} << (std::numeric_limits<std::size_t>::digits - 1);
  std::atomic<std::size_t> turn{0};
  std::atomic<std::size_t> failed_at{std::numeric_limits<std::size_t>::max()};
  auto work = [&](std::size_t part) {
    std::string text;
    for (std::size_t block = part; block < blocks; block += 2) {
      if (block >= failed_at.load()) return;
      text.clear();
      try {
        format_block(block, text);
      } catch (...) {
        for (std::size_t seen = failed_at.load(); block < seen && !failed_at.compare_exchange_weak(seen, block);) {
        }
        turn.fetch_or(kFailedBit);
        turn.notify_all();
        throw;
      }
      for (std::size_t now = turn.load(); (now & ~kFailedBit) != block; now = turn.load()) {
        if (block >= failed_at.load()) return;
        turn.wait(now);
      }
      if (out.file != nullptr && std::fwrite(text.data(), 1, text.size(), out.file) != text.size()) out.failed = true;
      turn.fetch_add(1);
      turn.notify_all();
    }
  };
  // Each thread's failure, if any; the one of the lower block is passed on,
  // as one pass in order would have met it first.
  std::exception_ptr thrown[2];
  auto run = [&](std::size_t part) {
    try {
      work(part);
    } catch (...) {
      thrown[part] = std::current_exception();
    }
  };
  std::thread helper(run, 1);
  run(0);
  helper.join();
  const std::size_t first_failed = failed_at.load();
  if (first_failed != std::numeric_limits<std::size_t>::max()) std::rethrow_exception(thrown[first_failed % 2]);
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
