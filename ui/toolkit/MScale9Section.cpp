#include "ui/toolkit/MScale9Section.h"

MScale9Data::MScale9Data(ImageRef image, int32_t x, int32_t y, const int32_t (&widths)[3], const int32_t (&heights)[3],
                         uint8_t drawMode) {
  int32_t rowTop = y;
  for (int row = 0; row < 3; ++row) {
    MScale3Data& pieces = rows[row];
    pieces.image = image;
    pieces.left = {x, rowTop, widths[0], heights[row]};
    pieces.middle = {x + widths[0], rowTop, widths[1], heights[row]};
    pieces.right = {x + widths[0] + widths[1], rowTop, widths[2], heights[row]};
    pieces.drawMode = drawMode;
    rowTop += heights[row];
  }
}

MScale9Section::MScale9Section(MWindow* inWindow, const MScale9Data* look)
    : top(std::make_unique<MScale3Section>(inWindow, look == nullptr ? nullptr : &look->rows[0])),
      middle(std::make_unique<MScale3Section>(inWindow, look == nullptr ? nullptr : &look->rows[1])),
      bottom(std::make_unique<MScale3Section>(inWindow, look == nullptr ? nullptr : &look->rows[2])) {
  for (MScale3Section* const row : {top.get(), middle.get(), bottom.get()}) Attach(row);
}

void MScale9Section::Layout() {
  if (top->data == nullptr || bottom->data == nullptr) return;
  const int32_t width = bounds.Width();
  const int32_t height = bounds.Height();
  const int32_t topHeight = top->data->left.height;
  const int32_t bottomHeight = bottom->data->left.height;
  top->bounds = {0, 0, width, topHeight};
  middle->bounds = {0, topHeight, width, height - bottomHeight};
  bottom->bounds = {0, height - bottomHeight, width, height};
  for (MScale3Section* const row : {top.get(), middle.get(), bottom.get()}) {
    row->alpha = alpha;
    row->Layout();
  }
}
