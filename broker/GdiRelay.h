// The drawing calls on real device contexts. It has no state; any number may exist.
#pragma once

#include <windows.h>

#include "broker/DrawingRelay.h"

class GdiRelay final : public DrawingRelay {
 public:
  [[nodiscard]] DrawingHandle CreateBrush(uint32_t colour) override;
  [[nodiscard]] DrawingHandle CreatePen(uint32_t width, uint32_t colour) override;
  DrawingHandle Select(DrawingHandle dc, DrawingHandle object) override;
  void Delete(DrawingHandle object) override;
  [[nodiscard]] int32_t Save(DrawingHandle dc) override;
  void Restore(DrawingHandle dc, int32_t state) override;
  void FillRectangle(DrawingHandle dc, const DrawingRect& rect, DrawingHandle brush) override;
  void FillPath(DrawingHandle dc) override;
  void StrokePath(DrawingHandle dc) override;
  void ClipToPath(DrawingHandle dc) override;
  void Stretch(DrawingHandle dc, const DrawingRect& target, const DrawingRect& source, const uint8_t* pixels,
               const uint8_t* header, uint32_t rasterOperation) override;
};

// A client's 32 bits as a handle.
template <class Handle = HDC>
[[nodiscard]] Handle GdiHandleFrom(ULONG wire) {
  return reinterpret_cast<Handle>(DrawingHandleFrom(wire));
}
// A handle as the 32 bits that a client gets.
[[nodiscard]] inline ULONG WireFromGdi(const void* handle) {
  return WireFrom(reinterpret_cast<DrawingHandle>(handle));
}
