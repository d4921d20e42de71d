// Symbolic links in the prefix, made by the machine that Wine runs on, since Wine itself makes none.
#pragma once

#include <windows.h>

#include "engine/Handles.h"
#include "engine/WideText.h"
#include "tests/support/ImportHook.h"
#include "tests/support/StartProcess.h"

namespace testing_files {

// Runs a program of the machine under Wine, which is how the prefix gets real links.
inline void RunOutside(const WideString& arguments) {
  const KernelHandle process = StartProcess(L"start.exe /wait /unix " + arguments);
  WaitForSingleObject(process.Get(), 20000);
}

// Where the prefix's drive lies outside.
inline WideString OutsidePath(const WideString& path) {
  char* const outside = Own<char * CDECL(const WCHAR*)>(L"kernel32.dll", "wine_get_unix_file_name")(path.c_str());
  WideString wide = FromUtf8(outside);
  HeapFree(GetProcessHeap(), 0, outside);
  return wide;
}

// Whether a listing has the name, with what asking for it by its path would drop.
inline bool Lists(const WideString& directory, WideView name) {
  WIN32_FIND_DATAW entry = {};
  const FindHandle search(FindFirstFileW((directory + L"\\*").c_str(), &entry));
  if (!search) return false;
  do {
    if (WideView(entry.cFileName) == name) return true;
  } while (FindNextFileW(search.Get(), &entry));
  return false;
}

// The program that is started may end later than the one that starts it, so what it does is looked for.
inline void WaitUntilListed(const WideString& directory, WideView name, bool listed) {
  for (int round = 0; round < 2000 && Lists(directory, name) != listed; ++round) Sleep(10);
}

// What is at `target` must be there. A link that has the name already is not followed: it would lead into the target.
inline void MakeLink(const WideString& target, const WideString& directory, const WideString& name) {
  RunOutside(L"/bin/ln -sn \"" + OutsidePath(target) + L"\" \"" + OutsidePath(directory) + L"/" + name + L"\"");
  WaitUntilListed(directory, name, true);
}
inline void RemoveLink(const WideString& directory, const WideString& name) {
  RunOutside(L"/bin/rm \"" + OutsidePath(directory) + L"/" + name + L"\"");
  WaitUntilListed(directory, name, false);
}

}  // namespace testing_files
