// The fills of several calls: their order, that what they change is put back and what they make is deleted, and that
// wrong arrays draw nothing.
#include "broker/CompositeFills.h"

#include <gtest/gtest.h>

#include <climits>

#include "tests/support/RecordingRelay.h"

namespace {

using Bytes = std::vector<uint8_t>;
using Calls = std::vector<std::string>;

constexpr DrawingHandle kDc = 77;

Bytes Rect(int32_t left, int32_t top, int32_t right, int32_t bottom) {
  const DrawingRect rect = {left, top, right, bottom};
  Bytes bytes(sizeof(rect));
  std::memcpy(bytes.data(), &rect, sizeof(rect));
  return bytes;
}

// Arrays that both fills would take but for the header's length.
struct Arrays {
  explicit Arrays(size_t headerBytes) : header(headerBytes) {
    const BitmapHeader fields = {40, 4, 2, 1, 32, 0, 0, 0, 0, 0, 0};
    std::memcpy(header.data(), &fields, sizeof(fields));
  }
  [[nodiscard]] BitmapArrays Get() const { return {target, source, pixels, header}; }

  Bytes target = Rect(1, 2, 30, 40);
  Bytes source = Rect(0, 0, 4, 2);
  Bytes pixels = Bytes(32);
  Bytes header;
};

class CompositeFills : public testing::Test {
 protected:
  void TearDown() override {
    EXPECT_TRUE(relay.living.empty()) << "an object was not deleted";
    EXPECT_EQ(relay.selected, RecordingRelay::kStock);
    EXPECT_EQ(relay.depth, 0);
  }
  RecordingRelay relay;
};

TEST_F(CompositeFills, Rectangle) {
  EXPECT_EQ(AddRectangle(relay, kDc, Rect(1, 2, 3, 4), 0x00FF80), result::Ok);
  EXPECT_EQ(relay.calls, (Calls{"brush 00ff80", "select new", "rectangle 1,2,3,4", "select old", "delete"}));
}

TEST_F(CompositeFills, PathFilledAndStroked) {
  FillPathSolid(relay, kDc, 0x0000FF);
  StrokePathSolid(relay, kDc, 9, 0xFF0000);
  EXPECT_EQ(relay.calls, (Calls{"brush 0000ff", "select new", "fill", "select old", "delete",  //
                                "pen ff0000 9", "select new", "stroke", "select old", "delete"}));
}

TEST_F(CompositeFills, BitmapClippedToThePathOrLeftToTheClient) {
  const Arrays arrays(44);
  const std::string stretch = "stretch 1,2,30,40 from 0,0,4,2 by 00cc0020";
  EXPECT_EQ(FillPathWithBitmap(relay, kDc, arrays.Get(), true), result::Ok);
  EXPECT_EQ(relay.calls, (Calls{"save", "clip", stretch, "restore"}));
  relay.calls.clear();
  EXPECT_EQ(FillPathWithBitmap(relay, kDc, arrays.Get(), false), result::Ok);
  EXPECT_EQ(relay.calls, (Calls{stretch}));
}

TEST_F(CompositeFills, BitmapAsAPatternsMask) {
  EXPECT_EQ(FillPathThroughBitmap(relay, kDc, Arrays(48).Get(), 0x123456, 0x00B8074A), result::Ok);
  EXPECT_EQ(relay.calls, (Calls{"save", "brush 123456", "select new", "clip",
                                "stretch 1,2,30,40 from 0,0,4,2 by 00b8074a", "select old", "delete", "restore"}));
}

TEST_F(CompositeFills, WrongBitmapArraysDrawNothing) {
  for (const size_t header : {kFillHeaderBytes, kTransparentFillHeaderBytes}) {
    const auto fill = [&](const BitmapArrays& arrays) {
      return header == kFillHeaderBytes ? FillPathWithBitmap(relay, kDc, arrays, true)
                                        : FillPathThroughBitmap(relay, kDc, arrays, 0, 0);
    };
    const Arrays good(header);
    const Bytes other(header == kFillHeaderBytes ? 48 : 44), shorter(15), few(31);
    const std::pair<ByteArgument BitmapArrays::*, ByteArgument> wrong[] = {
        {&BitmapArrays::header, other},       {&BitmapArrays::header, std::nullopt}, {&BitmapArrays::target, shorter},
        {&BitmapArrays::source, shorter},     {&BitmapArrays::target, std::nullopt}, {&BitmapArrays::pixels, few},
        {&BitmapArrays::pixels, std::nullopt}};
    for (const auto& [member, value] : wrong) {
      BitmapArrays arrays = good.Get();
      arrays.*member = value;
      EXPECT_EQ(fill(arrays), result::Fail);
    }
    EXPECT_EQ(relay.calls, Calls());
    EXPECT_EQ(fill(good.Get()), result::Ok);
    relay.calls.clear();
  }
}

TEST_F(CompositeFills, BitmapThatCannotBeDrawnIsASuccessWithoutDrawing) {
  Arrays arrays(44);
  const BitmapHeader fields = {40, 4, INT_MIN, 1, 32, 0, 0, 0, 0, 0, 0};
  std::memcpy(arrays.header.data(), &fields, sizeof(fields));
  EXPECT_EQ(FillPathWithBitmap(relay, kDc, arrays.Get(), true), result::Ok);
  EXPECT_EQ(relay.calls, (Calls{"save", "clip", "restore"}));
}

TEST_F(CompositeFills, RectanglesBeyondTheDrawingSpaceDrawNothing) {
  constexpr int32_t kFar = 1 << 27;
  for (const Bytes& far : {Rect(kFar, 0, 1, 1), Rect(0, -kFar, 1, 1), Rect(0, 0, INT_MIN, 2), Rect(0, 0, 2, INT_MAX)}) {
    for (Bytes Arrays::*const end : {&Arrays::target, &Arrays::source}) {
      Arrays arrays(44);
      arrays.*end = far;
      EXPECT_EQ(FillPathWithBitmap(relay, kDc, arrays.Get(), false), result::Ok);
    }
  }
  EXPECT_EQ(relay.calls, Calls());
  Arrays arrays(44);
  arrays.target = Rect(1 - kFar, kFar - 1, kFar - 1, 1 - kFar);
  EXPECT_EQ(FillPathWithBitmap(relay, kDc, arrays.Get(), false), result::Ok);
  EXPECT_EQ(relay.calls.size(), 1u);
}

}  // namespace
