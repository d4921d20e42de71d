// A window of the toolkit on Windows: its class, its handle, its back buffer, its native children.
#pragma once

#include <windows.h>

#include "ui/toolkit/GdiSupport.h"
#include "ui/toolkit/WindowPlatform.h"

class MorphUI;
class MWindow;

class Win32WindowPlatform final : public WindowPlatform {
 public:
  // Makes the window for `forWindow`, whose handle, class atom and back buffer it fills in. Without a handle, the
  // platform refused; everything here then does nothing.
  Win32WindowPlatform(MWindow* forWindow, MorphUI* ui);
  ~Win32WindowPlatform() override;
  Win32WindowPlatform(const Win32WindowPlatform&) = delete;
  Win32WindowPlatform& operator=(const Win32WindowPlatform&) = delete;

  void Invalidate(const Rect& rect) override;
  void Post(uint32_t id, uint32_t message, int64_t param) override;
  void Resize(int32_t width, int32_t height) override;
  void SetTitle(const MString& title) override;
  void Show(bool on) override;
  void SetCursorShape(CursorKind kind) override;
  void SetCapture(bool on) override;
  void CreateChild(MRegion& region, const Rect& place) override;
  void DestroyChild(WindowHandle child) override;
  void MoveChild(WindowHandle child, const Rect& place) override;
  void ShowChild(WindowHandle child, bool on) override;
  bool HoldsFocus(WindowHandle child) override;
  void SetFocus(WindowHandle child) override;
  WindowHandle Sibling(WindowHandle child, ChildStep step) override;
  MRegion* RegionOf(WindowHandle child) override;
  int32_t Notify(int32_t code, int64_t value) override;
  void Quit(int32_t code) override;
  void OpenUrl(const MString& url) override;
  void OpenSettingsApplet() override;

  // Draws the part of the window that needs it, by way of the back buffer.
  void Paint();

 private:
  void EnsureBackBuffer(int32_t width, int32_t height);

  MWindow* window;
  MorphUI* morph;
  HWND handle = nullptr;
  BitmapDc back;
  int32_t backWidth = 0;
  int32_t backHeight = 0;
  ATOM proxyProperty;
};
