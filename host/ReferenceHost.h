// Answers the module's callbacks from a settings file, a message log and what the command line asked for.
#pragma once

#include "engine/HostCallbacks.h"
#include "engine/SettingsTree.h"
#include "host/HostMessageLog.h"

class ReferenceHost final : public HostCallbacks {
 public:
  ReferenceHost();

  // Adds a settings document. False when the file is there and cannot be read; a missing file is no settings.
  [[nodiscard]] bool ReadSettings(const wchar_t* path);
  [[nodiscard]] HostMessageLog& Log() { return log; }

  void ReportMessage(uint64_t reserved, uint32_t severity, uint32_t code, MString text) override;
  void LoadStringFallback(MString* out, uint32_t id, uint32_t flag) override;
  MessageLog* GetMessageLog() override { return &log; }
  uint32_t GetFlags() override { return flags; }
  bool DecompressImage(void* output, uint32_t outputSize, const void* input, uint32_t inputSize) override;
  MString* GetPayloadPath(MString* out) override;
  bool ConflictCheckIsOptional() override { return false; }
  bool ConflictsBlockInstall() override { return true; }
  void NotifyConflictsCleared(void* reserved) override;
  bool IsRestartRequired() override;
  void GetBrowserPaths(MString* control, MString* helper) override;
  void GetPluginPaths(MString* control, MString* helper) override;
  void GetPepperPaths(MString* control, MString* helper) override;
  void GetControlPanelAppletName(MString* out) override;
  void GetSettingsManagerFileName(MString* out) override;
  void GetUtilityPath(MString* out) override;
  void GetUpdateServiceFileName(MString* out) override;
  void GetFeedbackServiceFileName(MString* out) override;
  SettingsTree* GetSettings() override { return &settings; }
  uint32_t GetInstallSource() override { return 0; }
  void GetDownloadSettings(MString* out, uint8_t* flag) override;
  uint32_t GetOsClass() override { return 0; }
  bool SkipsUpdateChoice() override { return false; }
  bool AnalyticsAllowed() override { return false; }
  uint32_t GetSessionMode() override { return 0; }
  void BeginRemoval() override {}
  void FileRemovalFinished(uint32_t /*reserved*/) override {}
  MString* GetPreviousActiveXVersion(MString* out) override;
  MString* GetPreviousPluginVersion(MString* out) override;
  MString* GetPreviousPepperVersion(MString* out) override;
  MString* GetTaskCommandPath(MString* out) override;
  bool GetUpdateDialogData(SettingsTree* out) override;
  void SetAutoUpdateChoice(uint32_t mode) override { autoUpdateChoice = mode; }
  void StoreUpdateChoice(uint32_t value) override { autoUpdateChoice = value; }

 private:
  // The first two values of a setting, each empty when it is not given.
  void TwoNames(const wchar_t* setting, MString* first, MString* second);
  MString* OneName(const wchar_t* setting, MString* out);

  uint32_t flags = 0;
  uint32_t autoUpdateChoice = 0;
  SettingsTree settings;
  HostMessageLog log;
};

// The full path of this program.
[[nodiscard]] WideString OwnPath();
