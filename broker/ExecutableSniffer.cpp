#include "broker/ExecutableSniffer.h"

#include <optional>

namespace {

// One pass over the positions that matter. All arithmetic is in 64 bits: every 32-bit value here is the client's.
class Pass {
 public:
  Pass(BrokerCookieRecord& cookieRecord, std::span<const uint8_t> bytes, FileSniffSource& file)
      : record(cookieRecord), slice(bytes), source(file), prior(cookieRecord.lastWriteSize) {}

  void ReadBack() {
    Note(source.Rewind());
    const Result outcome = source.Open();
    Note(outcome);
    readBack = true;
    opened = outcome == result::Ok;
  }

  void Run() {
    record.lastWriteSize = 0;
    if (record.sniffActive == 0) return;
    if (!Want(0, 'M', 0) || !Want(1, 'Z', 1)) return;
    for (int i = 0; i < 4; ++i) RecordByte(60 + i, 2 + i);
    if (record.lastWriteSize == 64) TakeHeaderOffset();
    const int64_t header = record.peOffset;
    if (!Want(header, 'P', 6) || !Want(header + 1, 'E', 7) || !Want(header + 2, 0, 8)) return;
    bool ended = false;
    const bool last = Matches(header + 3, 0, 9, ended);
    if (!ended) record.executableSeen = last ? 1 : 0;
    record.sniffActive = 0;
  }

  [[nodiscard]] Result LastError() const { return lastError; }

 private:
  enum class Where { Slice, Slot, ReadBack, Nowhere };

  // Both ends count, as they always have; the byte one behind the end is then not there to be read.
  static bool InRange(int64_t x, int64_t start, int64_t length) { return start <= x && x <= start + length; }

  Where Locate(int64_t position) const {
    if (record.seekBase <= position &&
        InRange(position - record.seekBase, record.writePosition, static_cast<int64_t>(slice.size()))) {
      return Where::Slice;
    }
    if (prior > position) return Where::Slot;
    return InRange(position, record.writePosition, record.seekBase) ? Where::ReadBack : Where::Nowhere;
  }

  // The byte at a position, from the slice or from what was read back; nothing where neither has it. What is read back
  // counts as zeros where the file has no more, and all of it does when the file could not be opened.
  std::optional<uint8_t> Fetch(int64_t position, Where where) {
    if (where == Where::Slice) {
      const int64_t index = position - record.seekBase - record.writePosition;
      if (index >= static_cast<int64_t>(slice.size())) return std::nullopt;
      return slice[static_cast<size_t>(index)];
    }
    const int64_t index = position - record.writePosition;
    if (where != Where::ReadBack || !readBack || index >= record.seekBase) return std::nullopt;
    uint8_t byte = 0;
    if (opened) Note(source.ByteAt(static_cast<uint32_t>(index), byte));
    return byte;
  }

  // Whether `position` holds `wanted`. `ended` tells that the position is not within reach, which is no mismatch.
  bool Matches(int64_t position, uint8_t wanted, int slot, bool& ended) {
    const Where where = Locate(position);
    std::optional<uint8_t> byte = where == Where::Slot ? record.sniffBytes[slot] : Fetch(position, where);
    ended = !byte.has_value();
    if (ended) return true;
    const bool equal = *byte == wanted;
    if (equal) record.sniffBytes[slot] = wanted;
    record.lastWriteSize = static_cast<uint32_t>(position + 1);
    return equal;
  }

  // As Matches, with a mismatch ending the sniffing. False when it has ended.
  bool Want(int64_t position, uint8_t wanted, int slot) {
    bool ended = false;
    if (!Matches(position, wanted, slot, ended) && !ended) record.sniffActive = 0;
    return record.sniffActive != 0;
  }

  void RecordByte(int64_t position, int slot) {
    const Where where = Locate(position);
    if (where != Where::Slot) {
      const std::optional<uint8_t> byte = Fetch(position, where);
      if (!byte) return;
      record.sniffBytes[slot] = *byte;
    }
    record.lastWriteSize = static_cast<uint32_t>(position + 1);
  }

  void TakeHeaderOffset() {
    uint32_t offset = 0;
    for (int i = 3; i >= 0; --i) offset = offset << 8 | record.sniffBytes[2 + i];
    record.peOffset = static_cast<int32_t>(offset);
  }

  void Note(Result value) {
    if (value != result::Ok) lastError = value;
  }

  BrokerCookieRecord& record;
  std::span<const uint8_t> slice;
  FileSniffSource& source;
  int64_t prior;
  bool readBack = false;  // asked for, whether or not the file could be opened
  bool opened = false;
  Result lastError = result::Ok;
};

}  // namespace

Result SniffSlice(BrokerCookieRecord& record, std::span<const uint8_t> slice, FileSniffSource& source) {
  if (record.sniffActive == 0 && record.peOffset <= record.seekBase) return result::Ok;
  Pass pass(record, slice, source);
  if (record.seekBase != 0 && record.lastWriteSize == 0) pass.ReadBack();
  pass.Run();
  return pass.LastError();
}
