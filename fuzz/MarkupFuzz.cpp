// A text with mark-up from bytes: parsed, and laid out in a frame against widths that the input chooses. Layout must
// end, within bounds, for any of them. The first three bytes are the frame's width, the widest unit and a shift.
#include "fuzz/Require.h"
#include "ui/toolkit/TextLayout.h"

namespace {

// Units are between nothing and `widest` wide; drawing checks that what is drawn was measured to fit.
class FuzzCanvas final : public TextCanvas {
 public:
  FuzzCanvas(int32_t widestUnit, uint32_t shiftBy) : widest(widestUnit), shift(shiftBy) {}

  void Resize(int32_t, int32_t) override {}
  [[nodiscard]] const Surface& Lend() const override { return surface; }
  TextFit Measure(WideView text, bool bold, int32_t room, std::span<int32_t> extents) override {
    Require(room > 0 && text.size() <= extents.size());
    TextFit fit;
    for (size_t i = 0; i < text.size(); ++i) {
      fit.width += static_cast<int32_t>(text[i] >> shift) % (widest + 1) + (bold ? 1 : 0);
      if (fit.width <= room) extents[i] = fit.width, fit.count = static_cast<int32_t>(i + 1);
    }
    fitted = static_cast<size_t>(fit.count);
    return fit;
  }
  int32_t Draw(WideView text, uint32_t, const Rect& place, uint32_t) override {
    Require(!text.empty() && text.size() <= fitted && place.left >= 0);
    drawn += text.size();
    return 12;
  }
  void FillWhite(const Rect& place) override { Require(place.Height() == 1); }
  void Flush() override {}

  size_t drawn = 0;

 private:
  int32_t widest;
  uint32_t shift;
  size_t fitted = 0;
  Surface surface;
};

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  if (size < 3) return 0;
  WideString units;
  for (size_t i = 3; i < size; ++i) units.push_back(static_cast<wchar_t>(data[i] == 0xFF ? 0x3042 : data[i]));
  const ChunkList chunks = ParseMarkup(MString(WideView(units)));
  size_t kept = 0, count = 0;
  for (const MTextChunk* chunk = chunks.get(); chunk != nullptr; chunk = chunk->next, ++count) {
    kept += chunk->text.View().size();
  }
  Require(kept <= units.size() + 2 * count);  // an item's bullet is two units
  FuzzCanvas canvas(data[1], data[2] & 7);
  const TextFrame frame = {static_cast<int8_t>(data[0]), 100, 0, 0, 0};
  const int32_t lines =
      LayoutText(chunks.get(), frame, canvas, [](const MTextChunk& chunk, const Rect&) { Require(chunk.IsLink()); });
  // Every line but those that chunks begin shows a unit or drops a blank.
  Require(lines >= 1 && static_cast<size_t>(lines) <= 2 * (units.size() + count) + 1);
  Require(canvas.drawn <= kept);
  return 0;
}
