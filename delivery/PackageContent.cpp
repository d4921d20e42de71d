#include "delivery/PackageContent.h"

#include <zlib.h>

#include <algorithm>
#include <new>
#include <string_view>

namespace {

constexpr std::string_view kMagic = "Troy";
constexpr size_t kHeaderSize = 8;
constexpr uint64_t kMostExpansion = 10;

uint32_t ReadLittleEndian(std::span<const uint8_t, 4> bytes) {
  return static_cast<uint32_t>(bytes[0] | bytes[1] << 8 | bytes[2] << 16) | static_cast<uint32_t>(bytes[3]) << 24;
}

}  // namespace

bool IsPackage(std::span<const uint8_t> content) {
  return content.size() >= kMagic.size() && std::equal(kMagic.begin(), kMagic.end(), content.begin());
}

StoreResult UnpackPackage(std::span<const uint8_t> content, UnpackedFile& file) {
  if (content.size() < kHeaderSize) return StoreResult::NotWritten;
  const uint32_t stated = ReadLittleEndian(content.subspan<4, 4>());
  if (stated >= kMostExpansion * content.size()) return StoreResult::NotWritten;
  std::unique_ptr<uint8_t[]> bytes(new (std::nothrow) uint8_t[stated]);
  if (bytes == nullptr) return StoreResult::NoMemory;

  const std::span<const uint8_t> body = content.subspan(kHeaderSize);
  uLongf size = stated;
  if (uncompress(bytes.get(), &size, body.data(), static_cast<uLong>(body.size())) != Z_OK) {
    return StoreResult::NotWritten;
  }
  file.bytes = std::move(bytes);
  file.size = static_cast<uint32_t>(size);
  return StoreResult::Stored;
}
