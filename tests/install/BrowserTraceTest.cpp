// What installing learns from browsers, and what it asks of those that run.
#include "install/BrowserRefresh.h"

#include <psapi.h>

#include "install/PluginDirectories.h"
#include "tests/install/InstallFixture.h"
#include "tests/support/CountFixture.h"
#include "tests/support/ImportHook.h"
#include "tests/support/StartedAsUser.h"

namespace {

// The processes that a scan finds: this one under several names, and one that cannot be opened.
struct Scan {
  std::vector<std::wstring> names;
  size_t asked = 0;
};
Scan g_scan;

BOOL WINAPI ListProcesses(DWORD* ids, DWORD bytes, DWORD* used) {
  EXPECT_EQ(bytes, 1024 * sizeof(DWORD));
  *used = 0;
  for (size_t i = 0; i <= g_scan.names.size(); ++i) {
    ids[i] = i == g_scan.names.size() ? 0 : GetCurrentProcessId();
    *used += sizeof(DWORD);
  }
  return TRUE;
}
DWORD WINAPI NameProcess(HANDLE /*process*/, HMODULE /*module*/, LPWSTR name, DWORD units) {
  const std::wstring& next = g_scan.names[g_scan.asked++];
  wcscpy_s(name, units, next.c_str());
  return static_cast<DWORD>(next.size());
}

}  // namespace

TEST_F(InstallFixture, EachRunningBrowserIsAskedInItsUsersPlace) {
  g_scan = {};
  started_as_user::g_lines.clear();
  g_scan.names = {L"explorer.exe", L"iexplore.exe", L"IEUser.EXE", L"iexplore.exe.exe", L"", L"IEXPLORE.EXE"};
  host.utilityPath = L"C:\\Lumen Player\\util.exe";
  const HMODULE self = GetModuleHandleW(nullptr);
  const ImportHook list(self, "K32EnumProcesses", &ListProcesses);
  const ImportHook name(self, "K32GetModuleBaseNameW", &NameProcess);
  const ImportHook start(self, "CreateProcessAsUserW", &started_as_user::Start);
  const DWORD before = counts::KernelHandles();
  AskBrowsersToRefresh(&host);
  EXPECT_EQ(counts::KernelHandles(), before);
  const std::string line = "\"C:\\Lumen Player\\util.exe\" -refreshIEElevationPolicies";
  EXPECT_EQ(started_as_user::g_lines, (Lines{line, line, line}));
  EXPECT_EQ(g_scan.asked, g_scan.names.size());
  EXPECT_EQ(host.Reports(), Lines{});
}

TEST_F(InstallFixture, PluginDirectoriesComeFromEveryBrowserInTurnAndOnce) {
  SetText("Software\\Mozilla\\Firefox 3\\extensions", "Plugins", "C:\\ff3\\plugins");
  SetText("Software\\Mozilla\\Firefox 4", "Plugins", "not here");
  SetText("Software\\Mozilla\\Seamonkey\\extensions", "Plugins", "C:\\sea\\plugins");
  SetText("Software\\Opera Software", "Last CommandLine", "C:\\mine\\opera.exe", HKEY_CURRENT_USER);
  SetText("Software\\Opera Software", "Last CommandLine", "C:\\all\\opera.exe");
  SetText("Software\\Opera Software", "Plugin Path", "C:\\all\\Plugins");
  const Lines found = {"C:\\ff3\\plugins", "C:\\sea\\plugins", "C:\\mine\\Program\\Plugins", "C:\\all\\Plugins",
                       "C:\\fallback"};
  RefreshPluginDirectories(shim, L"C:\\fallback");
  EXPECT_EQ(Keys(shim->GetPluginDirectories()), found);
  EXPECT_EQ(host.Reports(), (Lines{"1 1036 Software\\Mozilla\\Firefox 4\\extensions/Plugins 2",
                                   "1 1036 Software\\Opera Software/Plugin Path 2"}));
  RefreshPluginDirectories(shim, L"C:\\other");
  EXPECT_EQ(Keys(shim->GetPluginDirectories()), found);
}
