// Which arrays are taken and which are not, and that what is lent to the drawing system is as long as it reads.
#include "broker/DrawingArrays.h"

#include <gtest/gtest.h>

#include <climits>
#include <cstring>

namespace {

using Bytes = std::vector<uint8_t>;

TEST(DrawingArrays, CurveNeedsExactlyItsPointsExceptForNone) {
  const struct {
    const char* why;
    uint32_t count;
    int length;  // -1: absent
    int points;  // -1: refused
  } rows[] = {
      {"one segment", 3, 24, 3},
      {"one byte short", 3, 23, -1},
      {"no points, any array", 0, 7, 0},
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

// Filled up with zeros, or as they are when that is enough.
TEST(DrawingArrays, TextAndSpacingAreAsLongAsTheyAreRead) {
  EXPECT_EQ(ReadText(Bytes{1, 2, 3, 4, 0}, 4, 0), (Bytes{1, 2, 3, 4, 0}));
  EXPECT_EQ(ReadText(Bytes{1, 2, 3, 4, 0}, 4, kGlyphIndices), (Bytes{1, 2, 3, 4, 0, 0, 0, 0, 0, 0}));
  EXPECT_EQ(ReadText(Bytes(10, 7), 4, kGlyphIndices), Bytes(10, 7));
  const Bytes spacing = {5, 0, 0, 0, 0xFF, 0xFF, 0xFF, 0xFF, 7, 0, 0, 0};
  EXPECT_EQ(ReadSpacing(spacing, 3, 0), (std::vector<int32_t>{5, -1, 7}));
  EXPECT_EQ(ReadSpacing(spacing, 4, 0), (std::vector<int32_t>{5, -1, 7, 0}));
  EXPECT_EQ(ReadSpacing(spacing, 2, kPairedSpacing), (std::vector<int32_t>{5, -1, 7, 0}));
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
      {"a negative height counts by its value", Header(2, -3, 32), 23, false},
      {"the padding of rows does not count", Header(3, 2, 24), 18, true},
      {"fewer than 8 bits ask for nothing", Header(1000, 1000, 7), 0, true},
      {"15 bits are one byte", Header(4, 4, 15), 15, false},
      {"the most negative height has no value of its own", Header(1, INT_MIN, 8), 0, true},
      {"a negative width makes the product negative", Header(-2, 3, 32), 0, true},
      {"the product wraps to a negative number", Header(0x10000, 0x8000, 8), 0, true},
      {"the product wraps to a positive number", Header(-0x7FFFFFFF, 1, 16), 1, false},
  };
  for (const auto& row : rows) EXPECT_EQ(HoldsPixels(row.header, row.length), row.holds) << row.why;
}

Bytes HeaderBytes(const BitmapHeader& fields) {
  Bytes bytes(kFillHeaderBytes, 0xEE);
  std::memcpy(bytes.data(), &fields, sizeof(fields));
  return bytes;
}

TEST(FillBitmap, PixelsAreLentAsTheyAreOrFilledUpWithBlack) {
  Bytes pixels(24, 9);
  const FillBitmap lent(HeaderBytes(Header(2, 3, 32)), pixels);
  EXPECT_EQ(lent.Pixels(), pixels.data());
  EXPECT_EQ(lent.Header()[43], 0xEE) << "the colour behind the header goes along";
  EXPECT_EQ(lent.Header()[44], 0) << "and no byte that did not come";
  // Two rows of 9 bytes where the platform reads 12 each.
  const FillBitmap filled(HeaderBytes(Header(3, 2, 24)), std::span(pixels).first(18));
  ASSERT_TRUE(filled.IsDrawable());
  std::fill(pixels.begin() + 18, pixels.end(), uint8_t{0});
  EXPECT_EQ(Bytes(filled.Pixels(), filled.Pixels() + 24), pixels);
  // 24 MB of rows, of which the last one's padding did not come.
  EXPECT_TRUE(FillBitmap(HeaderBytes(Header(999, 8000, 24)), Bytes(23999997)).IsDrawable()) << "little is missing";
}

TEST(FillBitmap, HeadersThatWouldBeReadBeyondTheirEnd) {
  const Bytes pixels(4096);
  const auto good = [](auto change) {
    BitmapHeader header = Header(8, 8, 8);
    change(header);
    return header;
  };
  const struct {
    const char* why;
    BitmapHeader header;
    bool drawable;
  } rows[] = {
      {"the header and its colour called one", good([](auto& h) { h.size = 44; }), true},
      {"one that is longer than any", good([](auto& h) { h.size = 125; }), false},
      {"too many colours: cut", good([](auto& h) { h.coloursUsed = 100000; }), true},
      {"no width", good([](auto& h) { h.width = 0; }), false},
      {"the most negative height", good([](auto& h) { h.height = INT_MIN; }), false},
      {"one bit, more pixels than came", Header(512, 512, 1), true},
      {"one bit, far more pixels than came", Header(INT_MAX, INT_MAX, 1), false},
      {"compressed and longer than what came", good([](auto& h) { h.compression = 1, h.imageSize = 9999; }), true},
      {"compressed without any end", good([](auto& h) { h.compression = 4, h.imageSize = UINT_MAX; }), false},
  };
  for (const auto& row : rows) {
    const FillBitmap bitmap(HeaderBytes(row.header), pixels);
    EXPECT_EQ(bitmap.IsDrawable(), row.drawable) << row.why;
    EXPECT_LE(ReadBitmapHeader({bitmap.Header(), 40}).coloursUsed, 256u) << row.why;
  }
}

}  // namespace
