// A host program for tests: gives the answers that a test set, keeps what the module reported and which events it told
// of. It is complete, so a test may hand it to Start or to any function that takes HostCallbacks.
//
//     EXPECT_EQ(host.Reports(), (Lines{"1 1113 C:\\missing 3"}));
//
// Belongs to the test's own thread.
#pragma once

#include <cstdint>

#include <map>
#include <string>
#include <tuple>
#include <utility>
#include <vector>

#include "engine/HostCallbacks.h"
#include "engine/LumenBrokerShim.h"
#include "engine/SettingsTree.h"
#include "tests/support/Texts.h"

// What was reported, as the failure panel would read it.
struct RecordingLog final : MessageLog {
  struct Entry {
    uint32_t severity = 0, code = 0;
    MString text;
  };
  Entry At(uint32_t index) {
    if (index < entries.size()) return entries[index];
    ++readsPastTheEnd;
    return {};
  }
  uint32_t Count() override { return static_cast<uint32_t>(entries.size()); }
  uint32_t Code(uint32_t index) override { return At(index).code; }
  uint32_t Severity(uint32_t index) override { return At(index).severity; }
  MString* Text(MString* out, uint32_t index) override { return &(*out = At(index).text); }
  // "code: text", so that a window test sees which entry was chosen.
  MString* Format(MString* out, HostCallbacks*, uint32_t, uint32_t code, MString text, uint32_t) override {
    return &(*out = MString(WideView(FromUtf8(std::to_string(code) + ": " + ::Text(text)))));
  }

  std::vector<Entry> entries;
  uint32_t readsPastTheEnd = 0;  // how often an entry was asked for that is not there; the panel must never
};

class RecordingHost final : public HostCallbacks {
 public:
  // Adds a settings document in front of those there are.
  void UseSettings(const wchar_t* text) { ParseSettings(&settings, MString(text)); }
  // One line a report: severity, code and text with a blank between; an empty text leaves no blank.
  [[nodiscard]] Lines Reports() const {
    Lines lines;
    for (const auto& [severity, code, text] : log.entries) {
      lines.push_back(std::to_string(severity) + " " + std::to_string(code) + (text.IsEmpty() ? "" : " " + Text(text)));
    }
    return lines;
  }
  // Forgets reports and events, keeps the answers.
  void Forget() {
    log.entries.clear();
    events.clear();
  }

  // A wrong first argument has to show in every test that compares reports.
  void ReportMessage(uint64_t reserved, uint32_t severity, uint32_t code, MString text) override {
    log.entries.push_back({severity, code, reserved == 0 ? text : MString(L"(reserved argument is not 0)")});
  }
  void LoadStringFallback(MString* out, uint32_t id, uint32_t flag) override {
    if (usesModuleTexts && flag != 0) return shim->LoadString(out, id, 1), void();
    events.push_back("LoadStringFallback " + std::to_string(id) + " " + std::to_string(flag));
    const auto known = fallbackTexts.find(id);
    *out = known == fallbackTexts.end() ? MString(WideView(FromUtf8("fallback " + std::to_string(id)))) : known->second;
  }
  MessageLog* GetMessageLog() override { return &log; }
  uint32_t GetFlags() override { return flags; }
  bool DecompressImage(void*, uint32_t, const void*, uint32_t) override { return false; }
  MString* GetPayloadPath(MString* out) override { return &(*out = payloadPath); }
  bool ConflictCheckIsOptional() override { return conflictCheckIsOptional; }
  bool ConflictsBlockInstall() override { return conflictsBlockInstall; }
  void NotifyConflictsCleared(void* reserved) override {
    events.emplace_back(reserved == nullptr ? "NotifyConflictsCleared" : "NotifyConflictsCleared of something");
  }
  bool IsRestartRequired() override { return restartRequired; }
  void GetBrowserPaths(MString* control, MString* helper) override { std::tie(*control, *helper) = browserNames; }
  void GetPluginPaths(MString*, MString*) override {}
  void GetPepperPaths(MString*, MString*) override {}
  void GetControlPanelAppletName(MString* out) override { *out = controlPanelAppletName; }
  void GetSettingsManagerFileName(MString* out) override { *out = settingsManagerFileName; }
  void GetUtilityPath(MString* out) override { *out = utilityPath; }
  void GetUpdateServiceFileName(MString* out) override { *out = updateServiceFileName; }
  void GetFeedbackServiceFileName(MString* out) override { *out = feedbackServiceFileName; }
  SettingsTree* GetSettings() override { return &settings; }
  uint32_t GetInstallSource() override { return installSource; }
  void GetDownloadSettings(MString* out, uint8_t* /*flag*/) override { *out = downloadSettings; }
  uint32_t GetOsClass() override { return osClass; }
  bool SkipsUpdateChoice() override { return skipsUpdateChoice; }
  bool AnalyticsAllowed() override { return analyticsAllowed; }
  uint32_t GetSessionMode() override { return sessionMode; }
  void BeginRemoval() override { events.emplace_back("BeginRemoval"); }
  void FileRemovalFinished(uint32_t reserved) override { Tell("FileRemovalFinished", reserved); }
  MString* GetPreviousActiveXVersion(MString* out) override { return &(*out = previousActiveXVersion); }
  MString* GetPreviousPluginVersion(MString* out) override { return &(*out = previousPluginVersion); }
  MString* GetPreviousPepperVersion(MString* out) override { return &(*out = MString(L"")); }
  MString* GetTaskCommandPath(MString* out) override { return out; }
  bool GetUpdateDialogData(SettingsTree* out) override {
    if (updateDialogData.Data() != nullptr) ParseSettings(out, updateDialogData);
    return updateDialogData.Data() != nullptr;
  }
  void SetAutoUpdateChoice(uint32_t mode) override { Tell("SetAutoUpdateChoice", mode); }
  void StoreUpdateChoice(uint32_t value) override { Tell("StoreUpdateChoice", value); }

  // Answers, each of the operation that it is named after.
  uint32_t flags = 0, installSource = 0, osClass = 0, sessionMode = 0;
  bool conflictCheckIsOptional = false, conflictsBlockInstall = false, restartRequired = false;
  bool skipsUpdateChoice = false, analyticsAllowed = false;
  std::pair<MString, MString> browserNames;  // of the control and its helper
  MString payloadPath, utilityPath, downloadSettings;
  MString controlPanelAppletName, settingsManagerFileName, updateServiceFileName, feedbackServiceFileName;
  MString previousActiveXVersion, previousPluginVersion;
  MString updateDialogData;      // a settings text; a null one makes the operation fail
  bool usesModuleTexts = false;  // whether LoadStringFallback asks the module's own tables first
  std::map<uint32_t, MString> fallbackTexts;
  SettingsTree settings;
  RecordingLog log;

  // What the module told of, in order, with its arguments: "BeginRemoval", "StoreUpdateChoice 2", ...
  Lines events;

 private:
  void Tell(const char* event, uint32_t argument) { events.push_back(event + (" " + std::to_string(argument))); }
};
