// Memory that runs out on demand, for the tests of the messages that say
// so.  The test program replaces the global operator new and delete; while
// a LargeAllocationsFail lives, every allocation of at least `bytes` throws
// std::bad_alloc, as when memory is full, and smaller ones go on as usual
// (the failure text itself must still be made).
#pragma once

#include <cstddef>

namespace tesseramill_test {

class LargeAllocationsFail {
 public:
  explicit LargeAllocationsFail(std::size_t bytes);
  ~LargeAllocationsFail();
  LargeAllocationsFail(const LargeAllocationsFail&) = delete;
  LargeAllocationsFail& operator=(const LargeAllocationsFail&) = delete;

  // How many allocations were refused so far: a test that meant to meet
  // the failure checks that it did.
  static std::size_t refused();
};

}  // namespace tesseramill_test
