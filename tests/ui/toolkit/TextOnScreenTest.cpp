// Texts drawn by the platform. Nothing here depends on the shape of a glyph: only on where there is ink, and its
// colour.
#include <windows.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <functional>

#include "tests/support/RecordingHost.h"
#include "tests/ui/toolkit/WindowDriver.h"
#include "ui/toolkit/MHTMLLink.h"
#include "ui/toolkit/MTextArea.h"
#include "ui/toolkit/MWindow.h"
#include "ui/toolkit/MorphUI.h"

namespace {

class TextWindow final : public MWindow {
 public:
  explicit TextWindow(MorphUI* ui) : MWindow(ui) { ui->window = this; }
  bool HandleEvent(uint32_t, uint32_t, int64_t) override { return true; }
  void SetFocusRegion(MRegion*, bool) override {}
};

class TextOnScreen : public testing::Test {
 protected:
  MTextArea& Make(bool markup, bool bold, const wchar_t* text, const Rect& at, uint32_t format = 0, int32_t size = 20) {
    areas.push_back(std::make_unique<MTextArea>(&window, size, markup, bold));
    MTextArea& area = *areas.back();
    area.bounds = at;
    area.format = format;
    area.SetText(MString(text));
    window.Attach(&area);
    area.Layout();
    return area;
  }

  RecordingHost host;
  MorphUI ui{&host, nullptr};
  TextWindow window{&ui};
  std::vector<std::unique_ptr<MTextArea>> areas;
};

uint32_t PixelOf(const MTextArea& area, int32_t x, int32_t y) {
  return area.pixels[static_cast<ptrdiff_t>(area.bufferHeight - 1 - y) * area.bufferWidth + x];
}
// Where an area has pixels of at least this alpha; empty for none.
Rect Ink(const MTextArea& area, uint32_t least = 64) {
  Rect ink = {INT32_MAX, INT32_MAX, -1, -1};
  for (int32_t y = 0; y < area.bounds.Height(); ++y) {
    for (int32_t x = 0; x < area.bounds.Width(); ++x) {
      if (PixelOf(area, x, y) >> 24 < least) continue;
      ink = {std::min(ink.left, x), std::min(ink.top, y), std::max(ink.right, x + 1), std::max(ink.bottom, y + 1)};
    }
  }
  return ink;
}
void ForEachPixel(const MTextArea& area, const Rect& place, const std::function<void(uint32_t)>& look) {
  for (int32_t y = place.top; y < place.bottom; ++y) {
    for (int32_t x = place.left; x < place.right; ++x) look(PixelOf(area, x, y));
  }
}
uint64_t Sum(const MTextArea& area) {
  uint64_t sum = 0;
  ForEachPixel(area, {0, 0, area.bounds.Width(), area.bounds.Height()}, [&](uint32_t pixel) { sum += pixel >> 24; });
  return sum;
}

TEST_F(TextOnScreen, StandsWhereTheFormatPutsIt) {
  const Rect at = Rect::Of(0, 0, 200, 60);
  const Rect left = Ink(Make(false, false, L"Text", at));
  const Rect right = Ink(Make(false, false, L"Text", at, 2));
  const Rect centred = Ink(Make(false, false, L"Text", at, 5));
  const Rect middle = Ink(Make(false, false, L"Text", at, 4));
  EXPECT_LE(left.left, 3);
  EXPECT_LT(left.bottom, 24);
  EXPECT_GE(right.right, 195);
  EXPECT_NEAR(centred.left + centred.right, 200, 6);
  EXPECT_NEAR(centred.top + centred.bottom, 60, 14);
  EXPECT_EQ(middle.left, left.left);
  EXPECT_EQ(middle.top, centred.top);
  MTextArea& moved = Make(false, false, L"Text", at);
  moved.verticalOffset = 3;
  moved.Layout();
  EXPECT_EQ(Ink(moved).top, left.top + 3);
}

TEST_F(TextOnScreen, WrapsAndCountsLinesAndIgnoresTheFormatsWordBreak) {
  MTextArea& wide = Make(false, false, L"one two three four", Rect::Of(0, 0, 400, 100), 48);
  EXPECT_EQ(wide.Render(), 1);
  const Rect line = Ink(wide);
  MTextArea& narrow = Make(false, false, L"one two three four", Rect::Of(0, 0, line.right / 2 + 10, 100), 48);
  EXPECT_EQ(narrow.Render(), 2);
  EXPECT_GT(Ink(narrow).bottom, line.bottom + 10);
  MTextArea& cut = Make(false, false, L"onetwothreefour", Rect::Of(0, 0, line.right / 3, 200));
  EXPECT_GE(cut.Render(), 2) << "a word wider than its area is cut";
}

TEST_F(TextOnScreen, ALongTextIsMeasuredAsAShortOneIs) {
  WideString text;
  for (int i = 0; i < 400; ++i) text += L"word ";
  MTextArea& area = Make(false, false, text.c_str(), Rect::Of(0, 0, 300, 100));
  const int32_t wrapped = area.Render();
  EXPECT_GT(wrapped, 20);
  EXPECT_LT(wrapped, 200);
  area.bounds = Rect::Of(0, 0, 300 * wrapped, 100);
  EXPECT_EQ(area.Render(), 1) << "a line longer than the first look at it";
}

TEST_F(TextOnScreen, BoldIsHeavierAndMarkupSwitchesIt) {
  const Rect at = Rect::Of(0, 0, 250, 30);
  const uint64_t normal = Sum(Make(false, false, L"Weight", at)), bold = Sum(Make(false, true, L"Weight", at));
  EXPECT_GT(bold, normal * 11 / 10);
  EXPECT_EQ(Sum(Make(true, false, L"<strong>Weight</strong>", at)), bold);
  EXPECT_EQ(Sum(Make(true, true, L"Weight", at)), normal) << "mark-up alone decides";
}

TEST_F(TextOnScreen, IsWhiteOverItsShadowAndDimmedByAlpha) {
  MTextArea& area = Make(false, true, L"III", Rect::Of(0, 0, 100, 30));
  bool white = false, shadow = false;
  ForEachPixel(area, {0, 1, 100, 30}, [&](uint32_t pixel) {
    white = white || pixel == 0xFEFDFDFD;
    shadow = shadow || (pixel >> 24 > 200 && (pixel & 0xFFFFFF) == 0);
    ASSERT_LE(pixel & 255, pixel >> 24) << "premultiplied";
  });
  EXPECT_TRUE(white);
  EXPECT_TRUE(shadow);
  const uint64_t full = Sum(area);
  area.alpha = 128;
  area.Layout();
  EXPECT_NEAR(static_cast<double>(Sum(area)) / static_cast<double>(full), 0.5, 0.02);
}

TEST_F(TextOnScreen, ALinkHasItsColourAnUnderlineAndARegionOverItsWords) {
  MTextArea& area = Make(true, false, L"See <a href='u'>here</a>.", Rect::Of(0, 0, 200, 40));
  ASSERT_NE(area.firstChild, nullptr);
  const Rect link = area.firstChild->bounds;
  EXPECT_GT(link.left, 20);
  EXPECT_EQ(link.top, 0);
  EXPECT_GT(link.Width(), 20);
  ForEachPixel(area, {link.left, link.bottom - 1, link.right, link.bottom},
               [](uint32_t pixel) { ASSERT_EQ(pixel >> 24, 254u) << "the bottom row is filled"; });
  bool blue = false;
  ForEachPixel(area, {link.left, link.top, link.right, link.bottom - 1}, [&](uint32_t pixel) {
    blue = blue || ((pixel & 255) > 100 && (pixel & 255) > 3 * (pixel >> 16 & 255));
  });
  EXPECT_TRUE(blue);
}

TEST_F(TextOnScreen, FontsFollowTheThreadsLocale) {
  const LCID before = GetThreadLocale();
  const struct {
    LCID locale;
    LONG height;
    const char* face;
  } rows[] = {
      {1028, 17, "Mingliu"}, {1041, 18, "Mincho"}, {2052, 17, "SimSun"}, {3076, 20, "Arial"}, {1033, 20, "Arial"}};
  for (const auto& row : rows) {
    SetThreadLocale(row.locale);
    const MTextArea area(&window, 20, false, false);
    for (const HFONT font : {area.normalFont, area.boldFont}) {
      LOGFONTA data = {};
      ASSERT_NE(GetObjectA(font, sizeof(data), &data), 0);
      EXPECT_STREQ(data.lfFaceName, row.face) << row.locale;
      EXPECT_EQ(data.lfHeight, row.height);
      EXPECT_EQ(data.lfWeight, font == area.boldFont ? 700 : 400);
      EXPECT_EQ(data.lfCharSet, 1);
      EXPECT_EQ(data.lfQuality, 2);
      EXPECT_EQ(data.lfPitchAndFamily, 2);
    }
  }
  SetThreadLocale(before);
}

TEST_F(TextOnScreen, ASizeBeyondMemoryLeavesTheAreaEmptyUntilItFits) {
  MTextArea& area = Make(false, false, L"Text", Rect::Of(0, 0, INT32_MAX, INT32_MAX));
  EXPECT_EQ(area.pixels, nullptr);
  EXPECT_EQ(area.Render(), 1);
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
    area.Detach();
  };
  for (int i = 0; i < 5; ++i) round();
  const driver::ObjectCounts before = driver::CountObjects(window.handle);
  for (int i = 0; i < 100; ++i) round();
  const driver::ObjectCounts after = driver::CountObjects(window.handle);
  EXPECT_EQ(after.gdi, before.gdi);
  EXPECT_EQ(after.windows, before.windows);
  EXPECT_NEAR(static_cast<double>(after.heapBlocks), static_cast<double>(before.heapBlocks), 8);
}

}  // namespace
