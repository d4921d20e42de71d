// A program that a test starts under any name: loads the library it is told to and waits to be ended.
//   WaitingProgram PARENT-ID [LIBRARY | window]
// With "window" it makes a window instead; that takes its time, so only who asks for one gets it.
// It goes when its parent does. With any other first argument it ends at once.
#include <windows.h>

#include <cwchar>

#include "engine/Handles.h"

int wmain(int count, wchar_t** arguments) {
  const DWORD parentId = count > 1 ? std::wcstoul(arguments[1], nullptr, 10) : 0;
  const KernelHandle parent(OpenProcess(SYNCHRONIZE, FALSE, parentId));
  if (!parent) return 2;
  const bool hasWindow = count > 2 && std::wcscmp(arguments[2], L"window") == 0;
  if (count > 2 && !hasWindow && LoadLibraryW(arguments[2]) == nullptr) return 3;
  wchar_t title[32] = {};
  swprintf(title, 32, L"waiting-%lu", GetCurrentProcessId());
  if (hasWindow) CreateWindowExW(0, L"STATIC", title, 0, 0, 0, 0, 0, HWND_MESSAGE, nullptr, nullptr, nullptr);
  const KernelHandle ready(OpenEventW(EVENT_MODIFY_STATE, FALSE, title));
  SetEvent(ready.Get());
  const HANDLE wait = parent.Get();
  while (hasWindow && MsgWaitForMultipleObjects(1, &wait, FALSE, INFINITE, QS_ALLINPUT) != WAIT_OBJECT_0) {
    MSG message = {};
    while (PeekMessageW(&message, nullptr, 0, 0, PM_REMOVE)) DispatchMessageW(&message);
  }
  WaitForSingleObject(wait, INFINITE);
  return 0;
}
