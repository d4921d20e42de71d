#include "host/InstallSteps.h"

// clang-format off
#include <windows.h>
#include <shlobj.h>
// clang-format on

#include "engine/ProductKind.h"
#include "host/Console.h"
#include "host/ConsoleText.h"
#include "host/PayloadList.h"
#include "install/FileReplacement.h"
#include "removal/MaintenanceCommands.h"
#include "removal/NotifierTask.h"
#include "removal/ServiceControl.h"

namespace {

// Text ids of the module.
constexpr uint32_t kComplete = 7;
constexpr uint32_t kRestartToComplete = 73;

constexpr char kMajorVersion[] = "28.0";
constexpr uint32_t kReleaseMode = 1;
constexpr uint32_t kNewer = 3;  // than this build, in the words of GetInstalledVersionState

WideString FileNameOf(const WideString& path) {
  return path.substr(path.rfind(L'\\') + 1);
}

WideString SourceOf(const Session& session, const PayloadFile& file) {
  switch (file.source) {
    case FileSource::Program: return OwnPath();
    case FileSource::Module: return session.module.Path();
    case FileSource::Settings: return SettingsPath();
    case FileSource::Payload: break;
  }
  return PayloadFolder(session) + file.name;
}

bool Exists(const WideString& path) {
  return GetFileAttributesW(path.c_str()) != INVALID_FILE_ATTRIBUTES;
}

// The settings manager writes what an installation is about to change.
std::optional<HostExit> RefuseOpenSettingsManager(const Session& session) {
  MString name;
  session.host.GetSettingsManagerFileName(&name);
  const MString path{WideView(SystemDirectory() + WideString(name.View()))};
  if (name.IsEmpty() || !FileExists(path)) return std::nullopt;
  if (TestFileLocked(&session.host, kTestLock, path) == FileLock::Free) return std::nullopt;
  return Fail(session, HostExit::Refused, ReportCode::InstallerBlocked);
}

// A service that runs holds its file. Putting it into its mode starts it again.
void StopServices(const Session& session) {
  (void)StopService(*UpdateServiceRunner(&session.host, MString(L"")));
  (void)StopService(*FeedbackServiceRunner(&session.host, MString(L"")));
}

ReportCode CodeOfCopyError(DWORD error) {
  switch (error) {
    case ERROR_ACCESS_DENIED: return ReportCode::PayloadNotPermitted;
    case ERROR_SHARING_VIOLATION:
    case ERROR_LOCK_VIOLATION:
    case ERROR_USER_MAPPED_FILE: return ReportCode::PlayerInUse;
    default: return ReportCode::PayloadNotInstalled;
  }
}

std::optional<HostExit> CopyPayload(const Session& session, const std::vector<FileToCopy>& files) {
  for (const FileToCopy& file : files) {
    if (!Exists(file.source)) return Fail(session, HostExit::Failed, ReportCode::PayloadMissing, file.source);
  }
  StopServices(session);
  SHCreateDirectoryExW(nullptr, PlayerDirectory().c_str(), nullptr);
  const CopyOutcome outcome =
      CopyFiles(files, [&session](uint64_t done, uint64_t total, const WideString& file, bool finished) {
        if (!session.line.silent) ShowProgress(ProgressLine(done, total, ToUtf8(FileNameOf(file))), finished);
      });
  if (outcome.restartNeeded) session.host.RequireRestart();
  if (outcome.error == ERROR_SUCCESS) return std::nullopt;
  Tell(session, "System error " + std::to_string(outcome.error) + ".");
  return Fail(session, HostExit::Failed, CodeOfCopyError(outcome.error), outcome.failed);
}

// The files are fresh parts of the product now: nothing that the module removes later in this run may take them along.
void NameFreshFiles(const Session& session, uint32_t kind) {
  for (const PayloadFile& file : FilesOfKind(session.host.GetSettings(), kind)) {
    const MString name{WideView(file.name)};
    switch (kind) {
      case product_kind::ActiveX: session.module->AddExtraActiveXFile(name); break;
      case product_kind::Plugin: session.module->AddExtraPluginFile(name); break;
      default: session.module->AddExtraPepperFile(name); break;
    }
  }
}

// The module has told why a control could not be registered; whatever else fails is told here.
bool RegisterKind(const Session& session, uint32_t kind) {
  const SettingsTree* const settings = session.host.GetSettings();
  NameFreshFiles(session, kind);
  const WideString player = PlayerDirectory() + PlayerName(settings, kind);
  const WideString uninstaller = PlayerDirectory() + UninstallerName(settings, kind);
  if (kind == product_kind::Pepper) session.host.SetTaskCommand(uninstaller);
  if (!session.module->RegisterProduct(kind, MString(WideView(player)), MString(WideView(uninstaller)), MString(L""),
                                       1)) {
    const char* const when = session.module->WasRegistrationReached() != 0 ? "after" : "during";
    Tell(session, std::string(NameOfKind(kind)) + ": failed " + when + " the registration of the player itself.");
    return false;
  }
  Tell(session, "Registered: " + std::string(NameOfKind(kind)) + ".");
  return true;
}

// What the user chose in the window, else what the settings say.
uint32_t UpdateModeOf(const Session& session) {
  const auto otherwise = static_cast<uint32_t>(UpdateMode::Notify);
  return session.host.UpdateChoice().value_or(session.host.SettingNumber(L"Host.UpdateMode", otherwise));
}

// Puts the services to work. The update service's mode also enters the hourly check for the PPAPI kind; a payload
// without that service gets the check all the same.
void StartServices(const Session& session) {
  ReferenceHost& host = session.host;
  bool hasUpdate = false;
  for (const PayloadFile& file : ServiceFiles(host.GetSettings(), host.AnalyticsAllowed())) {
    const WideString path = PlayerDirectory() + file.name;
    if (!Exists(path)) continue;
    const MString text{WideView(path)};
    const bool isUpdate = file.name == UpdateServiceName(host.GetSettings());
    const bool started = isUpdate ? SetUpdateMode(*UpdateServiceRunner(&host, text), UpdateModeOf(session))
                                  : RunServiceCommand(*FeedbackServiceRunner(&host, text), L"-install");
    Tell(session, (started ? "Service set up: " : "Service not set up: ") + ToUtf8(file.name) + ".");
    hasUpdate = hasUpdate || isUpdate;
  }
  if (hasUpdate || (session.line.kinds & product_kind::Pepper) == 0) return;
  MString command;
  (void)CreateNotifierTask(*host.GetTaskCommandPath(&command), MString(L"-check pepperplugin"), &host);
}

HostExit Finish(const Session& session) {
  Tell(session, ModuleText(session, kComplete, kMajorVersion) + ".");
  if (!session.host.IsRestartRequired()) return HostExit::Done;
  Tell(session, ModuleText(session, kRestartToComplete));
  return HostExit::RestartNeeded;
}

}  // namespace

std::optional<HostExit> RefuseInstallation(const Session& session) {
  uint32_t code = 0;
  bool allowed = session.module->CheckInstallAllowed(session.line.kinds, &code, kReleaseMode);
  // The module lets a control be installed over a newer one; an update never goes back.
  if (allowed && session.line.command == HostCommand::Update &&
      session.module->GetInstalledVersionState(session.line.kinds) == kNewer) {
    allowed = false;
    code = static_cast<uint32_t>(ReportCode::InstallRefusedByVersionInMode1);
  }
  if (allowed) return std::nullopt;
  return Fail(session, HostExit::Refused, static_cast<ReportCode>(code));
}

std::unique_ptr<MStringList> ProgramsInTheWay(const Session& session) {
  return std::unique_ptr<MStringList>(session.module->FindConflicts(session.line.kinds));
}

std::vector<FileToCopy> FilesToCopy(const Session& session) {
  const SettingsTree* const settings = session.host.GetSettings();
  std::vector<PayloadFile> files;
  for (const uint32_t kind : EachKind(session.line.kinds)) {
    const auto more = FilesOfKind(settings, kind);
    files.insert(files.end(), more.begin(), more.end());
  }
  const auto services = ServiceFiles(settings, session.host.AnalyticsAllowed());
  files.insert(files.end(), services.begin(), services.end());
  std::vector<FileToCopy> copies;
  for (const PayloadFile& file : files) {
    const WideString source = SourceOf(session, file);
    if (file.optional && !Exists(source)) continue;
    copies.push_back({source, PlayerDirectory() + file.name});
  }
  return copies;
}

HostExit PerformInstallation(const Session& session) {
  if (const auto refused = RefuseOpenSettingsManager(session)) return *refused;
  if (const auto failed = CopyPayload(session, FilesToCopy(session))) return *failed;
  for (const uint32_t kind : EachKind(session.line.kinds)) {
    const uint32_t told = session.host.Log().CountToTell();
    if (RegisterKind(session, kind)) continue;
    if (session.host.Log().CountToTell() > told) return HostExit::Failed;
    return Fail(session, HostExit::Failed, ReportCode::PlayerNotRegistered, WidenAscii(NameOfKind(kind)));
  }
  StartServices(session);
  return Finish(session);
}

void ApplyUpdateChoice(const Session& session) {
  const WideString name = UpdateServiceName(session.host.GetSettings());
  const WideString path = PlayerDirectory() + name;
  if (name.empty() || !Exists(path)) return;
  const auto runner = UpdateServiceRunner(&session.host, MString(WideView(path)));
  (void)SetUpdateMode(*runner, UpdateModeOf(session));
}
