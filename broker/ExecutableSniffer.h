// Looks at the first write through a cookie for the ten bytes that mark an executable image: "MZ", the four bytes of
// the header's offset at 60, and "PE\0\0" at that offset. Plain logic over positions and byte slices.
//
// It judges the first write and no other, and only what that write, or the file ahead of it, holds of those positions.
// Later writes go straight to the file; clients count on their speed.
#pragma once

#include <cstdint>
#include <span>

#include "broker/BrokerCookieRecord.h"
#include "engine/PlatformConstants.h"

// What precedes the slice in the file, asked for when a client has sought ahead of its first write.
class FileSniffSource {
 public:
  virtual ~FileSniffSource() = default;

  // Moves the cookie's own handle to the start of the file. It is not moved back, so the slice is written there.
  virtual Result Rewind() = 0;
  // Opens the file a second time, for reading.
  virtual Result Open() = 0;
  // One byte of it; 0 behind the end. Only after Open succeeded.
  virtual Result ByteAt(uint32_t position, uint8_t& byte) = 0;
};

// Judges `slice`, which is about to be written through `record`. executableSeen in the record is the verdict. The
// result is the last error of reading back, which does not stop the write, or Ok.
[[nodiscard]] Result SniffSlice(BrokerCookieRecord& record, std::span<const uint8_t> slice, FileSniffSource& source);
