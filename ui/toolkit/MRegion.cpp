#include "ui/toolkit/MRegion.h"

#include "ui/toolkit/MWindow.h"

void MLink::Unlink() {
  if (prev != nullptr) prev->next = next;
  if (next != nullptr) next->prev = prev;
  prev = nullptr;
  next = nullptr;
}

void MLink::LinkAfter(MLink* other) {
  prev = other;
  next = other->next;
  if (next != nullptr) next->prev = this;
  other->next = this;
}

MRegion::~MRegion() {
  LeaveWindow();
  LeaveSiblings();
  for (MRegion* child = firstChild; child != nullptr; child = child->Next()) {
    if (child->parent == this) child->parent = nullptr;
  }
}

void MRegion::Attach(MRegion* child) {
  if (child->parent == this) {
    // In the list already; appending what is its end again would close the list into a ring.
    for (const MRegion* region = firstChild; region != nullptr; region = region->Next()) {
      if (region == child) return;
    }
  }
  if (child->parent != nullptr || child->owner != nullptr) child->Detach();
  Append(firstChild, child);
  child->parent = this;
  if (owner != nullptr) child->JoinWindow(owner);
}

void MRegion::Detach() {
  if (owner != nullptr && owner->focusRegion == this) owner->SetFocusRegion(nullptr, false);
  LeaveWindow();
  LeaveSiblings();
  parent = nullptr;
}

void MRegion::SetVisible(bool on) {
  // Also while another program has the keyboard: the ring must not stay around nothing.
  const bool focused = HoldsFocus() || (owner != nullptr && owner->focusRegion == this);
  if (!on && visible && focused) owner->SetFocusRegion(nullptr, false);
  visible = on;
  if (owner != nullptr && nativeWindow != nullptr) owner->platform->ShowChild(nativeWindow, on);
}

void MRegion::SetEnabled(bool on) {
  if (!on && HoldsFocus()) owner->SetFocusRegion(nullptr, false);
  enabled = on;
}

void MRegion::Invalidate() const {
  if (owner != nullptr) owner->platform->Invalidate(AbsoluteBounds());
}

void MRegion::SyncNativeWindow() const {
  if (owner != nullptr && nativeWindow != nullptr) owner->platform->MoveChild(nativeWindow, AbsoluteBounds());
}

Point MRegion::Origin() const {
  Point origin;
  for (const MRegion* region = this; region != nullptr; region = region->parent) {
    origin = origin + region->bounds.TopLeft();
  }
  return origin;
}

Rect MRegion::AbsoluteBounds() const {
  Rect absolute = bounds;
  if (parent != nullptr) absolute.Offset(parent->Origin());
  return absolute;
}

void MRegion::Append(MRegion*& first, MRegion* child) {
  child->Unlink();
  if (first == nullptr) {
    first = child;
    return;
  }
  MRegion* last = first;
  while (last->next != nullptr) last = last->Next();
  child->LinkAfter(last);
}

// Children that were attached while their parent belonged to no window join with it. A label that is only linked behind
// its button's pieces has no parent and stays out.
void MRegion::JoinWindow(MWindow* window) {
  LeaveWindow();
  window->Own(this);
  if ((drawFlags & kNativeChild) != 0) window->platform->CreateChild(*this, AbsoluteBounds());
  for (MRegion* child = firstChild; child != nullptr; child = child->Next()) {
    if (child->parent == this && child->owner != window) child->JoinWindow(window);
  }
}

void MRegion::LeaveWindow() {
  if (owner == nullptr) return;
  if (nativeWindow != nullptr) owner->platform->DestroyChild(nativeWindow);
  nativeWindow = nullptr;
  owner->Forget(this);
  owner = nullptr;
}

void MRegion::LeaveSiblings() {
  if (parent != nullptr && parent->firstChild == this) {
    parent->firstChild = nullptr;
    // They stay linked to one another and keep their windows, but must not point at a parent that may end first.
    for (MRegion* dropped = Next(); dropped != nullptr; dropped = dropped->Next()) dropped->parent = nullptr;
  }
  Unlink();
}

bool MRegion::HoldsFocus() const {
  return owner != nullptr && nativeWindow != nullptr && owner->platform->HoldsFocus(nativeWindow);
}
