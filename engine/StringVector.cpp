#include "engine/StringVector.h"

#include <algorithm>
#include <cstring>
#include <memory>
#include <new>

namespace SMImplementation {

PointerVector::PointerVector(uint32_t initialCapacity)
    : items(new (std::nothrow) void*[initialCapacity]), capacity(items == nullptr ? 0 : initialCapacity) {}

PointerVector::~PointerVector() {
  delete[] items;
}

bool PointerVector::Append(const void* item) {
  if (count == capacity) {
    const uint32_t larger = capacity == 0 ? kInitialCapacity : capacity * 2;
    auto** const grown = larger > capacity ? new (std::nothrow) void*[larger] : nullptr;
    if (grown == nullptr) return false;
    std::copy_n(items, count, grown);
    delete[] items;
    items = grown;
    capacity = larger;
  }
  void* const copy = CopyItem(item);
  if (copy == nullptr) return false;
  items[count++] = copy;
  return true;
}

void PointerVector::Clear() {
  while (count > 0) DeleteItem(items[--count]);
}

}  // namespace SMImplementation

namespace SASM {

namespace {

// What the array holds: the text behind an owned holder.
struct Holder {
  std::unique_ptr<char[]> text;
};

}  // namespace

void StringVector::DeleteItem(void* item) {
  delete static_cast<Holder*>(item);
}

void* StringVector::CopyItem(const void* item) {
  const auto* const text = static_cast<const char*>(item);
  const size_t size = std::strlen(text) + 1;
  std::unique_ptr<Holder> holder(new (std::nothrow) Holder{std::unique_ptr<char[]>(new (std::nothrow) char[size])});
  if (!holder || !holder->text) return nullptr;
  std::memcpy(holder->text.get(), text, size);
  return holder.release();
}

const char* StringVector::TextAt(uint32_t index) const {
  return static_cast<const Holder*>(ItemAt(index))->text.get();
}

void StringVector::Sort() {
  std::sort(Items(), Items() + Count(), [](const void* a, const void* b) {
    return std::strcmp(static_cast<const Holder*>(a)->text.get(), static_cast<const Holder*>(b)->text.get()) < 0;
  });
}

}  // namespace SASM
