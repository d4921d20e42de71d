// Real services under the real service manager; only time is the test's own, so that half a minute takes no time.
#include "removal/ServiceControl.h"

#include <windows.h>

#include <gtest/gtest.h>

#include <functional>
#include <optional>

#include "engine/Handles.h"
#include "tests/fakes/StoppableService.h"
#include "tests/support/ImportHook.h"
#include "tests/support/RecordingHost.h"
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
int g_managerCalls, g_serviceCalls, g_queryCalls;
int g_failManager, g_failService, g_failQuery;

SC_HANDLE WINAPI OpenManager(LPCWSTR /*machine*/, LPCWSTR /*database*/, DWORD rights) {
  EXPECT_EQ(rights, 0xF003Fu);
  return ++g_managerCalls == g_failManager ? nullptr : OpenSCManagerA(nullptr, nullptr, rights);
}
SC_HANDLE WINAPI OpenOne(SC_HANDLE manager, LPCWSTR name, DWORD rights) {
  EXPECT_EQ(rights, 0xF01FFu);
  return ++g_serviceCalls == g_failService ? nullptr : OpenServiceA(manager, ToUtf8(name).c_str(), rights);
}
decltype(&QueryServiceStatusEx) g_query = nullptr;
BOOL WINAPI Query(SC_HANDLE service, SC_STATUS_TYPE level, BYTE* buffer, DWORD size, DWORD* needed) {
  EXPECT_EQ(level, 0);
  EXPECT_EQ(size, 36u);
  return ++g_queryCalls == g_failQuery ? FALSE : g_query(service, level, buffer, size, needed);
}

class ServiceControl : public testing::Test {
 protected:
  ServiceControl() : manager(OpenSCManagerA(nullptr, nullptr, SC_MANAGER_ALL_ACCESS)) {
    release.Reset(CreateEventW(nullptr, TRUE, FALSE, kStoppableServiceRelease));
    g_now = 0xFFFFF000;  // the clock wraps on the way
    g_sleeps.clear();
    g_afterSleep = nullptr;
    g_managerCalls = g_serviceCalls = g_queryCalls = g_failManager = g_failService = g_failQuery = 0;
    g_query = &QueryServiceStatusEx;
  }
  ~ServiceControl() override {
    if (service) Unmake();
  }

  // A service that stops as `mode` says, running unless told otherwise.
  void Make(const wchar_t* mode, bool start = true) {
    const WideString command = L"\"" + testing_files::Beside(L"StoppableService.exe") + L"\" " + mode;
    // The manager may still be at the deletion of the one before.
    const ULONGLONG begun = GetTickCount64();
    do {
      service.Reset(CreateServiceW(manager.Get(), kStoppableService, kStoppableService, SERVICE_ALL_ACCESS,
                                   SERVICE_WIN32_OWN_PROCESS, SERVICE_DEMAND_START, SERVICE_ERROR_NORMAL,
                                   command.c_str(), nullptr, nullptr, nullptr, nullptr, nullptr));
    } while (!service && GetLastError() == ERROR_SERVICE_MARKED_FOR_DELETE && GetTickCount64() - begun < 20000);
    ASSERT_TRUE(service) << GetLastError();
    if (!start) return;
    ASSERT_TRUE(StartServiceW(service.Get(), 0, nullptr)) << GetLastError();
    SERVICE_STATUS_PROCESS status = {};
    DWORD needed = 0;
    do {
      ASSERT_TRUE(QueryServiceStatusEx(service.Get(), SC_STATUS_PROCESS_INFO, reinterpret_cast<BYTE*>(&status),
                                       sizeof(status), &needed));
    } while (status.dwCurrentState == SERVICE_START_PENDING);
    ASSERT_EQ(status.dwCurrentState, static_cast<DWORD>(SERVICE_RUNNING));
    process.Reset(OpenProcess(SYNCHRONIZE, FALSE, status.dwProcessId));
    ASSERT_TRUE(process);
  }
  // Lets the service end and waits until it has.
  void Release() {
    SetEvent(release.Get());
    if (process) {
      EXPECT_EQ(WaitForSingleObject(process.Get(), 20000), static_cast<DWORD>(WAIT_OBJECT_0));
    }
  }
  // All as before it was made.
  void Unmake() {
    Release();
    DeleteService(service.Get());
    service.Reset();
    process.Reset();
    ResetEvent(release.Get());
    host.Forget();
    g_sleeps.clear();
    g_afterSleep = nullptr;
  }
  bool Stop() {
    const HMODULE module = GetModuleHandleW(nullptr);
    const ImportHook time(module, "GetTickCount", &Now);
    const ImportHook sleep(module, "Sleep", &Pause);
    const ImportHook open(module, "OpenSCManagerW", &OpenManager);
    const ImportHook openOne(module, "OpenServiceW", &OpenOne);
    const ImportHook query(module, "QueryServiceStatusEx", &Query);
    return StopService(Runner());
  }
  ServiceRunner Runner() { return {&host, MString(L""), MString(kStoppableService), MString(L"")}; }

  RecordingHost host;
  ServiceHandle manager;
  ServiceHandle service;
  KernelHandle release;
  KernelHandle process;
};

using Sleeps = std::vector<DWORD>;

}  // namespace

TEST_F(ServiceControl, AnAbsentOrStoppedServiceIsStoppedWithoutAWord) {
  EXPECT_FALSE(ServiceExists(Runner()));
  EXPECT_TRUE(Stop());
  Make(L"at-once", false);
  EXPECT_TRUE(ServiceExists(Runner()));
  EXPECT_TRUE(Stop());
  EXPECT_EQ(host.Reports(), Lines{});
  EXPECT_EQ(g_sleeps, Sleeps{});
}

TEST_F(ServiceControl, HowLongItTakesDecidesWhatIsTold) {
  struct Row {
    const wchar_t* mode;
    size_t endsAfter;  // sleeps; 0: by itself or not at all
    Lines reports;
    Sleeps sleeps;
  };
  const Row rows[] = {
      {L"at-once", 0, {"0 35"}, {}},
      {L"released", 2, {"1 1744 serviceProc.dwCurrentState == SERVICE_STOPPED", "0 35"}, {5000, 5000}},
      // At 30,000 ms exactly the wait goes on; then the service counts as stopped.
      {L"never", 0, {"1 1745 GetTickCount() - dwStartTime > dwTimeout"}, Sleeps(7, 5000)},
  };
  for (const Row& row : rows) {
    Make(row.mode);
    g_afterSleep = [&](size_t count) {
      if (count == row.endsAfter) Release();
    };
    EXPECT_TRUE(Stop());
    EXPECT_EQ(host.Reports(), row.reports);
    EXPECT_EQ(g_sleeps, row.sleeps);
    Unmake();
  }
}

TEST_F(ServiceControl, AStopThatIsUnderWayIsWaitedForInSilence) {
  Make(L"released");
  SERVICE_STATUS status = {};
  ASSERT_TRUE(ControlService(service.Get(), SERVICE_CONTROL_STOP, &status));
  EXPECT_TRUE(Stop());
  EXPECT_EQ(g_sleeps, Sleeps(31, 1000)) << "it never ended";
  g_sleeps.clear();
  g_afterSleep = [this](size_t count) {
    if (count == 3) Release();
  };
  EXPECT_TRUE(Stop());
  EXPECT_EQ(g_sleeps, Sleeps(3, 1000));
  EXPECT_EQ(host.Reports(), Lines{});
}

TEST_F(ServiceControl, EachFailureHasItsReport) {
  struct Row {
    const wchar_t* mode;
    int manager, service, query;
    bool result;
    Lines reports;
  };
  const Row rows[] = {
      {L"at-once", 1, 0, 0, true, {"1 1101"}},  // a manager that is closed to the first question hides the service
      {L"at-once", 2, 0, 0, false, {"1 1101"}}, {L"at-once", 0, 1, 0, true, {}},
      {L"at-once", 0, 2, 0, false, {"1 1102"}}, {L"at-once", 0, 0, 1, true, {}},
      {L"refuses", 0, 0, 0, false, {"1 1741"}}, {L"never", 0, 0, 3, true, {"1 1743 QueryServiceStatusEx() failed"}},
  };
  for (const Row& row : rows) {
    SCOPED_TRACE(testing::PrintToString(row.reports) + std::to_string(row.manager) + std::to_string(row.service));
    Make(row.mode);
    g_managerCalls = g_serviceCalls = g_queryCalls = 0;
    g_failManager = row.manager;
    g_failService = row.service;
    g_failQuery = row.query;
    EXPECT_EQ(Stop(), row.result);
    EXPECT_EQ(host.Reports(), row.reports);
    Unmake();
  }
}
