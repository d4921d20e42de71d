// What the look at a first write has to say, worked out from its purpose: whether the file, as it would stand with the
// slice where the client thinks it goes, has the marks of an image at every position that can be seen.
#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>

#include "broker/ExecutableSniffer.h"

struct FirstWrite {
  int32_t seek = 0;  // how far the client has sought ahead of it
  std::span<const uint8_t> slice;
  std::span<const uint8_t> file;  // what is there already
  bool readable = true;           // a file that cannot be read looks like zeros
};

// The file as the look at the write reads it back.
class WrittenFile final : public FileSniffSource {
 public:
  explicit WrittenFile(const FirstWrite& write) : write_(write) {}
  Result Rewind() override {
    rewound = true;
    return result::Ok;
  }
  Result Open() override { return write_.readable ? result::Ok : result::AccessDenied; }
  Result ByteAt(uint32_t position, uint8_t& byte) override {
    byte = position < write_.file.size() ? write_.file[position] : 0;
    return result::Ok;
  }
  bool rewound = false;

 private:
  FirstWrite write_;
};

// Nothing behind the slice's end: that part is not there yet.
inline std::optional<uint8_t> SeenAt(const FirstWrite& write, int64_t position) {
  if (position < write.seek) {
    const auto index = static_cast<size_t>(position);
    return write.readable && index < write.file.size() ? write.file[index] : uint8_t{0};
  }
  const auto index = static_cast<size_t>(position - write.seek);
  return index < write.slice.size() ? std::optional(write.slice[index]) : std::nullopt;
}

// Where the image says that its header lies; 0 as long as the last byte of that is not there.
inline int32_t HeaderOf(const FirstWrite& write) {
  if (!SeenAt(write, 63)) return 0;
  uint32_t offset = 0;
  for (int i = 0; i < 4; ++i) offset |= static_cast<uint32_t>(SeenAt(write, 60 + i).value_or(0)) << (8 * i);
  return static_cast<int32_t>(offset);
}

// What cannot be seen contradicts nothing, but for the last of the marks, which must be there.
inline bool IsImage(const FirstWrite& write) {
  const auto mayBe = [&write](int64_t position, uint8_t mark) {
    return SeenAt(write, position).value_or(mark) == mark;
  };
  if (!mayBe(0, 'M') || !mayBe(1, 'Z')) return false;
  const int64_t header = HeaderOf(write);
  if (header < std::min(write.seek, 0)) return false;  // ahead of everything
  return mayBe(header, 'P') && mayBe(header + 1, 'E') && mayBe(header + 2, 0) && SeenAt(write, header + 3) == 0;
}
