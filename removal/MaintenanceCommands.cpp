#include "removal/MaintenanceCommands.h"

#include <windows.h>

#include <algorithm>
#include <array>
#include <optional>

#include "engine/Handles.h"
#include "engine/HostCallbacks.h"
#include "engine/ProductKeys.h"
#include "engine/ProductKind.h"
#include "engine/Reporting.h"
#include "install/FileReplacement.h"
#include "install/Inventory.h"
#include "install/Registration.h"
#include "install/ReportedRegistry.h"
#include "removal/NotifierTask.h"
#include "removal/ServiceControl.h"

namespace {

constexpr wchar_t kUninstall[] = L"-uninstall";
constexpr wchar_t kEnableAnalytics[] = L"-enableAnalytics";
constexpr DWORD kLongestRun = 600'000;
constexpr uint32_t kOsClassWithOwnControl = 3;  // from here on the ActiveX control is the system's
constexpr uint32_t kFromMsi = 2;

struct ModeRow {
  UpdateMode mode;
  std::array<const wchar_t*, 2> switches;  // the second may be null
};
constexpr ModeRow kModes[] = {
    {UpdateMode::SilentAutoUpdate, {L"-setSilentAutoUpdate", nullptr}},
    {UpdateMode::ReplaceByNotify, {kUninstall, L"-setNotifyAutoUpdate"}},
    {UpdateMode::ReplaceByDisable, {kUninstall, L"-setDisableAutoUpdate"}},
    {UpdateMode::Notify, {L"-setNotifyAutoUpdate", nullptr}},
    {UpdateMode::Disable, {L"-setDisableAutoUpdate", nullptr}},
};

struct RunOutcome {
  DWORD startError;  // 0: it ran
  DWORD exitCode;    // "still active" of a child that outlasted the wait
};

// The path goes unquoted, as the services' own command lines always have; the platform resolves blanks in it.
RunOutcome RunAndWait(const ServiceRunner& runner, const wchar_t* commandSwitch) {
  WideString line = WideString(runner.executablePath.View()) + L" " + commandSwitch;
  STARTUPINFOW startup = {};
  startup.cb = sizeof(startup);
  PROCESS_INFORMATION started = {};
  if (!CreateProcessW(nullptr, line.data(), nullptr, nullptr, FALSE, CREATE_NO_WINDOW | CREATE_DEFAULT_ERROR_MODE,
                      nullptr, nullptr, &startup, &started)) {
    return {GetLastError(), 0};
  }
  const KernelHandle process(started.hProcess);
  const KernelHandle thread(started.hThread);
  (void)WaitForSingleObject(process.Get(), kLongestRun);
  DWORD exitCode = STILL_ACTIVE;
  (void)GetExitCodeProcess(process.Get(), &exitCode);
  return {ERROR_SUCCESS, exitCode};
}

// The feedback service's own way out: how it ends is not judged, only that it could be started is told.
void RunFeedbackUninstall(const ServiceRunner& runner) {
  const RunOutcome run = RunAndWait(runner, kUninstall);
  if (run.startError != ERROR_SUCCESS) {
    Report(runner.host, Severity::Survived, ReportCode::UninstallCommandNotStarted, ErrorAlone(run.startError));
  }
}

bool IsInstalled(HostCallbacks* host, uint32_t kind) {
  MString player(L"");
  MString uninstaller(L"");
  return ReadPlayerPaths(host, kind, &player, &uninstaller);
}

bool IsReleasePlayer(HostCallbacks* host, uint32_t kind) {
  return ReadRegistryNumber(host, HKEY_LOCAL_MACHINE, KeyName(GetProductKey(kind)), MString(L"isScriptDebugger")) == 0u;
}

// A debugger player needs no update service, and a control that is the system's own does not count.
bool ReleasePlayerRemains(HostCallbacks* host) {
  bool remains = IsInstalled(host, product_kind::ActiveX) && host->GetOsClass() < kOsClassWithOwnControl &&
                 IsReleasePlayer(host, product_kind::ActiveX);
  for (const uint32_t kind : {product_kind::Plugin, product_kind::Pepper}) {
    if (IsInstalled(host, kind) && IsReleasePlayer(host, kind)) remains = true;
  }
  return remains;
}

bool FeedbackIsStillNeeded(HostCallbacks* host) {
  const bool control = IsInstalled(host, product_kind::ActiveX);
  const bool plugin = IsInstalled(host, product_kind::Plugin);
  return plugin || (control && host->GetOsClass() < kOsClassWithOwnControl);
}

bool EndFeedbackService(HostCallbacks* host, const MString& path) {
  const auto runner = FeedbackServiceRunner(host, path);
  if (!StopService(*runner)) Report(host, Severity::Survived, ReportCode::FeedbackServiceNotStopped);
  RunFeedbackUninstall(*runner);
  if (DeleteFileW(path.Data())) return true;
  const DWORD error = GetLastError();
  Report(host, Severity::Survived, ReportCode::FeedbackServiceNotRemoved, PathAndError(MString(L""), error));
  return false;
}

void EnableAnalytics(HostCallbacks* host, const MString& updatePath) {
  if (!host->AnalyticsAllowed() || !FileExists(updatePath) || host->GetInstallSource() == kFromMsi) return;
  (void)RunAnalyticsCommand(*UpdateServiceRunner(host, updatePath));
}

}  // namespace

bool RunServiceCommand(const ServiceRunner& runner, const wchar_t* commandSwitch) {
  const RunOutcome run = RunAndWait(runner, commandSwitch);
  if (run.startError == ERROR_SUCCESS) return run.exitCode == 0;
  Report(runner.host, Severity::Survived, ReportCode::ServiceCommandNotStarted);
  return false;
}

bool RunUninstallCommand(const ServiceRunner& runner) {
  return RunServiceCommand(runner, kUninstall);
}

bool RunAnalyticsCommand(const ServiceRunner& runner) {
  return RunServiceCommand(runner, kEnableAnalytics);
}

bool SetUpdateMode(const ServiceRunner& runner, uint32_t mode) {
  const auto* const row = std::find_if(std::begin(kModes), std::end(kModes), [mode](const ModeRow& candidate) {
    return static_cast<uint32_t>(candidate.mode) == mode;
  });
  if (row == std::end(kModes)) {
    Report(runner.host, Severity::Survived, ReportCode::ServiceCommandNotStarted);
    return false;
  }
  bool all = true;
  for (const wchar_t* const commandSwitch : row->switches) {
    if (commandSwitch != nullptr && !RunServiceCommand(runner, commandSwitch)) all = false;
  }
  // Who replaces the service by a disabled one wants no checks at all, so the task is not refreshed there.
  if (row->mode != UpdateMode::ReplaceByDisable && (runner.host->GetFlags() & host_flag::Pepper) != 0) {
    MString command(L"");
    runner.host->GetTaskCommandPath(&command);
    (void)CreateNotifierTask(command, MString(L"-check pepperplugin"), runner.host);
  }
  return all;
}

bool RemoveFeedbackService(HostCallbacks* host, const MString& feedbackPath, const MString& updatePath) {
  if (FeedbackIsStillNeeded(host)) return true;
  if (FileExists(feedbackPath)) return EndFeedbackService(host, feedbackPath);
  EnableAnalytics(host, updatePath);
  return true;
}

bool RemoveUpdateServiceFile(HostCallbacks* host, const MString& updatePath, bool setNotify) {
  if (ReleasePlayerRemains(host) || !FileExists(updatePath)) return true;
  const auto runner = UpdateServiceRunner(host, updatePath);
  // Notifying asks for one uninstallation itself, so with it the service is asked twice; when it fails, not again.
  const bool isReady = !setNotify || SetUpdateMode(*runner, static_cast<uint32_t>(UpdateMode::ReplaceByNotify));
  bool all = isReady && RunUninstallCommand(*runner);
  if (!DeleteFileW(updatePath.Data())) all = false;
  MString name = updatePath.TailFrom("\\");
  (void)name.Take(1);
  DeleteImageExecutionKey(host, name.IsEmpty() ? updatePath : name);
  return all;
}
