#include "install/BrowserRefresh.h"

#include <windows.h>

#include <psapi.h>

#include <algorithm>
#include <array>

#include "engine/Handles.h"
#include "engine/HostCallbacks.h"

namespace {

constexpr size_t kMostProcesses = 1024;
constexpr DWORD kCreationFlags = CREATE_DEFAULT_ERROR_MODE | DETACHED_PROCESS;

bool IsBrowser(HANDLE process) {
  wchar_t name[MAX_PATH] = {};
  if (K32GetModuleBaseNameW(process, nullptr, name, MAX_PATH) == 0) return false;
  return lstrcmpiW(name, L"iexplore.exe") == 0 || lstrcmpiW(name, L"ieuser.exe") == 0;
}

}  // namespace

// Its own rights rather than the installer's: the browser of an ordinary user must not get an elevated helper.
void StartInContextOf(HANDLE process, const MString& commandLine) {
  KernelHandle token;
  if (!OpenProcessToken(process, TOKEN_DUPLICATE, token.Receive())) return;
  KernelHandle primary;
  if (!DuplicateTokenEx(token.Get(), MAXIMUM_ALLOWED, nullptr, SecurityImpersonation, TokenPrimary,
                        primary.Receive())) {
    return;
  }
  WideString line(commandLine.View());  // the platform writes into it
  STARTUPINFOW startup = {};
  startup.cb = sizeof(startup);
  PROCESS_INFORMATION started = {};
  if (!CreateProcessAsUserW(primary.Get(), nullptr, line.data(), nullptr, nullptr, FALSE, kCreationFlags, nullptr,
                            nullptr, &startup, &started)) {
    return;
  }
  const KernelHandle startedProcess(started.hProcess);
  const KernelHandle startedThread(started.hThread);
}

void AskBrowsersToRefresh(HostCallbacks* host) {
  std::array<DWORD, kMostProcesses> ids = {};
  DWORD bytes = 0;
  if (!K32EnumProcesses(ids.data(), sizeof(ids), &bytes)) return;
  MString utility;
  host->GetUtilityPath(&utility);
  MString commandLine(L"\"");
  commandLine.Append(utility);
  commandLine.Append(L"\" -refreshIEElevationPolicies");
  const size_t count = std::min(bytes / sizeof(DWORD), kMostProcesses);
  std::for_each_n(ids.begin(), count, [&commandLine](DWORD id) {
    const KernelHandle process(OpenProcess(PROCESS_QUERY_INFORMATION | PROCESS_VM_READ, FALSE, id));
    if (process && IsBrowser(process.Get())) StartInContextOf(process.Get(), commandLine);
  });
}
