// Drives a window of this process as a person does, through the window system's own input, and looks at its pixels.
// Everything waits for what it expects to happen, not for time to pass.
#pragma once

#include <windows.h>

#include <chrono>
#include <functional>

#include "ui/toolkit/Geometry.h"

namespace driver {

// Handles what is queued now of these messages; all of them by default.
inline void Dispatch(UINT from = 0, UINT to = 0) {
  MSG message = {};
  while (PeekMessageW(&message, nullptr, from, to, PM_REMOVE)) {
    TranslateMessage(&message);
    DispatchMessageW(&message);
  }
}

// Handles this thread's messages until `done`; false when that takes implausibly long.
inline bool PumpUntil(const std::function<bool()>& done) {
  const auto deadline = std::chrono::steady_clock::now() + std::chrono::seconds(20);
  while (!done()) {
    if (std::chrono::steady_clock::now() > deadline) return false;
    Dispatch();
    if (!done()) MsgWaitForMultipleObjects(0, nullptr, FALSE, 50, QS_ALLINPUT);
  }
  return true;
}

// Handles what is queued now, input on its way included: a message posted behind it marks the end.
inline void PumpInput(HWND window) {
  constexpr UINT kMark = 0xBFFF + 100;
  for (int round = 0; round < 3; ++round) {
    PostMessageW(window, kMark, 0, 0);
    MSG message = {};
    do {
      GetMessageW(&message, nullptr, 0, 0);
      TranslateMessage(&message);
      DispatchMessageW(&message);
    } while (message.message != kMark);
    Dispatch(WM_KEYFIRST, WM_KEYLAST);
    Dispatch(WM_MOUSEFIRST, WM_MOUSELAST);
  }
}

inline void MoveTo(HWND window, Point at) {
  POINT screen = {at.x, at.y};
  ClientToScreen(window, &screen);
  SetCursorPos(screen.x, screen.y);
  PumpInput(window);
}

inline void Button(HWND window, bool down) {
  INPUT input = {};
  input.type = INPUT_MOUSE;
  input.mi.dwFlags = down ? MOUSEEVENTF_LEFTDOWN : MOUSEEVENTF_LEFTUP;
  SendInput(1, &input, sizeof(input));
  PumpInput(window);
}
inline void Click(HWND window, Point at) {
  MoveTo(window, at);
  Button(window, true);
  Button(window, false);
}

inline void Key(HWND window, WORD key, bool down) {
  INPUT input = {};
  input.type = INPUT_KEYBOARD;
  input.ki.wVk = key;
  input.ki.dwFlags = down ? 0 : KEYEVENTF_KEYUP;
  SendInput(1, &input, sizeof(input));
  PumpInput(window);
}
inline void Stroke(HWND window, WORD key, bool withShift = false) {
  if (withShift) Key(window, VK_SHIFT, true);
  Key(window, key, true);
  Key(window, key, false);
  if (withShift) Key(window, VK_SHIFT, false);
}

// The colour of a pixel of the client area as it is on the screen, red in the low byte.
inline COLORREF PixelAt(HWND window, Point at) {
  const HDC dc = GetDC(window);
  const COLORREF color = GetPixel(dc, at.x, at.y);
  ReleaseDC(window, dc);
  return color;
}

}  // namespace driver
