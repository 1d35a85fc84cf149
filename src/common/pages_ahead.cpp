#include "common/pages_ahead.h"

#include <cstdlib>
#include <system_error>

namespace tesseramill {

namespace {

// A write every 4 KiB reaches every page of every size the platforms use.
constexpr std::size_t kPageStride = 4096;

}  // namespace

void touch_pages_ahead(PagesAhead& ahead, std::size_t bytes) {
  release_pages_ahead(ahead);
  if (bytes == 0) return;
  ahead.block = static_cast<char*>(std::malloc(bytes));
  if (ahead.block == nullptr) return;
  ahead.bytes = bytes;
  volatile char* const block = ahead.block;
  try {
    ahead.touching.start([block, bytes] {
      for (std::size_t k = 0; k < bytes; k += kPageStride) block[k] = 0;
    });
  } catch (const std::system_error&) {
    // No thread to be had: the pages are left to their first use.
    release_pages_ahead(ahead);
  }
}

void release_pages_ahead(PagesAhead& ahead) {
  if (ahead.touching.thread.joinable()) ahead.touching.thread.join();
  std::free(ahead.block);
  ahead.block = nullptr;
  ahead.bytes = 0;
}

PagesAhead::~PagesAhead() { release_pages_ahead(*this); }

}  // namespace tesseramill
