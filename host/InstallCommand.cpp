#include "host/InstallCommand.h"

#include <memory>
#include <optional>

// clang-format off
#include <windows.h>
#include <shlobj.h>
// clang-format on

#include "engine/MStringList.h"
#include "engine/ProductKind.h"
#include "host/Console.h"
#include "host/ConsoleText.h"
#include "host/PayloadList.h"
#include "host/WhatIf.h"
#include "removal/MaintenanceCommands.h"
#include "removal/NotifierTask.h"
#include "removal/ServiceControl.h"

namespace {

// Text ids of the module.
constexpr uint32_t kComplete = 7;
constexpr uint32_t kWaitForConflicts = 14;
constexpr uint32_t kNotPermitted = 62;
constexpr uint32_t kFileNotInstalled = 63;
constexpr uint32_t kMediaPlayerConflict = 72;
constexpr uint32_t kRestartToComplete = 73;

constexpr char kMajorVersion[] = "28.0";
constexpr uint32_t kReleaseMode = 1;
constexpr DWORD kConflictInterval = 1000;  // milliseconds between two looks at the running programs

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

// What may not be installed is told by the code that the window would show a text for.
std::optional<HostExit> Refusal(const Session& session) {
  uint32_t code = 0;
  if (session.module->CheckInstallAllowed(session.line.kinds, &code, kReleaseMode)) return std::nullopt;
  session.host.Tell(Severity::MustTell, static_cast<ReportCode>(code));
  return End(HostExit::Refused, ShownText(session, Severity::MustTell, static_cast<ReportCode>(code)) + " (code " +
                                    std::to_string(code) + ")");
}

std::unique_ptr<MStringList> FindConflicts(const Session& session) {
  return std::unique_ptr<MStringList>(session.module->FindConflicts(session.line.kinds));
}

std::string NamesOf(const MStringList& conflicts) {
  std::string names;
  for (const auto* entry = conflicts.Head(); entry != nullptr; entry = entry->next) {
    if (!names.empty()) names += ", ";
    names += ToUtf8(entry->value.View());
  }
  return names;
}

// Waits until nobody is in the way; in silence there is nobody to ask for it.
std::optional<HostExit> PassConflicts(const Session& session) {
  if (!session.host.ConflictsBlockInstall() && session.host.ConflictCheckIsOptional()) return std::nullopt;
  std::string shown;
  for (auto conflicts = FindConflicts(session); conflicts && conflicts->Count() > 0;
       conflicts = FindConflicts(session)) {
    const std::string names = NamesOf(*conflicts);
    if (session.line.silent) return End(HostExit::Conflicts, "these programs use the player: " + names);
    if (names != shown) Say(ModuleText(session, kWaitForConflicts) + "\n  " + names + "\n");
    shown = names;
    Sleep(kConflictInterval);
  }
  session.host.NotifyConflictsCleared(nullptr);
  return std::nullopt;
}

// A service that runs holds its file. Putting it into its mode starts it again.
void StopServices(const Session& session) {
  (void)StopService(*UpdateServiceRunner(&session.host, MString(L"")));
  (void)StopService(*FeedbackServiceRunner(&session.host, MString(L"")));
}

std::optional<HostExit> CopyPayload(const Session& session, const std::vector<FileToCopy>& files) {
  StopServices(session);
  SHCreateDirectoryExW(nullptr, PlayerDirectory().c_str(), nullptr);
  const CopyOutcome outcome =
      CopyFiles(files, [&session](uint64_t done, uint64_t total, const WideString& file, bool finished) {
        if (!session.line.silent) ShowProgress(ProgressLine(done, total, ToUtf8(FileNameOf(file))), finished);
      });
  if (outcome.restartNeeded) session.host.RequireRestart();
  if (outcome.error == ERROR_SUCCESS) return std::nullopt;
  const uint32_t text = outcome.error == ERROR_ACCESS_DENIED ? kNotPermitted : kFileNotInstalled;
  return End(HostExit::Failed, ModuleText(session, text, ToUtf8(outcome.failed)) + " (system error " +
                                   std::to_string(outcome.error) + ")");
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

bool RegisterKind(const Session& session, uint32_t kind) {
  const SettingsTree* const settings = session.host.GetSettings();
  NameFreshFiles(session, kind);
  const WideString player = PlayerDirectory() + PlayerName(settings, kind);
  const WideString uninstaller = PlayerDirectory() + UninstallerName(settings, kind);
  if (kind == product_kind::Pepper) session.host.SetTaskCommand(uninstaller);
  if (!session.module->RegisterProduct(kind, MString(WideView(player)), MString(WideView(uninstaller)), MString(L""),
                                       1)) {
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
    const bool isUpdate = SettingValues(host.GetSettings(), L"Host.UpdateService").front() == file.name;
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

HostExit InstallPlayers(const Session& session) {
  const ChangeLock lock;
  if (lock.Refusal() != 0) return End(HostExit::Refused, ModuleText(session, lock.Refusal()));
  (void)session.module->LoadEngineLists();  // what is not there yet is reported, and not missed here
  if (const auto refused = Refusal(session)) return *refused;
  if (session.line.whatIf) return TellInstallation(session, FilesToCopy(session));
  if (session.module->IsBadRealPlayer()) Tell(session, ModuleText(session, kMediaPlayerConflict));
  if (const auto blocked = PassConflicts(session)) return *blocked;
  if (const auto failed = CopyPayload(session, FilesToCopy(session))) return *failed;
  for (const uint32_t kind : EachKind(session.line.kinds)) {
    if (RegisterKind(session, kind)) continue;
    const char* const when = session.module->WasRegistrationReached() != 0 ? " after" : " during";
    return End(HostExit::Failed, std::string(NameOfKind(kind)) + " could not be registered: it failed" + when +
                                     " the registration of the player itself");
  }
  StartServices(session);
  return Finish(session);
}

HostExit UpdatePlayer(const Session& session) {
  switch (session.module->GetInstalledVersionState(session.line.kinds)) {
    case 0: return End(HostExit::Refused, "this player is not installed, so there is nothing to update");
    case 2: Tell(session, "This version is installed already."); return HostExit::Done;
    default: return InstallPlayers(session);
  }
}

HostExit ShowConflicts(const Session& session) {
  (void)session.module->LoadEngineLists();
  const auto conflicts = FindConflicts(session);
  if (!conflicts) return End(HostExit::Failed, "the running programs cannot be listed");
  if (conflicts->Count() == 0) {
    Say("No running program is in the way.\n");
    return HostExit::Done;
  }
  for (const auto* entry = conflicts->Head(); entry != nullptr; entry = entry->next) {
    Say(ToUtf8(entry->key.View()) + "\t" + ToUtf8(entry->value.View()) + "\n");
  }
  return HostExit::Conflicts;
}
