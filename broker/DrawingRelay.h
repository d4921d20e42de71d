// What a fill made of several drawing calls needs of the platform. GdiRelay performs it; tests record it.
#pragma once

#include <cstdint>

// A handle of the drawing system: a device context, a brush, a pen. Zero is none.
using DrawingHandle = intptr_t;

// Clients hold handles as their low 32 bits. They come back sign-extended; there is no table of them, and nobody but
// the drawing system itself tells a good one from a bad one.
[[nodiscard]] constexpr DrawingHandle DrawingHandleFrom(uint32_t wire) {
  return static_cast<DrawingHandle>(static_cast<int32_t>(wire));
}
[[nodiscard]] constexpr uint32_t WireFrom(DrawingHandle handle) {
  return static_cast<uint32_t>(handle);
}

// A rectangle as it travels. The two ends of a bitmap's transfer use `right` and `bottom` as a width and a height.
struct DrawingRect {
  int32_t left;
  int32_t top;
  int32_t right;
  int32_t bottom;
};
static_assert(sizeof(DrawingRect) == 16);

// Thread: the server's apartment. A call that fails says so to nobody: the fills run on and put back what they changed.
class DrawingRelay {
 public:
  virtual ~DrawingRelay() = default;

  // Colours are 0x00bbggrr. Zero when the object cannot be made; the caller deletes what it gets, zero included.
  [[nodiscard]] virtual DrawingHandle CreateBrush(uint32_t colour) = 0;
  // A geometric pen of solid colour; the width is in logical units.
  [[nodiscard]] virtual DrawingHandle CreatePen(uint32_t width, uint32_t colour) = 0;
  // The object that was selected before, zero when nothing was selected now.
  virtual DrawingHandle Select(DrawingHandle dc, DrawingHandle object) = 0;
  virtual void Delete(DrawingHandle object) = 0;

  // The saved state's number, zero when it could not be saved.
  [[nodiscard]] virtual int32_t Save(DrawingHandle dc) = 0;
  virtual void Restore(DrawingHandle dc, int32_t state) = 0;

  virtual void FillRectangle(DrawingHandle dc, const DrawingRect& rect, DrawingHandle brush) = 0;
  virtual void FillPath(DrawingHandle dc) = 0;
  virtual void StrokePath(DrawingHandle dc) = 0;
  // Leaves the part of the clip region that lies in the path.
  virtual void ClipToPath(DrawingHandle dc) = 0;
  // `header` is a BITMAPINFO with its colours, `pixels` all the bytes that it announces: both as FillBitmap makes them.
  virtual void Stretch(DrawingHandle dc, const DrawingRect& target, const DrawingRect& source, const uint8_t* pixels,
                       const uint8_t* header, uint32_t rasterOperation) = 0;
};
