#include "tests/support/FailingAllocation.h"

#include <cstddef>
#include <cstdlib>
#include <new>

namespace {

constexpr int kUnarmed = -1;
constexpr int kHappened = -2;
thread_local int allocationsLeft = kUnarmed;

bool MayAllocate() {
  if (allocationsLeft < 0) return true;
  if (allocationsLeft-- > 0) return true;
  allocationsLeft = kHappened;
  return false;
}

}  // namespace

FailingAllocation::FailingAllocation(int after) {
  allocationsLeft = after;
}

bool FailingAllocation::Disarm() {
  const bool happened = allocationsLeft == kHappened;
  allocationsLeft = kUnarmed;
  return happened;
}

// The other forms of new end here.
void* operator new(size_t size) {
  void* const block = MayAllocate() ? std::malloc(size == 0 ? 1 : size) : nullptr;
  if (block == nullptr) throw std::bad_alloc();
  return block;
}
void operator delete(void* block) noexcept {
  std::free(block);
}
void operator delete(void* block, size_t /*size*/) noexcept {
  std::free(block);
}
