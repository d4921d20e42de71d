// The toolkit on a real window: what is on the screen, and what mouse and keyboard do to it.
#include <gtest/gtest.h>

#include "tests/support/PlatformCounts.h"
#include "tests/ui/toolkit/WindowFixture.h"
#include "ui/toolkit/GdiSupport.h"
#include "ui/toolkit/MProgressBar.h"
#include "ui/toolkit/MTextArea.h"
#include "ui/toolkit/MTooltipArea.h"
#include "ui/toolkit/Widgets.h"

namespace {

[[maybe_unused]] const auto* const g_desktop = testing::AddGlobalTestEnvironment(new TestDesktop);

constexpr COLORREF kBackground = RGB(50, 51, 51);

// A skin sheet on which each pixel's colour tells where it lies.
constexpr COLORREF SkinAt(uint32_t x, uint32_t y) {
  return RGB(x & 255, y, x >> 8);
}
class CoordinateSkin {
 public:
  CoordinateSkin() {
    constexpr uint32_t kWidth = 569, kHeight = 175;
    BITMAPINFO info = {};
    info.bmiHeader = {sizeof(BITMAPINFOHEADER), kWidth, -LONG{kHeight}, 1, 32, BI_RGB, 0, 0, 0, 0, 0};
    void* bits = nullptr;
    dc.Create(nullptr);
    dc.Select(CreateDIBSection(dc.Get(), &info, DIB_RGB_COLORS, &bits, nullptr, 0));
    for (uint32_t at = 0; at < kWidth * kHeight; ++at) {
      const COLORREF color = SkinAt(at % kWidth, at / kWidth);  // whose red and blue lie the other way round
      static_cast<uint32_t*>(bits)[at] = 0xFF000000u | GetRValue(color) << 16 | (color & 0xFF00) | GetBValue(color);
    }
    slot = dc.Get();
  }
  [[nodiscard]] ImageRef Ref() const { return ImageRef(&slot); }

 private:
  BitmapDc dc;
  DrawingContext slot = nullptr;
};

class RealWindow : public WindowFixture {
 protected:
  RealWindow() {
    button = Place(MakeButton(&window, skin.Ref(), MString(L"")), Rect::Of(20, 20, 140, 33), 100);
    other = Place(MakeButton(&window, skin.Ref(), MString(L"")), Rect::Of(200, 20, 140, 33), 101);
    box = Place(MakeCheckbox(&window, skin.Ref(), false), Rect::Of(20, 70, 15, 15), 200);
    for (int32_t i = 0; i < 3; ++i) {
      radios[i] = Place(MakeRadio(&window, skin.Ref(), i == 0, i, &group), Rect::Of(20, 100 + 30 * i, 15, 15), 300 + i);
    }
    const MScale3Data track = {skin.Ref(), {4, 44, 4, 33}, {8, 44, 1, 33}, {9, 44, 4, 33}};
    const MScale3Data fill = {skin.Ref(), {2, 77, 1, 29}, {3, 77, 1, 29}, {4, 77, 2, 29}};
    bar = Place(std::make_unique<MProgressBar>(&window, track, fill), Rect::Of(20, 200, 360, 33));
  }
  void SetUp() override {
    ASSERT_TRUE(driver::PumpUntil([&] { return window.frames > 0; }));
    SetForegroundWindow(window.handle);
    SetFocus(window.handle);
    driver::MoveTo(window.handle, {390, 290});
    window.Take();
  }
  COLORREF Pixel(Point at) {
    UpdateWindow(window.handle);
    return driver::PixelAt(window.handle, at);
  }

  CoordinateSkin skin;
  MRadioGroup group;
  MButton *button, *other;
  MCheckboxButton* box;
  MRadioButton* radios[3];
  MProgressBar* bar;
};

TEST_F(RealWindow, TheScreenShowsEachControlInItsLook) {
  other->data = other->disabledData.get();
  other->Layout();
  bar->value = 50;
  bar->Layout();
  const struct {
    const char* what;
    Point at;
    COLORREF expected;
  } rows[] = {
      {"background", {5, 5}, kBackground},
      {"left cap", {21, 30}, SkinAt(14, 87)},
      {"and its last", {156, 52}, SkinAt(16, 109)},
      {"disabled button", {270, 30}, SkinAt(9, 87)},
      {"box", {27, 77}, SkinAt(11, 7)},
      {"chosen radio", {27, 107}, SkinAt(9, 162)},
      {"filled half", {100, 215}, SkinAt(3, 90)},
      {"empty half", {300, 215}, SkinAt(8, 59)},
  };
  for (const auto& row : rows) EXPECT_EQ(Pixel(row.at), row.expected) << row.what;
}

TEST_F(RealWindow, AButtonFollowsTheMouseAndHoldsItWhileDragged) {
  const Point inside = {90, 30}, outside = {90, 150}, over = {270, 30};
  constexpr COLORREF kNormal = SkinAt(16, 87), kHovered = SkinAt(23, 87), kPushed = SkinAt(30, 87);
  constexpr int kDown = 1, kUp = -1;
  const struct {
    const char* what;
    Point to;
    int button;
    Lines events;
    COLORREF look;
    bool captured;
  } rows[] = {
      {"enters", inside, 0, {"100 0"}, kHovered, true},
      {"leaves", outside, 0, {"100 1"}, kNormal, false},
      {"comes back", inside, 0, {"100 0"}, kHovered, true},
      {"presses", inside, kDown, {"100 3"}, kPushed, true},
      {"drags out, over another", over, 0, {"100 1"}, kHovered, true},
      {"back in", inside, 0, {"100 0"}, kPushed, true},
      {"releases", inside, kUp, {"100 2"}, kHovered, false},
  };
  for (const auto& row : rows) {
    SCOPED_TRACE(row.what);
    driver::MoveTo(window.handle, row.to);
    if (row.button != 0) driver::Button(window.handle, row.button == kDown);
    EXPECT_EQ(window.Take(), row.events);
    EXPECT_EQ(Pixel({inside.x + 20, inside.y}), row.look);
    EXPECT_EQ(window.capturedRegion == button, row.captured);
    EXPECT_EQ(GetCapture() == window.handle, row.captured);
  }
  EXPECT_EQ(window.focusRegion, button);
}

TEST_F(RealWindow, TabGoesRoundBothWaysAndEnterAndSpacePress) {
  other->SetEnabled(false);
  radios[1]->SetVisible(false);
  const std::vector<MRegion*> order = {button, box, radios[0], radios[2]};
  driver::Stroke(window.handle, VK_TAB);
  EXPECT_EQ(window.focusRegion, order.back()) << "with no control focused, Tab alone goes backwards";
  for (const size_t next : {0, 1, 2, 3, 0, 3, 2}) {
    const bool forward = window.focusRegion != order[(next + 1) % 4];
    driver::Stroke(window.handle, VK_TAB, !forward);
    EXPECT_EQ(window.focusRegion, order[next]);
    EXPECT_EQ(GetFocus(), order[next]->nativeWindow);
    EXPECT_TRUE(window.ringVisible);
  }
  window.SetFocusRegion(box, true);
  for (const WORD key : {WORD{VK_RETURN}, WORD{VK_SPACE}}) {
    window.Take();
    driver::Stroke(window.handle, key);
    EXPECT_EQ(window.Take(), (Lines{"200 3", "200 2"})) << key;
    EXPECT_EQ(box->checked, key == VK_RETURN);
  }
  driver::Click(window.handle, {390, 150});
  EXPECT_FALSE(window.ringVisible) << "a click on nothing ends it";
  EXPECT_EQ(GetFocus(), window.handle);
}

TEST_F(RealWindow, ATooltipIsThereExactlyWhileItIsActive) {
  MTooltipArea tip(&window, window.handle, other->nativeWindow, ui.resourceModule);
  const auto tools = [&] { return SendMessageW(tip.tooltipHandle, TTM_GETTOOLCOUNT, 0, 0); };
  tip.SetText(MString(L"accept the license"));
  EXPECT_EQ(tools(), 0);
  tip.SetActive(true);
  tip.SetActive(true);
  EXPECT_EQ(tools(), 1);
  tip.bounds = {0, 0, 100, 20};
  tip.Layout();
  driver::MoveTo(window.handle, {250, 30});
  EXPECT_TRUE(driver::PumpUntil([&] { return IsWindowVisible(tip.tooltipHandle) != FALSE; }));
  tip.SetActive(false);
  EXPECT_EQ(tools(), 0);
}

TEST_F(RealWindow, TheTextOfAnAreaIsWhite) {
  MTextArea area(&window, 20, true, false);
  area.SetText(MString(L"<strong>Text</strong>"));
  area.bounds = Rect::Of(0, 0, 100, 30);
  area.Layout();
  EXPECT_GT(std::count(area.pixels, area.pixels + area.bufferWidth * area.bufferHeight, 0xFEFDFDFD), 0);
}

struct Counts {
  explicit Counts(HWND window) {
    for (HWND child = GetWindow(window, GW_CHILD); child != nullptr; child = GetWindow(child, GW_HWNDNEXT)) ++windows;
    std::vector<HANDLE> heaps(64);
    heaps.resize(GetProcessHeaps(static_cast<DWORD>(heaps.size()), heaps.data()));
    for (const HANDLE heap : heaps) {
      PROCESS_HEAP_ENTRY entry = {};
      while (HeapWalk(heap, &entry)) heapBlocks += (entry.wFlags & PROCESS_HEAP_ENTRY_BUSY) != 0;
    }
  }
  size_t gdi = counts::GdiObjects(), windows = 0, heapBlocks = 0;
};

// Links that dropped out are kept while their text lives and end with it.
TEST_F(RealWindow, AThousandLayoutsAndPaintsLeaveNothing) {
  std::unique_ptr<MTextArea> text;
  const auto round = [&](int number) {
    if (number % 10 == 0) {
      text = std::make_unique<MTextArea>(&window, 16, true, false);
      button->Detach();
      window.Attach(button);
      window.Attach(text.get());
    }
    text->SetText(MString(L"A <a href='u'>link</a> and <strong>another</strong> <ncp>one</ncp> on several lines"));
    text->bounds = Rect::Of(0, 0, 200 + number % 10 * 40, 300);
    text->Layout();
    button->Layout();
    window.rect = {0, 0, 730 + number % 2, 345};  // a new back buffer each time
    window.ApplyRect(false, true);
    InvalidateRect(window.handle, nullptr, FALSE);
    UpdateWindow(window.handle);
    window.events.clear();
  };
  for (int i = 0; i <= 50; ++i) round(i);
  window.Take();
  const Counts before(window.handle);
  ASSERT_GT(before.gdi, 5u);
  for (int i = 0; i <= 1000; ++i) round(i);
  window.Take();
  const Counts after(window.handle);
  EXPECT_LE(after.gdi, before.gdi + 2);
  EXPECT_EQ(after.windows, before.windows);
  EXPECT_LE(after.heapBlocks, before.heapBlocks + 100) << "a tenth of a block a round is noise, one is not";
}

}  // namespace
