#include "output/text_file.h"

#include <algorithm>
#include <condition_variable>
#include <exception>
#include <limits>
#include <mutex>
#include <thread>

#include "common/failure.h"
#include "common/limits.h"
#include "common/platform.h"
#include "common/text_tools.h"

namespace tesseramill {

namespace {

constexpr std::size_t kFlushSize = 1 << 16;

// Hands `size` bytes to the open file; every write goes through here, so
// that the file's cache is let go of as it fills (release_written).
void hand_over(OutputFile& out, const char* data, std::size_t size) {
  if (std::fwrite(data, 1, size, out.file) != size) out.failed = true;
  if (!release_written(out.file, size, out.written)) out.failed = true;
}

void flush(OutputFile& out) {
  if (!out.pending.empty() && out.file != nullptr) hand_over(out, out.pending.data(), out.pending.size());
  out.pending.clear();
}

}  // namespace

OutputFile::~OutputFile() { close_output(*this); }

bool try_open_output(OutputFile& out, const std::string& name) {
  close_output(out);
  out.name = fit_field(name, kFileNameLength);
  // A name holding a NUL byte names no file; the part before it is another file.
  if (out.name.find('\0') == std::string::npos) out.file = open_file_replacing(out.name, out.cut_at_close);
  if (out.file == nullptr) return false;
  out.failed = false;
  out.written = WrittenSpan{};
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
    if (out.file != nullptr) hand_over(out, text.data(), text.size());
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
  // `written` counts the blocks written and `failed_at` is the lowest block
  // whose formatting failed; both are read and changed under `lock`, and a
  // thread waiting for its turn sleeps on `changed` until the count reaches
  // its block or a failure at or below it ends its work.  The blocks before
  // the failed one are still written, in order, so the file holds the same
  // text whichever thread failed.  The turn is not kept with
  // std::atomic::wait: the MinGW-w64 runtime has no futex to build it on and
  // checks the value outside the mutex of its fallback, so a notify that
  // falls between the check and the sleep is lost and both threads sleep
  // for ever.  A mutex and a condition variable cost some microseconds per
  // block of thousands of items.
  std::mutex lock;
  std::condition_variable changed;
  std::size_t written = 0;
  std::size_t failed_at = std::numeric_limits<std::size_t>::max();
  auto work = [&](std::size_t part) {
    std::string text;
    for (std::size_t block = part; block < blocks; block += 2) {
      text.clear();
      try {
        format_block(block, text);
      } catch (...) {
        {
          const std::lock_guard<std::mutex> held(lock);
          failed_at = std::min(failed_at, block);
        }
        changed.notify_all();
        throw;
      }
      {
        std::unique_lock<std::mutex> held(lock);
        changed.wait(held, [&] { return written == block || block >= failed_at; });
        if (block >= failed_at) return;
      }
      // Only the thread whose turn it is writes; the other waits until
      // `written` moves past this block, which it sees under the same mutex.
      if (out.file != nullptr) hand_over(out, text.data(), text.size());
      {
        const std::lock_guard<std::mutex> held(lock);
        ++written;
      }
      changed.notify_all();
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
  if (failed_at != std::numeric_limits<std::size_t>::max()) std::rethrow_exception(thrown[failed_at % 2]);
}

void close_output(OutputFile& out) {
  if (out.file == nullptr) return;
  flush(out);
  // Every byte the file was given went through hand_over, which counts it.
  if (out.cut_at_close && !cut_file_at(out.file, out.written.given)) out.failed = true;
  out.cut_at_close = false;
  if (std::fclose(out.file) != 0) out.failed = true;
  out.file = nullptr;
}

void empty_output(OutputFile& out) {
  if (out.file != nullptr) std::fclose(out.file);
  out.file = nullptr;
  out.cut_at_close = false;
  out.pending.clear();
  // Opening the name again for writing empties the file, whether or not
  // its filling had closed it.
  if (out.name.empty() || out.name.find('\0') != std::string::npos) return;
  if (std::FILE* again = open_file(out.name, "wb")) std::fclose(again);
}

bool close_output_checked(OutputFile& out) {
  close_output(out);
  return !out.failed;
}

}  // namespace tesseramill
