#include "ui/panels/MUIPanelUninstallerSplash.h"

#include "engine/HostCallbacks.h"
#include "ui/panels/MInstallerWindow.h"
#include "ui/toolkit/MorphUI.h"

MUIPanelUninstallerSplash::MUIPanelUninstallerSplash(MInstallerWindow* window) : MUIPanel(window) {
  backgroundData = MakePlainGround(window->Skin());
  background = std::make_unique<MScale9Section>(window, backgroundData.get());
  banner = std::make_unique<MSkinnedSection>(window->Banner(), SourceRect{0, 0, 400, 130});
  logo = MakeLogo();
  bodyText = MakeText(17, Style::Plain, Text(11), 48);
  Attach(background.get());
  Attach(banner.get());
  Attach(logo.get());
}

bool MUIPanelUninstallerSplash::HandleEvent(uint32_t id, uint32_t message, int64_t /*param*/) {
  if (id == WindowEventId) {
    if (message == kWindowCreated) Show();
    if (message == kWindowResized) Resize();
    if (message == kWindowHidden) bodyText->Detach();
    return true;
  }
  if (message != kClicked) return false;
  switch (id) {
    case control_id::LeftButton: installerWindow->ExitInstaller(kExitDone); return true;
    case control_id::RightButton:
      ArmRemoval(*installerWindow);
      installerWindow->ShowPanel(installerWindow->conflictsPanel.get());
      return true;
    default: return false;
  }
}

void MUIPanelUninstallerSplash::ArmRemoval(MInstallerWindow& window) {
  window.progressPanel->Arm(100.0f, 0.0f, -2.0f, UninstallDoneCallback, nullptr, window.Text(12));
}

void MUIPanelUninstallerSplash::Show() {
  Attach(bodyText.get());
  installerWindow->SetTitle(Text(30));
  installerWindow->leftButton->SetVisible(true);
  installerWindow->rightButton->SetVisible(true);
  installerWindow->SetButtonText(*installerWindow->rightButton, Text(21));
  installerWindow->TakeStandardSize();
  installerWindow->Show(true);
  Resize();
}

void MUIPanelUninstallerSplash::Resize() {
  const int32_t w = Width();
  const int32_t h = Height();
  Place(*background, Rect::Of(0, 0, w, h));
  Place(*logo, Rect::Of(bounds.left + 10, 1, 47, 71));
  Place(*banner, Rect::Of(115, 55, 400, 130));
  Place(*bodyText, Rect::Of(96, 220, w - 29, h - 115));
}

bool MUIPanelUninstallerSplash::UninstallDoneCallback(MUIPanelProgress* panel, uint32_t code, uint32_t /*reserved*/,
                                                      void* /*context*/) {
  MInstallerWindow& window = *panel->installerWindow;
  switch (code) {
    case kProgressDone: window.ExitInstaller(kExitDone); return true;
    case kProgressReachedTarget:
      window.Host().BeginRemoval();
      window.morph->Notify(kUninstallStep, 0);
      if (panel->titleText == nullptr) return true;  // a host that ran messages meanwhile was led to another panel
      ShowText(*panel->titleText, window.Text(10));
      window.SetButtonEnabled(*window.rightButton, true);
      return true;
    default: return false;
  }
}
