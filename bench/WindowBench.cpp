// Painting a panel-sized window beside the copies that any painting ends with, text beside the platform's own, and what
// an idle window costs. Runs on a display (tools/with-display), on a desktop of its own.
#include <windows.h>

#include <array>
#include <cstdio>
#include <memory>

#include "bench/BenchSupport.h"
#include "engine/DllHelpers.h"
#include "ui/toolkit/GdiSupport.h"
#include "ui/toolkit/MImage.h"
#include "ui/toolkit/MScale9Section.h"
#include "ui/toolkit/MTextArea.h"
#include "ui/toolkit/MWindow.h"
#include "ui/toolkit/MorphUI.h"
#include "ui/toolkit/Widgets.h"

namespace {

constexpr int kWidth = 730, kHeight = 345, kBar = 67;
constexpr wchar_t kParagraph[] =
    L"Lumen Player could not be installed because an existing version may still be in use somewhere. Please close all "
    L"applications that use the Lumen Player and try again, or visit the page below for more about what else may help "
    L"you to go on.";

// What the first panel shows: background, banner, logo, a box with its text, two buttons on a bar.
class PanelWindow final : public MWindow {
 public:
  PanelWindow(MorphUI* ui, HMODULE module) : MWindow(ui) {
    backgroundColor = RGB(50, 51, 51);
    skin.Load(module, image_id::Skin);
    banner.Load(module, image_id::Banner);
    rect = {0, 0, kWidth, kHeight};
    ApplyRect(false, false);
    backgroundData = MScale9Data(skin.Ref(), 155, 0, {1, 412, 1}, {173, 1, 1}, kDrawCopy);
    barData = {skin.Ref(), {1, 0, 1, 68}, {2, 0, 1, 68}, {3, 0, 1, 68}};
    Add(regions[0] = std::make_unique<MScale9Section>(this, &backgroundData), Rect::Of(0, 0, kWidth, kHeight - kBar));
    Add(regions[1] = std::make_unique<MSkinnedSection>(banner.Ref(), SourceRect{0, 0, 400, 130}),
        Rect::Of(115, 55, 400, 130));
    Add(regions[2] = std::make_unique<MSkinnedSection>(skin.Ref(), SourceRect{34, 0, 47, 71}), Rect::Of(10, 1, 47, 71));
    Add(regions[3] = MakeCheckbox(this, skin.Ref(), false), Rect::Of(96, 230, 15, 15));
    auto label = std::make_unique<MTextArea>(this, 16, false, false);
    label->SetText(MString(L" I have read and agree to the terms of the Lumen Player License Agreement."));
    Add(regions[4] = std::move(label), Rect::Of(115, 229, 600, 20));
    Add(regions[5] = std::make_unique<MScale3Section>(this, &barData), Rect::Of(0, kHeight - 68, kWidth, kBar));
    Add(regions[6] = MakeButton(this, skin.Ref(), MString(L"QUIT")), Rect::Of(94, kHeight - 50, 140, 33));
    Add(regions[7] = MakeButton(this, skin.Ref(), MString(L"INSTALL")), Rect::Of(574, kHeight - 50, 140, 33));
    Show(true);
  }
  bool HandleEvent(uint32_t, uint32_t, int64_t) override { return true; }
  void SetFocusRegion(MRegion*, bool) override {}

 private:
  void Add(const std::unique_ptr<MRegion>& region, const Rect& place) {
    region->bounds = place;
    Attach(region.get());
    region->Layout();
  }
  MImage skin, banner;
  MScale9Data backgroundData;
  MScale3Data barData;
  std::array<std::unique_ptr<MRegion>, 8> regions;
};

// A full-sized bitmap of this module's own depth, opaque.
class Canvas {
 public:
  explicit Canvas(HDC like) {
    dc.Create(like);
    BITMAPINFO info = {};
    info.bmiHeader = {sizeof(BITMAPINFOHEADER), kWidth, kHeight, 1, 32, BI_RGB, 0, 0, 0, 0, 0};
    void* pixels = nullptr;
    dc.Select(CreateDIBSection(dc.Get(), &info, DIB_RGB_COLORS, &pixels, nullptr, 0));
    std::fill_n(static_cast<uint32_t*>(pixels), kWidth * kHeight, 0xFF336699);
  }
  [[nodiscard]] HDC Get() const { return dc.Get(); }

 private:
  BitmapDc dc;
};

void Pump(HWND window, DWORD milliseconds) {
  const ULONGLONG end = GetTickCount64() + milliseconds;
  for (MSG message = {}; GetTickCount64() < end;) {
    while (PeekMessageW(&message, nullptr, 0, 0, PM_REMOVE)) DispatchMessageW(&message);
    MsgWaitForMultipleObjects(0, nullptr, FALSE, 20, QS_ALLINPUT);
  }
  UpdateWindow(window);
}

// The product's module, two folders beside this program's own.
WideString ModulePath() {
  wchar_t path[MAX_PATH] = {};
  GetModuleFileNameW(nullptr, path, MAX_PATH);
  WideString own(path);
  for (int level = 0; level < 3; ++level) own.resize(own.rfind(L'\\'));
  return own + L"\\bin\\LumenUtil.dll";
}

void PaintFigures(const PanelWindow& window, const MorphUI& ui) {
  const WindowDc screen(window.handle);
  const Canvas canvas(screen.Get());
  const BLENDFUNCTION blend = {AC_SRC_OVER, 0, 255, AC_SRC_ALPHA};
  const double paint = Nanoseconds(10, 10, [&] {
    InvalidateRect(window.handle, nullptr, FALSE);
    UpdateWindow(window.handle);
    GdiFlush();
  });
  const double copy = Nanoseconds(10, 10, [&] {
    BitBlt(screen.Get(), 0, 0, kWidth, kHeight, canvas.Get(), 0, 0, SRCCOPY);
    GdiFlush();
  });
  const double blended = Nanoseconds(10, 10, [&] {
    ui.msimg.AlphaBlend(screen.Get(), 0, 0, kWidth, kHeight, canvas.Get(), 0, 0, kWidth, kHeight, blend);
    GdiFlush();
  });
  std::printf("paint 730 by 345          %8.0f us     one BitBlt   %8.0f us     ratio %.1f\n", paint / 1000,
              copy / 1000, paint / copy);
  std::printf("paint 730 by 345          %8.0f us     one AlphaBlend %6.0f us     ratio %.1f\n", paint / 1000,
              blended / 1000, paint / blended);
}

void TextFigures(PanelWindow& window) {
  MTextArea area(&window, 16, false, false);
  area.bounds = Rect::Of(0, 0, 400, 120);
  area.SetText(MString(kParagraph));
  const Canvas canvas(nullptr);
  const GdiObject font(
      CreateFontW(16, 0, 0, 0, 400, 0, 0, 0, DEFAULT_CHARSET, 0, 0, PROOF_QUALITY, VARIABLE_PITCH, L"Arial"));
  const SelectedObject selected(canvas.Get(), font.Get());
  SetBkMode(canvas.Get(), TRANSPARENT);
  const double rendered = Nanoseconds(10, 20, [&] { Keep(area.Render()); });
  const double drawn = Nanoseconds(10, 20, [&] {
    RECT place = {0, 0, 400, 120};
    DrawTextW(canvas.Get(), kParagraph, -1, &place, DT_WORDBREAK);
    GdiFlush();
  });
  std::printf("text area, 40 words       %8.0f us     one DrawTextW %7.0f us     ratio %.1f\n", rendered / 1000,
              drawn / 1000, rendered / drawn);
}

double CpuMilliseconds() {
  FILETIME made, ended, kernel, user;
  GetThreadTimes(GetCurrentThread(), &made, &ended, &kernel, &user);
  const auto ticks = [](const FILETIME& time) {
    return static_cast<double>(static_cast<uint64_t>(time.dwHighDateTime) << 32 | time.dwLowDateTime) / 10000;
  };
  return ticks(kernel) + ticks(user);
}

void IdleFigure(const PanelWindow& window) {
  constexpr DWORD kSpan = 5000;
  Pump(window.handle, 200);
  const double before = CpuMilliseconds();
  Pump(window.handle, kSpan);
  const double used = CpuMilliseconds() - before;
  std::printf("idle window, 16 ms tick   %8.0f ms     of wall time %8.0f ms     share %.2f %%\n", used,
              static_cast<double>(kSpan), used * 100 / kSpan);
}

}  // namespace

int main() {
  const HDESK desktop = CreateDesktopA("LumenBench", nullptr, nullptr, 0, GENERIC_ALL, nullptr);
  if (desktop == nullptr || !SetThreadDesktop(desktop) || GetDesktopWindow() == nullptr) return 1;
  const LibraryHandle module(LoadLibraryExW(ModulePath().c_str(), nullptr, LOAD_LIBRARY_AS_DATAFILE));
  MorphUI ui(nullptr, nullptr);
  PanelWindow window(&ui, module.Get());
  if (window.handle == nullptr) return 1;
  Pump(window.handle, 200);
  PaintFigures(window, ui);
  TextFigures(window);
  IdleFigure(window);
  return 0;
}
