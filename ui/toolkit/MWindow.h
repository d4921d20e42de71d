// The top-level window: owns the region list, turns platform messages into region events, and animates its own size.
// The installer's window derives from it. One thread; only MorphUI::PostEvent is for others.
#pragma once

#include <cstdint>
#include <memory>

#include "ui/toolkit/Events.h"
#include "ui/toolkit/MRegion.h"
#include "ui/toolkit/WindowPlatform.h"

class DrawingSurface;
class MorphUI;

class MWindow : public MLink {
 public:
  // Registers the class, creates the window, hidden and small, and starts its timer.
  explicit MWindow(MorphUI* ui);
  // A window on another window system.
  MWindow(MorphUI* ui, std::unique_ptr<WindowPlatform> on);
  MWindow(const MWindow&) = delete;
  MWindow& operator=(const MWindow&) = delete;

  // An event of EventId or of a control; true means handled.
  virtual bool HandleEvent(uint32_t id, uint32_t message, int64_t param) = 0;
  // Gives the keyboard to `region`, or to nobody when null, and shows or hides the ring around it.
  virtual void SetFocusRegion(MRegion* region, bool showRing) = 0;

  uint32_t backgroundColor = 0;
  MRegion* firstRegion = nullptr;
  MRegion* capturedRegion = nullptr;
  Rect rect;        // right and bottom are the client size
  Rect targetRect;  // what the animation approaches
  MString title;
  MRegion* focusRegion = nullptr;
  bool ringVisible = false;
  MorphUI* morph = nullptr;
  uint16_t classAtom = 0;
  WindowHandle handle = nullptr;
  DrawingContext backDC = nullptr;  // lent by the platform
  int32_t cursorKind = 0;
  std::unique_ptr<WindowPlatform> platform;  // behind the documented fields

  // Makes `region` the last of the top-level regions, as MRegion::Attach does for a child.
  void Attach(MRegion* region);
  // Gives the window the size of `rect`. Not animating, it also stops the animation there, and with `notify` tells the
  // window that it was resized.
  void ApplyRect(bool animating, bool notify);
  void ApplyTitle() { platform->SetTitle(title); }
  void Show(bool on) { platform->Show(on); }
  void SetCursorKind(CursorKind kind);
  void SetCapture(MRegion* region);
  void ReleaseCapture();
  // Tells the host and ends the message loop.
  void ExitInstaller(int32_t code);
  // Queues an event for this window.
  void PostEvent(uint32_t id, uint32_t message, int64_t param = 0) { platform->Post(id, message, param); }

  // What every SetFocusRegion does: moves the keyboard and puts `ring`, which may be null, around the region.
  void PlaceFocus(MRegion* region, bool showRing, MRegion* ring);

  // Makes a region, which belongs to no other window, one of this window's until it is forgotten.
  void Own(MRegion* region);
  // Drops every reference to a region that leaves the window.
  void Forget(MRegion* region);

  // What the window procedure calls, by message.
  void DispatchMouse(uint32_t message, Point point);
  // One tick: a step of the animation, the frame event and every region's timer handler.
  void Tick();
  // Draws what lies in `dirty` onto a surface whose origin is the rectangle's top-left.
  void Draw(const Rect& dirty, DrawingSurface& surface);
  // The focusable region beside the native child `from`, wrapping at the ends; null when there is none.
  [[nodiscard]] MRegion* NextFocus(WindowHandle from, bool forward) const;

 protected:
  // Lets go of every region that is still its own, those that dropped out of the tree included.
  ~MWindow();

 private:
  MRegion* firstOwned = nullptr;
};

// How far one tick moves a side that is `difference` away from its target: half of it, but all of it for 1.
[[nodiscard]] constexpr int32_t AnimationStep(int32_t difference) {
  return difference == 1 ? 1 : difference >> 1;
}
