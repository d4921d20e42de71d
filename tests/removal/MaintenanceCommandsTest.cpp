// The services' own commands, and the steps that remove the services as long as no player needs them. Their processes
// are stand-ins here; real ones run where a kind is removed.
#include "removal/MaintenanceCommands.h"

#include <map>

#include "engine/ProductKeys.h"
#include "tests/install/InstallFixture.h"
#include "tests/support/ImportHook.h"
#include "tests/support/PlatformCounts.h"

namespace {

using namespace product_kind;

Lines g_started;                         // command lines without their directory
std::map<std::string, DWORD> g_answers;  // exit codes by switch; 0 for others
DWORD g_exitCode;

BOOL WINAPI Create(LPCWSTR, LPWSTR line, LPSECURITY_ATTRIBUTES, LPSECURITY_ATTRIBUTES, BOOL inherit, DWORD flags,
                   LPVOID, LPCWSTR, LPSTARTUPINFOW, LPPROCESS_INFORMATION started) {
  const std::string text = ToUtf8(line);
  EXPECT_TRUE(text.starts_with("C:\\lumen tests\\")) << "not quoted, in spite of the blank";
  EXPECT_FALSE(inherit);
  EXPECT_EQ(flags, 0xC000000u);
  g_started.push_back(text.substr(text.rfind('\\') + 1));
  g_exitCode = g_answers[text.substr(text.rfind(' ') + 1)];
  *started = {CreateEventW(nullptr, TRUE, FALSE, nullptr), CreateEventW(nullptr, TRUE, FALSE, nullptr), 1, 2};
  return TRUE;
}
DWORD WINAPI Wait(HANDLE /*object*/, DWORD milliseconds) {
  EXPECT_EQ(milliseconds, 600000u);
  return WAIT_OBJECT_0;
}
BOOL WINAPI ExitCode(HANDLE /*process*/, LPDWORD code) {
  *code = g_exitCode;
  return TRUE;
}
// No apartment, no task: a refresh of the task shows by its report.
HRESULT WINAPI Enter(LPVOID, DWORD) {
  return E_FAIL;
}

class Maintenance : public InstallFixture {
 protected:
  Maintenance() {
    g_started.clear();
    g_answers.clear();
  }
  void InstallPlayer(uint32_t kind, uint32_t debugger) {
    ClearMachine();
    if (kind == 0) return;
    SetText(GetProductKey(kind), "PlayerPath", "C:\\player");
    SetText(GetProductKey(kind), "UninstallerPath", "C:\\uninstaller");
    SetNumber(GetProductKey(kind), "isScriptDebugger", debugger);
  }
  // The reports but for those of players that are not installed.
  [[nodiscard]] Lines Reports() const {
    Lines all = host.Reports();
    std::erase_if(all, [](const std::string& line) { return line.starts_with("1 1036 Software\\Halcyonics"); });
    return all;
  }
  std::unique_ptr<ServiceRunner> Runner() { return UpdateServiceRunner(&host, PathOf("Update.exe")); }
  bool RemoveFeedback() { return RemoveFeedbackService(&host, PathOf("Feedback.exe"), PathOf("Update.exe")); }

  ImportHook create{GetModuleHandleW(nullptr), "CreateProcessW", &Create};
  ImportHook wait{GetModuleHandleW(nullptr), "WaitForSingleObject", &Wait};
  ImportHook code{GetModuleHandleW(nullptr), "GetExitCodeProcess", &ExitCode};
  ImportHook enter{GetModuleHandleW(nullptr), "CoInitializeEx", &Enter};
};

TEST_F(Maintenance, AModeRunsAllItsSwitchesAndThenTheTask) {
  const std::string uninstall = "Update.exe -uninstall";
  const std::string notify = "Update.exe -setNotifyAutoUpdate";
  const std::string disable = "Update.exe -setDisableAutoUpdate";
  const struct {
    uint32_t mode;
    const char* failing;
    Lines started;
    bool result, refreshes;
  } rows[] = {
      {0, "-setSilentAutoUpdate", {"Update.exe -setSilentAutoUpdate"}, false, true},
      {1, "", {uninstall, notify}, true, true},
      {1, "-uninstall", {uninstall, notify}, false, true},
      {2, "", {uninstall, disable}, true, false},
      {3, "", {notify}, true, true},
      {4, "", {disable}, true, true},
  };
  const DWORD handles = counts::KernelHandles();
  for (const auto& row : rows) {
    g_answers = {{row.failing, 3}};
    for (const uint32_t flags : {host_flag::Pepper, host_flag::Plugin}) {
      host.Forget();
      g_started.clear();
      host.flags = flags;
      EXPECT_EQ(SetUpdateMode(*Runner(), row.mode), row.result) << row.mode << row.failing;
      EXPECT_EQ(g_started, row.started);
      const Lines reports = Reports();
      EXPECT_EQ(std::count(reports.begin(), reports.end(), "1 1106"), row.refreshes && flags == host_flag::Pepper);
    }
  }
  host.Forget();
  EXPECT_EQ(counts::KernelHandles(), handles);
  EXPECT_FALSE(SetUpdateMode(*Runner(), 7));
  EXPECT_EQ(Reports(), Lines{"1 1118"});
}

TEST_F(Maintenance, ServicesStayWhileAPlayerThatNeedsThemDoes) {
  const struct {
    uint32_t kind, debugger, osClass;
    bool feedbackGoes, updateGoes;
  } rows[] = {{0, 0, 0, true, true},       {ActiveX, 0, 2, false, false}, {ActiveX, 1, 2, false, true},
              {ActiveX, 0, 3, true, true}, {Plugin, 0, 3, false, false},  {Plugin, 1, 3, false, true},
              {Pepper, 0, 3, true, false}, {Pepper, 1, 0, true, true}};
  for (const auto& row : rows) {
    InstallPlayer(row.kind, row.debugger);
    host.osClass = row.osClass;
    (void)File("Feedback.exe");
    (void)File("Update.exe");
    g_started.clear();
    EXPECT_TRUE(RemoveFeedback());
    EXPECT_TRUE(RemoveUpdateServiceFile(&host, PathOf("Update.exe"), false));
    Lines started;
    if (row.feedbackGoes) started.emplace_back("Feedback.exe -uninstall");
    if (row.updateGoes) started.emplace_back("Update.exe -uninstall");
    EXPECT_EQ(g_started, started) << row.kind << " " << row.osClass;
    EXPECT_EQ(FileIsThere("Feedback.exe"), !row.feedbackGoes) << row.kind << " " << row.osClass;
    EXPECT_EQ(FileIsThere("Update.exe"), !row.updateGoes) << row.kind << " " << row.osClass;
  }
}

}  // namespace
