// The connection directory beside what its bytes cost at the least: a walk of a full list beside memchr over the same
// bytes, and a largest message sent and fetched beside two copies of it.
#include <string>

#include "bench/BenchSupport.h"
#include "tests/connections/MemoryLcdAccessor.h"

int main() {
  MemoryLcdAccessor directory;
  int count = 0;
  std::string last;
  for (;; ++count) {
    const std::string name = "connection-" + std::to_string(count);
    if (!directory.TryAddConnection(name.c_str(), 0, 0, '1')) break;
    last = name;
  }
  const double walk = Nanoseconds(20, 200, [&] {
    const uint8_t* at = directory.List();
    const uint8_t* const end = at + LcdSegment::kListBytes;
    unsigned strings = 0;
    while (at < end) {
      const auto* const next = static_cast<const uint8_t*>(std::memchr(at, 0, static_cast<size_t>(end - at)));
      if (next == nullptr) break;
      ++strings;
      at = next + 1;
    }
    Keep(strings);
  });
  const double found = Nanoseconds(20, 200, [&] { Keep(directory.FindConnectionFormat(last.c_str(), 0)); });
  std::printf("lookup of the last of %d names %8.0f ns   memchr walk %8.0f ns   ratio %.2f (goal 3)\n", count, found,
              walk, found / walk);

  std::vector<uint8_t> message = MessageFor("connection-0");
  message.resize(LcdSegment::kMessageBytes, 7);
  std::vector<uint8_t> copy(message.size());
  std::vector<uint8_t> slot(message.size());
  const double copies = Nanoseconds(20, 500, [&] {
    std::memcpy(slot.data(), message.data(), message.size());
    Keep(slot);
    std::memcpy(copy.data(), slot.data(), slot.size());
    Keep(copy);
  });
  const double passed = Nanoseconds(20, 500, [&] {
    (void)directory.DispatchMessage(message.data(), static_cast<int32_t>(message.size()), 8, 1, 0);
    const uint8_t* data = nullptr;
    int32_t size = 0;
    if (directory.GetMessageData(&data, &size)) std::memcpy(copy.data(), data, static_cast<size_t>(size));
    Keep(copy);
    (void)directory.ClearMessage();
  });
  std::printf("message of 40,960 bytes        %8.0f ns   two copies  %8.0f ns   ratio %.2f (goal 1.5)\n", passed,
              copies, passed / copies);
}
