// The content of a signed package: "Troy", the unpacked size, and one file as a zlib stream.
#pragma once

#include <cstdint>
#include <memory>
#include <span>

// Results of storing a product, as clients see them.
enum class StoreResult : uint32_t {
  Stored = 0,
  NotWritten = 3,  // also a bad package name, a package too large for its bound, or one that does not unpack
  NoMemory = 4,
  NoData = 5,
  NotTrusted = 6  // the anchor, the signature, the chain or the magic; also a bad name for a digest
};

struct UnpackedFile {
  std::unique_ptr<uint8_t[]> bytes;
  uint32_t size = 0;
};

// Whether the content opens with the magic.
[[nodiscard]] bool IsPackage(std::span<const uint8_t> content);
// Unpacks the file of a package. Stored, NotWritten or NoMemory. What is unpacked is less than ten times `content`,
// which bounds the memory; a stream shorter than the stated size is as good as one that fits.
[[nodiscard]] StoreResult UnpackPackage(std::span<const uint8_t> content, UnpackedFile& file);
