// Until text is drawn, an area is an empty region that keeps its text.
#include "ui/toolkit/MTextArea.h"

MTextArea::MTextArea(MWindow* inWindow, int32_t /*size*/, bool markup, bool bold)
    : window(inWindow), plainBold(bold), hasMarkup(markup) {}

MTextArea::~MTextArea() = default;

void MTextArea::Layout() {
  (void)Render();
}

int32_t MTextArea::Render() {
  label = text;
  Invalidate();
  return 1;
}

void MTextArea::SetText(const MString& newText) {
  text = newText;
  needsParse = true;
}
