// Text and fonts: the lengths, the limits and font linking. What is drawn is on the printed page.
#include <windows.h>

#include "tests/support/ByteArray.h"
#include "tests/support/ImportHook.h"
#include "tests/support/MemoryCanvas.h"

namespace {

std::string Wide(const wchar_t* text) {
  return std::string(reinterpret_cast<const char*>(text), (WideView(text).size() + 1) * sizeof(wchar_t));
}

using TextMethods = CanvasTest;

TEST_F(TextMethods, LengthsAreCheckedForBothWidths) {
  const struct {
    const char* why;
    ULONG count;
    size_t textBytes;  // doubled for the wide call
    HRESULT result;
    size_t rectBytes = 16;
    ULONG noSpacing = 1;
    int spacingBytes = 0;  // -1: no array
    ULONG options = 0;
  } rows[] = {
      {"no text is a terminator", 0, 1, S_OK},
      {"the longest text", 8192, 8193, S_OK},
      {"a longer one, before any array is looked at", 8193, 8194, E_INVALIDARG, 15},
      {"text without its terminator", 5, 5, E_FAIL},
      {"a rectangle that is none, though it is not used", 5, 6, E_FAIL, 15},
      {"no spacing array, though it is not used", 5, 6, E_FAIL, 16, 1, -1},
      {"spacing too short", 5, 6, E_FAIL, 16, 0, 15},
      {"spacing for all but the last character", 5, 6, S_OK, 16, 0, 16},
      {"spacing in pairs", 5, 6, S_OK, 16, 0, 32, ETO_PDY},
      {"spacing in pairs too short", 5, 6, E_FAIL, 16, 0, 31, ETO_PDY},
      {"spacing for no text: the need wraps", 0, 1, E_FAIL, 16, 0, 4096},
  };
  for (const auto& row : rows) {
    for (const bool wide : {false, true}) {
      const ByteArray rect(std::string(row.rectBytes, 0)), text(std::string(row.textBytes * (wide ? 2 : 1), 0));
      const ByteArray spacing(std::string(static_cast<size_t>(std::max(row.spacingBytes, 0)), 0));
      const auto draw = wide ? &ILumenBroker6::BrokerExtTextOutW : &ILumenBroker6::BrokerExtTextOutA;
      ULONG drawn = 0;
      EXPECT_EQ((broker.Get()->*draw)(dc, 0, 0, row.options, 1, rect.Get(), text.Get(), row.count, row.noSpacing,
                                      row.spacingBytes < 0 ? nullptr : spacing.Get(), &drawn),
                row.result)
          << row.why << (wide ? ", wide" : ", narrow");
    }
  }
}

TEST_F(TextMethods, ExtentsAndMetricsAreThePlatformsOwn) {
  SIZE own = {};
  ASSERT_TRUE(GetTextExtentPoint32W(canvas.Get(), L"wide", 4, &own));
  const ByteArray wide(Wide(L"wide")), narrow({"wide", 5}), open("wide"), longest(std::string(8193, 'x'));
  const struct {
    bool wide;
    ULONG dc;
    SAFEARRAY* text;
    ULONG count;
    HRESULT result;
  } rows[] = {{true, dc, wide.Get(), 4, S_OK},        {false, dc, narrow.Get(), 4, S_OK},
              {true, dc, open.Get(), 4, E_FAIL},      {false, dc, open.Get(), 4, E_FAIL},
              {false, dc, longest.Get(), 8192, S_OK}, {true, dc, nullptr, 8193, E_INVALIDARG},
              {false, 0, narrow.Get(), 4, E_FAIL}};
  for (const auto& row : rows) {
    ULONG width = 0, height = 0;
    const auto measure =
        row.wide ? &ILumenBroker6::BrokerGetTextExtentPoint32W : &ILumenBroker6::BrokerGetTextExtentPoint32A;
    EXPECT_EQ((broker.Get()->*measure)(row.dc, row.text, row.count, &width, &height), row.result) << &row - rows;
    if (row.result != S_OK || row.count != 4) continue;
    EXPECT_EQ(width, static_cast<ULONG>(own.cx));
    EXPECT_EQ(height, static_cast<ULONG>(own.cy));
  }
  TEXTMETRICW metrics = {};
  ASSERT_TRUE(GetTextMetricsW(canvas.Get(), &metrics));
  VARIANT reply = {};
  ASSERT_EQ(broker->BrokerGetTextMetrics(dc, &reply), S_OK);
  ASSERT_EQ(reply.vt, VT_ARRAY | VT_UI1);
  EXPECT_EQ(ByteArray(reply.parray).Text(), BytesOf(metrics));
  EXPECT_EQ(broker->BrokerGetTextMetrics(0, &reply), E_FAIL);
}

BOOL WINAPI Draw(HDC, int, int, UINT, const RECT*, const wchar_t*, UINT, const INT*) {
  return 77;
}

TEST_F(TextMethods, CharactersLargerThanAnyPageAreNotDrawn) {
  const ImportHook hook(GetModuleHandleW(nullptr), "ExtTextOutW", Draw);
  const ByteArray rect(Rect(0, 0, 0, 0)), text(Wide(L"a"));
  const struct {
    LONG height;
    float scale;
    ULONG result;
  } rows[] = {{-500, 30.0F, 77}, {-500, 1e4F, 0}, {100000, 1.0F, 0}, {20, 1e30F, 0}, {INT_MIN, 1.0F, 0}};
  ULONG drawn = 0;
  ASSERT_EQ(broker->BrokerSetGraphicsMode(dc, GM_ADVANCED, &drawn), S_OK);
  for (const auto& row : rows) {
    const XFORM world = {row.scale, 0, 0, row.scale, 0, 0};
    LOGFONTW face = {};
    face.lfHeight = row.height;
    const GdiObject font(CreateFontIndirectW(&face));
    const SelectedObject selected(canvas.Get(), font.Get());
    ASSERT_TRUE(SetWorldTransform(canvas.Get(), &world));
    EXPECT_EQ(broker->BrokerExtTextOutW(dc, 0, 0, 0, 1, rect.Get(), text.Get(), 1, 1, rect.Get(), &drawn), S_OK);
    EXPECT_EQ(drawn, row.result) << row.height << " by " << row.scale;
  }
}

TEST_F(TextMethods, FontLinkingIsThePlatforms) {
  ULONG font = 0, pages = 0, linked = 0, type = 0;
  EXPECT_EQ(broker->BrokerGetCurrentObject(dc, OBJ_FONT, &font), S_OK);
  EXPECT_EQ(broker->BrokerIMLangFontLinkGetFontCodePages(dc, font, &pages), S_OK);
  ASSERT_EQ(broker->BrokerIMLangFontLinkMapFont(dc, 1, font, &linked), S_OK) << "Latin, which every font has";
  EXPECT_EQ(broker->BrokerGetObjectType(linked, &type), S_OK);
  EXPECT_EQ(type, static_cast<ULONG>(OBJ_FONT));
  EXPECT_EQ(broker->BrokerIMLangFontLinkReleaseFont(linked), S_OK);
  EXPECT_EQ(broker->BrokerIMLangFontLinkReleaseFont(0x1234), E_FAIL) << "as the platform says";
}

}  // namespace
