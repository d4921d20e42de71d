// Owning types for what the platform lends: a window's drawing context and a memory context with its bitmap.
#pragma once

#include <windows.h>

#include "engine/Handles.h"

// The drawing context of a window's client area, given back at the end of the scope. Null means the screen.
class WindowDc {
 public:
  explicit WindowDc(HWND of) : window(of), dc(GetDC(of)) {}
  ~WindowDc() {
    if (dc != nullptr) ReleaseDC(window, dc);
  }
  WindowDc(const WindowDc&) = delete;
  WindowDc& operator=(const WindowDc&) = delete;

  [[nodiscard]] HDC Get() const { return dc; }

 private:
  HWND window;
  HDC dc;
};

// A memory context that owns the bitmap selected into it.
class BitmapDc {
 public:
  ~BitmapDc() { Clear(); }
  BitmapDc() = default;
  BitmapDc(const BitmapDc&) = delete;
  BitmapDc& operator=(const BitmapDc&) = delete;

  // A context like `like`, without a bitmap yet; false when there is none to be had.
  bool Create(HDC like) {
    Clear();
    dc.Reset(CreateCompatibleDC(like));
    return static_cast<bool>(dc);
  }
  // Takes the bitmap over and selects it; the one before is deleted.
  void Select(HBITMAP taken) {
    const HGDIOBJ before = SelectObject(dc.Get(), taken);
    if (!bitmap) original = before;
    bitmap.Reset(taken);
  }
  void Clear() {
    if (bitmap) SelectObject(dc.Get(), original);
    bitmap.Reset();
    dc.Reset();
  }
  [[nodiscard]] HDC Get() const { return dc.Get(); }

 private:
  MemoryDc dc;
  GdiObject bitmap;
  HGDIOBJ original = nullptr;
};
