// A piece of text, of one style or with mark-up: broken into lines, drawn with a soft shadow onto a bitmap of its own
// and shown as any other region. Links become regions of their own.
#pragma once

#include <cstdint>
#include <memory>
#include <vector>

#include "engine/MString.h"
#include "ui/toolkit/MRegion.h"
#include "ui/toolkit/MTextChunk.h"
#include "ui/toolkit/TextCanvas.h"

class MHTMLLink;

class MTextArea : public MSkinnedSection {
 public:
  // Fonts of `size` pixels, of a face that fits the thread's locale.
  MTextArea(MWindow* inWindow, int32_t size, bool markup, bool bold);
  // An area on another canvas.
  MTextArea(MWindow* inWindow, std::unique_ptr<TextCanvas> on, bool markup, bool bold);
  ~MTextArea() override;
  void Layout() override;
  // Draws the text anew at the region's size; the number of lines.
  virtual int32_t Render();

  uint32_t format = 0;  // added to the flags of each drawn line
  uint32_t plainColor = 16777215;
  uint32_t linkTextColor = 16750638;
  uint32_t linkNormalColor = 14188839;
  uint32_t linkHoverColor = 16750638;
  MWindow* window = nullptr;
  int32_t bufferWidth = 256;
  int32_t bufferHeight = 128;
  // Lent by the canvas.
  DrawingContext dc = nullptr;
  BitmapHandle bitmap = nullptr;
  uint32_t* pixels = nullptr;
  MString text;
  FontHandle normalFont = nullptr;
  FontHandle boldFont = nullptr;
  bool plainBold = false;
  bool hasMarkup = false;
  bool needsParse = false;
  ChunkList chunks;
  int32_t verticalOffset = 0;

  // Takes effect at the next Layout.
  void SetText(const MString& newText);

 private:
  void ResizeBuffer(int32_t width, int32_t height);
  [[nodiscard]] ChunkList Parse() const;
  void AddLink(const MTextChunk& chunk, const Rect& place);

  std::unique_ptr<TextCanvas> canvas;
  // Every link since the area was made. A render may come from within a link's own handler, which must find it alive.
  std::vector<std::unique_ptr<MHTMLLink>> links;
};
