#include "ui/toolkit/MProgressBar.h"

#include <algorithm>

namespace {

constexpr int32_t kFillInset = 2;
constexpr int32_t kFillHeight = 29;

}  // namespace

MProgressBar::MProgressBar(MWindow* inWindow, const MScale3Data& trackLook, const MScale3Data& fillLook)
    : window(inWindow), trackData(trackLook), fillData(fillLook) {
  track = std::make_unique<MScale3Section>(inWindow, &trackData);
  fill = std::make_unique<MScale3Section>(inWindow, &fillData);
  Attach(track.get());
  fill->parent = this;
}

void MProgressBar::Layout() {
  fill->Unlink();
  value = std::clamp(value, 0, 100);
  if (value > 0) fill->LinkAfter(track.get());
  track->bounds = bounds.AtOrigin();
  fill->bounds = Rect::Of(kFillInset, kFillInset, ProgressFillWidth(bounds.Width(), value), kFillHeight);
  track->Layout();
  fill->Layout();
  SyncNativeWindow();
  Invalidate();
}
