#include "broker/ReparseData.h"

namespace {

constexpr uint32_t kSymbolicLink = 0xA000000C;
constexpr uint32_t kMountPoint = 0xA0000003;
// Tag, data length, two reserved bytes; then offset and length of the substitute name and of the print name. A symbolic
// link has 4 bytes of flags before the names begin, a mount point has none.
constexpr size_t kSubstituteOffsetAt = 8;
constexpr size_t kSubstituteLengthAt = 10;
constexpr size_t kMountPointNames = 16;
constexpr size_t kSymbolicLinkNames = 20;

uint32_t Read16(std::span<const uint8_t> data, size_t at) {
  return static_cast<uint32_t>(data[at]) | static_cast<uint32_t>(data[at + 1]) << 8;
}

// Zero, which is no tag, when there is not even that.
uint32_t TagOf(std::span<const uint8_t> data) {
  return data.size() < 4 ? 0 : Read16(data, 0) | Read16(data, 2) << 16;
}

}  // namespace

bool IsLinkTag(std::span<const uint8_t> data) {
  return TagOf(data) == kSymbolicLink || TagOf(data) == kMountPoint;
}

std::optional<WideString> ParseReparseTarget(std::span<const uint8_t> data) {
  if (data.size() < kMountPointNames || !IsLinkTag(data)) return std::nullopt;
  const uint32_t tag = TagOf(data);
  const size_t begin =
      (tag == kSymbolicLink ? kSymbolicLinkNames : kMountPointNames) + Read16(data, kSubstituteOffsetAt);
  const size_t stored = Read16(data, kSubstituteLengthAt);
  const size_t length = stored / 2 * 2;  // an odd byte is none
  if (begin > data.size() || data.size() - begin < length) return std::nullopt;
  WideString target;
  target.reserve(length / 2);
  for (size_t at = begin; at < begin + length; at += 2) target.push_back(static_cast<wchar_t>(Read16(data, at)));
  return target;
}
