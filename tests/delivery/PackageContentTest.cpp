// Unpacking, by streams that zlib itself made. What only a signed message shows is in ProductStoreTest.
#include "delivery/PackageContent.h"

#include <gtest/gtest.h>
#include <zlib.h>

#include <vector>

namespace {

using Bytes = std::vector<uint8_t>;

Bytes Pack(uint32_t stated, const Bytes& stream) {
  Bytes package = {'T', 'r', 'o', 'y'};
  for (int shift = 0; shift < 32; shift += 8) package.push_back(static_cast<uint8_t>(stated >> shift));
  package.insert(package.end(), stream.begin(), stream.end());
  return package;
}

Bytes Compress(const Bytes& bytes) {
  Bytes stream(compressBound(static_cast<uLong>(bytes.size())));
  uLongf size = static_cast<uLongf>(stream.size());
  EXPECT_EQ(compress(stream.data(), &size, bytes.data(), static_cast<uLong>(bytes.size())), Z_OK);
  stream.resize(size);
  return stream;
}

TEST(PackageContent, TheStatedSizeIsABoundAndNotAPromise) {
  const Bytes stream = Compress({'a', 'b', 'c'});
  const auto whole = static_cast<uint32_t>(8 + stream.size());
  const struct {
    uint32_t stated;
    StoreResult result;
  } rows[] = {
      {0, StoreResult::NotWritten},
      {2, StoreResult::NotWritten},
      {3, StoreResult::Stored},
      {4, StoreResult::Stored},
      {10 * whole - 1, StoreResult::Stored},
      {10 * whole, StoreResult::NotWritten},
      {0x80000000, StoreResult::NotWritten},
      {UINT32_MAX, StoreResult::NotWritten},
  };
  for (const auto& row : rows) {
    UnpackedFile file;
    EXPECT_EQ(UnpackPackage(Pack(row.stated, stream), file), row.result) << row.stated;
    if (row.result == StoreResult::Stored)
      EXPECT_EQ(Bytes(file.bytes.get(), file.bytes.get() + file.size), (Bytes{'a', 'b', 'c'}));
  }
}

TEST(PackageContent, EveryCutAndEveryFlippedByteIsRefusedOrHarmless) {
  Bytes original(5000);
  for (size_t i = 0; i < original.size(); ++i) original[i] = static_cast<uint8_t>(i * i >> 3);
  const Bytes good = Pack(5000, Compress(original));
  for (size_t at = 0; at < good.size(); ++at) {
    UnpackedFile file;
    const std::span<const uint8_t> cut(good.data(), at);
    EXPECT_EQ(IsPackage(cut), at >= 4);
    EXPECT_EQ(UnpackPackage(cut, file), StoreResult::NotWritten) << at;
    if (at < 4) continue;
    Bytes flipped = good;
    flipped[at] ^= 0x10;
    if (UnpackPackage(flipped, file) == StoreResult::Stored) {
      EXPECT_EQ(Bytes(file.bytes.get(), file.bytes.get() + file.size), original) << at;
    }
  }
  Bytes trailing = good;
  trailing.push_back(0);
  UnpackedFile file;
  EXPECT_EQ(UnpackPackage(trailing, file), StoreResult::Stored) << "what follows the stream is not read";
  EXPECT_FALSE(IsPackage(Bytes{'t', 'r', 'o', 'y', 0, 0, 0, 0}));
}

}  // namespace
