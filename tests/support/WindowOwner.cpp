// A program that owns a window, for tests of who may have dialogs: WindowOwner.exe EVENTS.
//
// Shows a window titled EVENTS, sets the event <EVENTS>ready and keeps the window until <EVENTS>go.
#include <windows.h>

#include "engine/Handles.h"
#include "engine/WideText.h"

int wmain(int argc, wchar_t** argv) {
  if (argc < 2) return 1;
  const WideString name(argv[1]);
  const KernelHandle ready(OpenEventW(EVENT_MODIFY_STATE, FALSE, (name + L"ready").c_str()));
  const KernelHandle go(OpenEventW(SYNCHRONIZE, FALSE, (name + L"go").c_str()));
  const HWND window = CreateWindowExW(0, L"Static", name.c_str(), WS_OVERLAPPEDWINDOW | WS_VISIBLE, 0, 0, 200, 80,
                                      nullptr, nullptr, nullptr, nullptr);
  if (window == nullptr || !ready || !go) return 2;
  SetEvent(ready.Get());
  const HANDLE wait = go.Get();
  while (MsgWaitForMultipleObjects(1, &wait, FALSE, INFINITE, QS_ALLINPUT) != WAIT_OBJECT_0) {
    MSG message = {};
    while (PeekMessageW(&message, nullptr, 0, 0, PM_REMOVE)) DispatchMessageW(&message);
  }
  DestroyWindow(window);
  return 0;
}
