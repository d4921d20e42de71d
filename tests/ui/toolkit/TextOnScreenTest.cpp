// Texts drawn by the platform. Nothing here depends on the shape of a glyph: only on where there is ink, and its
// colour.
#include <gtest/gtest.h>

#include <algorithm>
#include <functional>

#include "tests/ui/toolkit/WindowFixture.h"
#include "ui/toolkit/MHTMLLink.h"
#include "ui/toolkit/MTextArea.h"

namespace {

class TextOnScreen : public WindowFixture {
 protected:
  MTextArea& Make(const wchar_t* text, const Rect& at) {
    auto area = std::make_unique<MTextArea>(&window, 20, true, false);
    area->format = 48;
    area->SetText(MString(text));
    return *Place(std::move(area), at);
  }
};

TEST_F(TextOnScreen, WrapsByItsOwnMeasureHoweverLong) {
  WideString text;
  for (int i = 0; i < 400; ++i) text += L"word ";
  MTextArea& area = Make(text.c_str(), Rect::Of(0, 0, 300, 100));
  const int32_t wrapped = area.Render();
  EXPECT_GT(wrapped, 20);
  EXPECT_LT(wrapped, 200);
  area.bounds = Rect::Of(0, 0, 300 * wrapped, 100);
  EXPECT_EQ(area.Render(), 1) << "a line longer than the first look at it";
}

TEST_F(TextOnScreen, IsWhiteOverAShadowAndALinkHasItsColourAndUnderline) {
  MTextArea& area = Make(L"<strong>III</strong> <a href='u'>here</a>.", Rect::Of(0, 0, 200, 40));
  ASSERT_NE(area.firstChild, nullptr);
  const Rect link = area.firstChild->bounds;
  EXPECT_GT(link.left, 10);
  EXPECT_GT(link.Width(), 20);
  bool white = false, shadow = false, blue = false;
  for (int32_t i = 0; i < 200 * 39; ++i) {
    const Point at = {i % 200, 1 + i / 200};
    const uint32_t pixel = area.pixels[(area.bufferHeight - 1 - at.y) * area.bufferWidth + at.x];
    const uint32_t coverage = pixel >> 24, red = pixel >> 16 & 255, low = pixel & 255;
    ASSERT_LE(low, coverage) << "premultiplied";
    white = white || pixel == 0xFEFDFDFD;
    shadow = shadow || (coverage > 200 && (pixel & 0xFFFFFF) == 0);
    if (at.x < link.left || at.x >= link.right || at.y >= link.bottom) continue;
    if (at.y == link.bottom - 1) ASSERT_EQ(coverage, 254u) << "the bottom row is filled";
    blue = blue || (low > 100 && low > 3 * red);
  }
  EXPECT_TRUE(white && shadow && blue);
}

TEST_F(TextOnScreen, FontsFollowTheThreadsLocale) {
  const LCID before = GetThreadLocale();
  const std::tuple<LCID, LONG, const char*> rows[] = {
      {1028, 17, "Mingliu"}, {1041, 18, "Mincho"}, {2052, 17, "SimSun"}, {1042, 20, "Arial"}, {1033, 20, "Arial"}};
  for (const auto& [locale, height, face] : rows) {
    SetThreadLocale(locale);
    const MTextArea area(&window, 20, false, false);
    for (const HFONT font : {area.normalFont, area.boldFont}) {
      LOGFONTA data = {};
      ASSERT_NE(GetObjectA(font, sizeof(data), &data), 0);
      EXPECT_STREQ(data.lfFaceName, face) << locale;
      EXPECT_EQ(data.lfHeight, height) << locale;
      EXPECT_EQ(data.lfWeight, font == area.boldFont ? 700 : 400);
      EXPECT_EQ((std::array{data.lfCharSet, data.lfQuality, data.lfPitchAndFamily}), (std::array<BYTE, 3>{1, 2, 2}));
    }
  }
  SetThreadLocale(before);
}

TEST_F(TextOnScreen, ASizeBeyondMemoryLeavesTheAreaEmptyUntilItFits) {
  MTextArea& area = Make(L"<strong>Text</strong>", Rect::Of(0, 0, INT32_MAX, INT32_MAX));
  EXPECT_EQ(area.pixels, nullptr);
  area.bounds = Rect::Of(0, 0, 100, 30);
  area.Layout();
  EXPECT_EQ(std::count(area.pixels, area.pixels + area.bufferWidth * area.bufferHeight, 0xFEFDFDFD) > 0, true);
}

}  // namespace
