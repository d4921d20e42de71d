// Answers the module's callbacks from a settings file, a message log and what the command line asked for. What a vendor
// decides lies in the section "Host" of the settings; docs/host-guide.md lists it.
#pragma once

#include <map>
#include <optional>

#include "engine/HostCallbacks.h"
#include "engine/ReportCode.h"
#include "engine/SettingsTree.h"
#include "host/HostMessageLog.h"

class ReferenceHost final : public HostCallbacks {
 public:
  // `kinds`: the product kinds that the command is about, as flags. Notes which versions are installed before it runs.
  explicit ReferenceHost(uint32_t kinds);
  ReferenceHost(const ReferenceHost&) = delete;
  ReferenceHost& operator=(const ReferenceHost&) = delete;

  // Adds a settings document, UTF-8. False when the file cannot be read, is not there, or is larger than 4 megabytes: a
  // host that installed without its settings would know no file by name.
  [[nodiscard]] bool ReadSettings(const wchar_t* path);
  [[nodiscard]] HostMessageLog& Log() { return log; }
  // A number of the settings, or `otherwise` when it is not given.
  [[nodiscard]] uint32_t SettingNumber(const wchar_t* setting, uint32_t otherwise) const;
  // A report of the host's own.
  void Tell(Severity severity, ReportCode code, const WideString& text = WideString());
  // Something is left to the next restart.
  void RequireRestart() { restartRequired = true; }
  // What the command is about, once that is known.
  void SelectKinds(uint32_t kinds) { flags = kinds; }
  // The players are gone, and with them the release player whose updates the window would ask about.
  void ForgetReleasePlayer() { playersGone = true; }
  // What the hourly task runs: an installed file, as this program may be gone by then.
  void SetTaskCommand(const WideString& path) { taskCommand = path; }
  // The update mode that the window's panel began with, and the one that the user chose there; nothing until then.
  [[nodiscard]] std::optional<uint32_t> FirstUpdateChoice() const { return firstUpdateChoice; }
  [[nodiscard]] std::optional<uint32_t> UpdateChoice() const { return updateChoice; }

  // This host's own text of an id, in the thread's language.
  [[nodiscard]] static MString OwnText(uint32_t id);

  // None throws: a text for which there is no memory ends the process.
  void ReportMessage(uint64_t reserved, uint32_t severity, uint32_t code, MString text) noexcept override;
  void LoadStringFallback(MString* out, uint32_t id, uint32_t flag) noexcept override;
  MessageLog* GetMessageLog() noexcept override { return &log; }
  // The release bit is the settings' to take away: "Host.Debugger yes".
  uint32_t GetFlags() noexcept override;
  bool DecompressImage(void* output, uint32_t outputSize, const void* input, uint32_t inputSize) noexcept override;
  MString* GetPayloadPath(MString* out) noexcept override;
  bool ConflictCheckIsOptional() noexcept override { return Yes(L"Host.ConflictCheckIsOptional"); }
  bool ConflictsBlockInstall() noexcept override { return !Yes(L"Host.ConflictsDoNotBlock"); }
  void NotifyConflictsCleared(void* /*reserved*/) noexcept override {}
  // Once something was left to the next restart.
  bool IsRestartRequired() noexcept override;
  void GetBrowserPaths(MString* control, MString* helper) noexcept override;
  void GetPluginPaths(MString* control, MString* helper) noexcept override;
  void GetPepperPaths(MString* control, MString* helper) noexcept override;
  void GetControlPanelAppletName(MString* out) noexcept override;
  void GetSettingsManagerFileName(MString* out) noexcept override;
  void GetUtilityPath(MString* out) noexcept override;
  void GetUpdateServiceFileName(MString* out) noexcept override;
  void GetFeedbackServiceFileName(MString* out) noexcept override;
  SettingsTree* GetSettings() noexcept override { return &settings; }
  uint32_t GetInstallSource() noexcept override { return Number(L"Host.InstallSource"); }
  void GetDownloadSettings(MString* out, uint8_t* flag) noexcept override;
  uint32_t GetOsClass() noexcept override { return Number(L"Host.OsClass"); }
  bool SkipsUpdateChoice() noexcept override { return Yes(L"Host.SkipsUpdateChoice"); }
  bool AnalyticsAllowed() noexcept override { return Yes(L"Host.AnalyticsAllowed"); }
  uint32_t GetSessionMode() noexcept override { return Number(L"Host.SessionMode"); }
  void BeginRemoval() noexcept override {}
  void FileRemovalFinished(uint32_t /*reserved*/) noexcept override {}
  MString* GetPreviousActiveXVersion(MString* out) noexcept override;
  MString* GetPreviousPluginVersion(MString* out) noexcept override;
  MString* GetPreviousPepperVersion(MString* out) noexcept override;
  MString* GetTaskCommandPath(MString* out) noexcept override;
  bool GetUpdateDialogData(SettingsTree* out) noexcept override;
  void SetAutoUpdateChoice(uint32_t mode) noexcept override { firstUpdateChoice = mode; }
  void StoreUpdateChoice(uint32_t value) noexcept override { updateChoice = value; }

 private:
  // The first two values of a setting, each empty when it is not given.
  void TwoNames(const wchar_t* setting, MString* first, MString* second) const;
  MString* OneName(const wchar_t* setting, MString* out) const;
  MString* Previous(uint32_t kind, MString* out) const;
  uint32_t Number(const wchar_t* setting) const;  // 0 when it is not given
  bool Yes(const wchar_t* setting) const;         // only the word "yes" is yes

  uint32_t flags;
  bool restartRequired = false;
  bool playersGone = false;
  WideString taskCommand;
  std::map<uint32_t, WideString> previousVersions;
  std::optional<uint32_t> firstUpdateChoice;
  std::optional<uint32_t> updateChoice;
  SettingsTree settings;
  HostMessageLog log;
};

// The full path of this program, and of the settings beside it under its name.
[[nodiscard]] WideString OwnPath();
[[nodiscard]] WideString SettingsPath();
