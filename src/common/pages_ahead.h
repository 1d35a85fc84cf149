// Memory made ready on a spare core for allocations still to come.
#pragma once

#include <cstddef>

#include "common/parallel.h"

namespace tesseramill {

// A block whose pages are touched, one write to each, on a thread of its
// own, and freed when the holder goes (after the touching has ended).
//
// Why.  The first touch of each page of memory the process has not had
// before is a fault the system serves; on the virtual machines the
// benchmark runs on it takes some 12 microseconds a page, 3 ms a megabyte.
// Freed blocks stay with the process (keep_freed_memory), so a block
// touched and freed here hands its pages, already served, to the
// allocations made after it.  Where the heap gives freed memory back, or
// a later allocation lies elsewhere, nothing is gained and nothing lost
// but the touching.  No value anywhere depends on it.
struct PagesAhead {
  char* block = nullptr;
  std::size_t bytes = 0;
  BackgroundJob touching;

  PagesAhead() = default;
  PagesAhead(const PagesAhead&) = delete;
  PagesAhead& operator=(const PagesAhead&) = delete;
  ~PagesAhead();
};

// Allocates `bytes` here and begins touching its pages beside the caller.
// Nothing is allocated for 0 bytes, nor where the allocation fails.
void touch_pages_ahead(PagesAhead& ahead, std::size_t bytes);

// Waits for the touching to end and frees the block.
void release_pages_ahead(PagesAhead& ahead);

}  // namespace tesseramill
