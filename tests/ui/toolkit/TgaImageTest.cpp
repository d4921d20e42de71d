// The image reader: what good files give, and that bad ones write nowhere.
#include <gtest/gtest.h>

#include <vector>

#include "ui/toolkit/TgaImage.h"

namespace {

using Bytes = std::vector<uint8_t>;

constexpr uint32_t kUntouched = 0xEEEEEEEE;

const struct {
  const char* reason;
  uint8_t type, width, height, depth;
  Bytes content;
  std::vector<uint32_t> pixels;
} kRows[] = {
    {"a run and a raw packet", 10, 3, 1, 32, {0x81, 1, 2, 3, 4, 0, 5, 6, 7, 8}, {0x04030201, 0x04030201, 0x08070605}},
    {"a run over the end of a row", 10, 2, 2, 32, {0x83, 9, 9, 9, 9}, {0x09090909, 0x09090909, 0x09090909, 0x09090909}},
    {"24 bits gain full alpha", 10, 3, 1, 24, {0x81, 1, 2, 3, 0x00, 4, 5, 6}, {0xFF030201, 0xFF030201, 0xFF060504}},
    {"plain 32 bits keep the first byte alone", 2, 2, 1, 32, {1, 2, 3, 4, 5, 6, 7, 8}, {0x00000001, 0x00000005}},
    {"a run past the end is cut", 10, 2, 1, 32, {0xFF, 1, 1, 1, 1}, {0x01010101, 0x01010101}},
    {"a raw packet that ends early", 10, 3, 1, 32, {0x02, 1, 1, 1, 1, 2, 2}, {0x01010101, kUntouched, kUntouched}},
    {"plain data that ends early", 2, 2, 1, 24, {1, 2, 3, 4}, {0xFF030201, kUntouched}},
    {"a depth that is not read", 10, 2, 1, 16, {0x81, 1, 1}, {kUntouched, kUntouched}},
};

TEST(TgaImage, GivesThePixelsOfGoodFilesAndStopsInBadOnes) {
  for (const auto& row : kRows) {
    Bytes file = {0, 0, row.type, 0, 0, 0, 0, 0, 0, 0, 0, 0, row.width, 0, row.height, 0, row.depth, 8};
    file.insert(file.end(), row.content.begin(), row.content.end());
    const auto header = ReadTgaHeader(file);
    ASSERT_TRUE(header);
    std::vector<uint32_t> pixels(row.pixels.size() + 1, kUntouched);
    DecodeTga(file, *header, pixels);
    EXPECT_EQ(pixels.back(), kUntouched);
    pixels.pop_back();
    EXPECT_EQ(pixels, row.pixels) << row.reason;
  }
}

}  // namespace
