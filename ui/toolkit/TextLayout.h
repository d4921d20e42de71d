// Breaks chunks of text into lines and draws them, and turns what was drawn into something to blend. The window's
// thread.
#pragma once

#include <cstdint>
#include <functional>
#include <span>

#include "ui/toolkit/MTextChunk.h"
#include "ui/toolkit/TextCanvas.h"

struct TextFrame {
  int32_t width = 0;
  int32_t height = 0;
  int32_t verticalOffset = 0;  // added to every line's place
  uint32_t format = 0;         // added to the flags of every line
  uint32_t linkColor = 0;
};

// Takes the words of a link on one line.
using LinkPlacer = std::function<void(const MTextChunk& chunk, const Rect& place)>;

// Draws the list at `first` into the frame, breaking lines at blanks, or within a word that is wider than the frame.
// The number of lines; 1 for an empty list. A chunk goes on where the one before it ended. Text that has no room is
// dropped: all that follows a frame or a rest of a line without width, and all that follows a unit wider than the
// frame.
int32_t LayoutText(const MTextChunk* first, const TextFrame& frame, TextCanvas& canvas, const LinkPlacer& placeLink);

// Gives a drawn text, light on black, its transparency: green is taken for coverage, and each pixel throws a shadow one
// row down. `pixels` are rows of `stride`, bottom row first; only the lowest rows of the top-left `width` by `height`
// are changed, all but its top row. `alpha` dims all of it.
void ShadeText(std::span<uint32_t> pixels, int32_t stride, int32_t width, int32_t height, uint8_t alpha);
