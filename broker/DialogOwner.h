// Which windows a client may have a dialog shown on.
#pragma once

#include <windows.h>

// Whether the window belongs to a trusted program. False for no window, one that is gone, and one whose process cannot
// be looked at.
[[nodiscard]] bool IsDialogOwnerAllowed(HWND window);
