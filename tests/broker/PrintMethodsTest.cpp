// Drawing with arrays, on real pixels: what is taken and drawn, beside what is refused and leaves the pixels alone.
#include <windows.h>

#include <vector>

#include "tests/support/ByteArray.h"
#include "tests/support/CountFixture.h"
#include "tests/support/ImportHook.h"
#include "tests/support/MemoryCanvas.h"

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

// What StartDocW was given, and what it answers.
DOCINFOW startedDocument;
WideString startedName;
int startAnswer = 1;
int WINAPI RecordStartDoc(HDC /*dc*/, const DOCINFOW* document) {
  startedDocument = *document;
  startedName = document->lpszDocName;
  return startAnswer;
}

TEST_F(PrintMethods, DocumentIsNamedAndThePaperTold) {
  const ImportHook hook(GetModuleHandleW(nullptr), "StartDocW", RecordStartDoc);
  SetMapMode(canvas.Get(), MM_ANISOTROPIC);
  SetViewportExtEx(canvas.Get(), 3, 1, nullptr);
  SetWindowExtEx(canvas.Get(), 1, 2, nullptr);
  // A device that does not print answers 0, and only -1 is a failure.
  std::vector<ULONG> v(8);
  for (startAnswer = -1; startAnswer <= 0; ++startAnswer) {
    EXPECT_EQ(broker->BrokerStartDoc(dc, &v[0], &v[1], &v[2], &v[3], &v[4], &v[5], &v[6], &v[7]),
              startAnswer == -1 ? E_FAIL : S_OK);
  }
  const auto caps = [this](int index) { return static_cast<ULONG>(GetDeviceCaps(canvas.Get(), index)); };
  const ULONG width = caps(HORZRES), height = caps(VERTRES);
  EXPECT_EQ(v, (std::vector<ULONG>{width, height, width * 3, height / 2, caps(PHYSICALWIDTH), caps(PHYSICALHEIGHT),
                                   caps(LOGPIXELSX), caps(LOGPIXELSY)}));
  EXPECT_EQ(ToUtf8(startedName), "Lumen");
  startedDocument.lpszDocName = nullptr;
  EXPECT_EQ(BytesOf(startedDocument), BytesOf(DOCINFOW{40, nullptr, nullptr, nullptr, 0}));
}

TEST_F(PrintMethods, MalformedArraysCountAsAbsent) {
  SAFEARRAYBOUND shifted = {16, 1}, flat[] = {{4, 0}, {4, 0}};
  const ByteArray malformed[] = {ByteArray(nullptr), ByteArray(SafeArrayCreate(VT_UI1, 1, &shifted)),
                                 ByteArray(SafeArrayCreate(VT_UI1, 2, flat)),
                                 ByteArray(SafeArrayCreateVector(VT_UI2, 0, 16))};
  for (const ByteArray& array : malformed) {
    EXPECT_EQ(broker->BrokerAddRectangle(dc, array.Get(), 0), E_FAIL);
    EXPECT_EQ(broker->BrokerPolyBezierTo(dc, array.Get(), 0), E_FAIL) << "absence is worse than a wrong length";
    EXPECT_TRUE(array.Get() == nullptr || array.Get()->cLocks == 0);
  }
  for (const size_t length : {15u, 17u}) {
    EXPECT_EQ(broker->BrokerAddRectangle(dc, ByteArray(std::string(length, 0)).Get(), 0), E_FAIL);
  }
}

TEST_F(PrintMethods, PathsAndCurvesAreFilledAndStroked) {
  const HGDIOBJ brush = GetCurrentObject(canvas.Get(), OBJ_BRUSH);
  const HGDIOBJ pen = GetCurrentObject(canvas.Get(), OBJ_PEN);
  Path(5, 5, 25, 25);
  EXPECT_EQ(broker->BrokerPathToSolidFill(dc, RGB(255, 0, 0)), S_OK);
  EXPECT_EQ(canvas.Count(0xFF0000), 400);
  canvas.Clear();
  const POINT points[] = {{20, 0}, {40, 64}, {60, 32}};
  const ByteArray curve(BytesOf(points));
  EXPECT_EQ(broker->BrokerBeginPath(dc), S_OK);
  EXPECT_EQ(broker->BrokerMoveTo(dc, 4, 32), S_OK);
  EXPECT_EQ(broker->BrokerPolyBezierTo(dc, curve.Get(), 2), E_FAIL);
  EXPECT_EQ(broker->BrokerPolyBezierTo(dc, curve.Get(), 0), S_OK) << "nothing to draw";
  EXPECT_EQ(broker->BrokerPolyBezierTo(dc, curve.Get(), 3), S_OK);
  EXPECT_EQ(broker->BrokerEndPath(dc), S_OK);
  EXPECT_EQ(broker->BrokerPathToStrokedLine(dc, 6, RGB(0, 0, 255)), S_OK);
  for (const auto& [y, colour] : {std::pair{30, 0x0000FFu}, {34, 0x0000FFu}, {25, kWhite}, {39, kWhite}}) {
    EXPECT_EQ(canvas.At(32, y), colour) << "at the curve's middle: " << y;
  }
  EXPECT_EQ(GetCurrentObject(canvas.Get(), OBJ_BRUSH), brush);
  EXPECT_EQ(GetCurrentObject(canvas.Get(), OBJ_PEN), pen);
  EXPECT_EQ(broker->BrokerPathToSolidFill(0, 0), S_OK) << "a bad device context goes unnoticed";
  EXPECT_EQ(broker->BrokerPathToStrokedLine(0, 1, 0), S_OK);
}

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

TEST_F(PrintMethods, MaskPaintsTheBrushWhereItIsBlack) {
  canvas.Clear(0xC8C8C8);
  Path(0, 0, 32, 64);
  // Two rows of one bit: black over white, the first row at the top.
  constexpr ULONG kPatternWhereBlack = 0x00B8074A;
  EXPECT_EQ(FillThrough(Rect(0, 0, 64, 64), Rect(0, 0, 8, 2), {"\x00\0\0\0\xFF\0\0\0", 8}, Header(8, -2, 1, 48),
                        RGB(240, 140, 20), kPatternWhereBlack),
            S_OK);
  EXPECT_EQ(canvas.Count(0xF08C14), 32 * 32);
  EXPECT_EQ(canvas.At(0, 0), 0xF08C14u);
  EXPECT_EQ(canvas.Count(0xC8C8C8), 64 * 64 - 32 * 32) << "white, and what is outside the path, leave what was there";
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

TEST_F(PrintMethods, WorldTransformGoesAndComesAsTwentyFourBytes) {
  const std::string doubled = BytesOf(XFORM{2, 0, 0, 2, 7, 9});
  ULONG done = 1;
  VARIANT reply = {};
  EXPECT_EQ(broker->BrokerSetWorldTransform(dc, ByteArray(doubled.substr(1)).Get(), &done), E_FAIL);
  for (const ULONG advanced : {0u, 1u}) {
    if (advanced != 0) EXPECT_EQ(broker->BrokerSetGraphicsMode(dc, GM_ADVANCED, &done), S_OK);
    EXPECT_EQ(broker->BrokerSetWorldTransform(dc, ByteArray(doubled).Get(), &done), S_OK);
    EXPECT_EQ(done, advanced) << "it needs the advanced mode";
  }
  EXPECT_EQ(broker->BrokerGetWorldTransform(0, &reply), E_FAIL);
  ASSERT_EQ(broker->BrokerGetWorldTransform(dc, &reply), S_OK);
  ASSERT_EQ(reply.vt, VT_ARRAY | VT_UI1);
  EXPECT_EQ(ByteArray(reply.parray).Text(), doubled);
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
