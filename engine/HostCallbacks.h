// What a host program supplies: a table of operations followed by two data fields. The order is the binary contract.
// Every MString argument is the callee's own copy. "Fills" means: the caller passes an MString it constructed empty.
// All operations are called on the thread that drives the shim, ReportMessage also on the broker's.
#pragma once

#include <windows.h>

#include <cstdint>

#include "engine/MString.h"

class HostCallbacks;
class LumenBrokerShim;
struct SettingsTree;

// What was reported so far, oldest first. Indices run from 0 to Count() - 1.
class MessageLog {
 public:
  virtual uint32_t Count() = 0;
  virtual uint32_t Code(uint32_t index) = 0;
  virtual uint32_t Severity(uint32_t index) = 0;
  virtual MString* Text(MString* out, uint32_t index) = 0;
  // The text to show a person for one entry, in the language of the host's resources. `reserved` is 0.
  virtual MString* Format(MString* out, HostCallbacks* host, uint32_t severity, uint32_t code, MString text,
                          uint32_t reserved) = 0;

 protected:
  ~MessageLog() = default;
};

class HostCallbacks {
 public:
  // Logs a failure or an event. `reserved` is always 0. Cannot fail.
  virtual void ReportMessage(uint64_t reserved, uint32_t severity, uint32_t code, MString text) = 0;
  // Supplies a text. With `flag` 1, from the window, it is whatever the shim's LoadString gives; with 0, from there,
  // one that the module's string tables lack.
  virtual void LoadStringFallback(MString* out, uint32_t id, uint32_t flag) = 0;
  virtual MessageLog* GetMessageLog() = 0;
  // HostFlag bits; the value 130 exactly labels the window's quit button by GetInstallSource.
  virtual uint32_t GetFlags() = 0;
  // Unpacks an image resource of type "LZMG" into `outputSize` bytes.
  virtual bool DecompressImage(void* output, uint32_t outputSize, const void* input, uint32_t inputSize) = 0;
  virtual MString* GetPayloadPath(MString* out) = 0;
  virtual bool ConflictCheckIsOptional() = 0;
  virtual bool ConflictsBlockInstall() = 0;
  // `reserved` is always null.
  virtual void NotifyConflictsCleared(void* reserved) = 0;
  virtual bool IsRestartRequired() = 0;
  // Control file name and helper executable name of one kind, which conflicts are searched by.
  virtual void GetBrowserPaths(MString* control, MString* helper) = 0;
  virtual void GetPluginPaths(MString* control, MString* helper) = 0;
  virtual void GetPepperPaths(MString* control, MString* helper) = 0;
  // File names in the system directory.
  virtual void GetControlPanelAppletName(MString* out) = 0;
  virtual void GetSettingsManagerFileName(MString* out) = 0;
  // The executable that is restarted with "-refreshIEElevationPolicies".
  virtual void GetUtilityPath(MString* out) = 0;
  virtual void GetUpdateServiceFileName(MString* out) = 0;
  virtual void GetFeedbackServiceFileName(MString* out) = 0;
  virtual SettingsTree* GetSettings() = 0;
  // 2: from an MSI package. 4: the quit button reads text 34. 12: the auto-update choice is forced to 0.
  virtual uint32_t GetInstallSource() = 0;
  virtual void GetDownloadSettings(MString* out, uint8_t* flag) = 0;
  // Below 3 the ActiveX control and the two system-directory files are the installer's to manage.
  virtual uint32_t GetOsClass() = 0;
  virtual bool SkipsUpdateChoice() = 0;
  virtual bool AnalyticsAllowed() = 0;
  // 1 or 2 makes the main button read text 39.
  virtual uint32_t GetSessionMode() = 0;
  virtual void BeginRemoval() = 0;
  // `reserved` is always 0.
  virtual void FileRemovalFinished(uint32_t reserved) = 0;
  // Dotted version installed before this run, one per kind; empty when there was none.
  virtual MString* GetPreviousActiveXVersion(MString* out) = 0;
  virtual MString* GetPreviousPluginVersion(MString* out) = 0;
  virtual MString* GetPreviousPepperVersion(MString* out) = 0;
  virtual MString* GetTaskCommandPath(MString* out) = 0;
  // Adds "message", "size" (width, height) and "autoUpdateMode", each as far as known, for the auto-update panel.
  virtual bool GetUpdateDialogData(SettingsTree* out) = 0;
  virtual void SetAutoUpdateChoice(uint32_t mode) = 0;
  virtual void StoreUpdateChoice(uint32_t value) = 0;

  // Where texts and images are loaded from; null means the running executable. Set before Start.
  HMODULE resourceModule = nullptr;
  // The host stores here what Start returned, before it calls anything else of the module.
  LumenBrokerShim* shim = nullptr;

 protected:
  ~HostCallbacks() = default;
};

namespace host_flag {
constexpr uint32_t ActiveX = 8;
constexpr uint32_t Plugin = 16;
constexpr uint32_t Pepper = 32768;
constexpr uint32_t ReleasePlayer = 1024;  // clear: a debugger player
}  // namespace host_flag
