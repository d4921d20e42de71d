#include "ui/toolkit/TextLayout.h"

#include <algorithm>
#include <vector>

namespace {

constexpr uint32_t kWhite = 16777215;
// DT_SINGLELINE and DT_NOCLIP, so that a format's wish to break lines has no effect: that is done here.
constexpr uint32_t kLineFlags = 288;

size_t LongestText(const MTextChunk* first) {
  size_t longest = 0;
  for (const MTextChunk* chunk = first; chunk != nullptr; chunk = chunk->next) {
    longest = std::max(longest, chunk->text.View().size());
  }
  return longest;
}

// Where to break a text of which `fits` units, at least one, have room: before its last blank among them, but not at
// its very first unit. A blank just behind them does not count. Without any the word is cut.
size_t BreakAt(WideView text, size_t fits) {
  if (fits >= text.size()) return text.size();
  const size_t blank = text.substr(0, fits).rfind(L' ');
  return blank == WideView::npos || blank == 0 ? fits : blank;
}

class LineBreaker {
 public:
  LineBreaker(const TextFrame& into, TextCanvas& on, const LinkPlacer& place, size_t longest)
      : frame(into), canvas(on), placeLink(place), extents(longest) {}

  int32_t Run(const MTextChunk* first) {
    for (const MTextChunk* chunk = first; chunk != nullptr; chunk = chunk->next) {
      WideView rest = chunk->text.View();
      do {
        if (!Pass(*chunk, rest)) return lines;
      } while (!rest.empty());
    }
    return lines;
  }

 private:
  // Draws what fits of `rest` on the current line and cuts it off; false when nothing more can be shown. The spacing
  // moves each line of a wrapped chunk, not only its first.
  bool Pass(const MTextChunk& chunk, WideView& rest) {
    if (wrapped || chunk.newLine) {
      ++lines;
      y += lastHeight;
      x = 0;
    }
    y += chunk.spacing;
    const int32_t room = frame.width - x;
    if (room < 1) return false;
    const TextFit fit = rest.empty() ? TextFit() : canvas.Measure(rest, chunk.bold, room, extents);
    size_t count = static_cast<size_t>(std::max(fit.count, 0));
    if (count >= 1) {
      count = BreakAt(rest, count);
      DrawLine(chunk, rest.substr(0, count));
    }
    const bool wholeLineWasFree = x == 0;
    const size_t before = rest.size();
    wrapped = count < before;
    if (!wrapped) x += fit.width;
    rest.remove_prefix(count);
    rest.remove_prefix(std::min(rest.find_first_not_of(L' '), rest.size()));
    // A unit that is wider than a whole line would be tried for ever.
    return rest.empty() || rest.size() < before || !wholeLineWasFree;
  }

  void DrawLine(const MTextChunk& chunk, WideView line) {
    const bool link = chunk.IsLink();
    const int32_t top = y + frame.verticalOffset;
    lastHeight = canvas.Draw(line, link ? frame.linkColor : kWhite, {x, top, frame.width, frame.height},
                             frame.format | kLineFlags);
    if (!link) return;
    const Rect place = Rect::Of(x, top, extents[line.size() - 1], lastHeight);
    placeLink(chunk, place);
    canvas.FillWhite({place.left, place.bottom - 1, place.right, place.bottom});
  }

  const TextFrame& frame;
  TextCanvas& canvas;
  const LinkPlacer& placeLink;
  std::vector<int32_t> extents;
  int32_t lines = 1;
  int32_t x = 0;
  int32_t y = 0;
  int32_t lastHeight = 0;
  bool wrapped = false;
};

uint32_t Shaded(uint32_t pixel, uint32_t above, uint32_t alpha) {
  const uint32_t green = pixel >> 8 & 255;
  const uint32_t shadow = (above >> 8 & 255) * (255 - green) >> 8;
  const uint32_t a = ((shadow + green) * alpha >> 8) & 255;
  const uint32_t blue = a * (pixel & 255) >> 8;
  const uint32_t red = a * (pixel >> 16 & 255) >> 8;
  return a << 24 | red << 16 | (a * green >> 8) << 8 | blue;
}

// Most of a text's bitmap is empty, so it is looked at in stretches that the compiler can test in a few steps.
constexpr size_t kStretch = 16;

void ShadeStretch(uint32_t* line, const uint32_t* above, size_t count, uint32_t alpha) {
  uint32_t any = 0;
  for (size_t i = 0; i < count; ++i) any |= line[i] | above[i];
  if (any == 0) return;
  for (size_t i = 0; i < count; ++i) line[i] = Shaded(line[i], above[i], alpha);
}

}  // namespace

int32_t LayoutText(const MTextChunk* first, const TextFrame& frame, TextCanvas& canvas, const LinkPlacer& placeLink) {
  if (first == nullptr) return 1;
  return LineBreaker(frame, canvas, placeLink, LongestText(first)).Run(first);
}

void ShadeText(std::span<uint32_t> pixels, int32_t stride, int32_t width, int32_t height, uint8_t alpha) {
  if (stride < 1) return;
  const auto rowLength = static_cast<size_t>(stride);
  const auto rows = static_cast<int64_t>(pixels.size() / rowLength);
  const auto columns = static_cast<size_t>(std::clamp(width, 0, stride));
  // Upwards on the screen, so the row above a pixel is still as it was drawn.
  for (int64_t row = std::max<int64_t>(rows - height, 0); row + 1 < rows; ++row) {
    uint32_t* const line = pixels.data() + static_cast<size_t>(row) * rowLength;
    const uint32_t* const above = line + rowLength;
    for (size_t column = 0; column < columns; column += kStretch) {
      ShadeStretch(line + column, above + column, std::min(kStretch, columns - column), alpha);
    }
  }
}
