// Drawing with arrays, on real pixels: what is taken and drawn, beside what is refused and leaves the pixels alone.
#include <windows.h>

#include <vector>

#include "tests/support/ByteArray.h"
#include "tests/support/MemoryCanvas.h"
#include "tests/support/PlatformCounts.h"

namespace {

constexpr uint32_t kWhite = 0xFFFFFF;

class PrintMethods : public CanvasTest {
 protected:
  // A path around left, top, right, bottom.
  void Path(ULONG left, ULONG top, ULONG right, ULONG bottom) {
    EXPECT_EQ(broker->BrokerBeginPath(dc), S_OK);
    EXPECT_EQ(broker->BrokerMoveTo(dc, left, top), S_OK);
    for (const auto& [x, y] : {std::pair{right, top}, {right, bottom}, {left, bottom}, {left, top}}) {
      EXPECT_EQ(broker->BrokerLineTo(dc, x, y), S_OK);
    }
    EXPECT_EQ(broker->BrokerEndPath(dc), S_OK);
  }
  // A bitmap's header with what follows it: nothing known for 4 bytes, black and white for 8.
  static std::string Header(LONG width, LONG height, WORD bits, size_t length) {
    std::string bytes = BytesOf(BITMAPINFOHEADER{40, width, height, 1, bits, 0, 0, 0, 0, 0, 0});
    bytes.resize(length);
    if (length == 48) bytes.replace(44, 3, "\xFF\xFF\xFF");
    return bytes;
  }
  HRESULT FillThrough(const std::string& target, const std::string& source, const std::string& pixels,
                      const std::string& header, ULONG colour, ULONG operation) {
    return broker->BrokerPathToTransparentBitmapFill(dc, ByteArray(target).Get(), ByteArray(source).Get(),
                                                     ByteArray(pixels).Get(), ByteArray(header).Get(), colour,
                                                     operation);
  }
};

TEST_F(PrintMethods, BitmapIsClippedToThePathAsWellAndTheStateComesBack) {
  // Two by one: red, green. Widths and heights stand third and fourth.
  const ByteArray pixels({"\0\0\xFF\0\0\xFF\0\0", 8}), target(Rect(8, 8, 40, 20)), source(Rect(0, 0, 2, 1));
  IntersectClipRect(canvas.Get(), 0, 0, 46, 64);
  for (const size_t length : {48u, 44u}) {
    Path(0, 0, 64, 18);
    EXPECT_EQ(broker->BrokerPathToBitmapFill(dc, target.Get(), source.Get(), pixels.Get(),
                                             ByteArray(Header(2, 1, 32, length)).Get(), 1),
              length == 44 ? S_OK : E_FAIL);
    EXPECT_EQ(canvas.Count(0xFF0000), length == 44 ? 20 * 10 : 0);
    EXPECT_EQ(canvas.Count(0x00FF00), length == 44 ? 18 * 10 : 0);
  }
  EXPECT_EQ(canvas.At(8, 8), 0xFF0000u);
  EXPECT_EQ(canvas.At(45, 17), 0x00FF00u);
  EXPECT_EQ(canvas.At(46, 17), kWhite) << "outside the client's own clip";
  EXPECT_EQ(canvas.At(45, 18), kWhite) << "outside the path";
  RECT clip = {};
  GetClipBox(canvas.Get(), &clip);
  EXPECT_EQ(clip.right, 46);
  EXPECT_EQ(SaveDC(canvas.Get()), 1) << "no state is left saved";
}

TEST_F(PrintMethods, OnePointIsConvertedWhateverTheCount) {
  SetWindowOrgEx(canvas.Get(), 100, 200, nullptr);
  for (const ULONG count : {0u, 1u, 2u, 0x80000000u, 0xFFFFFFFFu}) {
    ULONG x = 5, y = static_cast<ULONG>(-6), done = 0;
    EXPECT_EQ(broker->BrokerDPtoLP(dc, &x, &y, count, &done), S_OK);
    EXPECT_EQ(done, 1u);
    EXPECT_EQ(x, count == 0 ? 5u : 105u);
    EXPECT_EQ(y, count == 0 ? static_cast<ULONG>(-6) : 194u);
  }
  ULONG x = 5, y = 6, done = 1;
  EXPECT_EQ(broker->BrokerDPtoLP(0, &x, &y, 1, &done), S_OK) << "the result is in the argument";
  EXPECT_EQ(done, 0u);
}

TEST_F(PrintMethods, TenThousandFillsDeleteWhatTheyMake) {
  const ByteArray rect(Rect(0, 0, 2, 2));
  const std::string one = Rect(0, 0, 1, 1);
  EXPECT_TRUE(LeavesNothing(100, [&](int) {
    for (int i = 0; i < 25; ++i) {
      EXPECT_EQ(broker->BrokerAddRectangle(dc, rect.Get(), 0), S_OK);
      EXPECT_EQ(broker->BrokerPathToSolidFill(dc, 0), S_OK);
      EXPECT_EQ(broker->BrokerPathToStrokedLine(dc, 1, 0), S_OK);
      EXPECT_EQ(FillThrough(one, one, std::string(4, 0), Header(1, 1, 1, 48), 0, SRCCOPY), S_OK);
    }
  }));
  EXPECT_EQ(SaveDC(canvas.Get()), 1) << "no state is left saved";
  // The measure itself: a brush kept is seen.
  std::vector<GdiObject> kept;
  EXPECT_FALSE(LeavesNothing(40, [&](int) { kept.emplace_back(CreateSolidBrush(0)); }));
}

}  // namespace
