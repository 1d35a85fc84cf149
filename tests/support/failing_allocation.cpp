#include "support/failing_allocation.h"

#include <atomic>
#include <cstdlib>
#include <new>

namespace tesseramill_test {

namespace {

// 0: nothing fails.  Atomic, since the two-core work allocates on a thread
// of its own.
std::atomic<std::size_t> smallest_failing{0};
std::atomic<std::size_t> refused_count{0};

void* allocate(std::size_t bytes) {
  const std::size_t smallest = smallest_failing.load(std::memory_order_relaxed);
  if (smallest != 0 && bytes >= smallest) {
    refused_count.fetch_add(1, std::memory_order_relaxed);
    throw std::bad_alloc();
  }
  // malloc(0) may give nullptr; operator new must give a pointer.
  void* memory = std::malloc(bytes == 0 ? 1 : bytes);
  if (memory == nullptr) throw std::bad_alloc();
  return memory;
}

}  // namespace

LargeAllocationsFail::LargeAllocationsFail(std::size_t bytes) { smallest_failing.store(bytes); }

LargeAllocationsFail::~LargeAllocationsFail() { smallest_failing.store(0); }

std::size_t LargeAllocationsFail::refused() { return refused_count.load(); }

}  // namespace tesseramill_test

// The replacements of the global allocation functions; the nothrow and
// aligned forms of the standard library call these or keep to their own
// pairs.
void* operator new(std::size_t bytes) { return tesseramill_test::allocate(bytes); }
void* operator new[](std::size_t bytes) { return tesseramill_test::allocate(bytes); }
void operator delete(void* memory) noexcept { std::free(memory); }
void operator delete[](void* memory) noexcept { std::free(memory); }
void operator delete(void* memory, std::size_t) noexcept { std::free(memory); }
void operator delete[](void* memory, std::size_t) noexcept { std::free(memory); }
