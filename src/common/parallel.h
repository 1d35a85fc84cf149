// Work over independent items shared between the two cores of the machines
// the program is meant for.  The items are split into two contiguous halves
// and each half runs in order; every item's result depends on that item
// alone, so the split changes no result.  A failure is reported as the one
// that a single pass in order would meet first.
#pragma once

#include <algorithm>
#include <atomic>
#include <cstddef>
#include <exception>
#include <iterator>
#include <limits>
#include <string>
#include <thread>
#include <vector>

namespace tesseramill {

// What a part of the work met: the first failing item and the failure text.
struct PartFailure {
  std::size_t at = std::numeric_limits<std::size_t>::max();
  std::string message;
  bool failed() const { return at != std::numeric_limits<std::size_t>::max(); }
};

// Below this many items a second thread costs more than it saves.
inline constexpr std::size_t kSmallestSharedWork = 20000;

// The count from which run_in_parts shares work when its caller names none.
// The program never changes it; the library's tests raise it past every
// count to make a whole run on one core and compare its bytes with the
// two-core run's.
inline std::atomic<std::size_t> smallest_shared_work{kSmallestSharedWork};

// Interior emplacement shares a cycle's seeds between two threads from this
// many seeds on (see emplacement/shared_cycle.h): a cycle of a thousand
// seeds takes some milliseconds, against some tens of microseconds to start
// the second thread.  Tests raise it as they raise smallest_shared_work.
inline constexpr std::size_t kSmallestSharedCycle = 1000;
inline std::atomic<std::size_t> smallest_shared_cycle{kSmallestSharedCycle};

// Runs work(begin, end, part) over [0, count), as two halves on two threads
// (part 0 and part 1) when there are at least `smallest` items, and gives the
// failure of the lowest item, if any.  `work` returns a PartFailure.
template <typename Work>
PartFailure run_in_parts(std::size_t count, Work work,
                         std::size_t smallest = smallest_shared_work.load(std::memory_order_relaxed)) {
  if (count < smallest) return work(std::size_t{0}, count, 0);
  const std::size_t middle = count / 2;
  PartFailure second;
  std::exception_ptr thrown;
  std::thread helper([&] {
    try {
      second = work(middle, count, 1);
    } catch (...) {
      thrown = std::current_exception();
    }
  });
  PartFailure first;
  try {
    first = work(std::size_t{0}, middle, 0);
  } catch (...) {
    helper.join();
    throw;
  }
  helper.join();
  if (thrown) std::rethrow_exception(thrown);
  // The first half holds the lower items.
  return first.failed() ? first : second;
}

// Sorts [first, last) by `less`, a strict weak order, on two threads when
// there are at least `smallest` items.  The items are split round a pivot,
// the median of a sample spread evenly over them: those before the pivot
// go first, the rest after, and each side is then sorted on a thread of
// its own.  Every item of the first side is before the pivot and no item
// of the second is, so the joined sides are in order: the result is a
// sorted sequence, which is unique up to the order of items that are
// equivalent (neither before the other).  Where no two items are
// equivalent it is therefore the very sequence std::sort gives; where some
// are, their order among themselves may differ, as it may between any two
// runs of std::sort, which promises none.  The sample only sets how evenly
// the work is split: a pivot that many items equal leaves more of them on
// the second side.
template <typename It, typename Less>
void sort_in_parts(It first, It last, Less less,
                   std::size_t smallest = smallest_shared_work.load(std::memory_order_relaxed)) {
  const std::size_t count = static_cast<std::size_t>(std::distance(first, last));
  if (count < smallest || count < 2) {
    std::sort(first, last, less);
    return;
  }
  using Item = typename std::iterator_traits<It>::value_type;
  constexpr std::size_t kSample = 255;
  const std::size_t taken = std::min(kSample, count);
  std::vector<Item> sample;
  sample.reserve(taken);
  for (std::size_t k = 0; k < taken; ++k) sample.push_back(first[static_cast<std::ptrdiff_t>(k * count / taken)]);
  std::nth_element(sample.begin(), sample.begin() + static_cast<std::ptrdiff_t>(taken / 2), sample.end(), less);
  const Item pivot = sample[taken / 2];
  const It middle = std::partition(first, last, [&](const Item& item) { return less(item, pivot); });
  run_in_parts(
      2,
      [&](std::size_t, std::size_t, int part) {
        if (part == 0) {
          std::sort(first, middle, less);
        } else {
          std::sort(middle, last, less);
        }
        return PartFailure{};
      },
      2);
}

// A piece of work that runs on a thread of its own beside the caller's,
// such as the writing of files from tables that the caller only reads
// meanwhile.  finish() waits for it and passes on its failure; the object
// waits for it too when it goes out of scope, so that the work never
// outlives the tables it reads.
struct BackgroundJob {
  std::thread thread;
  std::exception_ptr thrown;

  template <typename Work>
  void start(Work work) {
    finish();
    thread = std::thread([this, work]() mutable {
      try {
        work();
      } catch (...) {
        thrown = std::current_exception();
      }
    });
  }

  void finish() {
    if (thread.joinable()) thread.join();
    if (thrown) {
      std::exception_ptr failure = thrown;
      thrown = nullptr;
      std::rethrow_exception(failure);
    }
  }

  BackgroundJob() = default;
  BackgroundJob(const BackgroundJob&) = delete;
  BackgroundJob& operator=(const BackgroundJob&) = delete;
  ~BackgroundJob() {
    if (thread.joinable()) thread.join();
  }
};

}  // namespace tesseramill
