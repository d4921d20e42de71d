#include "ui/toolkit/MScale3Section.h"

MScale3Section::MScale3Section(MWindow* inWindow, const MScale3Data* look) : data(look), window(inWindow) {
  if (look == nullptr) return;
  left = std::make_unique<MSkinnedSection>(look->image, look->left);
  middle = std::make_unique<MSkinnedSection>(look->image, look->middle);
  right = std::make_unique<MSkinnedSection>(look->image, look->right);
  for (MSkinnedSection* const piece : {left.get(), middle.get(), right.get()}) piece->parent = this;
  firstChild = left.get();
  middle->LinkAfter(left.get());
  right->LinkAfter(middle.get());
}

void MScale3Section::Layout() {
  if (data == nullptr || left == nullptr) return;
  const int32_t width = bounds.Width();
  const int32_t height = bounds.Height();
  left->bounds = {0, 0, data->left.width, height};
  right->bounds = {width - data->right.width, 0, width, height};
  // Caps wider than the section leave the middle a negative width, which draws nothing.
  middle->bounds = {left->bounds.right, 0, right->bounds.left, height};
  left->sourceRect = data->left;
  middle->sourceRect = data->middle;
  right->sourceRect = data->right;
  for (MSkinnedSection* const piece : {left.get(), middle.get(), right.get()}) {
    piece->alpha = alpha;
    piece->drawFlags = static_cast<uint8_t>((piece->drawFlags & ~kDrawModeMask) | (data->drawMode & kDrawModeMask));
  }
  SyncNativeWindow();
  Invalidate();
}
