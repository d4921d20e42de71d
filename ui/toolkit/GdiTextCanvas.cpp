// Text areas on the platform's own text drawing.
#include <windows.h>

#include "ui/toolkit/GdiSupport.h"
#include "ui/toolkit/LocaleFont.h"
#include "ui/toolkit/MTextArea.h"
#include "ui/toolkit/MWindow.h"

namespace {

constexpr COLORREF kWhite = 16777215;
// Most lines are shorter; only a longer one makes the platform look at all that is left of a text.
constexpr size_t kFirstLook = 256;

HFONT MakeFont(const FontChoice& choice, int32_t weight) {
  return CreateFontA(choice.height, 0, 0, 0, weight, 0, 0, 0, DEFAULT_CHARSET, 0, 0, PROOF_QUALITY, VARIABLE_PITCH,
                     choice.face);
}

class GdiTextCanvas final : public TextCanvas {
 public:
  GdiTextCanvas(HDC like, int32_t size) {
    const FontChoice choice = ChooseFont(GetThreadLocale(), size);
    normal.Reset(MakeFont(choice, FW_NORMAL));
    bold.Reset(MakeFont(choice, FW_BOLD));
    if (dc.Create(like)) SetBkMode(dc.Get(), TRANSPARENT);
    surface.dc = dc.Get();
    surface.normalFont = static_cast<HFONT>(normal.Get());
    surface.boldFont = static_cast<HFONT>(bold.Get());
  }

  void Resize(int32_t width, int32_t height) override {
    BITMAPINFO info = {};
    info.bmiHeader.biSize = sizeof(info.bmiHeader);
    info.bmiHeader.biWidth = width;
    info.bmiHeader.biHeight = height;
    info.bmiHeader.biPlanes = 1;
    info.bmiHeader.biBitCount = 32;
    info.bmiHeader.biCompression = BI_RGB;
    void* bits = nullptr;
    surface.bitmap = CreateDIBSection(surface.dc, &info, DIB_RGB_COLORS, &bits, nullptr, 0);
    surface.pixels = surface.bitmap == nullptr ? nullptr : static_cast<uint32_t*>(bits);
    if (surface.bitmap != nullptr) dc.Select(surface.bitmap);
  }

  [[nodiscard]] const Surface& Lend() const override { return surface; }

  TextFit Measure(WideView text, bool wantsBold, int32_t room, std::span<int32_t> extents) override {
    SelectFont(wantsBold ? bold.Get() : normal.Get());
    const size_t look = text.size() > 2 * kFirstLook ? kFirstLook : text.size();
    TextFit fit = MeasureAll(text.substr(0, look), room, extents);
    if (look < text.size() && static_cast<size_t>(fit.count) == look) fit = MeasureAll(text, room, extents);
    return fit;
  }

  int32_t Draw(WideView text, uint32_t color, const Rect& place, uint32_t flags) override {
    RECT rect = {place.left, place.top, place.right, place.bottom};
    SetTextColor(surface.dc, color);
    return DrawTextW(surface.dc, text.data(), static_cast<int>(text.size()), &rect, flags);
  }

  void FillWhite(const Rect& place) override {
    const RECT rect = {place.left, place.top, place.right, place.bottom};
    FillRect(surface.dc, &rect, static_cast<HBRUSH>(white.Get()));
  }

  void Flush() override { GdiFlush(); }

 private:
  // Selecting what is selected already costs as much as measuring a line.
  void SelectFont(HGDIOBJ font) {
    if (font != selected) SelectObject(surface.dc, font);
    selected = font;
  }

  TextFit MeasureAll(WideView text, int32_t room, std::span<int32_t> extents) {
    INT count = 0;
    SIZE size = {};
    if (!GetTextExtentExPointW(surface.dc, text.data(), static_cast<int>(text.size()), room, &count, extents.data(),
                               &size)) {
      return {};
    }
    return {count, size.cx};
  }

  GdiObject white{CreateSolidBrush(kWhite)};
  GdiObject normal;
  GdiObject bold;
  BitmapDc dc;  // last, so that it ends before the fonts it may have selected
  Surface surface;
  HGDIOBJ selected = nullptr;
};

}  // namespace

MTextArea::MTextArea(MWindow* inWindow, int32_t size, bool markup, bool bold)
    : MTextArea(inWindow, std::make_unique<GdiTextCanvas>(inWindow->backDC, size), markup, bold) {}
