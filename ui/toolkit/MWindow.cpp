#include "ui/toolkit/MWindow.h"

#include <utility>

#include "ui/toolkit/RegionWalk.h"

namespace {

// How far the ring stands off the control that it surrounds.
constexpr int32_t kRingMargin = 5;

}  // namespace

MWindow::MWindow(MorphUI* ui, std::unique_ptr<WindowPlatform> on) : morph(ui), platform(std::move(on)) {}

MWindow::~MWindow() {
  for (MRegion* region = firstOwned; region != nullptr;) {
    region->owner = nullptr;
    region->nativeWindow = nullptr;  // it goes with the window
    region->ownedBy = nullptr;
    region = std::exchange(region->nextOwned, nullptr);
  }
}

void MWindow::Attach(MRegion* region) {
  for (const MRegion* there = firstRegion; there != nullptr; there = there->Next()) {
    if (there == region) return;
  }
  if (region->parent != nullptr || region->owner != nullptr) region->Detach();
  MRegion::Append(firstRegion, region);
  region->JoinWindow(this);
}

void MWindow::ApplyRect(bool animating, bool notify) {
  if (!animating) targetRect = rect;
  platform->Resize(rect.right, rect.bottom);
  if (!animating && notify) HandleEvent(WindowEventId, kWindowResized, 0);
}

void MWindow::SetCursorKind(CursorKind kind) {
  cursorKind = static_cast<int32_t>(kind);
  platform->SetCursorShape(kind);
}

void MWindow::SetCapture(MRegion* region) {
  capturedRegion = region;
  platform->SetCapture(true);
}

void MWindow::ReleaseCapture() {
  capturedRegion = nullptr;
  platform->SetCapture(false);
}

void MWindow::ExitInstaller(int32_t code) {
  platform->Notify(kInstallerExits, code);
  platform->Quit(code);
}

void MWindow::PlaceFocus(MRegion* region, bool showRing, MRegion* ring) {
  focusRegion = region;
  ringVisible = showRing;
  platform->SetFocus(region == nullptr ? nullptr : region->nativeWindow);
  if (ring == nullptr) return;
  ring->Invalidate();  // where it was
  const bool around = region != nullptr && showRing;
  if (around) {
    const Rect inner = region->AbsoluteBounds();
    ring->bounds = {inner.left - kRingMargin, inner.top - kRingMargin, inner.right + kRingMargin,
                    inner.bottom + kRingMargin};
    ring->Layout();
  }
  ring->SetVisible(around);
  ring->Invalidate();
}

void MWindow::Own(MRegion* region) {
  region->owner = this;
  region->ownedBy = &firstOwned;
  region->nextOwned = firstOwned;
  if (firstOwned != nullptr) firstOwned->ownedBy = &region->nextOwned;
  firstOwned = region;
}

void MWindow::Forget(MRegion* region) {
  if (region->ownedBy != nullptr) *region->ownedBy = region->nextOwned;
  if (region->nextOwned != nullptr) region->nextOwned->ownedBy = region->ownedBy;
  region->ownedBy = nullptr;
  region->nextOwned = nullptr;
  if (firstRegion == region) firstRegion = region->Next();
  if (focusRegion == region) focusRegion = nullptr;
  if (capturedRegion == region) ReleaseCapture();
}

void MWindow::DispatchMouse(uint32_t message, Point point) {
  bool consumed = false;
  if (capturedRegion != nullptr) {
    consumed = HitTest(capturedRegion, this, point - capturedRegion->Origin(), true, message);
  }
  for (MRegion* region = firstRegion; region != nullptr && !consumed; region = region->Next()) {
    consumed = HitTest(region, this, point - region->bounds.TopLeft(), false, message);
  }
  if (message == kMousePress && !consumed) SetFocusRegion(nullptr, false);
}

void MWindow::Tick() {
  const int32_t width = targetRect.right - rect.right;
  const int32_t height = targetRect.bottom - rect.bottom;
  if (width != 0 || height != 0) {
    rect.right += AnimationStep(width);
    rect.bottom += AnimationStep(height);
    ApplyRect(true, true);
    HandleEvent(WindowEventId, kWindowResized, 0);
  }
  HandleEvent(WindowEventId, kWindowFrame, 0);
  WalkTimers(firstRegion, this);
}

void MWindow::Draw(const Rect& dirty, DrawingSurface& surface) {
  surface.Fill(dirty.AtOrigin(), backgroundColor);
  DrawRegions(firstRegion, dirty, {0, 0}, surface);
}

MRegion* MWindow::NextFocus(WindowHandle from, bool forward) const {
  MRegion* found = nullptr;
  WindowHandle child = from;
  do {
    if (child == nullptr) return nullptr;
    const WindowHandle at = child;
    child = platform->Sibling(at, forward ? ChildStep::Next : ChildStep::Previous);
    if (child == nullptr) child = platform->Sibling(at, forward ? ChildStep::First : ChildStep::Last);
    if (child == nullptr) return nullptr;
    found = platform->RegionOf(child);
    if (found != nullptr && found->IsFocusable()) return found;
  } while (child != from);
  return nullptr;
}
