// A canvas on which every unit is 10 wide and every line 12 high, bold ones 14 wide, and what is drawn is kept as lines
// of text. For tests of line breaking and of text areas, in both builds.
#pragma once

#include <string>
#include <vector>

#include "tests/support/Texts.h"
#include "tests/ui/toolkit/RecordingWindow.h"
#include "ui/toolkit/TextCanvas.h"

class GridCanvas final : public TextCanvas {
 public:
  static constexpr int32_t kUnit = 10, kBoldUnit = 14, kLine = 12;

  explicit GridCanvas(Lines* to = nullptr) : log(to == nullptr ? own : *to) {}

  void Resize(int32_t width, int32_t height) override {
    log.push_back("bitmap " + std::to_string(width) + " " + std::to_string(height));
    memory.assign(static_cast<size_t>(width) * static_cast<size_t>(height), 0xFFFFFFFF);
    surface.pixels = memory.data();
  }
  [[nodiscard]] const Surface& Lend() const override { return surface; }
  TextFit Measure(WideView text, bool bold, int32_t room, std::span<int32_t> extents) override {
    const int32_t unit = bold ? kBoldUnit : kUnit;
    TextFit fit;
    for (; fit.count < static_cast<int32_t>(text.size()) && (fit.count + 1) * unit <= room; ++fit.count) {
      extents[static_cast<size_t>(fit.count)] = (fit.count + 1) * unit;
    }
    fit.width = static_cast<int32_t>(text.size()) * unit;
    lastBold = bold;
    return fit;
  }
  int32_t Draw(WideView text, uint32_t color, const Rect& place, uint32_t flags) override {
    log.push_back(std::to_string(place.left) + "," + std::to_string(place.top) + " " + ToUtf8(text) +
                  (lastBold ? " bold" : "") + (color == 16777215 ? "" : " colour " + std::to_string(color)));
    lastFlags = flags;
    return kLine;
  }
  void FillWhite(const Rect& place) override { log.push_back("underline " + Spell(place)); }
  void Flush() override { log.push_back("flush"); }

  Lines own;
  Lines& log;
  uint32_t lastFlags = 0;
  std::vector<uint32_t> memory;

 private:
  Surface surface;
  bool lastBold = false;
};
