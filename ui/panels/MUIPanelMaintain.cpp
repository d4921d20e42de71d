#include "ui/panels/MUIPanelMaintain.h"

#include "ui/panels/MInstallerWindow.h"
#include "ui/toolkit/Widgets.h"

MUIPanelMaintain::MUIPanelMaintain(MInstallerWindow* window) : MUIPanel(window) {
  bounds = Rect::Of(0, 0, 414, 243);
  uninstallText = MakeText(13, Style::Plain, Text(11), 4);
  Place(*uninstallText, Rect::Of(169, 69, 228, 33));
  statusText = MakeText(13, Style::Plain, Text(24), 4);
  Place(*statusText, Rect::Of(169, 19, 228, 33));
  uninstallButton = MakeButton(window, window->Skin(), Text(21));
  uninstallButton->controlId = control_id::SecondPanelButton;
  Place(*uninstallButton, Rect::Of(19, 69, 140, 33));
  uninstallButton->labelText->Layout();
  uninstallButton->Layout();
  reinstallButton = MakeButton(window, window->Skin(), Text(20));
  reinstallButton->controlId = control_id::FirstPanelButton;
  Place(*reinstallButton, Rect::Of(19, 19, 140, 33));
  reinstallButton->labelText->Layout();
  reinstallButton->Layout();
}

bool MUIPanelMaintain::HandleEvent(uint32_t id, uint32_t message, int64_t /*param*/) {
  if (id == WindowEventId) {
    if (message == kWindowCreated) Show();
    if (message == kWindowHidden) Hide();
    return true;
  }
  if (message != kClicked) return false;
  switch (id) {
    case control_id::RightButton: installerWindow->ExitInstaller(kExitDone); return true;
    case control_id::FirstPanelButton: return true;  // REINSTALL is the host's to offer; here it does nothing
    case control_id::SecondPanelButton:
      // Past the conflicts: whoever maintains an installation removes it at once.
      MUIPanelUninstallerSplash::ArmRemoval(*installerWindow);
      installerWindow->ShowPanel(installerWindow->progressPanel.get());
      return true;
    default: return false;
  }
}

// Leaves the window's size and whether it is shown to the host.
void MUIPanelMaintain::Show() {
  Attach(uninstallText.get());
  Attach(statusText.get());
  Attach(uninstallButton.get());
  Attach(reinstallButton.get());
  installerWindow->leftButton->SetVisible(false);
  installerWindow->rightButton->SetVisible(true);
  installerWindow->SetButtonText(*installerWindow->rightButton, Text(16));
}

void MUIPanelMaintain::Hide() {
  uninstallText->Detach();
  statusText->Detach();
  uninstallButton->Detach();
  reinstallButton->Detach();
}
