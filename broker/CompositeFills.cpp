// Fills of several calls, with what they make and change held by the scope.
#include "broker/CompositeFills.h"

#include <optional>

namespace {

constexpr uint32_t kCopySource = 0x00CC0020;

// A brush or a pen for the length of a fill: selected now, the old object selected again and this one deleted at the
// end.
class Tool {
 public:
  Tool(DrawingRelay& relay, DrawingHandle dc, DrawingHandle object)
      : relay_(relay), dc_(dc), object_(object), old_(relay.Select(dc, object)) {}
  ~Tool() {
    relay_.Select(dc_, old_);
    relay_.Delete(object_);
  }
  Tool(const Tool&) = delete;
  Tool& operator=(const Tool&) = delete;

  [[nodiscard]] DrawingHandle Get() const { return object_; }

 private:
  DrawingRelay& relay_;
  DrawingHandle dc_;
  DrawingHandle object_;
  DrawingHandle old_;
};

// The state of a device context, put back at the end.
class SavedState {
 public:
  SavedState(DrawingRelay& relay, DrawingHandle dc) : relay_(relay), dc_(dc), state_(relay.Save(dc)) {}
  ~SavedState() { relay_.Restore(dc_, state_); }
  SavedState(const SavedState&) = delete;
  SavedState& operator=(const SavedState&) = delete;

 private:
  DrawingRelay& relay_;
  DrawingHandle dc_;
  int32_t state_;
};

// Whether the drawing system has such coordinates: its spaces are 27 bits wide to either side. Some versions reckon
// with what lies beyond until a product wraps to zero, and divide by it.
bool IsInDrawingSpace(const DrawingRect& rect) {
  constexpr int32_t kReach = 1 << 27;
  const auto reached = [](int32_t value) { return value > -kReach && value < kReach; };
  return reached(rect.left) && reached(rect.top) && reached(rect.right) && reached(rect.bottom);
}

// Arrays that have passed the checks.
struct Transfer {
  DrawingRect target;
  DrawingRect source;
  FillBitmap bitmap;

  void Perform(DrawingRelay& relay, DrawingHandle dc, uint32_t rasterOperation) const {
    if (!bitmap.IsDrawable() || !IsInDrawingSpace(target) || !IsInDrawingSpace(source)) return;
    relay.Stretch(dc, target, source, bitmap.Pixels(), bitmap.Header(), rasterOperation);
  }
};

bool AreWellFormed(const BitmapArrays& arrays, size_t headerBytes) {
  return HasLength(arrays.target, sizeof(DrawingRect)) && HasLength(arrays.source, sizeof(DrawingRect)) &&
         HasLength(arrays.header, headerBytes) && arrays.pixels &&
         HoldsPixels(ReadBitmapHeader(*arrays.header), arrays.pixels->size());
}

Transfer MakeTransfer(const BitmapArrays& arrays) {
  return {*ReadRect(arrays.target), *ReadRect(arrays.source), {*arrays.header, *arrays.pixels}};
}

}  // namespace

Result AddRectangle(DrawingRelay& relay, DrawingHandle dc, const ByteArgument& rect, uint32_t colour) {
  const std::optional<DrawingRect> area = ReadRect(rect);
  if (!area) return result::Fail;
  const Tool brush(relay, dc, relay.CreateBrush(colour));
  relay.FillRectangle(dc, *area, brush.Get());
  return result::Ok;
}

void FillPathSolid(DrawingRelay& relay, DrawingHandle dc, uint32_t colour) {
  const Tool brush(relay, dc, relay.CreateBrush(colour));
  relay.FillPath(dc);
}

void StrokePathSolid(DrawingRelay& relay, DrawingHandle dc, uint32_t width, uint32_t colour) {
  const Tool pen(relay, dc, relay.CreatePen(width, colour));
  relay.StrokePath(dc);
}

Result FillPathWithBitmap(DrawingRelay& relay, DrawingHandle dc, const BitmapArrays& arrays, bool clip) {
  if (!AreWellFormed(arrays, kFillHeaderBytes)) return result::Fail;
  const Transfer transfer = MakeTransfer(arrays);
  std::optional<SavedState> saved;
  if (clip) {
    saved.emplace(relay, dc);
    relay.ClipToPath(dc);
  }
  transfer.Perform(relay, dc, kCopySource);
  return result::Ok;
}

Result FillPathThroughBitmap(DrawingRelay& relay, DrawingHandle dc, const BitmapArrays& arrays, uint32_t colour,
                             uint32_t rasterOperation) {
  if (!AreWellFormed(arrays, kTransparentFillHeaderBytes)) return result::Fail;
  const Transfer transfer = MakeTransfer(arrays);
  const SavedState saved(relay, dc);
  const Tool brush(relay, dc, relay.CreateBrush(colour));
  relay.ClipToPath(dc);
  transfer.Perform(relay, dc, rasterOperation);
  return result::Ok;
}
