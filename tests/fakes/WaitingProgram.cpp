// A program that a test starts under any name: loads the library it is told to and waits to be ended.
//   WaitingProgram PARENT-ID [LIBRARY | window]    goes when its parent does
//   WaitingProgram -open LIBRARY                   goes when "WaitingProgram -end" is run, or after two minutes
// With "window" it makes a window instead; that takes its time, so only who asks for one gets it. It prints "ready" and
// sets the event of its window's name. With any other first argument it ends at once.
#include <windows.h>

#include <cstdio>
#include <cwchar>

#include "engine/Handles.h"

int wmain(int count, wchar_t** arguments) {
  const wchar_t* const what = count > 1 ? arguments[1] : L"";
  const KernelHandle end(CreateEventW(nullptr, TRUE, FALSE, L"LumenPlayerUserEnd"));
  if (std::wcscmp(what, L"-end") == 0) return SetEvent(end.Get()) ? 0 : 1;
  const bool alone = std::wcscmp(what, L"-open") == 0;
  const KernelHandle parent(alone ? nullptr : OpenProcess(SYNCHRONIZE, FALSE, std::wcstoul(what, nullptr, 10)));
  if (!alone && !parent) return 2;
  const bool hasWindow = count > 2 && std::wcscmp(arguments[2], L"window") == 0;
  if (count > 2 && !hasWindow && LoadLibraryW(arguments[2]) == nullptr) return 3;
  wchar_t title[32] = {};
  swprintf(title, 32, L"waiting-%lu", GetCurrentProcessId());
  if (hasWindow) CreateWindowExW(0, L"STATIC", title, 0, 0, 0, 0, 0, HWND_MESSAGE, nullptr, nullptr, nullptr);
  const KernelHandle ready(OpenEventW(EVENT_MODIFY_STATE, FALSE, title));
  SetEvent(ready.Get());
  std::puts("ready");
  std::fflush(stdout);
  if (alone) return WaitForSingleObject(end.Get(), 120'000) == WAIT_OBJECT_0 ? 0 : 3;
  const HANDLE wait = parent.Get();
  while (hasWindow && MsgWaitForMultipleObjects(1, &wait, FALSE, INFINITE, QS_ALLINPUT) != WAIT_OBJECT_0) {
    MSG message = {};
    while (PeekMessageW(&message, nullptr, 0, 0, PM_REMOVE)) DispatchMessageW(&message);
  }
  WaitForSingleObject(wait, INFINITE);
  return 0;
}
