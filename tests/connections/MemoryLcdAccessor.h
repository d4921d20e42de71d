// The directory on a block of memory with guard bytes behind it, and a lock and a clock that a test sets.
#pragma once

#include <algorithm>
#include <cstring>
#include <memory>
#include <vector>

#include "connections/CoreLcdAccessor.h"

class MemoryLcdAccessor final : public CoreLcdAccessor {
 public:
  static constexpr size_t kMapped = sizeof(LcdSegment) + kLcdOverrun;

  MemoryLcdAccessor() : memory(new uint8_t[kMapped + kGuard]) {
    std::fill_n(memory.get(), kMapped, uint8_t{0});
    std::fill_n(memory.get() + kMapped, kGuard, kGuardByte);
    AttachSegment(&At(), true, kMapped);
  }

  int32_t Lock() override { return ++holds; }
  int32_t Unlock() override { return --holds; }
  uint32_t LockTime() override { return now; }
  int32_t MessageTimeout() override { return 5000; }

  [[nodiscard]] LcdSegment& At() { return *reinterpret_cast<LcdSegment*>(memory.get()); }
  [[nodiscard]] uint8_t* List() { return memory.get() + offsetof(LcdSegment, connectionList); }
  [[nodiscard]] bool GuardsAreWhole() const {
    return std::all_of(memory.get() + kMapped, memory.get() + kMapped + kGuard,
                       [](uint8_t b) { return b == kGuardByte; });
  }

  int32_t holds = 0;
  uint32_t now = 100000;

 private:
  static constexpr size_t kGuard = 64;
  static constexpr uint8_t kGuardByte = 0xA5;
  std::unique_ptr<uint8_t[]> memory;
};

// A message for `target`, in the encoding with a two-byte or a four-byte length.
inline std::vector<uint8_t> MessageFor(const std::string& target, const std::string& payload = "", bool wide = false) {
  std::vector<uint8_t> message{uint8_t{2}};
  if (wide) message = {12, 0, 0};
  message.push_back(static_cast<uint8_t>(target.size() >> 8));
  message.push_back(static_cast<uint8_t>(target.size()));
  message.insert(message.end(), target.begin(), target.end());
  message.insert(message.end(), payload.begin(), payload.end());
  return message;
}
