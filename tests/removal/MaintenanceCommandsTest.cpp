// The services' own commands, run as real children of a stand-in executable; and the steps that remove the services
// as long as no player needs them.
#include "removal/MaintenanceCommands.h"

#include <gtest/gtest.h>

#include <map>
#include <sstream>

#include "engine/DllHelpers.h"
#include "engine/ProductKeys.h"
#include "engine/ProductKind.h"
#include "engine/Registry.h"
#include "tests/fakes/LateFunctions.h"
#include "tests/fakes/PlayerService.h"
#include "tests/support/ImportHook.h"
#include "tests/support/RecordingHost.h"
#include "tests/support/TestFiles.h"

namespace {

using namespace product_kind;

constexpr wchar_t kFolder[] = L"C:\\LumenMaintenance";
constexpr wchar_t kOptions[] =
    L"SOFTWARE\\Microsoft\\Windows NT\\CurrentVersion\\Image File Execution Options\\LumenUpdate.exe";

std::string g_commandLine;
DWORD g_creationFlags, g_waited;
BOOL g_inherits;
bool g_timesOut;
int g_managersLeft;  // how often the service manager can still be opened

BOOL WINAPI Create(LPCWSTR name, LPWSTR line, LPSECURITY_ATTRIBUTES process, LPSECURITY_ATTRIBUTES thread, BOOL inherit,
                   DWORD flags, LPVOID environment, LPCWSTR directory, LPSTARTUPINFOW startup,
                   LPPROCESS_INFORMATION started) {
  static auto* const own = Own<decltype(CreateProcessW)>(L"kernel32.dll", "CreateProcessW");
  g_commandLine = ToUtf8(line);
  g_creationFlags = flags;
  g_inherits = inherit;
  return own(name, line, process, thread, inherit, flags, environment, directory, startup, started);
}
DWORD WINAPI Wait(HANDLE object, DWORD milliseconds) {
  static auto* const own = Own<decltype(WaitForSingleObject)>(L"kernel32.dll", "WaitForSingleObject");
  g_waited = milliseconds;
  return g_timesOut ? static_cast<DWORD>(WAIT_TIMEOUT) : own(object, milliseconds);
}
SC_HANDLE WINAPI OpenManager(LPCWSTR machine, LPCWSTR database, DWORD rights) {
  static auto* const own = Own<decltype(OpenSCManagerW)>(L"advapi32.dll", "OpenSCManagerW");
  return g_managersLeft-- > 0 ? own(machine, database, rights) : nullptr;
}
// No apartment, no task: a refresh of the task shows by its first two reports.
HRESULT WINAPI Enter(LPVOID, DWORD) {
  return E_FAIL;
}
const Lines kTaskRefreshed = {"1 1106", "1 1168 -2147467259"};

class Maintenance : public testing::Test {
 protected:
  Maintenance() {
    late_functions::FindLateFunctions();
    late_functions::g_machine.missing = "WTSFreeMemory";
    g_timesOut = false;
    g_managersLeft = 99;
    ForgetPlayers();
    host.updateServiceFileName = L"LumenUpdate.exe";
    host.taskCommandPath = L"C:\\tool.exe";
  }
  ~Maintenance() override {
    ForgetPlayers();
    const ServiceHandle all(OpenSCManagerA(nullptr, nullptr, SC_MANAGER_ALL_ACCESS));
    const ServiceHandle made(OpenServiceA(all.Get(), "CorvaLumenPlayerFeedbackSvc", SERVICE_ALL_ACCESS));
    if (made) DeleteService(made.Get());
  }

  static void ForgetPlayers() {
    for (const uint32_t kind : {ActiveX, Plugin, Pepper}) {
      (void)DeleteKeyTree(HKEY_LOCAL_MACHINE, WidenAscii(GetProductKey(kind)).c_str());
    }
    (void)DeleteKeyTree(HKEY_LOCAL_MACHINE, kOptions);
  }
  static void InstallPlayer(uint32_t kind, uint32_t debugger) {
    const RegistryKey key = CreateKey(HKEY_LOCAL_MACHINE, GetProductKey(kind).c_str(), KEY_ALL_ACCESS);
    ASSERT_EQ(WriteText(key.Get(), "PlayerPath", "C:\\player"), 0);
    ASSERT_EQ(WriteText(key.Get(), "UninstallerPath", "C:\\uninstaller"), 0);
    ASSERT_EQ(WriteNumber(key.Get(), "isScriptDebugger", debugger), 0);
  }
  // Puts the stand-in at `path`, to answer switches with these codes.
  static void PutService(const WideString& path, const std::map<std::string, int>& codes = {}) {
    const WideString program = testing_files::Beside(L"PlayerService.exe");
    ASSERT_TRUE(CopyFileW(program.c_str(), path.c_str(), FALSE)) << GetLastError();
    std::string text;
    for (const auto& [word, code] : codes) text += word + " " + std::to_string(code) + "\n";
    testing_files::WriteWhole(path + L".codes", text);
    DeleteFileA(NarrowToCodePage(path + L".switches").c_str());
  }
  // A feedback service that the service manager knows and that does not run.
  static void MakeStoppedService() {
    const ServiceHandle all(OpenSCManagerA(nullptr, nullptr, SC_MANAGER_ALL_ACCESS));
    const ServiceHandle made(CreateServiceW(
        all.Get(), kFeedbackServiceName, kFeedbackServiceDisplayName, SERVICE_ALL_ACCESS, SERVICE_WIN32_OWN_PROCESS,
        SERVICE_DEMAND_START, SERVICE_ERROR_NORMAL, L"C:\\none.exe", nullptr, nullptr, nullptr, nullptr, nullptr));
    ASSERT_TRUE(made || GetLastError() == ERROR_SERVICE_EXISTS) << GetLastError();
  }
  static Lines Switches(const WideString& path) {
    if (!testing_files::Exists(path + L".switches")) return {};
    std::istringstream text(testing_files::ReadWhole(path + L".switches"));
    Lines words;
    for (std::string word; text >> word;) words.push_back(word);
    return words;
  }
  // The reports but for those of players that are not installed.
  [[nodiscard]] Lines Reports() const {
    Lines all = host.Reports();
    std::erase_if(all, [](const std::string& line) { return line.starts_with("1 1036 Software\\Halcyonics"); });
    return all;
  }
  bool RemoveFeedback() { return RemoveFeedbackService(&host, MString(WideView(feedback)), MString(WideView(update))); }
  bool RemoveUpdate(bool setNotify) { return RemoveUpdateServiceFile(&host, MString(WideView(update)), setNotify); }

  testing_files::CleanDirectory folder{kFolder};
  const WideString update = WideString(kFolder) + L"\\LumenUpdate.exe";
  const WideString feedback = WideString(kFolder) + L"\\LumenFeedback.exe";
  RecordingHost host;
  ImportHook create{GetModuleHandleW(nullptr), "CreateProcessW", &Create};
  ImportHook wait{GetModuleHandleW(nullptr), "WaitForSingleObject", &Wait};
  ImportHook manager{GetModuleHandleW(nullptr), "OpenSCManagerW", &OpenManager};
  ImportHook enter{GetModuleHandleW(nullptr), "CoInitializeEx", &Enter};
};

TEST_F(Maintenance, ACommandIsJudgedByItsExitCode) {
  const WideString withBlank = WideString(kFolder) + L"\\Lumen Update.exe";
  for (const WideString& path : {update, withBlank}) {
    PutService(path, {{"-enableAnalytics", 1}});
    const auto runner = UpdateServiceRunner(&host, MString(WideView(path)));
    EXPECT_TRUE(RunUninstallCommand(*runner));
    EXPECT_EQ(g_commandLine, ToUtf8(path) + " -uninstall") << "not quoted, blank or no blank";
    EXPECT_EQ(g_creationFlags, 0xC000000u);
    EXPECT_FALSE(g_inherits);
    EXPECT_EQ(g_waited, 600000u);
    EXPECT_FALSE(RunAnalyticsCommand(*runner));
    EXPECT_EQ(Switches(path), (Lines{"-uninstall", "-enableAnalytics"}));
  }
  EXPECT_EQ(Reports(), Lines());
  EXPECT_FALSE(RunServiceCommand(*UpdateServiceRunner(&host, L"C:\\missing.exe"), L"-x"));
  EXPECT_EQ(Reports(), Lines{"1 1118"});
}

TEST_F(Maintenance, AChildThatOutlastsTheWaitFailsAndIsLeftAlone) {
  PutService(update, {{"-uninstall", kPlayerServiceWaits}});
  const KernelHandle release(CreateEventW(nullptr, TRUE, FALSE, kPlayerServiceRelease));
  g_timesOut = true;
  EXPECT_FALSE(RunUninstallCommand(*UpdateServiceRunner(&host, MString(WideView(update)))));
  EXPECT_FALSE(DeleteFileA(NarrowToCodePage(update).c_str())) << "it runs on";
  EXPECT_EQ(Reports(), Lines());
  SetEvent(release.Get());
  // Its end frees the file; opening for writing tells that.
  while (!FileHandle(CreateFileW(update.c_str(), GENERIC_WRITE, 0, nullptr, OPEN_EXISTING, 0, nullptr)))
    SwitchToThread();
}

TEST_F(Maintenance, AModeRunsAllItsSwitchesAndThenTheTask) {
  const struct {
    const char* failing;
    Lines switches;
    uint32_t mode;
    bool result, refreshes;
  } rows[] = {
      {"-setSilentAutoUpdate", {"-setSilentAutoUpdate"}, 0, false, true},
      {"", {"-uninstall", "-setNotifyAutoUpdate"}, 1, true, true},
      {"-uninstall", {"-uninstall", "-setNotifyAutoUpdate"}, 1, false, true},
      {"", {"-uninstall", "-setDisableAutoUpdate"}, 2, true, false},
      {"", {"-setNotifyAutoUpdate"}, 3, true, true},
      {"", {"-setDisableAutoUpdate"}, 4, true, true},
  };
  for (const auto& row : rows) {
    PutService(update, {{row.failing, 3}});
    for (const uint32_t flags : {host_flag::Pepper, host_flag::Plugin}) {
      host.Forget();
      host.flags = flags;
      const auto runner = UpdateServiceRunner(&host, MString(WideView(update)));
      EXPECT_EQ(SetUpdateMode(*runner, row.mode), row.result) << row.mode << row.failing;
      EXPECT_EQ(Reports(), row.refreshes && flags == host_flag::Pepper ? kTaskRefreshed : Lines()) << row.mode;
    }
    Lines twice = row.switches;
    twice.insert(twice.end(), row.switches.begin(), row.switches.end());
    EXPECT_EQ(Switches(update), twice);
  }
  host.flags = host_flag::Pepper;
  EXPECT_FALSE(SetUpdateMode(*UpdateServiceRunner(&host, MString(WideView(update))), 7));
  EXPECT_EQ(Reports(), Lines{"1 1118"});
}

TEST_F(Maintenance, ServicesStayWhileAPlayerThatNeedsThemDoes) {
  const struct {
    uint32_t kind, debugger, osClass;
    bool feedbackGoes, updateGoes;
  } rows[] = {{0, 0, 0, true, true},       {ActiveX, 0, 2, false, false}, {ActiveX, 1, 2, false, true},
              {ActiveX, 0, 3, true, true}, {Plugin, 0, 2, false, false},  {Plugin, 0, 3, false, false},
              {Plugin, 1, 3, false, true}, {Pepper, 0, 3, true, false},   {Pepper, 1, 0, true, true}};
  for (const auto& row : rows) {
    const std::string name = std::to_string(row.kind) + " " + std::to_string(row.osClass);
    ForgetPlayers();
    if (row.kind != 0) InstallPlayer(row.kind, row.debugger);
    host.osClass = row.osClass;
    PutService(feedback);
    PutService(update);
    EXPECT_TRUE(RemoveFeedback());
    EXPECT_EQ(testing_files::Exists(feedback), !row.feedbackGoes) << name;
    EXPECT_EQ(Switches(feedback), row.feedbackGoes ? Lines{"-uninstall"} : Lines()) << name;
    EXPECT_TRUE(RemoveUpdate(false));
    EXPECT_EQ(testing_files::Exists(update), !row.updateGoes) << name;
    EXPECT_EQ(Switches(update), row.updateGoes ? Lines{"-uninstall"} : Lines()) << name;
  }
}

TEST_F(Maintenance, WithoutAFeedbackServiceTheUpdateServiceIsAskedForAnalytics) {
  const struct {
    bool allowed, there;
    uint32_t source;
    bool asked;
  } rows[] = {{true, true, 4, true}, {false, true, 0, false}, {true, false, 0, false}, {true, true, 2, false}};
  for (const auto& row : rows) {
    PutService(update, {{"-enableAnalytics", 9}});
    if (!row.there) DeleteFileA(NarrowToCodePage(update).c_str());
    host.analyticsAllowed = row.allowed;
    host.installSource = row.source;
    EXPECT_TRUE(RemoveFeedback()) << "whatever the command says";
    EXPECT_EQ(Switches(update), row.asked ? Lines{"-enableAnalytics"} : Lines()) << row.allowed << row.source;
  }
  EXPECT_EQ(Reports(), Lines());
}

TEST_F(Maintenance, TheUpdateServiceIsUninstalledTwiceWhenItIsSetToNotify) {
  const struct {
    const char* failing;
    Lines switches;
    bool setNotify, result;
  } rows[] = {
      {"", {"-uninstall"}, false, true},
      {"-uninstall", {"-uninstall"}, false, false},
      {"", {"-uninstall", "-setNotifyAutoUpdate", "-uninstall"}, true, true},
      {"-setNotifyAutoUpdate", {"-uninstall", "-setNotifyAutoUpdate"}, true, false},
  };
  for (const auto& row : rows) {
    PutService(update, {{row.failing, 1}});
    ASSERT_TRUE(CreateKey(HKEY_LOCAL_MACHINE, NarrowToCodePage(kOptions).c_str(), KEY_ALL_ACCESS));
    EXPECT_EQ(RemoveUpdate(row.setNotify), row.result) << row.failing;
    EXPECT_EQ(Switches(update), row.switches) << row.failing;
    EXPECT_FALSE(testing_files::Exists(update)) << row.failing;
    EXPECT_FALSE(OpenKey(HKEY_LOCAL_MACHINE, NarrowToCodePage(kOptions).c_str(), KEY_READ)) << row.failing;
  }
  EXPECT_EQ(Reports(), Lines());
}

TEST_F(Maintenance, AFeedbackServiceThatCannotBeStoppedIsToldAndGoesAllTheSame) {
  PutService(feedback);
  MakeStoppedService();
  g_managersLeft = 1;
  EXPECT_TRUE(RemoveFeedback());
  EXPECT_EQ(Reports(), (Lines{"1 1101", "1 1741"}));
  EXPECT_EQ(Switches(feedback), Lines{"-uninstall"});
  EXPECT_FALSE(testing_files::Exists(feedback));
}

}  // namespace
