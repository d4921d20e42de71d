// Real services under the real service manager; only time is the test's own, so that half a minute takes no time.
#include "removal/ServiceControl.h"

#include <windows.h>

#include <gtest/gtest.h>

#include <functional>

#include "engine/Handles.h"
#include "tests/fakes/PlayerService.h"
#include "tests/support/ImportHook.h"
#include "tests/support/RecordingHost.h"
#include "tests/support/StartProcess.h"
#include "tests/support/TestFiles.h"

namespace {

// Time as StopService sees it: sleeping moves it on, and may do something to the service.
DWORD g_now = 0;
std::vector<DWORD> g_sleeps;
std::function<void(size_t)> g_afterSleep;

DWORD WINAPI Now() {
  return g_now;
}
void WINAPI Pause(DWORD milliseconds) {
  g_now += milliseconds;
  g_sleeps.push_back(milliseconds);
  if (g_afterSleep) g_afterSleep(g_sleeps.size());
}

// The calls to the service manager, of which one can be made to fail.
size_t g_calls = 0, g_failing = 0;
bool Fails() {
  return ++g_calls == g_failing;
}
auto* const g_query = Own<decltype(QueryServiceStatusEx)>(L"advapi32.dll", "QueryServiceStatusEx");
auto* const g_control = Own<decltype(ControlService)>(L"advapi32.dll", "ControlService");

SC_HANDLE WINAPI OpenManager(LPCWSTR /*machine*/, LPCWSTR /*database*/, DWORD rights) {
  EXPECT_EQ(rights, 0xF003Fu);
  return Fails() ? nullptr : OpenSCManagerA(nullptr, nullptr, rights);
}
SC_HANDLE WINAPI OpenOne(SC_HANDLE manager, LPCWSTR name, DWORD rights) {
  EXPECT_EQ(rights, 0xF01FFu);
  return Fails() ? nullptr : OpenServiceA(manager, ToUtf8(name).c_str(), rights);
}
BOOL WINAPI Query(SC_HANDLE service, SC_STATUS_TYPE level, BYTE* buffer, DWORD size, DWORD* needed) {
  return Fails() ? FALSE : g_query(service, level, buffer, size, needed);
}
BOOL WINAPI Control(SC_HANDLE service, DWORD control, SERVICE_STATUS* status) {
  return Fails() ? FALSE : g_control(service, control, status);
}

class ServiceControl : public testing::Test {
 protected:
  ~ServiceControl() override { Unmake(); }

  // A running service that stops as `mode` says.
  void Make(const char* mode) {
    const WideString program = L"\"" + testing_files::Beside(L"PlayerService.exe") + L"\" ";
    // The manager may still be at the deletion of the service before, or at the start of somebody else's.
    DWORD code = 1;
    for (const ULONGLONG begun = GetTickCount64(); code != 0 && GetTickCount64() - begun < 20000;) {
      const KernelHandle installer = StartProcess(program + WidenAscii(mode) + L" -install");
      WaitForSingleObject(installer.Get(), 20000);
      GetExitCodeProcess(installer.Get(), &code);
    }
    service.Reset(OpenServiceA(manager.Get(), ToUtf8(kUpdateServiceName).c_str(), SERVICE_ALL_ACCESS));
    SERVICE_STATUS_PROCESS status = {};
    DWORD needed = 0;
    do {
      ASSERT_TRUE(
          g_query(service.Get(), SC_STATUS_PROCESS_INFO, reinterpret_cast<BYTE*>(&status), sizeof(status), &needed));
    } while (status.dwCurrentState == SERVICE_START_PENDING);
    ASSERT_EQ(status.dwCurrentState, static_cast<DWORD>(SERVICE_RUNNING));
    process.Reset(OpenProcess(SYNCHRONIZE, FALSE, status.dwProcessId));
    ASSERT_TRUE(process);
  }
  // Lets the service end and waits until it has.
  void Release() {
    SetEvent(release.Get());
    if (process) EXPECT_EQ(WaitForSingleObject(process.Get(), 20000), static_cast<DWORD>(WAIT_OBJECT_0));
  }
  void Unmake() {
    Release();
    DeleteService(service.Get());
    service.Reset();
    process.Reset();
    ResetEvent(release.Get());
  }
  // With a fresh log; `endsAfter` so many sleeps the service ends.
  bool Stop(size_t failing = 0, size_t endsAfter = 0) {
    const HMODULE module = GetModuleHandleW(nullptr);
    const ImportHook time(module, "GetTickCount", &Now);
    const ImportHook sleep(module, "Sleep", &Pause);
    const ImportHook open(module, "OpenSCManagerW", &OpenManager);
    const ImportHook openOne(module, "OpenServiceW", &OpenOne);
    const ImportHook query(module, "QueryServiceStatusEx", &Query);
    const ImportHook control(module, "ControlService", &Control);
    g_now = 0xFFFFF000;  // the clock wraps on the way
    g_sleeps.clear();
    g_calls = 0;
    g_failing = failing;
    g_afterSleep = [this, endsAfter](size_t count) {
      if (count == endsAfter) Release();
    };
    host.Forget();
    return StopService(*UpdateServiceRunner(&host, MString(L"")));
  }

  RecordingHost host;
  ServiceHandle manager{OpenSCManagerA(nullptr, nullptr, SC_MANAGER_ALL_ACCESS)};
  ServiceHandle service;
  KernelHandle release{
      CreateEventW(nullptr, TRUE, FALSE, (kPlayerServiceEnd + WideString(kUpdateServiceName)).c_str())};
  KernelHandle process;
};

using Sleeps = std::vector<DWORD>;

}  // namespace

TEST_F(ServiceControl, HowLongItTakesDecidesWhatIsTold) {
  struct Row {
    const char* mode;
    size_t endsAfter;  // sleeps; 0: by itself or not at all
    Lines reports;
    Sleeps sleeps;
  };
  const Row rows[] = {
      {"at-once", 0, {"0 35"}, {}},
      {"late", 2, {"1 1744 serviceProc.dwCurrentState == SERVICE_STOPPED", "0 35"}, {5000, 5000}},
      // At 30,000 ms exactly the wait goes on; then the service counts as stopped.
      {"never", 0, {"1 1745 GetTickCount() - dwStartTime > dwTimeout"}, Sleeps(7, 5000)},
  };
  for (const Row& row : rows) {
    Make(row.mode);
    EXPECT_TRUE(Stop(0, row.endsAfter));
    EXPECT_EQ(host.Reports(), row.reports);
    EXPECT_EQ(g_sleeps, row.sleeps);
    Unmake();
  }
}

TEST_F(ServiceControl, EachCallThatFailsHasItsReport) {
  const Lines timeOut = {"1 1745 GetTickCount() - dwStartTime > dwTimeout"};
  const std::pair<bool, Lines> rows[] = {
      {true, {"1 1101"}},  // a manager that is closed to the first question hides the service
      {true, {}},
      {false, {"1 1101"}},
      {false, {"1 1102"}},
      {true, {}},
      {false, {"1 1741"}},
      {true, timeOut},  // the query after the stop is asked again
      {true, {"1 1743 QueryServiceStatusEx() failed"}},
  };
  size_t failing = 0;
  for (const auto& [result, reports] : rows) {
    Make("never");
    EXPECT_EQ(Stop(++failing), result) << failing;
    EXPECT_EQ(host.Reports(), reports) << failing;
    Unmake();
  }
}
