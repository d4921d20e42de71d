#include "broker/GdiRelay.h"

#include "broker/DrawingArrays.h"
#include "engine/Handles.h"

static_assert(sizeof(RECT) == sizeof(DrawingRect));
static_assert(sizeof(BITMAPINFOHEADER) == sizeof(BitmapHeader));
static_assert(sizeof(LOGFONTW) == kLogFontBytes);
static_assert(sizeof(TEXTMETRICW) == kTextMetricsBytes);
static_assert(sizeof(XFORM) == kTransformBytes);
static_assert(ETO_GLYPH_INDEX == kGlyphIndices && ETO_PDY == kPairedSpacing);

namespace {

template <class Handle = HDC>
Handle As(DrawingHandle handle) {
  return reinterpret_cast<Handle>(handle);
}

DrawingHandle From(HGDIOBJ object) {
  return reinterpret_cast<DrawingHandle>(object);
}

}  // namespace

DrawingHandle GdiRelay::CreateBrush(uint32_t colour) {
  return From(CreateSolidBrush(colour));
}

DrawingHandle GdiRelay::CreatePen(uint32_t width, uint32_t colour) {
  const LOGBRUSH ink = {BS_SOLID, colour, 0};
  return From(ExtCreatePen(PS_GEOMETRIC, width, &ink, 0, nullptr));
}

DrawingHandle GdiRelay::Select(DrawingHandle dc, DrawingHandle object) {
  return From(SelectObject(As(dc), As<HGDIOBJ>(object)));
}

void GdiRelay::Delete(DrawingHandle object) {
  const GdiObject owned(As<HGDIOBJ>(object));
}

int32_t GdiRelay::Save(DrawingHandle dc) {
  return SaveDC(As(dc));
}

void GdiRelay::Restore(DrawingHandle dc, int32_t state) {
  RestoreDC(As(dc), state);
}

void GdiRelay::FillRectangle(DrawingHandle dc, const DrawingRect& rect, DrawingHandle brush) {
  const RECT area = {rect.left, rect.top, rect.right, rect.bottom};
  FillRect(As(dc), &area, As<HBRUSH>(brush));
}

void GdiRelay::FillPath(DrawingHandle dc) {
  ::FillPath(As(dc));
}

void GdiRelay::StrokePath(DrawingHandle dc) {
  ::StrokePath(As(dc));
}

void GdiRelay::ClipToPath(DrawingHandle dc) {
  SelectClipPath(As(dc), RGN_AND);
}

void GdiRelay::Stretch(DrawingHandle dc, const DrawingRect& target, const DrawingRect& source, const uint8_t* pixels,
                       const uint8_t* header, uint32_t rasterOperation) {
  StretchDIBits(As(dc), target.left, target.top, target.right, target.bottom, source.left, source.top, source.right,
                source.bottom, pixels, reinterpret_cast<const BITMAPINFO*>(header), DIB_RGB_COLORS, rasterOperation);
}
