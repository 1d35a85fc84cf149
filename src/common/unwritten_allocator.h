// An allocator whose vectors leave the elements a resize adds unwritten.
#pragma once

#include <memory>
#include <new>
#include <utility>

namespace tesseramill {

// For scratch lists that are lengthened ahead of their writes and cut back
// after, every query over again: a plain vector writes zeros into the
// whole new length at each lengthening, only for them to be overwritten.
// Here an element made without arguments is default-initialised, which for
// a type with no initialisers of its own writes nothing; an element made
// from arguments is made as usual.
template <typename T>
struct UnwrittenAllocator : std::allocator<T> {
  using value_type = T;
  UnwrittenAllocator() noexcept = default;
  template <typename U>
  UnwrittenAllocator(const UnwrittenAllocator<U>&) noexcept {}
  template <typename U>
  void construct(U* p) noexcept {
    ::new (static_cast<void*>(p)) U;
  }
  template <typename U, typename... Args>
  void construct(U* p, Args&&... args) {
    ::new (static_cast<void*>(p)) U(std::forward<Args>(args)...);
  }
};

template <typename T, typename U>
bool operator==(const UnwrittenAllocator<T>&, const UnwrittenAllocator<U>&) noexcept {
  return true;
}

}  // namespace tesseramill
