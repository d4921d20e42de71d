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
  MTextArea& Make(bool markup, bool bold, const wchar_t* text, const Rect& at, uint32_t format = 0) {
    auto area = std::make_unique<MTextArea>(&window, 20, markup, bold);
    area->format = format;
    area->SetText(MString(text));
    return *Place(std::move(area), at);
  }
};

void ForEachPixel(const MTextArea& area, const Rect& place, const std::function<void(uint32_t, Point)>& look) {
  for (int32_t y = place.top; y < place.bottom; ++y) {
    for (int32_t x = place.left; x < place.right; ++x) {
      look(area.pixels[static_cast<ptrdiff_t>(area.bufferHeight - 1 - y) * area.bufferWidth + x], {x, y});
    }
  }
}
// Where an area has pixels that can be seen, and how much of them.
struct Ink {
  explicit Ink(const MTextArea& area) {
    ForEachPixel(area, area.bounds.AtOrigin(), [&](uint32_t pixel, Point at) {
      sum += pixel >> 24;
      if (pixel >> 24 < 64) return;
      left = std::min(left, at.x);
      top = std::min(top, at.y);
      right = std::max(right, at.x + 1);
      bottom = std::max(bottom, at.y + 1);
    });
  }
  int32_t left = INT32_MAX, top = INT32_MAX, right = -1, bottom = -1;
  double sum = 0;
};

TEST_F(TextOnScreen, StandsWhereTheFormatPutsIt) {
  const Rect at = Rect::Of(0, 0, 200, 60);
  const Ink left(Make(false, false, L"Text", at)), right(Make(false, false, L"Text", at, 2));
  const Ink centred(Make(false, false, L"Text", at, 5)), middle(Make(false, false, L"Text", at, 4));
  EXPECT_LE(left.left, 3);
  EXPECT_LT(left.bottom, 24);
  EXPECT_GE(right.right, 195);
  EXPECT_NEAR(centred.left + centred.right, 200, 6);
  EXPECT_NEAR(centred.top + centred.bottom, 60, 14);
  EXPECT_EQ(middle.left, left.left);
  EXPECT_EQ(middle.top, centred.top);
}

TEST_F(TextOnScreen, WrapsByItsOwnMeasureHoweverLong) {
  WideString text;
  for (int i = 0; i < 400; ++i) text += L"word ";
  MTextArea& area = Make(false, false, text.c_str(), Rect::Of(0, 0, 300, 100), 48);
  const int32_t wrapped = area.Render();
  EXPECT_GT(wrapped, 20);
  EXPECT_LT(wrapped, 200);
  area.bounds = Rect::Of(0, 0, 300 * wrapped, 100);
  EXPECT_EQ(area.Render(), 1) << "a line longer than the first look at it";
}

TEST_F(TextOnScreen, BoldIsHeavierAndAlphaDims) {
  const Rect at = Rect::Of(0, 0, 250, 30);
  const double normal = Ink(Make(false, false, L"Weight", at)).sum, bold = Ink(Make(false, true, L"Weight", at)).sum;
  EXPECT_GT(bold, normal * 1.1);
  EXPECT_EQ(Ink(Make(true, false, L"<strong>Weight</strong>", at)).sum, bold);
  MTextArea& area = Make(true, true, L"Weight", at);
  EXPECT_EQ(Ink(area).sum, normal) << "mark-up alone decides";
  area.alpha = 128;
  area.Layout();
  EXPECT_NEAR(Ink(area).sum / normal, 0.5, 0.02);
}

TEST_F(TextOnScreen, IsWhiteOverAShadowAndALinkHasItsColourAndUnderline) {
  MTextArea& area = Make(true, false, L"<strong>III</strong> <a href='u'>here</a>.", Rect::Of(0, 0, 200, 40));
  ASSERT_NE(area.firstChild, nullptr);
  const Rect link = area.firstChild->bounds;
  EXPECT_GT(link.left, 10);
  EXPECT_GT(link.Width(), 20);
  bool white = false, shadow = false, blue = false;
  ForEachPixel(area, {0, 1, 200, 40}, [&](uint32_t pixel, Point at) {
    const uint32_t coverage = pixel >> 24, red = pixel >> 16 & 255, low = pixel & 255;
    ASSERT_LE(low, coverage) << "premultiplied";
    white = white || pixel == 0xFEFDFDFD;
    shadow = shadow || (coverage > 200 && (pixel & 0xFFFFFF) == 0);
    if (at.x < link.left || at.x >= link.right || at.y >= link.bottom) return;
    if (at.y == link.bottom - 1) ASSERT_EQ(coverage, 254u) << "the bottom row is filled";
    blue = blue || (low > 100 && low > 3 * red);
  });
  EXPECT_TRUE(white && shadow && blue);
}

TEST_F(TextOnScreen, FontsFollowTheThreadsLocale) {
  const LCID before = GetThreadLocale();
  const struct {
    LCID locale;
    LONG height;
    const char* face;
  } rows[] = {
      {1028, 17, "Mingliu"}, {1041, 18, "Mincho"}, {2052, 17, "SimSun"}, {1042, 20, "Arial"}, {1033, 20, "Arial"}};
  for (const auto& row : rows) {
    SetThreadLocale(row.locale);
    const MTextArea area(&window, 20, false, false);
    for (const HFONT font : {area.normalFont, area.boldFont}) {
      LOGFONTA data = {};
      ASSERT_NE(GetObjectA(font, sizeof(data), &data), 0);
      EXPECT_STREQ(data.lfFaceName, row.face) << row.locale;
      EXPECT_EQ(data.lfHeight, row.height);
      EXPECT_EQ(data.lfWeight, font == area.boldFont ? 700 : 400);
      EXPECT_EQ((std::array{data.lfCharSet, data.lfQuality, data.lfPitchAndFamily}), (std::array<BYTE, 3>{1, 2, 2}));
    }
  }
  SetThreadLocale(before);
}

TEST_F(TextOnScreen, ASizeBeyondMemoryLeavesTheAreaEmptyUntilItFits) {
  MTextArea& area = Make(false, false, L"Text", Rect::Of(0, 0, INT32_MAX, INT32_MAX));
  EXPECT_EQ(area.pixels, nullptr);
  area.bounds = Rect::Of(0, 0, 100, 30);
  area.Layout();
  EXPECT_GT(Ink(area).right, 0);
}

// Links that dropped out are kept while their area lives and end with it.
TEST_F(TextOnScreen, AThousandRendersLeaveNothingBehind) {
  const auto round = [&] {
    MTextArea area(&window, 16, true, false);
    window.Attach(&area);
    for (int i = 0; i < 10; ++i) {
      area.bounds = Rect::Of(0, 0, 200 + 40 * i, 100 + 20 * i);
      area.SetText(MString(L"A <a href='u'>link</a> and <strong>another</strong> <ncp>one</ncp> on several lines"));
      area.Layout();
    }
  };
  for (int i = 0; i < 5; ++i) round();
  const driver::ObjectCounts before = driver::CountObjects(window.handle);
  for (int i = 0; i < 100; ++i) round();
  const driver::ObjectCounts after = driver::CountObjects(window.handle);
  EXPECT_EQ(after.gdi, before.gdi);
  EXPECT_NEAR(static_cast<double>(after.heapBlocks), static_cast<double>(before.heapBlocks), 8);
}

}  // namespace
