#include "removal/BrowserProcesses.h"

#include <shlobj.h>
#include <shlwapi.h>

#include <algorithm>

#include "engine/Handles.h"
#include "engine/HostCallbacks.h"
#include "install/BrowserRefresh.h"
#include "removal/RunningProcesses.h"

namespace {

constexpr const wchar_t* kEdgeNames[] = {L"microsoftedge.exe", L"microsoftedgecp.exe", L"spartan.exe",
                                         L"spartan_edge.exe"};
constexpr wchar_t kExplorerBelowProgramFiles[] = L"\\Internet Explorer\\iexplore.exe";
constexpr size_t kLongestCommand = 259;

bool IsInternetExplorer(const MString& path) {
  for (const int folder : {CSIDL_PROGRAM_FILES, CSIDL_PROGRAM_FILESX86}) {
    wchar_t root[MAX_PATH] = {};
    if (!SHGetSpecialFolderPathW(nullptr, root, folder, FALSE)) continue;
    if (StrCmpIW(path.Data(), (WideString(root) + kExplorerBelowProgramFiles).c_str()) == 0) return true;
  }
  return false;
}

}  // namespace

bool IsBrowserWindow(HWND window) {
  DWORD id = 0;
  if (window == nullptr || !IsWindow(window) || GetWindowThreadProcessId(window, &id) == 0 || id == 0) return false;
  MString name;
  MString path;
  if (!GetProcessIdentity(id, &name, &path) || name.IsEmpty()) return false;
  return IsInternetExplorer(path) || std::any_of(std::begin(kEdgeNames), std::end(kEdgeNames),
                                                 [&name](auto* edge) { return StrCmpIW(name.Data(), edge) == 0; });
}

void RefreshIEElevationInSessions(HostCallbacks* host) {
  const auto ids = RunningProcesses().List();
  if (!ids || ids->empty()) return;
  MString utility;
  host->GetUtilityPath(&utility);
  const WideString command = L"\"" + WideString(utility.View()) + L"\" -refreshIEElevationPolicies";
  for (const uint32_t id : *ids) {
    const KernelHandle process(OpenProcess(PROCESS_QUERY_INFORMATION | PROCESS_VM_READ, FALSE, id));
    if (!process) continue;
    const MString name = IdentityOf(process.Get()).name;
    // The platform gives these two names in lower case; a program that only looks like them gets nothing started.
    if (name.View() != L"iexplore.exe" && name.View() != L"ieuser.exe") continue;
    StartInContextOf(process.Get(), MString(WideView(command).substr(0, kLongestCommand)));
  }
}
