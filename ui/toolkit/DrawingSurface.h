// What regions are drawn on. Places are relative to the surface's own origin.
#pragma once

#include <cstdint>

#include "ui/toolkit/Geometry.h"
#include "ui/toolkit/PlatformTypes.h"

class DrawingSurface {
 public:
  virtual void Fill(const Rect& place, uint32_t color) = 0;
  // Stretches `source` of `image` over `place`, opaque.
  virtual void Copy(const Rect& place, DrawingContext image, const SourceRect& source) = 0;
  // The same for premultiplied pixels, all of them under a constant alpha.
  virtual void Blend(const Rect& place, DrawingContext image, const SourceRect& source, uint8_t alpha) = 0;

 protected:
  ~DrawingSurface() = default;
};
