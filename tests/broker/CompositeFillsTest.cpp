// The fills of several calls: their order, that what they change is put back and what they make is deleted, and that
// wrong arrays draw nothing.
#include "broker/CompositeFills.h"

#include <gtest/gtest.h>

#include <climits>

#include "tests/support/RecordingRelay.h"

namespace {

using Bytes = std::vector<uint8_t>;

constexpr DrawingHandle kDc = 77;

template <class Value>
Bytes BytesOf(const Value& value, size_t size = sizeof(Value)) {
  Bytes bytes(size);
  std::memcpy(bytes.data(), &value, sizeof(value));
  return bytes;
}

// Arrays that a fill takes: a bitmap of 4 by 2.
struct Arrays {
  explicit Arrays(size_t headerBytes, int32_t height = 2)
      : header(BytesOf(BitmapHeader{40, 4, height, 1, 32, 0, 0, 0, 0, 0, 0}, headerBytes)) {}
  [[nodiscard]] BitmapArrays Get() const { return {target, source, pixels, header}; }

  Bytes target = BytesOf(DrawingRect{1, 2, 30, 40});
  Bytes source = BytesOf(DrawingRect{0, 0, 4, 2});
  Bytes pixels = Bytes(32);
  Bytes header;
};

// The calls of a fill, which must succeed, clipped with the header for it.
std::string Calls(const Arrays& arrays, bool clip = true) {
  RecordingRelay relay;
  EXPECT_EQ(FillPathWithBitmap(relay, kDc, arrays.Get(), clip), result::Ok);
  return relay.calls;
}

TEST(CompositeFills, PutBackWhatTheyChangeAndDeleteWhatTheyMake) {
  RecordingRelay relay;
  EXPECT_EQ(AddRectangle(relay, kDc, BytesOf(DrawingRect{1, 2, 3, 4}), 99), result::Ok);
  EXPECT_EQ(relay.calls, "brush 99;select 1;rectangle 1 2 3 4 1;select 0;delete 1;");
  relay.calls.clear();
  FillPathSolid(relay, kDc, 98);
  StrokePathSolid(relay, kDc, 9, 97);
  EXPECT_EQ(relay.calls,
            "brush 98;select 2;fill;select 0;delete 2;"
            "pen 9 97;select 3;stroke;select 0;delete 3;");
  relay.calls.clear();
  EXPECT_EQ(FillPathThroughBitmap(relay, kDc, Arrays(48).Get(), 96, 95), result::Ok);
  EXPECT_EQ(relay.calls,
            "save;brush 96;select 4;clip;stretch 1 2 30 40 0 0 4 2 95;"
            "select 0;delete 4;restore 5;");
  const std::string copy = "stretch 1 2 30 40 0 0 4 2 " + std::to_string(0xCC0020) + ";";
  EXPECT_EQ(Calls(Arrays(44)), "save;clip;" + copy + "restore 5;");
  EXPECT_EQ(Calls(Arrays(44), false), copy);
}

TEST(CompositeFills, WrongBitmapArraysDrawNothing) {
  const Bytes shorter(15), few(31);
  for (const size_t header : {44u, 48u}) {
    const Arrays good(header), other(header == 44 ? 48 : 44);
    const std::pair<ByteArgument BitmapArrays::*, ByteArgument> wrong[] = {
        {&BitmapArrays::header, other.header}, {&BitmapArrays::header, std::nullopt}, {&BitmapArrays::target, shorter},
        {&BitmapArrays::source, shorter},      {&BitmapArrays::target, std::nullopt}, {&BitmapArrays::pixels, few},
        {&BitmapArrays::pixels, std::nullopt}};
    for (const auto& [member, value] : wrong) {
      RecordingRelay relay;
      BitmapArrays arrays = good.Get();
      arrays.*member = value;
      EXPECT_EQ(
          header == 44 ? FillPathWithBitmap(relay, kDc, arrays, true) : FillPathThroughBitmap(relay, kDc, arrays, 0, 0),
          result::Fail);
      EXPECT_EQ(relay.calls, "");
    }
  }
}

TEST(CompositeFills, WhatCannotBeDrawnIsASuccessWithoutDrawing) {
  EXPECT_EQ(Calls(Arrays(44, INT_MIN)), "save;clip;restore 5;");
  constexpr int32_t kFar = 1 << 27;
  for (const DrawingRect& far :
       {DrawingRect{kFar, 0, 1, 1}, {0, -kFar, 1, 1}, {0, 0, INT_MIN, 2}, {0, 0, 2, INT_MAX}}) {
    for (Bytes Arrays::*const end : {&Arrays::target, &Arrays::source}) {
      Arrays arrays(44);
      arrays.*end = BytesOf(far);
      EXPECT_EQ(Calls(arrays, false), "");
    }
  }
  Arrays arrays(44);
  arrays.target = BytesOf(DrawingRect{1 - kFar, kFar - 1, kFar - 1, 1 - kFar});
  EXPECT_NE(Calls(arrays, false), "");
}

}  // namespace
