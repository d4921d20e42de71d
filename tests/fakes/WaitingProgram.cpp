// A program that a test starts under any name: loads the library it is told to and waits to be ended.
//   WaitingProgram PARENT-ID [LIBRARY]
// It goes when its parent does. With any other first argument it ends at once.
#include <windows.h>

#include <cwchar>

#include "engine/Handles.h"

int wmain(int count, wchar_t** arguments) {
  const DWORD parentId = count > 1 ? std::wcstoul(arguments[1], nullptr, 10) : 0;
  const KernelHandle parent(OpenProcess(SYNCHRONIZE, FALSE, parentId));
  if (!parent) return 2;
  if (count > 2 && LoadLibraryW(arguments[2]) == nullptr) return 3;
  wchar_t title[32] = {};
  swprintf(title, 32, L"waiting-%lu", GetCurrentProcessId());
  const KernelHandle ready(OpenEventW(EVENT_MODIFY_STATE, FALSE, title));
  SetEvent(ready.Get());
  WaitForSingleObject(parent.Get(), INFINITE);
  return 0;
}
