// The image reader: what good files give, and that bad ones write nowhere.
#include <gtest/gtest.h>

#include <vector>

#include "ui/toolkit/TgaImage.h"

namespace {

using Bytes = std::vector<uint8_t>;

constexpr uint32_t kUntouched = 0xEEEEEEEE;
constexpr char kFooter[] = "\0\0\0\0\0\0\0\0TRUEVISION-XFILE.";

Bytes File(uint8_t type, uint16_t width, uint16_t height, uint8_t depth, const Bytes& content) {
  Bytes file(18);
  file[2] = type;
  file[12] = static_cast<uint8_t>(width);
  file[13] = static_cast<uint8_t>(width >> 8);
  file[14] = static_cast<uint8_t>(height);
  file[15] = static_cast<uint8_t>(height >> 8);
  file[16] = depth;
  file.insert(file.end(), content.begin(), content.end());
  return file;
}

const struct {
  const char* reason;
  uint8_t type;
  uint16_t width, height;
  uint8_t depth;
  Bytes content;
  std::vector<uint32_t> pixels;
} kRows[] = {
    {"a run and a raw packet", 10, 3, 1, 32, {0x81, 1, 2, 3, 4, 0, 5, 6, 7, 8}, {0x04030201, 0x04030201, 0x08070605}},
    {"a run over the end of a row", 10, 2, 2, 32, {0x83, 9, 9, 9, 9}, {0x09090909, 0x09090909, 0x09090909, 0x09090909}},
    {"24 bits gain full alpha", 10, 3, 1, 24, {0x81, 1, 2, 3, 0x00, 4, 5, 6}, {0xFF030201, 0xFF030201, 0xFF060504}},
    {"plain 24 bits", 2, 2, 1, 24, {1, 2, 3, 4, 5, 6}, {0xFF030201, 0xFF060504}},
    {"plain 32 bits keep the first byte alone", 2, 2, 1, 32, {1, 2, 3, 4, 5, 6, 7, 8}, {0x00000001, 0x00000005}},
    {"the type is judged by one bit", 0xF8, 1, 1, 32, {0x80, 1, 2, 3, 4}, {0x04030201}},
    {"a run past the end is cut", 10, 2, 1, 32, {0xFF, 1, 1, 1, 1}, {0x01010101, 0x01010101}},
    {"a raw packet past the end is cut", 10, 1, 1, 24, {0x01, 1, 2, 3, 4, 5, 6}, {0xFF030201}},
    {"a raw packet that ends early", 10, 3, 1, 32, {0x02, 1, 1, 1, 1, 2, 2}, {0x01010101, kUntouched, kUntouched}},
    {"a run without its pixel", 10, 2, 1, 32, {0x81, 1, 1, 1}, {kUntouched, kUntouched}},
    {"plain data that ends early", 2, 2, 1, 24, {1, 2, 3, 4}, {0xFF030201, kUntouched}},
    {"an empty image", 10, 0, 9, 32, {0x80, 1, 2, 3, 4}, {}},
    {"a depth that is not read", 10, 2, 1, 16, {0x81, 1, 1}, {kUntouched, kUntouched}},
};

TEST(TgaImage, GivesThePixelsOfGoodFilesAndStopsInBadOnes) {
  for (const auto& row : kRows) {
    for (const bool withFooter : {false, true}) {
      SCOPED_TRACE(row.reason);
      Bytes file = File(row.type, row.width, row.height, row.depth, row.content);
      const bool complete = row.pixels.empty() || row.pixels.back() != kUntouched;
      if (withFooter && !complete) continue;  // the footer would be read as pixels
      if (withFooter) file.insert(file.end(), kFooter, kFooter + sizeof(kFooter));
      const auto header = ReadTgaHeader(file);
      ASSERT_TRUE(header);
      EXPECT_EQ(header->PixelCount(), size_t{row.width} * row.height);
      std::vector<uint32_t> pixels(row.pixels.size(), kUntouched);
      DecodeTga(file, *header, pixels);
      EXPECT_EQ(pixels, row.pixels);
    }
  }
}

TEST(TgaImage, IsBoundByTheSmallerOfHeaderAndBuffer) {
  const Bytes file = File(10, 4, 1, 32, {0x83, 7, 7, 7, 7});
  const auto header = ReadTgaHeader(file);
  std::vector<uint32_t> pixels(8, kUntouched);
  DecodeTga(file, *header, std::span(pixels).first(2));
  EXPECT_EQ(std::count(pixels.begin(), pixels.end(), kUntouched), 6);
  DecodeTga(file, *header, pixels);
  EXPECT_EQ(std::count(pixels.begin(), pixels.end(), kUntouched), 4);
  EXPECT_FALSE(ReadTgaHeader(std::span(file).first(17)));
}

}  // namespace
