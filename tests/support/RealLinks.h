// Symbolic links in the prefix, made by the machine that Wine runs on, since Wine itself makes none.
#pragma once

#include <windows.h>

#include "engine/Handles.h"
#include "engine/WideText.h"

namespace testing_files {

// Runs a program of the machine under Wine, which is how the prefix gets real links.
inline void RunOutside(const WideString& arguments) {
  WideString command = L"start.exe /wait /unix " + arguments;
  STARTUPINFOW startup = {};
  startup.cb = sizeof(startup);
  PROCESS_INFORMATION child = {};
  if (!CreateProcessW(nullptr, command.data(), nullptr, nullptr, FALSE, 0, nullptr, nullptr, &startup, &child)) return;
  const KernelHandle process(child.hProcess);
  const KernelHandle thread(child.hThread);
  WaitForSingleObject(process.Get(), 20000);
}

// Where the prefix's drive lies outside.
inline WideString OutsidePath(const WideString& path) {
  using Convert = char* CDECL(const WCHAR*);
  auto* const convert = reinterpret_cast<Convert*>(
      reinterpret_cast<void*>(GetProcAddress(GetModuleHandleW(L"kernel32.dll"), "wine_get_unix_file_name")));
  char* const outside = convert(path.c_str());
  const WideString wide = FromUtf8(outside);
  HeapFree(GetProcessHeap(), 0, outside);
  return wide;
}

// `name` begins with a slash. What is at `target` need not be there.
inline void MakeLink(const WideString& target, const WideString& directory, const WideString& name) {
  RunOutside(L"/bin/ln -s \"" + OutsidePath(target) + L"\" \"" + OutsidePath(directory) + name + L"\"");
}
inline void RemoveLink(const WideString& directory, const WideString& name) {
  RunOutside(L"/bin/rm \"" + OutsidePath(directory) + name + L"\"");
}

}  // namespace testing_files
