// A host program for tests: gives the answers that a test set, keeps what the module reported and which events it told
// of. It is complete, so a test may hand it to Start or to any function that takes HostCallbacks.
//
//     RecordingHost host;
//     host.UseSettings(L"FilenamesAX a.ocx;");
//     host.flags = host_flag::ActiveX;
//     ... the call under test ...
//     EXPECT_EQ(host.Reports(), (Lines{"1 1113 C:\\missing 3"}));
//
// Any thread may report; everything else belongs to the test's own thread.
#pragma once

#include <cstdint>
#include <map>
#include <mutex>
#include <string>
#include <tuple>
#include <vector>

#include "engine/HostCallbacks.h"
#include "engine/SettingsTree.h"
#include "tests/support/Texts.h"

// What was reported, as the failure panel would read it.
class RecordingLog final : public MessageLog {
 public:
  void Add(uint32_t severity, uint32_t code, const MString& text);
  // One line a report: severity, code and text (UTF-8) with a blank between; an empty text leaves no blank.
  [[nodiscard]] Lines AsLines() const;
  void Clear();

  uint32_t Count() override;
  uint32_t Code(uint32_t index) override;
  uint32_t Severity(uint32_t index) override;
  MString* Text(MString* out, uint32_t index) override;
  // "code: text", so that a window test sees which entry was chosen.
  MString* Format(MString* out, HostCallbacks* host, uint32_t severity, uint32_t code, MString text,
                  uint32_t reserved) override;

  // How often a callee asked for an entry that is not there; the panel must never.
  uint32_t readsPastTheEnd = 0;

 private:
  struct Entry {
    uint32_t severity;
    uint32_t code;
    std::string text;  // bytes of its own: a shared text's count is not safe across threads
  };
  Entry At(uint32_t index);

  mutable std::mutex lock;
  std::vector<Entry> entries;
};

class RecordingHost final : public HostCallbacks {
 public:
  // Adds a settings document in front of those there are.
  void UseSettings(const wchar_t* text) { ParseSettings(&settings, MString(text)); }
  [[nodiscard]] Lines Reports() const { return log.AsLines(); }
  // Forgets reports and events, keeps the answers.
  void Forget();

  void ReportMessage(uint64_t reserved, uint32_t severity, uint32_t code, MString text) override;
  void LoadStringFallback(MString* out, uint32_t id, uint32_t flag) override;
  MessageLog* GetMessageLog() override { return &log; }
  uint32_t GetFlags() override { return flags; }
  bool DecompressImage(void* output, uint32_t outputSize, const void* input, uint32_t inputSize) override;
  MString* GetPayloadPath(MString* out) override { return &(*out = payloadPath); }
  bool ConflictCheckIsOptional() override { return conflictCheckIsOptional; }
  bool ConflictsBlockInstall() override { return conflictsBlockInstall; }
  void NotifyConflictsCleared(void* reserved) override;
  bool IsRestartRequired() override { return restartRequired; }
  void GetBrowserPaths(MString* control, MString* helper) override { browserNames.Give(control, helper); }
  void GetPluginPaths(MString* control, MString* helper) override { pluginNames.Give(control, helper); }
  void GetPepperPaths(MString* control, MString* helper) override { pepperNames.Give(control, helper); }
  void GetControlPanelAppletName(MString* out) override { *out = controlPanelAppletName; }
  void GetSettingsManagerFileName(MString* out) override { *out = settingsManagerFileName; }
  void GetUtilityPath(MString* out) override { *out = utilityPath; }
  void GetUpdateServiceFileName(MString* out) override { *out = updateServiceFileName; }
  void GetFeedbackServiceFileName(MString* out) override { *out = feedbackServiceFileName; }
  SettingsTree* GetSettings() override { return &settings; }
  uint32_t GetInstallSource() override { return installSource; }
  void GetDownloadSettings(MString* out, uint8_t* flag) override;
  uint32_t GetOsClass() override { return osClass; }
  bool SkipsUpdateChoice() override { return skipsUpdateChoice; }
  bool AnalyticsAllowed() override { return analyticsAllowed; }
  uint32_t GetSessionMode() override { return sessionMode; }
  void BeginRemoval() override { events.emplace_back("BeginRemoval"); }
  void FileRemovalFinished(uint32_t reserved) override { Tell("FileRemovalFinished", reserved); }
  MString* GetPreviousActiveXVersion(MString* out) override { return &(*out = previousActiveXVersion); }
  MString* GetPreviousPluginVersion(MString* out) override { return &(*out = previousPluginVersion); }
  MString* GetPreviousPepperVersion(MString* out) override { return &(*out = previousPepperVersion); }
  MString* GetTaskCommandPath(MString* out) override { return &(*out = taskCommandPath); }
  bool GetUpdateDialogData(SettingsTree* out) override;
  void SetAutoUpdateChoice(uint32_t mode) override { Tell("SetAutoUpdateChoice", mode); }
  void StoreUpdateChoice(uint32_t value) override { Tell("StoreUpdateChoice", value); }

  // The two names that conflicts of one kind are searched by.
  struct Names {
    MString control{L""};
    MString helper{L""};
    void Give(MString* c, MString* h) const { std::tie(*c, *h) = std::tie(control, helper); }
  };

  // Answers, each of the operation that it is named after.
  uint32_t flags = 0;
  bool conflictCheckIsOptional = false;
  bool conflictsBlockInstall = false;
  bool restartRequired = false;
  uint32_t installSource = 0;
  uint32_t osClass = 0;
  bool skipsUpdateChoice = false;
  bool analyticsAllowed = false;
  uint32_t sessionMode = 0;
  MString payloadPath{L""};
  Names browserNames;
  Names pluginNames;
  Names pepperNames;
  MString controlPanelAppletName{L""};
  MString settingsManagerFileName{L""};
  MString utilityPath{L""};
  MString updateServiceFileName{L""};
  MString feedbackServiceFileName{L""};
  MString downloadSettings{L""};
  uint8_t downloadFlag = 0;
  MString previousActiveXVersion{L""};
  MString previousPluginVersion{L""};
  MString previousPepperVersion{L""};
  MString taskCommandPath{L""};
  // Settings text of GetUpdateDialogData; a null text makes the operation fail.
  MString updateDialogData;
  // What every image unpacks to; DecompressImage fails when the size asked for is another.
  std::vector<uint8_t> unpackedImage;
  // Whether LoadStringFallback asks the module's own tables first, as a window's texts want it.
  bool usesModuleTexts = false;
  // Texts of LoadStringFallback; any other id gives "fallback <id>".
  std::map<uint32_t, MString> fallbackTexts;
  SettingsTree settings;
  RecordingLog log;

  // What the module told of, in order, with its arguments: "BeginRemoval", "StoreUpdateChoice 2", ...
  Lines events;

 private:
  void Tell(const char* event, uint32_t argument) { events.push_back(event + (" " + std::to_string(argument))); }
};
