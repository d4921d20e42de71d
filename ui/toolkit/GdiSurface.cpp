#include "ui/toolkit/GdiSurface.h"

#include "engine/Handles.h"

void GdiSurface::Fill(const Rect& place, uint32_t color) {
  const GdiObject brush(CreateSolidBrush(color));
  const RECT area = {place.left, place.top, place.right, place.bottom};
  FillRect(dc, &area, static_cast<HBRUSH>(brush.Get()));
}

void GdiSurface::Copy(const Rect& place, DrawingContext image, const SourceRect& source) {
  if (image == nullptr) return;
  StretchBlt(dc, place.left, place.top, place.Width(), place.Height(), image, source.x, source.y, source.width,
             source.height, SRCCOPY);
}

void GdiSurface::Blend(const Rect& place, DrawingContext image, const SourceRect& source, uint8_t alpha) {
  if (image == nullptr || msimg.AlphaBlend == nullptr) return;
  const BLENDFUNCTION blend = {AC_SRC_OVER, 0, alpha, AC_SRC_ALPHA};
  msimg.AlphaBlend(dc, place.left, place.top, place.Width(), place.Height(), image, source.x, source.y, source.width,
                   source.height, blend);
}
