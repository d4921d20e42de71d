// A hostile client's writes and seeks: no access out of bounds, only the first write is ever judged, and its verdict is
// the oracle's.
#include <cstring>
#include <span>

#include "fuzz/Require.h"
#include "tests/support/SnifferOracle.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  std::span<const uint8_t> input(data, size);
  BrokerCookieRecord record;
  record.sniffActive = 1;
  for (int write = 0; write < 4 && input.size() >= 6; ++write) {
    int32_t seek = 0;
    std::memcpy(&seek, input.data(), 4);
    if ((input[4] & 1) != 0) record.seekBase = seek;
    const size_t length = std::min<size_t>(input[5], input.size() - 6);
    const std::span<const uint8_t> slice = input.subspan(6, length);
    input = input.subspan(6 + length);
    const FirstWrite first{record.seekBase, slice, input, input.size() % 7 != 6};
    WrittenFile file(first);
    const bool refused = write == 0 && IsImage(first);
    (void)SniffSlice(record, slice, file);
    Require(record.sniffActive == 0);
    Require((record.executableSeen != 0) == refused);
    if (record.executableSeen != 0) break;
    record.writePosition += static_cast<uint32_t>(length);
    record.lastWriteSize = static_cast<uint32_t>(length);
  }
  return 0;
}
