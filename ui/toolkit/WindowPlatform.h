// What a window of the toolkit needs of the window system. One object a window; every call on the window's thread.
#pragma once

#include <cstdint>

#include "engine/MString.h"
#include "ui/toolkit/Geometry.h"
#include "ui/toolkit/PlatformTypes.h"

class MRegion;

enum class ChildStep : uint8_t { Next, Previous, First, Last };
enum class CursorKind : int32_t { Arrow = 0, Hand = 1 };

class WindowPlatform {
 public:
  virtual ~WindowPlatform() = default;

  // Asks for a repaint without erasing.
  virtual void Invalidate(const Rect& rect) = 0;
  // Queues an event for this window.
  virtual void Post(uint32_t id, uint32_t message, int64_t param) = 0;
  // Gives the window this client size and the back buffer with it; repaints.
  virtual void Resize(int32_t width, int32_t height) = 0;
  virtual void SetTitle(const MString& title) = 0;
  virtual void Show(bool on) = 0;
  virtual void SetCursorShape(CursorKind kind) = 0;
  virtual void SetCapture(bool on) = 0;

  // Native children. CreateChild fills in the region's nativeWindow and accProxy; both stay null when it fails.
  virtual void CreateChild(MRegion& region, const Rect& place) = 0;
  virtual void DestroyChild(WindowHandle child) = 0;
  virtual void MoveChild(WindowHandle child, const Rect& place) = 0;
  virtual void ShowChild(WindowHandle child, bool on) = 0;
  virtual bool HoldsFocus(WindowHandle child) = 0;
  // Null gives the focus to the window itself.
  virtual void SetFocus(WindowHandle child) = 0;
  // The native child beside `child`, or the first or last one; null at the end.
  virtual WindowHandle Sibling(WindowHandle child, ChildStep step) = 0;
  virtual MRegion* RegionOf(WindowHandle child) = 0;

  // To the host, and the end of the message loop.
  virtual int32_t Notify(int32_t code, int64_t value) = 0;
  virtual void Quit(int32_t code) = 0;
  // Through the host's shim.
  virtual void OpenUrl(const MString& url) = 0;
  virtual void OpenSettingsApplet() = 0;
};
