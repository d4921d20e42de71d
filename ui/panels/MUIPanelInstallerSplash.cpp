// clang-format off
#include <windows.h>
// clang-format on

#include "ui/panels/MUIPanelInstallerSplash.h"

#include "engine/HostCallbacks.h"
#include "engine/LumenBrokerShim.h"
#include "engine/SettingsTree.h"
#include "ui/panels/MInstallerWindow.h"
#include "ui/toolkit/MorphUI.h"
#include "ui/toolkit/Widgets.h"

namespace {

constexpr uint32_t kOneLine = 262144;
constexpr int32_t kDefaultDelay = 1000;  // milliseconds
constexpr int32_t kTickShift = 4;        // a tick is 16 of them

}  // namespace

MUIPanelInstallerSplash::MUIPanelInstallerSplash(MInstallerWindow* window) : MUIPanel(window) {
  constexpr int32_t kWidths[3] = {1, 412, 1};
  constexpr int32_t kHeights[3] = {173, 1, 1};
  backgroundData = std::make_unique<MScale9Data>(window->Skin(), 155, 0, kWidths, kHeights, kDrawCopy);
  background = std::make_unique<MScale9Section>(window, backgroundData.get());
  banner = std::make_unique<MSkinnedSection>(window->Banner(), SourceRect{0, 0, 400, 130});
  logo = MakeLogo();
  licenseLink = MakeText(16, Style::Markup, Text(19), kOneLine);
  licenseLink->linkTextColor = kWhiteLink;
  licenseLink->linkNormalColor = kGreyLink;
  licenseLink->linkHoverColor = kWhiteLink;
  licenseCheckbox = MakeCheckbox(window, window->Skin(), false);
  licenseCheckbox->controlId = control_id::FirstPanelButton;
  licenseCheckbox->label = Text(4);
  // A click on the words is a click on the box.
  licenseLabel = MakeText(16, Style::Plain, Text(4), kOneLine);
  licenseLabel->handler = licenseCheckbox->handler;
  licenseLabel->handlerContext = licenseCheckbox->handlerContext;
  installTooltip = std::make_unique<MTooltipArea>(window, window->handle, window->rightButton->nativeWindow,
                                                  window->morph->resourceModule);
  Attach(background.get());
  Attach(banner.get());
  Attach(logo.get());
}

bool MUIPanelInstallerSplash::HandleEvent(uint32_t id, uint32_t message, int64_t /*param*/) {
  if (id == control_id::LeftButton && message == kClicked) {
    installerWindow->EndLatePanels();
    installerWindow->ExitInstaller(kExitClosedByUser);
    return true;
  }
  if (licenseCheckbox == nullptr) return false;  // it was left once: empty, but for QUIT
  if (id == WindowEventId) {
    if (message == kWindowCreated) Show();
    if (message == kWindowResized) Resize();
    if (message == kWindowHidden) Hide();
    return true;
  }
  if (message != kClicked) return false;
  switch (id) {
    case control_id::FirstPanelButton: FollowLicense(); return true;
    case control_id::RightButton: StartInstall(); return true;
    default: return false;
  }
}

void MUIPanelInstallerSplash::Show() {
  Attach(licenseCheckbox.get());
  Attach(licenseLink.get());
  Attach(licenseLabel.get());
  installerWindow->SetTitle(Insert(Text(29), kShownVersion));
  installTooltip->SetText(Text(38));
  installTooltip->SetActive(true);
  installerWindow->leftButton->SetVisible(true);
  installerWindow->rightButton->SetVisible(true);
  HandleEvent(control_id::FirstPanelButton, kClicked, 0);
  installerWindow->TakeStandardSize();
  // Not the name that OpenExpressInstallUrl looks for; hosts set either.
  if (FindSetting(installerWindow->Host().GetSettings(), L"ExpressInstallerURL") != nullptr) {
    SetForegroundWindow(installerWindow->handle);
    SetWindowPos(installerWindow->handle, HWND_TOP, 0, 0, 0, 0, SWP_NOMOVE | SWP_NOSIZE);
  }
  installerWindow->Show(true);
  Resize();
}

void MUIPanelInstallerSplash::Resize() {
  using namespace text_locale;
  const int32_t offset = OffsetIn({TraditionalChinese, Japanese, SimplifiedChinese}, 3);
  licenseLink->verticalOffset = offset;
  licenseLabel->verticalOffset = offset;
  const int32_t w = Width();
  const int32_t h = Height();
  Place(*background, Rect::Of(0, 0, w, h));
  Place(*banner, Rect::Of(115, 55, 400, 130));
  Place(*logo, Rect::Of(bounds.left + 10, 1, 47, 71));
  Place(*licenseLink, Rect::Of(117, h - 30, w - 48, 20));
  Place(*licenseCheckbox, Rect::Of(96, h - 49, 15, 15));
  Place(*licenseLabel, Rect::Of(115, h - 50, w - 48, 20));
  Place(*installTooltip, installerWindow->rightButton->bounds.AtOrigin());
}

void MUIPanelInstallerSplash::Hide() {
  licenseCheckbox->Detach();
  licenseCheckbox.reset();
  licenseLink.reset();
  licenseLabel.reset();
  background.reset();
  banner.reset();
  logo.reset();
  installTooltip->SetActive(false);
  installTooltip.reset();
}

void MUIPanelInstallerSplash::FollowLicense() {
  const bool accepted = licenseCheckbox->checked;
  installerWindow->SetButtonEnabled(*installerWindow->rightButton, accepted);
  installTooltip->SetActive(!accepted);
}

void MUIPanelInstallerSplash::StartInstall() {
  MInstallerWindow& window = *installerWindow;
  const SettingsNode* const delay = FindSetting(window.Host().GetSettings(), L"AutoExitDelay");
  if (delay != nullptr) {
    const int32_t milliseconds =
        delay->values == nullptr ? kDefaultDelay : static_cast<int32_t>(delay->values->name.ParseDigits());
    autoExitTicks = milliseconds >> kTickShift;
  }
  window.progressPanel->Arm(0.0f, 100.0f, 2.0f, InstallDoneCallback, this, Text(5));
  window.ShowPanel(window.conflictsPanel.get());
  if (delay != nullptr) window.rightButton->SetVisible(false);
}

bool MUIPanelInstallerSplash::InstallDoneCallback(MUIPanelProgress* panel, uint32_t code, uint32_t /*reserved*/,
                                                  void* context) {
  auto& splash = *static_cast<MUIPanelInstallerSplash*>(context);
  MInstallerWindow& window = *splash.installerWindow;
  switch (code) {
    case kProgressReachedTarget: splash.OnBarFull(*panel); return true;
    case kProgressIdleTick:
      if (splash.autoExitTicks < 1 || --splash.autoExitTicks > 0) return true;
      [[fallthrough]];
    case kProgressDone:
      (void)window.Shim().OpenExpressInstallUrl(window.handle);
      window.EndLatePanels();
      window.ExitInstaller(kExitDone);
      return true;
    default: return false;
  }
}

void MUIPanelInstallerSplash::OnBarFull(MUIPanelProgress& panel) const {
  MInstallerWindow& window = *installerWindow;
  window.morph->Notify(kInstallStep, 0);
  if (panel.titleText == nullptr) return;  // a host that ran messages meanwhile was led to another panel
  const bool offersChoice =
      !window.Host().SkipsUpdateChoice() && (window.Host().GetFlags() & host_flag::ReleasePlayer) != 0;
  ShowText(*panel.titleText, offersChoice ? MString(L"") : Insert(Text(7), kShownVersion));
  if (window.Shim().IsBadRealPlayer()) {
    window.messageText->SetVisible(true);
    ShowText(*window.messageText, Text(72));
  }
  if (window.Host().IsRestartRequired()) window.ShowRestartNote();
  if (autoExitTicks == 0) window.SetButtonEnabled(*window.rightButton, true);
}
