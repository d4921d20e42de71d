// A program that uses a player: loads the library that it is told to and keeps it until "PlayerUser -end" is run, or
// for two minutes. Prints "ready" once it has it.
#include <windows.h>

#include <cstdio>
#include <cwchar>

#include "engine/Handles.h"

int wmain(int count, wchar_t** arguments) {
  const KernelHandle end(CreateEventW(nullptr, TRUE, FALSE, L"LumenPlayerUserEnd"));
  if (count > 1 && std::wcscmp(arguments[1], L"-end") == 0) return SetEvent(end.Get()) ? 0 : 1;
  const LibraryHandle player(count > 1 ? LoadLibraryW(arguments[1]) : nullptr);
  if (!player) return 2;
  std::puts("ready");
  std::fflush(stdout);
  return WaitForSingleObject(end.Get(), 120'000) == WAIT_OBJECT_0 ? 0 : 3;
}
