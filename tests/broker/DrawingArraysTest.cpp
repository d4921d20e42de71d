// Which arrays are taken and which are not, and that what is lent to the drawing system is as long as it reads.
#include "broker/DrawingArrays.h"

#include <gtest/gtest.h>

#include <climits>
#include <cstring>

namespace {

using Bytes = std::vector<uint8_t>;

TEST(DrawingArrays, RectangleIsSixteenBytesAndNothingElse) {
  const Bytes bytes = {1, 0, 0, 0, 2, 0, 0, 0, 255, 255, 255, 255, 0, 0, 0, 128, 9};
  const std::span<const uint8_t> all(bytes);
  const auto rect = ReadRect(all.first(16));
  ASSERT_TRUE(rect);
  EXPECT_EQ(rect->left, 1);
  EXPECT_EQ(rect->top, 2);
  EXPECT_EQ(rect->right, -1);
  EXPECT_EQ(rect->bottom, INT_MIN);
  EXPECT_FALSE(ReadRect(all.first(15)));
  EXPECT_FALSE(ReadRect(all));
  EXPECT_FALSE(ReadRect(std::span<const uint8_t>()));
  EXPECT_FALSE(ReadRect(std::nullopt));
}

TEST(DrawingArrays, CurveNeedsExactlyItsPointsExceptForNone) {
  const struct {
    const char* why;
    uint32_t count;
    int length;  // -1: absent
    int points;  // -1: refused
  } rows[] = {
      {"one segment", 3, 24, 3},
      {"one byte short", 3, 23, -1},
      {"one byte over", 3, 25, -1},
      {"no points, nothing in the array", 0, 0, 0},
      {"no points, but the array must be there", 0, -1, -1},
      {"product wraps to 0: any array passes, nothing is drawn", 0x20000000, 5, 0},
      {"product wraps to 8: the array of one point passes, nothing is drawn", 0x20000001, 8, 0},
      {"product wraps to 8: another length is refused", 0x20000001, 16, -1},
  };
  for (const auto& row : rows) {
    const Bytes bytes(static_cast<size_t>(std::max(row.length, 0)));
    const auto points = CurvePoints(row.length < 0 ? ByteArgument() : ByteArgument(bytes), row.count);
    EXPECT_EQ(points ? static_cast<int>(*points) : -1, row.points) << row.why;
  }
}

TEST(DrawingArrays, NarrowGlyphIndicesAreFilledUpToSixteenBits) {
  const Bytes text = {1, 2, 3, 4, 0};
  EXPECT_EQ(ReadText(text, 4, 0), text);
  EXPECT_EQ(ReadText(text, 4, kGlyphIndices), (Bytes{1, 2, 3, 4, 0, 0, 0, 0, 0, 0}));
  const Bytes wide(10, 7);
  EXPECT_EQ(ReadText(wide, 4, kGlyphIndices), wide);
}

TEST(DrawingArrays, SpacingThatIsReadHasAValueForEachCharacter) {
  const int32_t values[] = {5, -6, 7};
  Bytes bytes(sizeof(values));
  std::memcpy(bytes.data(), values, sizeof(values));
  EXPECT_EQ(ReadSpacing(bytes, 3, 0), (std::vector<int32_t>{5, -6, 7}));
  EXPECT_EQ(ReadSpacing(bytes, 4, 0), (std::vector<int32_t>{5, -6, 7, 0}));
  EXPECT_EQ(ReadSpacing(bytes, 2, kPairedSpacing), (std::vector<int32_t>{5, -6, 7, 0}));
}

BitmapHeader Header(int32_t width, int32_t height, uint16_t bits) {
  return {40, width, height, 1, bits, 0, 0, 0, 0, 0, 0};
}

TEST(DrawingArrays, PixelBoundIsSignedAndCountsWholeBytes) {
  const struct {
    const char* why;
    BitmapHeader header;
    size_t length;
    bool holds;
  } rows[] = {
      {"32 bits, exact", Header(2, 3, 32), 24, true},
      {"32 bits, one byte short", Header(2, 3, 32), 23, false},
      {"a negative height counts by its value", Header(2, -3, 32), 23, false},
      {"the padding of rows does not count", Header(3, 2, 24), 18, true},
      {"24 bits, short", Header(3, 2, 24), 17, false},
      {"fewer than 8 bits ask for nothing", Header(1000, 1000, 1), 0, true},
      {"8 bits do ask", Header(1000, 1000, 8), 999999, false},
      {"15 bits are one byte", Header(4, 4, 15), 16, true},
      {"the most negative height has no value of its own", Header(1, INT_MIN, 8), 0, true},
      {"a negative width makes the product negative", Header(-2, 3, 32), 0, true},
      {"the product wraps to nothing", Header(0x10000, 0x10000, 8), 0, true},
      {"the product wraps to a negative number", Header(0x10000, 0x8000, 8), 0, true},
      {"the product wraps to a positive number", Header(-0x7FFFFFFF, 1, 16), 1, false},
  };
  for (const auto& row : rows) EXPECT_EQ(HoldsPixels(row.header, row.length), row.holds) << row.why;
}

Bytes HeaderBytes(const BitmapHeader& fields, size_t length = kFillHeaderBytes) {
  Bytes bytes(length, 0xEE);
  std::memcpy(bytes.data(), &fields, sizeof(fields));
  return bytes;
}

TEST(FillBitmap, PixelsThatSufficeAreLentAsTheyAre) {
  const Bytes pixels(24, 9);
  const FillBitmap bitmap(HeaderBytes(Header(2, 3, 32)), pixels);
  ASSERT_TRUE(bitmap.IsDrawable());
  EXPECT_EQ(bitmap.Pixels(), pixels.data());
  EXPECT_EQ(ReadBitmapHeader({bitmap.Header(), 40}).width, 2);
  EXPECT_EQ(bitmap.Header()[43], 0xEE) << "the colour behind the header goes along";
  EXPECT_EQ(bitmap.Header()[44], 0) << "and no byte that did not come";
}

TEST(FillBitmap, MissingPixelsAreBlack) {
  const Bytes pixels(18, 9);  // two rows of 9 bytes where the platform reads 12 each
  const FillBitmap bitmap(HeaderBytes(Header(3, 2, 24)), pixels);
  ASSERT_TRUE(bitmap.IsDrawable());
  Bytes expected = pixels;
  expected.resize(24);
  EXPECT_EQ(Bytes(bitmap.Pixels(), bitmap.Pixels() + 24), expected);
  // 24 bits in rows of 3000 bytes, 24 MB in all, of which the last row's padding did not come.
  EXPECT_TRUE(FillBitmap(HeaderBytes(Header(999, 8000, 24)), Bytes(23999997)).IsDrawable()) << "little is missing";
}

TEST(FillBitmap, HeadersThatWouldBeReadBeyondTheirEnd) {
  const Bytes pixels(4096);
  const auto with = [](BitmapHeader header, auto change) {
    change(header);
    return header;
  };
  const BitmapHeader good = Header(8, 8, 8);
  const struct {
    const char* why;
    BitmapHeader header;
    bool drawable;
  } rows[] = {
      {"as it should be", good, true},
      {"the header and its colour called one", with(good, [](auto& h) { h.size = 44; }), true},
      {"one that is longer than any", with(good, [](auto& h) { h.size = 125; }), false},
      {"the old short one, whose fields lie elsewhere", with(good, [](auto& h) { h.size = 12; }), false},
      {"too many colours: cut", with(good, [](auto& h) { h.coloursUsed = 100000; }), true},
      {"no width", with(good, [](auto& h) { h.width = 0; }), false},
      {"a negative width", with(good, [](auto& h) { h.width = -8; }), false},
      {"the most negative height", with(good, [](auto& h) { h.height = INT_MIN; }), false},
      {"one bit, more pixels than came", Header(512, 512, 1), true},
      {"one bit, far more pixels than came", Header(INT_MAX, INT_MAX, 1), false},
      {"compressed", with(good, [](auto& h) { h.compression = 1, h.imageSize = 64; }), true},
      {"compressed and longer than what came", with(good, [](auto& h) { h.compression = 1, h.imageSize = 9999; }),
       true},
      {"compressed without an end", with(good, [](auto& h) { h.compression = 1; }), false},
      {"compressed without any end", with(good, [](auto& h) { h.compression = 4, h.imageSize = UINT_MAX; }), false},
      {"not compressed: its length is not believed", with(good, [](auto& h) { h.imageSize = UINT_MAX; }), true},
  };
  for (const auto& row : rows) {
    const FillBitmap bitmap(HeaderBytes(row.header), pixels);
    EXPECT_EQ(bitmap.IsDrawable(), row.drawable) << row.why;
    if (bitmap.IsDrawable()) {
      EXPECT_LE(ReadBitmapHeader({bitmap.Header(), 40}).coloursUsed, 256u) << row.why;
    }
  }
}

}  // namespace
