// The installer's window as a host gets it from the module, on a desktop of the test's own, driven by mouse and
// keyboard.
#pragma once

#include <string>

#include "tests/module/LoadedModule.h"
#include "tests/support/TestDesktop.h"
#include "tests/ui/toolkit/WindowDriver.h"
#include "ui/panels/MInstallerWindow.h"
#include "ui/toolkit/MorphUI.h"

class PanelFixture : public ModuleFixture {
 protected:
  void SetUp() override {
    ModuleFixture::SetUp();
    host.usesModuleTexts = true;
    host.fallbackTexts[15] = MString(L"^ %");
    host.fallbackTexts[29] = MString(L"Install Corva Lumen Player ^");
    host.resourceModule = LoadedModule();
    host.settingsManagerFileName = MString(L"LumenSettingsManager.cpl");
    host.conflictCheckIsOptional = true;
  }
  void TearDown() override {
    Close();
    ModuleFixture::TearDown();
  }

  // Builds the window; the host's answers must stand by then.
  void Open(int64_t panel) {
    Build();
    ui->PostEvent(CommandEventId, kOpenPanel, panel);
    driver::PumpInput(window->handle);
  }
  void Build() {
    ui = shim->CreateUI();
    ASSERT_NE(ui, nullptr);
    ui->SetEventCallback(Notified, this);
    window = static_cast<MInstallerWindow*>(ui->window);
  }
  void Close() {
    shim->DestroyUI(nullptr, ui);
    ui = nullptr;
    window = nullptr;
    MSG message = {};
    while (PeekMessageW(&message, nullptr, 0, 0, PM_REMOVE)) {
    }
  }

  void Post(uint32_t id, uint32_t message, int64_t param = 0) {
    ui->PostEvent(id, message, param);
    driver::PumpInput(window->handle);
  }
  // From the installer's first panel into its work.
  void Install() {
    Open(kOpenInstaller);
    Click(*window->installerSplash->licenseCheckbox);
    Click(*window->rightButton);
  }
  // With the mouse, in the middle of the region.
  void Click(const MRegion& region) {
    const Rect at = region.AbsoluteBounds();
    driver::Click(window->handle, {(at.left + at.right) / 2, (at.top + at.bottom) / 2});
  }
  [[nodiscard]] bool Waited(const std::function<bool()>& done) { return driver::PumpUntil(done); }
  // Waits for the end of the work and handles what it posted.
  [[nodiscard]] bool BarStops() {
    if (!Waited([this] { return window->progressPanel->running == 0; })) return false;
    driver::PumpInput(window->handle);
    return true;
  }
  [[nodiscard]] std::string Active() const {
    const MUIPanel* const active = window->ActivePanel();
    const std::pair<const MUIPanel*, const char*> names[] = {{nullptr, "none"},
                                                             {window->installerSplash.get(), "installer"},
                                                             {window->uninstallerSplash.get(), "uninstaller"},
                                                             {window->maintainPanel.get(), "maintain"},
                                                             {window->conflictsPanel.get(), "conflicts"},
                                                             {window->progressPanel.get(), "progress"},
                                                             {window->failurePanel.get(), "failure"},
                                                             {window->autoUpdatePanel.get(), "update"}};
    for (const auto& [panel, name] : names) {
      if (panel == active) return name;
    }
    return "unknown";
  }
  [[nodiscard]] static std::string TextOf(const MTextArea& area) { return ToUtf8(area.text.View()); }
  [[nodiscard]] std::string Title() const {
    wchar_t title[128] = {};
    GetWindowTextW(window->handle, title, 128);
    return ToUtf8(title);
  }
  // What host and callback were told since the last time, but for questions.
  Lines Events() {
    Lines taken;
    taken.swap(host.events);
    std::erase_if(taken, [](const std::string& line) { return line.starts_with("LoadStringFallback"); });
    return taken;
  }

  MorphUI* ui = nullptr;
  MInstallerWindow* window = nullptr;
  uint32_t productMask = 0;
  std::function<void()> onWork;  // what the host does in steps 2, 3 and 4

 private:
  static int32_t Notified(MorphUI* /*ui*/, int32_t code, int64_t value, void* context) {
    auto& self = *static_cast<PanelFixture*>(context);
    if (code == kQueryProductMask) {
      *reinterpret_cast<uint32_t*>(value) = self.productMask;
      return 0;
    }
    self.host.events.push_back("Notify " + std::to_string(code) + " " + std::to_string(value));
    if (code != kInstallerExits && self.onWork) self.onWork();
    return 0;
  }
};
