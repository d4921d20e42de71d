// A hostile client's writes and seeks: no access out of bounds, only the first write is ever judged, and its verdict is
// the oracle's.
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <span>

#include "broker/ExecutableSniffer.h"
#include "tests/support/SnifferOracle.h"

namespace {

class Content final : public FileSniffSource {
 public:
  explicit Content(std::span<const uint8_t> bytes) : bytes_(bytes) {}
  Result Rewind() override { return result::Ok; }
  Result Open() override { return IsReadable() ? result::Ok : result::Fail; }
  Result ByteAt(uint32_t position, uint8_t& byte) override {
    byte = position < bytes_.size() ? bytes_[position] : 0;
    return result::Ok;
  }
  [[nodiscard]] bool IsReadable() const { return bytes_.size() % 7 != 6; }

 private:
  std::span<const uint8_t> bytes_;
};

}  // namespace

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
    Content file(input);
    const bool refused = write == 0 && IsImage({record.seekBase, slice, input, file.IsReadable()});
    (void)SniffSlice(record, slice, file);
    if (record.sniffActive != 0) __builtin_trap();
    if ((record.executableSeen != 0) != refused) __builtin_trap();
    if (record.executableSeen != 0) break;
    record.writePosition += static_cast<uint32_t>(length);
    record.lastWriteSize = static_cast<uint32_t>(length);
  }
  return 0;
}
