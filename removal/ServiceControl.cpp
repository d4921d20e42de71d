#include "removal/ServiceControl.h"

#include <windows.h>

#include <optional>

#include "engine/Handles.h"
#include "engine/Reporting.h"

namespace {

constexpr DWORD kManagerRights = 0xF003F;
constexpr DWORD kServiceRights = 0xF01FF;
constexpr DWORD kPendingPause = 1000;
constexpr DWORD kStopPause = 5000;
constexpr DWORD kLongestWait = 30000;

void ReportFailure(const ServiceRunner& runner, ReportCode code, const wchar_t* text = L"") {
  Report(runner.host, Severity::Survived, code, MString(text));
}

// The service's state; nothing when it cannot be asked.
std::optional<DWORD> QueryState(SC_HANDLE service) {
  SERVICE_STATUS_PROCESS status = {};
  static_assert(sizeof(status) == 36);
  DWORD needed = 0;
  const BOOL asked =
      QueryServiceStatusEx(service, SC_STATUS_PROCESS_INFO, reinterpret_cast<BYTE*>(&status), sizeof(status), &needed);
  return asked ? std::optional(status.dwCurrentState) : std::nullopt;
}

// Waits for a stop that somebody else asked for. True when the service still runs and is to be stopped.
bool IsLeftRunning(SC_HANDLE service, DWORD start) {
  std::optional<DWORD> state = QueryState(service);
  while (state == SERVICE_STOP_PENDING) {
    Sleep(kPendingPause);
    state = QueryState(service);
    if (state && state != SERVICE_STOPPED && GetTickCount() - start > kLongestWait) return false;
  }
  return state && state != SERVICE_STOPPED;
}

// Reports how the stop that was asked for went.
void AwaitStop(const ServiceRunner& runner, SC_HANDLE service, DWORD start) {
  // A first query that fails counts as "still running": the loop asks again.
  std::optional<DWORD> state = QueryState(service);
  while (state != SERVICE_STOPPED) {
    Sleep(kStopPause);
    state = QueryState(service);
    if (!state) return ReportFailure(runner, ReportCode::ServiceStatusLost, L"QueryServiceStatusEx() failed");
    if (state == SERVICE_STOPPED) {
      // A stop seen only after a pause is told twice, so that a log shows which services are slow.
      ReportFailure(runner, ReportCode::ServiceStoppedLate, L"serviceProc.dwCurrentState == SERVICE_STOPPED");
    } else if (GetTickCount() - start > kLongestWait) {
      return ReportFailure(runner, ReportCode::ServiceStopTimedOut, L"GetTickCount() - dwStartTime > dwTimeout");
    }
  }
  Report(runner.host, Severity::Information, ReportCode::ServiceStopped);
}

}  // namespace

bool ServiceExists(const ServiceRunner& runner) {
  const ServiceHandle manager(OpenSCManagerW(nullptr, nullptr, kManagerRights));
  if (!manager) {
    ReportFailure(runner, ReportCode::ServiceManagerNotOpened);
    return false;
  }
  return ServiceHandle(OpenServiceW(manager.Get(), runner.serviceName.Data(), kServiceRights)).IsValid();
}

bool StopService(const ServiceRunner& runner) {
  if (!ServiceExists(runner)) return true;
  const DWORD start = GetTickCount();
  const ServiceHandle manager(OpenSCManagerW(nullptr, nullptr, kManagerRights));
  if (!manager) {
    ReportFailure(runner, ReportCode::ServiceManagerNotOpened);
    return false;
  }
  const ServiceHandle service(OpenServiceW(manager.Get(), runner.serviceName.Data(), kServiceRights));
  if (!service) {
    ReportFailure(runner, ReportCode::ServiceNotOpened);
    return false;
  }
  if (!IsLeftRunning(service.Get(), start)) return true;
  SERVICE_STATUS status = {};
  if (!ControlService(service.Get(), SERVICE_CONTROL_STOP, &status)) {
    ReportFailure(runner, ReportCode::FeedbackServiceNotStopped);
    return false;
  }
  AwaitStop(runner, service.Get(), start);
  return true;
}
