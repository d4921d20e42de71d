// Which windows a client may have a dialog shown on.
#pragma once

#include <windows.h>

#include <cstdint>

// A client's window handle travels as its low 32 bits and comes back sign-extended.
[[nodiscard]] inline HWND ToWindow(ULONG value) {
  return reinterpret_cast<HWND>(static_cast<intptr_t>(static_cast<int32_t>(value)));
}

// Whether the window belongs to a trusted program. False for no window, one that is gone, and one whose process cannot
// be looked at.
[[nodiscard]] bool IsDialogOwnerAllowed(HWND window);
