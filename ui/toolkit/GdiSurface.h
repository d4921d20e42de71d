// A drawing context as the surface that regions are drawn on.
#pragma once

#include <windows.h>

#include "ui/toolkit/DrawingSurface.h"
#include "ui/toolkit/MorphUI.h"

class GdiSurface final : public DrawingSurface {
 public:
  // Draws on `on`, blending through `blending`; both must outlive the surface. An image that is not loaded draws
  // nothing, nor does a blend without the library.
  GdiSurface(HDC on, const MsimgLibrary& blending) : dc(on), msimg(blending) {}

  void Fill(const Rect& place, uint32_t color) override;
  void Copy(const Rect& place, DrawingContext image, const SourceRect& source) override;
  void Blend(const Rect& place, DrawingContext image, const SourceRect& source, uint8_t alpha) override;

 private:
  HDC dc;
  const MsimgLibrary& msimg;
};
