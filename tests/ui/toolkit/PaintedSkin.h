// A skin sheet of flat colours, one for each piece that the controls are made of, so that a test can tell from one
// pixel which piece was drawn.
#pragma once

#include <windows.h>

#include <utility>

#include "ui/toolkit/GdiSupport.h"
#include "ui/toolkit/MRegion.h"

class PaintedSkin {
 public:
  static constexpr COLORREF kDisabled = RGB(10, 0, 0), kNormal = RGB(0, 200, 0), kHover = RGB(0, 0, 200),
                            kPressed = RGB(200, 0, 0), kCap = RGB(200, 200, 0), kBox = RGB(1, 100, 100),
                            kBoxHover = RGB(2, 100, 100), kBoxChecked = RGB(3, 100, 100),
                            kBoxCheckedHover = RGB(4, 100, 100), kRadio = RGB(1, 50, 150),
                            kRadioHover = RGB(2, 50, 150), kRadioChecked = RGB(3, 50, 150),
                            kRadioCheckedHover = RGB(4, 50, 150), kTrack = RGB(60, 60, 60), kFill = RGB(240, 240, 0);

  PaintedSkin() {
    constexpr int kWidth = 569, kHeight = 175;
    dc.Create(nullptr);
    BITMAPINFO info = {};
    info.bmiHeader.biSize = sizeof(info.bmiHeader);
    info.bmiHeader.biWidth = kWidth;
    info.bmiHeader.biHeight = -kHeight;
    info.bmiHeader.biPlanes = 1;
    info.bmiHeader.biBitCount = 32;
    void* bits = nullptr;
    dc.Select(CreateDIBSection(dc.Get(), &info, DIB_RGB_COLORS, &bits, nullptr, 0));
    pixels = static_cast<uint32_t*>(bits);
    slot = dc.Get();
    for (const auto& [place, color] : kPieces) {
      for (int at = 0; at < place.width * place.height; ++at) {
        // The rows of the bitmap have red and blue the other way round.
        pixels[(place.y + at / place.width) * kWidth + place.x + at % place.width] =
            0xFF000000 | GetRValue(color) << 16 | static_cast<uint32_t>(GetGValue(color)) << 8 | GetBValue(color);
      }
    }
    GdiFlush();
  }
  [[nodiscard]] ImageRef Ref() const { return ImageRef(&slot); }

 private:
  static constexpr std::pair<SourceRect, COLORREF> kPieces[] = {{{4, 0, 15, 15}, kBox},
                                                                {{19, 0, 15, 15}, kBoxHover},
                                                                {{4, 15, 15, 15}, kBoxChecked},
                                                                {{19, 15, 15, 15}, kBoxCheckedHover},
                                                                {{2, 140, 15, 15}, kRadio},
                                                                {{17, 140, 15, 15}, kRadioHover},
                                                                {{2, 155, 15, 15}, kRadioChecked},
                                                                {{17, 155, 15, 15}, kRadioCheckedHover},
                                                                {{6, 77, 28, 33}, kCap},
                                                                {{9, 77, 1, 33}, kDisabled},
                                                                {{16, 77, 1, 33}, kNormal},
                                                                {{23, 77, 1, 33}, kHover},
                                                                {{30, 77, 1, 33}, kPressed},
                                                                {{4, 44, 9, 33}, kTrack},
                                                                {{2, 77, 4, 29}, kFill}};

  BitmapDc dc;
  DrawingContext slot = nullptr;
  uint32_t* pixels = nullptr;
};
