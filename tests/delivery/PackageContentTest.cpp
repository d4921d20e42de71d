// Unpacking, by streams that zlib itself made. What only a signed message shows is in ProductStoreTest.
#include "delivery/PackageContent.h"

#include <gtest/gtest.h>
#include <zlib.h>

#include <cstring>
#include <vector>

namespace {

using Bytes = std::vector<uint8_t>;

Bytes Pack(uint32_t stated, const Bytes& bytes) {
  Bytes package(8 + compressBound(static_cast<uLong>(bytes.size())));
  std::memcpy(package.data(), "Troy", 4);
  std::memcpy(package.data() + 4, &stated, 4);
  auto size = static_cast<uLongf>(package.size() - 8);
  EXPECT_EQ(compress(package.data() + 8, &size, bytes.data(), static_cast<uLong>(bytes.size())), Z_OK);
  package.resize(8 + size);
  return package;
}

TEST(PackageContent, TheStatedSizeIsABoundAndNotAPromise) {
  const Bytes content = {'a', 'b', 'c'};
  const auto whole = static_cast<uint32_t>(Pack(3, content).size());
  const std::pair<uint32_t, StoreResult> rows[] = {{0, StoreResult::NotWritten},
                                                   {2, StoreResult::NotWritten},
                                                   {3, StoreResult::Stored},
                                                   {10 * whole - 1, StoreResult::Stored},
                                                   {10 * whole, StoreResult::NotWritten},
                                                   {UINT32_MAX, StoreResult::NotWritten}};
  for (const auto& [stated, result] : rows) {
    UnpackedFile file;
    EXPECT_EQ(UnpackPackage(Pack(stated, content), file), result) << stated;
    EXPECT_EQ(file.size, result == StoreResult::Stored ? 3u : 0u);
  }
}

TEST(PackageContent, EveryCutAndEveryFlippedByteIsRefusedOrHarmless) {
  Bytes original(5000);
  for (size_t i = 0; i < original.size(); ++i) original[i] = static_cast<uint8_t>(i * i >> 3);
  const Bytes good = Pack(5000, original);
  for (size_t at = 0; at < good.size(); ++at) {
    UnpackedFile file;
    const std::span<const uint8_t> cut(good.data(), at);
    EXPECT_EQ(IsPackage(cut), at >= 4);
    EXPECT_EQ(UnpackPackage(cut, file), StoreResult::NotWritten) << at;
    Bytes flipped = good;
    flipped[at] ^= 0x10;
    EXPECT_EQ(IsPackage(flipped), at >= 4);
    if (UnpackPackage(flipped, file) == StoreResult::Stored) {
      EXPECT_EQ(Bytes(file.bytes.get(), file.bytes.get() + file.size), original) << at;
    }
  }
}

}  // namespace
