#include "ui/toolkit/MTextArea.h"

#include <algorithm>
#include <new>
#include <utility>

#include "ui/toolkit/MHTMLLink.h"
#include "ui/toolkit/TextLayout.h"

namespace {

// The bitmap grows in steps, so that a window whose size is animated does not get a new one with each frame.
int32_t BufferSide(int32_t needed) {
  constexpr int64_t kStep = 128;
  const int64_t side = (int64_t{std::max(needed, 0)} & ~(kStep - 1)) + kStep;
  return static_cast<int32_t>(std::min<int64_t>(side, INT32_MAX));
}

}  // namespace

MTextArea::MTextArea(MWindow* inWindow, std::unique_ptr<TextCanvas> on, bool markup, bool bold)
    : window(inWindow), plainBold(bold), hasMarkup(markup), canvas(std::move(on)) {
  ResizeBuffer(bufferWidth, bufferHeight);
  image = ImageRef(&dc);
}

MTextArea::~MTextArea() = default;

void MTextArea::Layout() {
  (void)Render();
}

int32_t MTextArea::Render() {
  const int32_t width = bounds.Width();
  const int32_t height = bounds.Height();
  if (width > bufferWidth || height > bufferHeight) ResizeBuffer(BufferSide(width), BufferSide(height));
  if (needsParse) {
    chunks = Parse();
    needsParse = false;
  }
  // Detaching the first link drops the others of the last layout as well.
  while (firstChild != nullptr) firstChild->Detach();
  const std::span<uint32_t> all(
      pixels, pixels == nullptr ? 0 : static_cast<size_t>(bufferWidth) * static_cast<size_t>(bufferHeight));
  std::fill(all.begin(), all.end(), 0);
  // Nothing to show leaves the region as it was, down to its name.
  if (chunks == nullptr) return 1;
  const int32_t lines = LayoutText(chunks.get(), {width, height, verticalOffset, format, linkTextColor}, *canvas,
                                   [this](const MTextChunk& chunk, const Rect& place) { AddLink(chunk, place); });
  canvas->Flush();
  // The blend dims by alpha once more; what is half visible is meant to look faint.
  ShadeText(all, bufferWidth, width, height, alpha);
  sourceRect = {0, 0, width, height};
  SyncNativeWindow();
  Invalidate();
  label = text;
  return lines;
}

void MTextArea::SetText(const MString& newText) {
  text = newText;
  needsParse = true;
}

void MTextArea::ResizeBuffer(int32_t width, int32_t height) {
  bufferWidth = width;
  bufferHeight = height;
  canvas->Resize(width, height);
  const TextCanvas::Surface& surface = canvas->Lend();
  dc = surface.dc;
  bitmap = surface.bitmap;
  pixels = surface.pixels;
  normalFont = surface.normalFont;
  boldFont = surface.boldFont;
  // Without a bitmap every render asks for one again: memory may be there by then.
  if (pixels == nullptr) bufferWidth = bufferHeight = 0;
}

ChunkList MTextArea::Parse() const {
  if (hasMarkup) return ParseMarkup(text);
  ChunkList whole(new MTextChunk);
  whole->text = text;
  whole->bold = plainBold;
  whole->color = plainColor;
  return whole;
}

// Without memory there is no link, but its words are still there to read.
void MTextArea::AddLink(const MTextChunk& chunk, const Rect& place) {
  try {
    links.push_back(chunk.linkKind == kSettingsLink
                        ? std::make_unique<MNCPLink>(chunk.href, linkNormalColor, linkHoverColor)
                        : std::make_unique<MHTMLLink>(chunk.href, linkNormalColor, linkHoverColor));
  } catch (const std::bad_alloc&) {
    return;
  }
  MHTMLLink& link = *links.back();
  link.bounds = place;
  Attach(&link);
  link.Layout();
}
