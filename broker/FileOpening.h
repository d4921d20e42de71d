// How the broker opens files, and how it tells what the platform refused.
#pragma once

#include <windows.h>

#include "engine/DllHelpers.h"
#include "engine/Handles.h"
#include "engine/PlatformConstants.h"

// The calling thread's last error by the broker's one rule.
[[nodiscard]] inline HRESULT LastErrorResult() {
  return HresultFromError(static_cast<int32_t>(GetLastError()));
}

// Opens an existing file for reading, shared for reading, or failing that also for writing: a file that somebody writes
// to may be read as well. The last error tells of the second try.
[[nodiscard]] inline FileHandle OpenSharedForReading(const Kernel32DllHelper& kernel32, const wchar_t* path) {
  for (const DWORD share : {DWORD{FILE_SHARE_READ}, DWORD{FILE_SHARE_READ | FILE_SHARE_WRITE}}) {
    const HANDLE file =
        kernel32.CreateFileW(path, GENERIC_READ, share, nullptr, OPEN_EXISTING, FILE_FLAG_SEQUENTIAL_SCAN, nullptr);
    if (file != nullptr && file != INVALID_HANDLE_VALUE) return FileHandle(file);
  }
  return {};
}
