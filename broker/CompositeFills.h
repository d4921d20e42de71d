// The drawing methods that spare a client several round trips: each makes what it draws with, draws, puts back what was
// selected, and deletes what it made. Portable; CoLumenBrokerServer's print methods call it with a GdiRelay.
#pragma once

#include <cstdint>

#include "broker/DrawingArrays.h"
#include "broker/DrawingRelay.h"
#include "engine/PlatformConstants.h"

// The arrays of a bitmap fill.
struct BitmapArrays {
  ByteArgument target;  // a rectangle each; right and bottom serve as width and height
  ByteArgument source;
  ByteArgument pixels;
  ByteArgument header;
};

// result::Fail, and nothing drawn, when an array has the wrong length; result::Ok otherwise, whatever became of the
// drawing. The bitmap fills throw std::bad_alloc, before anything is changed.
[[nodiscard]] Result AddRectangle(DrawingRelay& relay, DrawingHandle dc, const ByteArgument& rect, uint32_t colour);
void FillPathSolid(DrawingRelay& relay, DrawingHandle dc, uint32_t colour);
void StrokePathSolid(DrawingRelay& relay, DrawingHandle dc, uint32_t width, uint32_t colour);
// Without `clip` the path is left to the client, and the bitmap covers its whole target.
[[nodiscard]] Result FillPathWithBitmap(DrawingRelay& relay, DrawingHandle dc, const BitmapArrays& arrays, bool clip);
// The brush is what the raster operation calls the pattern.
[[nodiscard]] Result FillPathThroughBitmap(DrawingRelay& relay, DrawingHandle dc, const BitmapArrays& arrays,
                                           uint32_t colour, uint32_t rasterOperation);
