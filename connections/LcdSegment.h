// The shared segment, byte for byte: every participant on the machine, of whatever maker or version, reads and writes
// it so. Header words are little-endian.
#pragma once

#include <cstddef>
#include <cstdint>

struct LcdSegment {
  static constexpr size_t kMessageBytes = 40960;
  static constexpr size_t kListBytes = 23552;

  uint32_t layoutVersion;  // 1; a segment with another word here is refused
  uint32_t secondMark;     // 1; nobody reads it
  uint32_t messageTime;    // tick in milliseconds of the message in the slot
  uint32_t messageSize;    // 0: the slot is free
  uint8_t messageArea[kMessageBytes];
  uint8_t connectionList[kListBytes];  // NUL-terminated strings, ended by an empty one
};
static_assert(offsetof(LcdSegment, messageTime) == 8);
static_assert(offsetof(LcdSegment, messageSize) == 12);
static_assert(offsetof(LcdSegment, messageArea) == 16);
static_assert(offsetof(LcdSegment, connectionList) == 40976);
static_assert(sizeof(LcdSegment) == 64528);

// A last entry may run this far past the list's end, and so past the segment: its bound counts five bytes less than it
// takes. A mapping must have room for them.
constexpr size_t kLcdOverrun = 5;
