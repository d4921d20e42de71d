// The toolkit on a real window: what is on the screen, and what mouse and keyboard do to it.
#include <windows.h>

#include <gtest/gtest.h>

#include <thread>

#include "tests/support/RecordingHost.h"
#include "tests/support/TestDesktop.h"
#include "tests/ui/toolkit/PaintedSkin.h"
#include "tests/ui/toolkit/WindowDriver.h"
#include "ui/toolkit/MProgressBar.h"
#include "ui/toolkit/MTextArea.h"
#include "ui/toolkit/MTooltipArea.h"
#include "ui/toolkit/MWindow.h"
#include "ui/toolkit/MorphUI.h"
#include "ui/toolkit/Widgets.h"
#include "ui/toolkit/WindowProcedures.h"

namespace {

[[maybe_unused]] const auto* const g_desktop = testing::AddGlobalTestEnvironment(new TestDesktop);

constexpr COLORREF kBackground = RGB(50, 51, 51);
constexpr uint32_t kButtonId = 100, kOtherId = 101, kBoxId = 200, kRadioId = 300;

// A window with one of each control.
class ControlWindow final : public MWindow {
 public:
  explicit ControlWindow(MorphUI* ui) : MWindow(ui) {
    backgroundColor = kBackground;
    ui->window = this;
    rect = {0, 0, 400, 300};
    ApplyRect(false, false);
    button = MakeButton(this, skin.Ref(), MString(L""));
    other = MakeButton(this, skin.Ref(), MString(L""));
    box = MakeCheckbox(this, skin.Ref(), false);
    for (int32_t i = 0; i < 3; ++i) radios[i] = MakeRadio(this, skin.Ref(), i == 0, i, &group);
    const MScale3Data track = {skin.Ref(), {4, 44, 4, 33}, {8, 44, 1, 33}, {9, 44, 4, 33}};
    const MScale3Data fill = {skin.Ref(), {2, 77, 1, 29}, {3, 77, 1, 29}, {4, 77, 2, 29}};
    bar = std::make_unique<MProgressBar>(this, track, fill);
    Place(*button, kButtonId, Rect::Of(20, 20, 140, 33));
    Place(*other, kOtherId, Rect::Of(200, 20, 140, 33));
    Place(*box, kBoxId, Rect::Of(20, 70, 15, 15));
    for (int32_t i = 0; i < 3; ++i)
      Place(*radios[i], kRadioId + static_cast<uint32_t>(i), Rect::Of(20, 100 + 30 * i, 15, 15));
    Place(*bar, 0, Rect::Of(20, 200, 360, 33));
    Show(true);
    driver::PumpInput(handle);
  }

  bool HandleEvent(uint32_t id, uint32_t message, int64_t param) override {
    if (id == WindowEventId && message == kWindowFrame) {
      ++frames;
      return true;
    }
    events.push_back(std::to_string(id) + " " + std::to_string(message) +
                     (param == 0 ? "" : " " + std::to_string(param)));
    return true;
  }
  void SetFocusRegion(MRegion* region, bool showRing) override { PlaceFocus(region, showRing, nullptr); }

  Lines Take() {
    driver::PumpInput(handle);
    Lines taken;
    taken.swap(events);
    return taken;
  }
  COLORREF Pixel(Point at) {
    UpdateWindow(handle);
    return driver::PixelAt(handle, at);
  }

  PaintedSkin skin;
  MRadioGroup group;
  std::unique_ptr<MButton> button, other;
  std::unique_ptr<MCheckboxButton> box;
  std::unique_ptr<MRadioButton> radios[3];
  std::unique_ptr<MProgressBar> bar;
  Lines events;
  int frames = 0;

 private:
  void Place(MRegion& region, uint32_t id, const Rect& at) {
    region.controlId = static_cast<int32_t>(id);
    region.bounds = at;
    Attach(&region);
    region.Layout();
  }
};

struct Told {
  std::vector<std::pair<int32_t, int64_t>> calls;
  static int32_t Hear(MorphUI*, int32_t code, int64_t value, void* context) {
    static_cast<Told*>(context)->calls.emplace_back(code, value);
    return 77;
  }
};

class RealWindow : public testing::Test {
 protected:
  void SetUp() override {
    ASSERT_NE(window.handle, nullptr);
    ASSERT_TRUE(driver::PumpUntil([&] { return window.frames > 0; }));
    SetForegroundWindow(window.handle);
    SetFocus(window.handle);
    driver::MoveTo(window.handle, {390, 290});
    window.Take();
  }

  RecordingHost host;
  MorphUI ui{&host, nullptr};
  ControlWindow window{&ui};
};

TEST_F(RealWindow, IsMadeAsDocumented) {
  wchar_t name[64] = {};
  GetClassNameW(window.handle, name, 64);
  EXPECT_STREQ(name, L"CorvaLumenPlayerInstaller");
  WNDCLASSEXW type = {sizeof(type)};
  ASSERT_TRUE(GetClassInfoExW(ui.resourceModule, name, &type));
  EXPECT_EQ(type.style, 3u);
  EXPECT_EQ(type.lpfnWndProc, &TopLevelProcedure);
  EXPECT_EQ(type.hbrBackground, nullptr);
  const auto style = static_cast<DWORD>(GetWindowLongPtrW(window.handle, GWL_STYLE));
  EXPECT_EQ(style & 0xFFFF0000 & ~(WS_VISIBLE | WS_CLIPSIBLINGS), 13107200u) << "no minimise box without a callback";
  Told told;
  ui.SetEventCallback(&Told::Hear, &told);
  const ControlWindow heard(&ui);
  EXPECT_NE(GetWindowLongPtrW(heard.handle, GWL_STYLE) & WS_MINIMIZEBOX, 0);
  EXPECT_NE(GetWindowLongPtrW(window.handle, GWL_EXSTYLE) & WS_EX_TOPMOST, 0);
  RECT client = {};
  GetClientRect(window.handle, &client);
  EXPECT_EQ(std::pair(client.right, client.bottom), std::pair(400L, 300L));
  window.title = MString(L"Lumen");
  window.ApplyTitle();
  GetWindowTextW(window.handle, name, 64);
  EXPECT_STREQ(name, L"Lumen");

  const HWND child = window.box->nativeWindow;
  ASSERT_NE(child, nullptr);
  GetClassNameW(child, name, 64);
  EXPECT_STREQ(name, L"Button");
  EXPECT_EQ(static_cast<DWORD>(GetWindowLongPtrW(child, GWL_STYLE)) & ~WS_CLIPSIBLINGS, 1342242827u);
  EXPECT_EQ(GetDlgCtrlID(child), static_cast<int>(kBoxId));
  EXPECT_EQ(GetDlgItem(window.handle, kBoxId), child);
  RECT place = {};
  GetWindowRect(child, &place);
  MapWindowPoints(nullptr, window.handle, reinterpret_cast<POINT*>(&place), 2);
  EXPECT_EQ(place.left, 20);
  EXPECT_EQ(place.bottom, 85);
  EXPECT_EQ(GetWindow(window.handle, GW_CHILD), window.button->nativeWindow) << "in the order of attaching";
  EXPECT_EQ(window.button->labelText->nativeWindow, nullptr) << "a label is no child";
}

TEST_F(RealWindow, TheScreenShowsEachControlInItsLook) {
  window.other->data = window.other->disabledData.get();
  window.other->Layout();
  window.bar->value = 50;
  window.bar->Layout();
  const struct {
    const char* what;
    Point at;
    COLORREF expected;
  } rows[] = {
      {"background", {5, 5}, kBackground},
      {"left cap", {21, 30}, PaintedSkin::kCap},
      {"button's first middle column", {23, 30}, PaintedSkin::kNormal},
      {"and its last", {156, 52}, PaintedSkin::kNormal},
      {"right cap", {158, 30}, PaintedSkin::kCap},
      {"below the button", {90, 53}, kBackground},
      {"disabled button", {270, 30}, PaintedSkin::kDisabled},
      {"chosen radio", {27, 107}, PaintedSkin::kRadioChecked},
      {"filled half", {100, 215}, PaintedSkin::kFill},
      {"empty half", {300, 215}, PaintedSkin::kTrack},
      {"track above the fill", {100, 201}, PaintedSkin::kTrack},
  };
  for (const auto& row : rows) {
    EXPECT_EQ(window.Pixel(row.at), row.expected) << row.what;
  }
}

TEST_F(RealWindow, OnlyTheDirtyPartIsDrawnWithTheConstantAlpha) {
  window.button->alpha = 128;
  window.button->Layout();
  const COLORREF mixed = window.Pixel({90, 30});
  EXPECT_NEAR(GetRValue(mixed), GetRValue(kBackground) / 2.0, 2);
  EXPECT_NEAR(GetGValue(mixed), (200 + GetGValue(kBackground)) / 2.0, 2);
  window.backgroundColor = RGB(1, 2, 3);
  window.box->Layout();
  EXPECT_EQ(window.Pixel({5, 5}), kBackground) << "nobody asked for this place";
  EXPECT_EQ(window.Pixel({27, 77}), PaintedSkin::kBox);
}

TEST_F(RealWindow, AButtonFollowsTheMouseAndHoldsItWhileDragged) {
  const Point inside = {90, 30}, outside = {90, 150}, other = {270, 30};
  constexpr int kDown = 1, kUp = -1;
  const struct {
    const char* what;
    Point to;
    int button;
    Lines events;
    COLORREF look;
    bool captured;
  } rows[] = {
      {"enters", inside, 0, {"100 0"}, PaintedSkin::kHover, true},
      {"leaves", outside, 0, {"100 1"}, PaintedSkin::kNormal, false},
      {"comes back", inside, 0, {"100 0"}, PaintedSkin::kHover, true},
      {"presses", inside, kDown, {"100 3"}, PaintedSkin::kPressed, true},
      {"drags out", outside, 0, {"100 1"}, PaintedSkin::kHover, true},
      {"over another", other, 0, {}, PaintedSkin::kHover, true},
      {"back in", inside, 0, {"100 0"}, PaintedSkin::kPressed, true},
      {"releases", inside, kUp, {"100 2"}, PaintedSkin::kHover, false},
      {"presses again", inside, kDown, {"100 3"}, PaintedSkin::kPressed, false},
      // Since a click gives the pointer back while it hovers, nobody notices.
      {"lets go outside", outside, kUp, {}, PaintedSkin::kPressed, false},
  };
  for (const auto& row : rows) {
    SCOPED_TRACE(row.what);
    driver::MoveTo(window.handle, row.to);
    if (row.button != 0) driver::Button(window.handle, row.button == kDown);
    EXPECT_EQ(window.Take(), row.events);
    EXPECT_EQ(window.Pixel({inside.x + 20, inside.y}), row.look);
    EXPECT_EQ(window.capturedRegion == window.button.get(), row.captured);
    EXPECT_EQ(GetCapture() == window.handle, row.captured);
  }
}

TEST_F(RealWindow, MarksTurnByMouseAndOthersAreCleared) {
  const HWND handle = window.handle;
  const auto click = [&](Point at) {
    driver::Click(handle, at);
    driver::MoveTo(handle, {390, 290});
  };
  // The click gave the pointer back, so none of them notices that it left.
  for (const COLORREF look : {PaintedSkin::kBoxCheckedHover, PaintedSkin::kBoxHover}) {
    click({27, 77});
    EXPECT_EQ(window.Pixel({27, 77}), look);
  }
  click({27, 167});
  EXPECT_EQ(window.Pixel({27, 167}), PaintedSkin::kRadioCheckedHover);
  EXPECT_EQ(window.Pixel({27, 107}), PaintedSkin::kRadio);
  EXPECT_EQ(window.group.selected->value, 2);
}

TEST_F(RealWindow, TabGoesRoundBothWaysPastWhatCannotBeFocused) {
  window.other->SetEnabled(false);
  window.radios[1]->SetVisible(false);
  const std::vector<MRegion*> order = {window.button.get(), window.box.get(), window.radios[0].get(),
                                       window.radios[2].get()};
  driver::Stroke(window.handle, VK_TAB);
  EXPECT_EQ(window.focusRegion, order.back()) << "with no control focused, Tab alone goes backwards";
  window.SetFocusRegion(nullptr, false);
  driver::Stroke(window.handle, VK_TAB, true);
  EXPECT_EQ(window.focusRegion, order[1]) << "and with Shift it goes forward from the first";
  size_t at = 1;
  for (int stroke = 0; stroke < 8; ++stroke) {
    const bool forward = stroke < 5;
    driver::Stroke(window.handle, VK_TAB, !forward);
    at = (at + (forward ? 1 : order.size() - 1)) % order.size();
    EXPECT_EQ(window.focusRegion, order[at]) << stroke;
    EXPECT_EQ(GetFocus(), order[at]->nativeWindow) << stroke;
    EXPECT_TRUE(window.ringVisible);
  }
  window.focusRegion->SetVisible(false);
  EXPECT_EQ(window.focusRegion, nullptr);
  EXPECT_EQ(GetFocus(), window.handle);
  driver::Click(window.handle, {390, 150});
  EXPECT_FALSE(window.ringVisible) << "a click on nothing ends it";
}

TEST_F(RealWindow, EnterAndSpacePressTheFocusedControl) {
  for (const WORD key : {WORD{VK_RETURN}, WORD{VK_SPACE}}) {
    SCOPED_TRACE(key);
    window.SetFocusRegion(window.box.get(), true);
    const bool before = window.box->checked;
    driver::Key(window.handle, key, true);
    EXPECT_EQ(window.box->pressState, kPressedInside);
    EXPECT_EQ(window.box->checked, before);
    driver::Key(window.handle, key, false);
    EXPECT_NE(window.box->checked, before);
    EXPECT_EQ(window.Take(), (Lines{"200 3", "200 2"}));
    EXPECT_TRUE(window.ringVisible) << "the ring stays as it is";
    EXPECT_EQ(window.focusRegion, window.box.get());
  }
  driver::Stroke(window.handle, 'A');
  EXPECT_EQ(window.Take(), Lines{});
}

TEST_F(RealWindow, ClosingTellsTheHostAndEndsTheLoop) {
  window.targetRect = {0, 0, 731, 345};
  ASSERT_TRUE(driver::PumpUntil([&] { return window.rect.right == 731 && window.rect.bottom == 345; }));
  EXPECT_EQ(window.Pixel({725, 340}), kBackground) << "what is new is painted";
  PostMessageW(window.button->nativeWindow, 1024 + 7, 9, 0);
  EXPECT_EQ(window.Take().back(), "9 7") << "a child passes events on";
  EXPECT_EQ(ui.Notify(2, 5), 0) << "nobody listens";
  Told told;
  ui.SetEventCallback(&Told::Hear, &told);
  EXPECT_EQ(ui.Notify(2, 5), 77);
  std::thread([&] { ui.PostEvent(1234, 5, -6); }).join();
  PostMessageW(window.handle, WM_CLOSE, 0, 0);
  EXPECT_EQ(ui.RunMessageLoop(), 1039);
  EXPECT_EQ(told.calls, (std::vector<std::pair<int32_t, int64_t>>{{2, 5}, {0, 1039}}));
  EXPECT_EQ(window.events, (Lines{"1234 5 -6", "2 0"}));
  EXPECT_FALSE(IsWindowVisible(window.handle));
  DestroyWindow(window.handle);
  MSG message = {};
  ASSERT_TRUE(PeekMessageW(&message, nullptr, WM_QUIT, WM_QUIT, PM_REMOVE));
  EXPECT_EQ(message.wParam, 0u) << "ended by another, the loop ends with nothing";
}

TEST_F(RealWindow, ATooltipIsThereExactlyWhileItIsActive) {
  const HWND control = window.other->nativeWindow;
  MTooltipArea tip(&window, window.handle, control, ui.resourceModule);
  const auto tools = [&] { return SendMessageW(tip.tooltipHandle, TTM_GETTOOLCOUNT, 0, 0); };
  EXPECT_EQ(SendMessageW(tip.tooltipHandle, TTM_GETDELAYTIME, TTDT_INITIAL, 0), 100);
  EXPECT_EQ(SendMessageW(tip.tooltipHandle, TTM_GETDELAYTIME, TTDT_AUTOPOP, 0), 30000);
  EXPECT_NE(GetWindowLongPtrW(tip.tooltipHandle, GWL_EXSTYLE) & WS_EX_TOPMOST, 0);
  EXPECT_EQ(tip.toolInfo->uFlags, 18u);
  tip.bounds = {0, 0, 140, 33};
  tip.SetText(MString(L"first"));
  EXPECT_EQ(tools(), 0);
  tip.SetActive(true);
  tip.SetActive(true);
  EXPECT_EQ(tools(), 1);
  tip.SetText(MString(L"accept the license"));
  tip.bounds = {0, 0, 100, 20};
  tip.Layout();
  wchar_t buffer[80] = {};
  TOOLINFOW info = {};
  info.cbSize = sizeof(info);
  info.hwnd = control;
  info.lpszText = buffer;
  SendMessageW(tip.tooltipHandle, TTM_GETTEXTW, 80, reinterpret_cast<LPARAM>(&info));
  EXPECT_STREQ(buffer, L"accept the license");
  ASSERT_TRUE(SendMessageW(tip.tooltipHandle, TTM_GETTOOLINFOW, 0, reinterpret_cast<LPARAM>(&info)));
  EXPECT_EQ(info.rect.right, 100);

  driver::MoveTo(window.handle, {250, 30});
  EXPECT_TRUE(driver::PumpUntil([&] { return IsWindowVisible(tip.tooltipHandle) != FALSE; }));
  tip.SetActive(false);
  EXPECT_EQ(tools(), 0);
}

TEST_F(RealWindow, AThousandLayoutsAndPaintsLeaveNothing) {
  window.rect = {0, 0, 730, 345};
  MRegion* const regions[] = {window.button.get(), window.box.get(), window.bar.get()};
  const auto round = [&](int number) {
    for (MRegion* const region : regions) {
      if (number % 10 == 0) {
        region->Detach();
        window.Attach(region);
      }
      region->Layout();
    }
    window.rect.right = 730 + number % 2;  // a new back buffer each time
    window.ApplyRect(false, true);
    InvalidateRect(window.handle, nullptr, FALSE);
    UpdateWindow(window.handle);
  };
  for (int i = 0; i < 50; ++i) round(i);
  window.Take();
  window.events.reserve(2000);
  const driver::ObjectCounts before = driver::CountObjects(window.handle);
  ASSERT_GT(before.gdi, 5u);
  for (int i = 0; i < 1000; ++i) {
    round(i);
    window.events.clear();
  }
  driver::PumpInput(window.handle);
  const driver::ObjectCounts after = driver::CountObjects(window.handle);
  EXPECT_LE(after.gdi, before.gdi + 2);
  EXPECT_EQ(after.windows, before.windows);
  EXPECT_LE(after.heapBlocks, before.heapBlocks + 100) << "a tenth of a block a round is noise, one is not";
}

}  // namespace
