// Another participant may have written anything into the segment. Whatever it is, no operation leaves the mapping,
// gives the lock back unevenly, or fails to end.
#include <string>

#include "fuzz/Require.h"
#include "tests/connections/MemoryLcdAccessor.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  MemoryLcdAccessor accessor;
  if (size < 24) return 0;
  // A control part, then bytes for the header and message, the list's beginning, and the list's end.
  const uint8_t operations = data[0];
  const std::string name(reinterpret_cast<const char*>(data + 1), data[9] % 9);
  const uint8_t* rest = data + 10;
  const size_t third = (size - 10) / 3;
  auto* const memory = reinterpret_cast<uint8_t*>(&accessor.At());
  std::memcpy(memory + 8, rest, std::min<size_t>(third, 2048));
  std::memcpy(accessor.List(), rest + third, std::min<size_t>(third, 4096));
  if ((operations & 1) != 0) {
    std::memset(accessor.List() + third, 'x', LcdSegment::kListBytes + kLcdOverrun - std::min<size_t>(third, 20000));
    const size_t tail = std::min<size_t>(third, 64);
    std::memcpy(memory + MemoryLcdAccessor::kMapped - tail, rest + 2 * third, tail);
  }
  char target[1024];
  const uint8_t* message = nullptr;
  int32_t length = 0;
  for (uint32_t realm = 0; realm < 5; ++realm) {
    (void)accessor.FindConnectionFormat(name.c_str(), realm);
    if ((operations & 2) != 0) (void)accessor.TryAddConnection(name.c_str(), realm, realm, operations);
    if ((operations & 4) != 0) (void)accessor.RemoveConnection(name.c_str(), realm);
    if (accessor.GetMessageTarget(target, sizeof(target))) (void)accessor.FindConnectionFormat(target, realm);
    if (accessor.GetMessageData(&message, &length)) {
      uint32_t sum = 0;
      for (int32_t i = 0; i < length; ++i) sum += message[i];
      Require(sum != 0x12345678);
    }
    (void)accessor.PruneDeadMessage();
    (void)accessor.DispatchMessage(data, static_cast<int32_t>(std::min<size_t>(size, 40960)), operations, 1, realm);
  }
  Require(accessor.holds == 0 && accessor.GuardsAreWhole());
  return 0;
}
