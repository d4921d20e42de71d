// What a text area is drawn on: a bitmap of its own with two fonts. The window's thread.
#pragma once

#include <cstdint>
#include <span>

#include "engine/WideText.h"
#include "ui/toolkit/Geometry.h"
#include "ui/toolkit/PlatformTypes.h"

// How much of a text fits.
struct TextFit {
  int32_t count = 0;  // units that fit
  int32_t width = 0;  // of the whole text
};

class TextCanvas {
 public:
  // What is lent out; all of it belongs to the canvas.
  struct Surface {
    DrawingContext dc = nullptr;
    BitmapHandle bitmap = nullptr;
    uint32_t* pixels = nullptr;  // bottom row first; null without a bitmap
    FontHandle normalFont = nullptr;
    FontHandle boldFont = nullptr;
  };

  virtual ~TextCanvas() = default;

  // Replaces the bitmap. Without memory for it there is none afterwards.
  virtual void Resize(int32_t width, int32_t height) = 0;
  [[nodiscard]] virtual const Surface& Lend() const = 0;
  // Measures `text` against `room` pixels, above 0. `extents` has room for a number a unit: for each that fits, the
  // width up to and with it.
  [[nodiscard]] virtual TextFit Measure(WideView text, bool bold, int32_t room, std::span<int32_t> extents) = 0;
  // Draws one line in the font measured last. `flags` are the platform's for drawing text; the answer is the height.
  virtual int32_t Draw(WideView text, uint32_t color, const Rect& place, uint32_t flags) = 0;
  virtual void FillWhite(const Rect& place) = 0;
  // After this the pixels hold all that was drawn.
  virtual void Flush() = 0;
};
