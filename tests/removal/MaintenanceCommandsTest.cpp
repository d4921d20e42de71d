// The services' own commands, and the steps that remove the services as long as no player needs them. Their processes
// are stand-ins here; real ones run where a kind is removed.
#include "removal/MaintenanceCommands.h"

#include <map>

#include "engine/ProductKeys.h"
#include "tests/install/InstallFixture.h"
#include "tests/support/CountFixture.h"
#include "tests/support/ImportHook.h"

namespace {

using namespace product_kind;

Lines g_started;                         // command lines without their directory
std::map<std::string, DWORD> g_answers;  // exit codes by switch; 0 for others
DWORD g_exitCode;
int g_managersLeft;  // how often the service manager can still be opened

BOOL WINAPI Create(LPCWSTR, LPWSTR line, LPSECURITY_ATTRIBUTES, LPSECURITY_ATTRIBUTES, BOOL inherit, DWORD flags,
                   LPVOID, LPCWSTR, LPSTARTUPINFOW, LPPROCESS_INFORMATION started) {
  const std::string text = ToUtf8(line);
  EXPECT_TRUE(text.starts_with("C:\\lumen tests\\")) << "not quoted, in spite of the blank";
  EXPECT_FALSE(inherit);
  EXPECT_EQ(flags, 0xC000000u);
  g_started.push_back(text.substr(text.rfind('\\') + 1));
  if (text.find("missing") != std::string::npos) return SetLastError(ERROR_FILE_NOT_FOUND), FALSE;
  g_exitCode = g_answers[text.substr(text.rfind(' ') + 1)];
  *started = {CreateEventW(nullptr, TRUE, FALSE, nullptr), CreateEventW(nullptr, TRUE, FALSE, nullptr), 1, 2};
  return TRUE;
}
DWORD WINAPI Wait(HANDLE /*object*/, DWORD milliseconds) {
  EXPECT_EQ(milliseconds, 600000u);
  return g_exitCode == STILL_ACTIVE ? WAIT_TIMEOUT : WAIT_OBJECT_0;
}
BOOL WINAPI ExitCode(HANDLE /*process*/, LPDWORD code) {
  *code = g_exitCode;
  return TRUE;
}
SC_HANDLE WINAPI OpenManager(LPCWSTR machine, LPCWSTR database, DWORD rights) {
  static auto* const own = Own<decltype(OpenSCManagerW)>(L"advapi32.dll", "OpenSCManagerW");
  return g_managersLeft-- > 0 ? own(machine, database, rights) : nullptr;
}
// Any service that there is stands for the product's.
SC_HANDLE WINAPI OpenOther(SC_HANDLE manager, LPCWSTR /*name*/, DWORD /*rights*/) {
  static auto* const own = Own<decltype(OpenServiceW)>(L"advapi32.dll", "OpenServiceW");
  return own(manager, L"RpcSs", SERVICE_QUERY_STATUS);
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
    g_managersLeft = 99;
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
  std::unique_ptr<ServiceRunner> Runner(const char* file = "Update.exe") {
    return UpdateServiceRunner(&host, PathOf(file));
  }
  bool RemoveFeedback() { return RemoveFeedbackService(&host, PathOf("Feedback.exe"), PathOf("Update.exe")); }

  ImportHook create{GetModuleHandleW(nullptr), "CreateProcessW", &Create};
  ImportHook wait{GetModuleHandleW(nullptr), "WaitForSingleObject", &Wait};
  ImportHook code{GetModuleHandleW(nullptr), "GetExitCodeProcess", &ExitCode};
  ImportHook manager{GetModuleHandleW(nullptr), "OpenSCManagerW", &OpenManager};
  ImportHook enter{GetModuleHandleW(nullptr), "CoInitializeEx", &Enter};
};

TEST_F(Maintenance, ACommandIsJudgedByItsExitCode) {
  g_answers = {{"-enableAnalytics", 1}, {"-x", STILL_ACTIVE}};
  const auto runner = Runner();
  const DWORD handles = counts::KernelHandles();
  EXPECT_TRUE(RunUninstallCommand(*runner));
  EXPECT_FALSE(RunAnalyticsCommand(*runner));
  EXPECT_FALSE(RunServiceCommand(*runner, L"-x")) << "it outlasts the wait";
  EXPECT_EQ(counts::KernelHandles(), handles);
  EXPECT_EQ(g_started, (Lines{"Update.exe -uninstall", "Update.exe -enableAnalytics", "Update.exe -x"}));
  EXPECT_EQ(Reports(), Lines());
  EXPECT_FALSE(RunUninstallCommand(*Runner("missing.exe")));
  EXPECT_EQ(Reports(), Lines{"1 1118"});
}

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

TEST_F(Maintenance, WithoutAFeedbackServiceTheUpdateServiceIsAskedForAnalytics) {
  const struct {
    bool allowed, there;
    uint32_t source;
    bool asked;
  } rows[] = {{true, true, 4, true}, {false, true, 0, false}, {true, false, 0, false}, {true, true, 2, false}};
  g_answers = {{"-enableAnalytics", 9}};
  for (const auto& row : rows) {
    DeleteFileW(PathOf("Update.exe").Data());
    if (row.there) (void)File("Update.exe");
    g_started.clear();
    host.analyticsAllowed = row.allowed;
    host.installSource = row.source;
    EXPECT_TRUE(RemoveFeedback()) << "whatever the command says";
    EXPECT_EQ(g_started, row.asked ? Lines{"Update.exe -enableAnalytics"} : Lines()) << row.allowed << row.source;
  }
  EXPECT_EQ(Reports(), Lines());
}

TEST_F(Maintenance, TheUpdateServiceIsUninstalledTwiceWhenItIsSetToNotify) {
  const std::string uninstall = "Update.exe -uninstall";
  const std::string notify = "Update.exe -setNotifyAutoUpdate";
  const struct {
    const char* failing;
    bool setNotify, result;
    Lines started;
  } rows[] = {
      {"-uninstall", false, false, {uninstall}},
      {"", true, true, {uninstall, notify, uninstall}},
      {"-setNotifyAutoUpdate", true, false, {uninstall, notify}},
  };
  for (const auto& row : rows) {
    g_answers = {{row.failing, 1}};
    g_started.clear();
    SetNumber(kImageOptions + "Update.exe", "x", 1);
    EXPECT_EQ(RemoveUpdateServiceFile(&host, File("Update.exe"), row.setNotify), row.result) << row.failing;
    EXPECT_EQ(g_started, row.started);
    EXPECT_FALSE(FileIsThere("Update.exe")) << row.failing;
    EXPECT_FALSE(KeyExists(kImageOptions + "Update.exe")) << row.failing;
  }
}

TEST_F(Maintenance, AFeedbackServiceThatCannotBeStoppedIsToldAndGoesAllTheSame) {
  const ImportHook service(GetModuleHandleW(nullptr), "OpenServiceW", &OpenOther);
  (void)File("Feedback.exe");
  g_managersLeft = 1;
  EXPECT_TRUE(RemoveFeedback());
  EXPECT_EQ(Reports(), (Lines{"1 1101", "1 1741"}));
  EXPECT_EQ(g_started, Lines{"Feedback.exe -uninstall"});
  EXPECT_FALSE(FileIsThere("Feedback.exe"));
}

}  // namespace
