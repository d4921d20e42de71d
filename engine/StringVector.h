// The older containers of the file layer: a growing array of owned items behind three virtual operations, and its form
// for byte strings.
#pragma once

#include <cstdint>

namespace SMImplementation {

// Holds what CopyItem makes of each item, not the item itself. A derived class's destructor calls Clear(), since the
// base can no longer reach DeleteItem.
class PointerVector {
 public:
  static constexpr uint32_t kInitialCapacity = 8;

  explicit PointerVector(uint32_t initialCapacity = kInitialCapacity);
  PointerVector(const PointerVector&) = delete;
  PointerVector& operator=(const PointerVector&) = delete;
  virtual ~PointerVector();
  virtual void DeleteItem(void* item) = 0;
  // A copy for the array to own; null when there is no memory for it.
  virtual void* CopyItem(const void* item) = 0;

  // False, with the array unchanged, when there is no memory for the item or for a larger array.
  [[nodiscard]] bool Append(const void* item);
  [[nodiscard]] uint32_t Count() const { return count; }
  // `index` must be below Count(). The item stays the array's.
  [[nodiscard]] void* ItemAt(uint32_t index) const { return items[index]; }

 protected:
  void Clear();
  void** Items() { return items; }

 private:
  void** items;
  uint32_t count = 0;
  uint32_t capacity;
};

}  // namespace SMImplementation

namespace SASM {

class StringVector final : public SMImplementation::PointerVector {
 public:
  explicit StringVector(uint32_t initialCapacity = kInitialCapacity) : PointerVector(initialCapacity) {}
  ~StringVector() override { Clear(); }
  void DeleteItem(void* item) override;
  void* CopyItem(const void* item) override;  // `item` is a terminated byte string

  [[nodiscard]] const char* TextAt(uint32_t index) const;
  // By byte value.
  void Sort();
};

}  // namespace SASM
