#include "host/ReportTexts.h"

#include <algorithm>
#include <iterator>
#include <string>

#include "engine/ReportCode.h"

namespace {

// The general texts.
constexpr uint32_t kNoInformation = 51;
constexpr uint32_t kFatal = 52;
constexpr uint32_t kError = 53;
constexpr uint32_t kWarning = 54;
constexpr uint32_t kInformation = 55;

// What people are told of a code. Where the module's string table has a text for the person at the window, its id
// stands first; that one is shown for what the user must be told of. The other is this host's own, for logs and
// consoles.
constexpr uint32_t kNone = 0;
struct CodeRow {
  ReportCode code;
  uint32_t id;
  const wchar_t* text;
};
constexpr CodeRow kCodes[] = {
    {ReportCode::PlayersStopping, kNone, L"Players are being stopped."},
    {ReportCode::FileLockTested, kNone, L"It is tested whether a file is in use: ^"},
    {ReportCode::TaskRefreshed, kNone, L"The update check of the task service was renewed."},
    {ReportCode::TaskCreated, kNone, L"The update check was entered in the task service."},
    {ReportCode::OldTaskRefreshed, kNone, L"The update check of the scheduler was renewed."},
    {ReportCode::OldTaskCreated, kNone, L"The update check was entered in the scheduler."},
    {ReportCode::ServiceStopped, kNone, L"A service was stopped."},
    {ReportCode::SessionUsed, kNone, L"The update check is for the user of session ^."},
    {ReportCode::SessionsCounted, kNone, L"There are ^ sessions."},
    {ReportCode::SessionExamined, kNone, L"Session ^ was examined."},
    {ReportCode::SessionActive, kNone, L"Session ^ is active."},
    {ReportCode::SessionNotActive, kNone, L"That session is not active; session ^ stays chosen."},
    {ReportCode::InstallRefusedByVersionInMode1, 60, L"A newer player is installed."},
    {ReportCode::InstallRefusedByReleaseType, 78, L"A player of another release type is installed."},
    {ReportCode::InstallRefusedByVersion, 79, L"A newer player is installed."},
    {ReportCode::FileNotDeleted, 62, L"A file could not be deleted: ^"},
    {ReportCode::ProductKeyNotDeleted, kNone, L"The registry entry of a player could not be deleted."},
    {ReportCode::InstalledPathsNotRead, kNone, L"The registry does not say where the player is."},
    {ReportCode::PlayerPathUnknown, kNone, L"The player's file could not be found."},
    {ReportCode::UninstallerPathUnknown, kNone, L"The player's uninstaller could not be found."},
    {ReportCode::RegistryNotCleaned, kNone, L"Not all registry entries of a player were there to be deleted."},
    {ReportCode::RegisterServerFailed, 64, L"The control could not register itself: ^"},
    {ReportCode::ControlNotLoaded, 64, L"The control could not be loaded: ^"},
    {ReportCode::RegisterServerMissing, 64, L"The control cannot register itself: ^"},
    {ReportCode::RegistryValueNotWritten, kNone, L"A registry value could not be written: ^"},
    {ReportCode::RegistryValueNotRead, kNone, L"A registry value could not be read: ^"},
    {ReportCode::RegistryNotDeleted, kNone, L"A registry entry could not be deleted: ^"},
    {ReportCode::InstallerBlocked, 65, L"The settings manager is open."},
    {ReportCode::InstallerNeedsRestart, 73, L"The installation is complete after a restart."},
    {ReportCode::RebootDeleteNotQueued, kNone, L"A file could not be marked for deletion at the next restart: ^"},
    {ReportCode::LockedFileEmpty, kNone, L"A file in use is empty: ^"},
    {ReportCode::SystemFileQueued, 74, L"A file in use goes at the next restart: ^"},
    {ReportCode::SystemFileNotRemoved, 65, L"A file of the system directory could not be removed: ^"},
    {ReportCode::UpdateServiceNotRemoved, kNone, L"The update service could not be removed."},
    {ReportCode::ServiceManagerNotOpened, kNone, L"The service manager could not be opened."},
    {ReportCode::ServiceNotOpened, kNone, L"A service could not be opened."},
    {ReportCode::NotifierTaskStarted, kNone, L"The update check is being scheduled."},
    {ReportCode::DirectoryNotListed, kNone, L"A directory could not be listed: ^"},
    {ReportCode::ServiceCommandNotStarted, kNone, L"A service could not be given its command."},
    {ReportCode::TaskComNotInitialized, kNone, L"The update check was not scheduled: COM could not be entered (^)."},
    {ReportCode::TaskSecurityNotSet, kNone,
     L"The update check was not scheduled: the security of COM could not be set (^)."},
    {ReportCode::TaskServiceNotCreated, kNone,
     L"The update check was not scheduled: the task service could not be created (^)."},
    {ReportCode::TaskServiceNotConnected, kNone,
     L"The update check was not scheduled: the task service could not be connected to (^)."},
    {ReportCode::TaskFolderNotOpened, kNone,
     L"The update check was not scheduled: the folder of tasks could not be opened (^)."},
    {ReportCode::TaskDefinitionNotRead, kNone,
     L"The update check was not scheduled: the definition could not be read (^)."},
    {ReportCode::TaskTriggersNotRead, kNone,
     L"The update check was not scheduled: the triggers could not be read (^)."},
    {ReportCode::TaskTriggersNotCounted, kNone,
     L"The update check was not scheduled: the triggers could not be counted (^)."},
    {ReportCode::TaskHasNoTrigger, kNone, L"The update check was not scheduled: there is no trigger (^)."},
    {ReportCode::TaskTriggerNotRead, kNone, L"The update check was not scheduled: the trigger could not be read (^)."},
    {ReportCode::TaskRepetitionNotRead, kNone,
     L"The update check was not scheduled: the repetition could not be read (^)."},
    {ReportCode::TaskRepetitionNotRenewed, kNone,
     L"The update check was not scheduled: the repetition could not be renewed (^)."},
    {ReportCode::TaskDefinitionNotCreated, kNone,
     L"The update check was not scheduled: a definition could not be made (^)."},
    {ReportCode::TaskSettingsNotRead, kNone, L"The update check was not scheduled: the settings could not be had (^)."},
    {ReportCode::TaskCompatibilityNotSet, kNone,
     L"The update check was not scheduled: the compatibility could not be set (^)."},
    {ReportCode::TaskBatteryRuleNotSet, kNone,
     L"The update check was not scheduled: the battery rule could not be set (^)."},
    {ReportCode::TaskNetworkRuleNotSet, kNone,
     L"The update check was not scheduled: the network rule could not be set (^)."},
    {ReportCode::TaskRegistrationNotRead, kNone,
     L"The update check was not scheduled: the registration could not be had (^)."},
    {ReportCode::TaskAuthorNotSet, kNone, L"The update check was not scheduled: the author could not be set (^)."},
    {ReportCode::TaskDescriptionNotSet, kNone,
     L"The update check was not scheduled: the description could not be set (^)."},
    {ReportCode::NewTaskTriggersNotRead, kNone,
     L"The update check was not scheduled: the triggers could not be had (^)."},
    {ReportCode::TaskTriggerNotCreated, kNone, L"The update check was not scheduled: a trigger could not be made (^)."},
    {ReportCode::TaskDailyTriggerMissing, kNone,
     L"The update check was not scheduled: the trigger is not a daily one (^)."},
    {ReportCode::TaskTriggerIdNotSet, kNone,
     L"The update check was not scheduled: the trigger's id could not be set (^)."},
    {ReportCode::TaskStartNotSet, kNone, L"The update check was not scheduled: the start could not be set (^)."},
    {ReportCode::TaskDailyIntervalNotSet, kNone,
     L"The update check was not scheduled: the interval of days could not be set (^)."},
    {ReportCode::NewTaskRepetitionNotRead, kNone,
     L"The update check was not scheduled: the repetition could not be had (^)."},
    {ReportCode::TaskDurationNotSet, kNone,
     L"The update check was not scheduled: the repetition's duration could not be set (^)."},
    {ReportCode::TaskIntervalNotSet, kNone,
     L"The update check was not scheduled: the repetition's interval could not be set (^)."},
    {ReportCode::TaskActionsNotRead, kNone, L"The update check was not scheduled: the actions could not be had (^)."},
    {ReportCode::TaskActionNotCreated, kNone, L"The update check was not scheduled: an action could not be made (^)."},
    {ReportCode::TaskProgramActionMissing, kNone,
     L"The update check was not scheduled: the action runs no program (^)."},
    {ReportCode::TaskProgramPathNotSet, kNone,
     L"The update check was not scheduled: the program's path could not be set (^)."},
    {ReportCode::TaskArgumentsNotSet, kNone,
     L"The update check was not scheduled: the program's arguments could not be set (^)."},
    {ReportCode::TaskNotRegistered, kNone,
     L"The update check was not scheduled: the task could not be registered (^)."},
    {ReportCode::OldTaskComNotInitialized, kNone, L"The update check was not scheduled: COM could not be entered (^)."},
    {ReportCode::OldTaskSchedulerNotCreated, kNone,
     L"The update check was not scheduled: the scheduler could not be created (^)."},
    {ReportCode::OldTaskNotActivated, kNone, L"The update check was not scheduled: the old task could not be had (^)."},
    {ReportCode::OldTaskNotCreated, kNone, L"The update check was not scheduled: a task could not be made (^)."},
    {ReportCode::OldTaskTriggersNotCounted, kNone,
     L"The update check was not scheduled: the triggers could not be counted (^)."},
    {ReportCode::OldTaskTriggerNotRead, kNone,
     L"The update check was not scheduled: the trigger could not be had (^)."},
    {ReportCode::OldTaskTriggerDataNotRead, kNone,
     L"The update check was not scheduled: the trigger could not be read (^)."},
    {ReportCode::OldTaskFileNotAskedFor, kNone, L"The update check was not scheduled: the old task has no file (^)."},
    {ReportCode::OldTaskNotSavedAgain, kNone,
     L"The update check was not scheduled: the old task could not be saved (^)."},
    {ReportCode::OldTaskAccountNotRenewed, kNone,
     L"The update check was not scheduled: the account could not be renewed (^)."},
    {ReportCode::NewOldTaskFileNotAskedFor, kNone,
     L"The update check was not scheduled: the new task has no file (^)."},
    {ReportCode::NewOldTaskNotSaved, kNone,
     L"The update check was not scheduled: the new task could not be saved (^)."},
    {ReportCode::OldTaskAccountNotSet, kNone, L"The update check was not scheduled: the account could not be set (^)."},
    {ReportCode::OldTaskCreatorNotSet, kNone, L"The update check was not scheduled: the author could not be set (^)."},
    {ReportCode::OldTaskCommentNotSet, kNone,
     L"The update check was not scheduled: the description could not be set (^)."},
    {ReportCode::OldTaskApplicationNotSet, kNone,
     L"The update check was not scheduled: the program's path could not be set (^)."},
    {ReportCode::OldTaskFlagsNotSet, kNone, L"The update check was not scheduled: the flags could not be set (^)."},
    {ReportCode::OldTaskTriggerNotCreated, kNone,
     L"The update check was not scheduled: a trigger could not be made (^)."},
    {ReportCode::OldTaskTriggerNotSet, kNone, L"The update check was not scheduled: the trigger could not be set (^)."},
    {ReportCode::OldTaskStartNotDrawn, kNone,
     L"The update check was not scheduled: no random start could be drawn (^)."},
    {ReportCode::TaskRemovalComNotInitialized, kNone,
     L"The update check was not taken back: COM could not be entered (^)."},
    {ReportCode::TaskRemovalSecurityNotSet, kNone,
     L"The update check was not taken back: the security of COM could not be set (^)."},
    {ReportCode::TaskRemovalServiceNotCreated, kNone,
     L"The update check was not taken back: the task service could not be created (^)."},
    {ReportCode::TaskRemovalServiceNotConnected, kNone,
     L"The update check was not taken back: the task service could not be connected to (^)."},
    {ReportCode::TaskRemovalFolderNotOpened, kNone,
     L"The update check was not taken back: the folder of tasks could not be opened (^)."},
    {ReportCode::OldTaskRemovalSchedulerNotCreated, kNone,
     L"The update check was not taken back: the scheduler could not be created (^)."},
    {ReportCode::OldTaskRemovalComNotInitialized, kNone,
     L"The update check was not taken back: COM could not be entered (^)."},
    {ReportCode::OldTaskParametersNotSet, kNone,
     L"The update check was not scheduled: the program's arguments could not be set (^)."},
    {ReportCode::FeedbackServiceNotRemoved, kNone, L"The feedback service could not be removed:^"},
    {ReportCode::UninstallCommandNotStarted, kNone, L"The feedback service's own removal could not be started: ^"},
    {ReportCode::FeedbackServiceNotStopped, kNone, L"The feedback service could not be stopped."},
    {ReportCode::ServiceStatusLost, kNone, L"A service no longer tells its state: ^"},
    {ReportCode::ServiceStoppedLate, kNone, L"A service was slow to stop: ^"},
    {ReportCode::ServiceStopTimedOut, kNone, L"A service did not stop in time: ^"},
    {ReportCode::TaskUserWithoutDomain, kNone, L"The update check is for a user without a domain."},
    {ReportCode::TaskUserUnknown, kNone, L"Nobody is known that the update check could be for."},
    {ReportCode::SessionUserNotRead, kNone, L"The session's user could not be read: ^"},
    {ReportCode::SessionDomainNotRead, kNone, L"The user's domain could not be read: ^"},
    {ReportCode::SessionsNotListed, kNone, L"The sessions could not be listed: ^"},
    {ReportCode::SessionStateNotRead, kNone, L"The state of a session could not be read: ^"},
    {ReportCode::OldTaskFlagsNotRenewed, kNone,
     L"The update check was not scheduled: the flags could not be renewed (^)."},
    {ReportCode::OldTaskTriggerNotRenewed, kNone,
     L"The update check was not scheduled: the trigger could not be renewed (^)."},
    {ReportCode::TaskNotRegisteredAgain, kNone,
     L"The update check was not scheduled: the task could not be registered again (^)."},
    {ReportCode::AdministratorWanted, 57, L"Administrative rights are wanted."},
    {ReportCode::AnotherInstallerActive, 59, L"Another installer is at work."},
    {ReportCode::PayloadMissing, 58, L"A file of the payload is missing: ^"},
    {ReportCode::PayloadNotPermitted, 62, L"A file may not be written: ^"},
    {ReportCode::PayloadNotInstalled, 63, L"A file could not be put in its place: ^"},
    {ReportCode::PlayerInUse, 61, L"A program uses the player: ^"},
    {ReportCode::PlayerNotRegistered, 171, L"A player could not be registered: ^"},
    {ReportCode::PlayerNotRemoved, 172, L"Not every player could be removed; the log tells more."},
};

struct TextRow {
  uint32_t id;
  const wchar_t* text;
};
// What a program without string tables says. The module's have neither 15, 29, 171 nor 172.
constexpr TextRow kTexts[] = {
    {15, L"^%"},
    {29, L"Corva Lumen Player ^ Installer"},
    {kNoInformation, L"No error information is available."},
    {kFatal, L"Fatal error '^'.  No further information is available."},
    {kError, L"Error '^'.  No further information is available."},
    {kWarning, L"Warning '^'.  No further information is available."},
    {kInformation, L"Generic info '^'.  No further information is available."},
    {57, L"You must have administrative privileges to install Corva Lumen Player."},
    {58, L"Cannot continue because the program is damaged."},
    {59, L"Cannot continue because another Lumen Player installer or uninstaller instance is active."},
    {60, L"The version that you are trying to install is not the most current one."},
    {61, L"Lumen Player could not be installed because an existing version may still be in use."},
    {62, L"A required file (^) could not be written due to insufficient permissions."},
    {63, L"A required file (^) could not be installed."},
    {64, L"The ActiveX control for Lumen Player could not be registered."},
    {65, L"The Lumen Player Settings Manager is currently open. Please close it and try again."},
    {73, L"Please restart your system to complete the installation process."},
    {74, L"Please restart your system to complete the uninstallation process."},
    {78, L"You must run the Lumen Player uninstaller before installing this version of Lumen Player."},
    {79, L"The beta version that you are trying to install is not the most current one."},
    {171, L"A player (^) could not be registered. Please run the installer again."},
    {172, L"Not every player could be removed. Please close the programs that use them and try again."},
};

const CodeRow* FindCode(uint32_t code) {
  const auto* const row = std::find_if(std::begin(kCodes), std::end(kCodes), [code](const CodeRow& candidate) {
    return static_cast<uint32_t>(candidate.code) == code;
  });
  return row == std::end(kCodes) ? nullptr : row;
}

}  // namespace

uint32_t StringIdOf(uint32_t severity, uint32_t code) {
  if (code == 0) return kNoInformation;
  const CodeRow* const row = FindCode(code);
  if (severity >= static_cast<uint32_t>(Severity::MustTell) && row != nullptr && row->id != kNone) return row->id;
  switch (severity) {
    case static_cast<uint32_t>(Severity::Information): return kInformation;
    case static_cast<uint32_t>(Severity::Survived): return kWarning;
    case static_cast<uint32_t>(Severity::MustTell): return kError;
    default: return kFatal;
  }
}

bool IsGeneral(uint32_t id) {
  return id >= kNoInformation && id <= kInformation;
}

const wchar_t* TextOfCode(uint32_t code) {
  const CodeRow* const row = FindCode(code);
  return row == nullptr ? nullptr : row->text;
}

const wchar_t* HostText(uint32_t id) {
  for (const TextRow& row : kTexts) {
    if (row.id == id) return row.text;
  }
  return nullptr;
}

MString FillIn(const MString& pattern, uint32_t id, uint32_t code, const MString& text) {
  return MString::Replace(pattern, MString(L"^"), IsGeneral(id) ? MString::FromNumber(code) : text);
}

MString Meaning(uint32_t severity, uint32_t code, const MString& text) {
  if (const wchar_t* const own = TextOfCode(code)) return MString::Replace(MString(own), MString(L"^"), text);
  const uint32_t id = StringIdOf(severity, code);
  return FillIn(MString(HostText(id)), id, code, text);
}

WideString LogLine(WideView time, uint32_t severity, uint32_t code, WideView text) {
  WideString line(time);
  for (const uint32_t number : {severity, code}) line += L"\t" + WidenAscii(std::to_string(number));
  for (const MString& field : {MString(text), Meaning(severity, code, MString(text))}) {
    WideString printable(field.View());
    std::replace_if(
        printable.begin(), printable.end(), [](wchar_t c) { return c < L' '; }, L' ');
    line += L"\t" + printable;
  }
  return line + L"\r\n";
}
