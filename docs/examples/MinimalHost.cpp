// The smallest host: loads the module, answers its questions, tells what is installed and, with "window", shows the
// installer's window without installing anything. It needs the module's headers and its texts and settings, which the
// engine library holds; the module itself is loaded.
//
//     MinimalHost [window]
#include <windows.h>

#include <objbase.h>

#include <cstdio>

#include "engine/HostCallbacks.h"
#include "engine/LumenBrokerShim.h"
#include "engine/SettingsTree.h"
#include "ui/toolkit/MWindow.h"
#include "ui/toolkit/MorphUI.h"

namespace {

// Keeps no entries: a host that shows the failure panel needs a real one.
class EmptyLog final : public MessageLog {
 public:
  uint32_t Count() override { return 0; }
  uint32_t Code(uint32_t) override { return 0; }
  uint32_t Severity(uint32_t) override { return 0; }
  MString* Text(MString* out, uint32_t) override { return out; }
  MString* Format(MString* out, HostCallbacks*, uint32_t, uint32_t, MString, uint32_t) override { return out; }
};

class MinimalHost final : public HostCallbacks {
 public:
  void ReportMessage(uint64_t, uint32_t severity, uint32_t code, MString text) override {
    std::printf("report: severity %u, code %u, %ls\n", severity, code, text.IsEmpty() ? L"-" : text.Data());
  }
  // With the flag set the module's own tables come first; they come back here, without it, for what they lack.
  void LoadStringFallback(MString* out, uint32_t id, uint32_t flag) override {
    if (flag != 0) {
      shim->LoadString(out, id, 1);
    } else {
      *out = id == 15 ? L"^ %" : id == 29 ? L"A small host ^" : L"";
    }
  }
  MessageLog* GetMessageLog() override { return &log; }
  uint32_t GetFlags() override { return host_flag::Plugin; }
  bool DecompressImage(void*, uint32_t, const void*, uint32_t) override { return false; }
  MString* GetPayloadPath(MString* out) override { return out; }
  bool ConflictCheckIsOptional() override { return true; }
  bool ConflictsBlockInstall() override { return false; }
  void NotifyConflictsCleared(void*) override {}
  bool IsRestartRequired() override { return false; }
  void GetBrowserPaths(MString* control, MString* helper) override { Name(control, helper); }
  void GetPluginPaths(MString* control, MString* helper) override { Name(control, helper); }
  void GetPepperPaths(MString* control, MString* helper) override { Name(control, helper); }
  void GetControlPanelAppletName(MString* out) override { *out = L"LumenPlayerCPLApp.cpl"; }
  void GetSettingsManagerFileName(MString* out) override { *out = L"LumenPlayerApp.exe"; }
  void GetUtilityPath(MString*) override {}
  void GetUpdateServiceFileName(MString* out) override { *out = L"LumenPlayerUpdateService.exe"; }
  void GetFeedbackServiceFileName(MString* out) override { *out = L"LumenFeedbackService.exe"; }
  SettingsTree* GetSettings() override { return &settings; }
  uint32_t GetInstallSource() override { return 0; }
  void GetDownloadSettings(MString*, uint8_t* flag) override { *flag = 0; }
  uint32_t GetOsClass() override { return 3; }
  bool SkipsUpdateChoice() override { return true; }
  bool AnalyticsAllowed() override { return false; }
  uint32_t GetSessionMode() override { return 0; }
  void BeginRemoval() override {}
  void FileRemovalFinished(uint32_t) override {}
  MString* GetPreviousActiveXVersion(MString* out) override { return out; }
  MString* GetPreviousPluginVersion(MString* out) override { return out; }
  MString* GetPreviousPepperVersion(MString* out) override { return out; }
  MString* GetTaskCommandPath(MString* out) override { return out; }
  bool GetUpdateDialogData(SettingsTree*) override { return false; }
  void SetAutoUpdateChoice(uint32_t) override {}
  void StoreUpdateChoice(uint32_t) override {}

 private:
  static void Name(MString* control, MString* helper) {
    *control = L"none.dll";
    *helper = L"none.exe";
  }
  EmptyLog log;
  SettingsTree settings;  // a real host fills it with ParseSettings
};

// Told of the window's milestones. A real host installs at 2 and removes at 3, while the window stands still.
int32_t OnEvent(MorphUI*, int32_t code, int64_t value, void*) {
  if (code == 6) {
    *reinterpret_cast<uint32_t*>(value) = host_flag::Plugin;
  } else {
    std::printf("milestone %d, %lld\n", code, static_cast<long long>(value));
  }
  return 0;
}

int Run(MinimalHost& host, bool withWindow) {
  LumenBrokerShim& shim = *host.shim;
  (void)shim.LoadEngineLists();
  constexpr const char* kStates[] = {"not installed", "older", "this version", "newer"};
  for (const auto& [kind, name] :
       {std::pair{host_flag::ActiveX, "ActiveX"}, {host_flag::Plugin, "plug-in"}, {host_flag::Pepper, "PPAPI"}}) {
    std::printf("%s: %s\n", name, kStates[shim.GetInstalledVersionState(kind)]);
  }
  if (!withWindow) return 0;
  if (FAILED(CoInitialize(nullptr))) return 3;  // screen readers reach the window through COM
  MorphUI* const ui = shim.CreateUI();
  if (ui == nullptr || ui->window->handle == nullptr) {
    shim.DestroyUI(nullptr, ui);  // null is fine; a loop without a window would never end
    return 3;
  }
  ui->SetEventCallback(OnEvent, nullptr);
  ui->PostEvent(3, 6, 0);  // the installer's first panel
  const int32_t code = ui->RunMessageLoop();
  shim.DestroyUI(nullptr, ui);
  CoUninitialize();
  return code;
}

}  // namespace

int main(int count, char**) {
  // The module outlives the host's own texts, some of which it made.
  const HMODULE module = LoadLibraryW(L"LumenUtil.dll");
  using StartFunction = LumenBrokerShim*(HostCallbacks*);
  auto* const start = module == nullptr
                          ? nullptr
                          : reinterpret_cast<StartFunction*>(reinterpret_cast<void*>(GetProcAddress(module, "Start")));
  if (start == nullptr) return 3;
  MinimalHost host;
  host.resourceModule = module;
  host.shim = start(&host);
  if (host.shim == nullptr) return 3;
  const int code = Run(host, count > 1);
  host.shim->Destroy(1);
  return code;
}
