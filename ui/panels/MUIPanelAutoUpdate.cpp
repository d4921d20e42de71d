// clang-format off
#include <windows.h>
// clang-format on

#include "ui/panels/MUIPanelAutoUpdate.h"

#include "engine/HostCallbacks.h"
#include "engine/LumenBrokerShim.h"
#include "engine/SettingsTree.h"
#include "ui/panels/MInstallerWindow.h"
#include "ui/toolkit/MorphUI.h"

namespace {

constexpr uint32_t kLinkText = 16501660;
constexpr uint32_t kLinkHover = 16769475;
// The updater runs without anybody to look at it.
constexpr uint32_t kSilentSource = 12;
// The update is to be downloaded by hand.
constexpr uint32_t kByHand = 2;

struct Dialog {
  int32_t width = 500;
  int32_t height = 270;
  MString text;
};

uint32_t ChoiceOf(const SettingsNode& mode) {
  const uint32_t value = mode.values == nullptr ? 0 : mode.values->name.ParseDigits();
  return value == 1 || value == 2 ? value : 0;
}

Dialog AskHost(const MInstallerWindow& window) {
  HostCallbacks& host = window.Host();
  Dialog dialog;
  SettingsTree data;
  if (!host.GetUpdateDialogData(&data)) {
    dialog.text = window.Text(26);
    return dialog;
  }
  const SettingsNode* const message = FindSetting(&data, L"message");
  if (message != nullptr && message->values != nullptr) dialog.text = message->values->name;
  if (const SettingsNode* const size = FindSetting(&data, L"size"); size != nullptr && size->values != nullptr) {
    dialog.width = ParseLength(size->values->name);
    if (size->values->next != nullptr) dialog.height = ParseLength(size->values->next->name);
  }
  if (host.GetInstallSource() == kSilentSource) {
    host.SetAutoUpdateChoice(0);
  } else if (const SettingsNode* const mode = FindSetting(&data, L"autoUpdateMode")) {
    host.SetAutoUpdateChoice(ChoiceOf(*mode));
  }
  return dialog;
}

}  // namespace

MUIPanelAutoUpdate::MUIPanelAutoUpdate(MInstallerWindow* window) : MUIPanel(window) {
  backgroundData = MakePlainGround(window->Skin());
  background = std::make_unique<MScale9Section>(window, backgroundData.get());
  logo = MakeLogo();
  sideImage = MakeImage({39, 71, 42, 49});
  headerText = MakeText(16, Style::Plain, Text(25), 48);
  bodyText = MakeText(16, Style::Markup, MString(), 48);
  bodyText->linkTextColor = kLinkText;
  bodyText->linkNormalColor = kLinkText;
  bodyText->linkHoverColor = kLinkHover;
  Attach(background.get());
  Attach(logo.get());
}

bool MUIPanelAutoUpdate::HandleEvent(uint32_t id, uint32_t message, int64_t /*param*/) {
  if (id == WindowEventId) {
    if (message == kWindowCreated) Show();
    if (message == kWindowResized) Resize();
    if (message == kWindowHidden) {
      headerText->Detach();
      bodyText->Detach();
    }
    return true;
  }
  if (message != kClicked) return false;
  switch (id) {
    case control_id::LeftButton: installerWindow->ExitInstaller(kExitQuit); return true;
    case control_id::RightButton: Update(); return true;
    default: return false;
  }
}

void MUIPanelAutoUpdate::Show() {
  MInstallerWindow& window = *installerWindow;
  HostCallbacks& host = window.Host();
  Attach(headerText.get());
  Attach(bodyText.get());
  window.SetTitle(Text(33));
  window.leftButton->bounds.right = window.leftButton->bounds.left + 200;
  window.leftButton->Layout();
  if (!host.SkipsUpdateChoice()) window.leftButton->SetVisible(true);
  window.rightButton->SetVisible(true);

  const Dialog dialog = AskHost(window);
  if (host.GetInstallSource() == kSilentSource) {
    window.Show(false);
    window.morph->Notify(kUpdateStep, 0);
    return;
  }
  window.rect = {0, 0, dialog.width, dialog.height};
  window.ApplyRect(false, true);
  bodyText->SetText(dialog.text);
  window.Show(true);
  Resize();
}

void MUIPanelAutoUpdate::Resize() {
  using namespace text_locale;
  const int32_t offset = OffsetIn({TraditionalChinese, Japanese, Korean, SimplifiedChinese}, 3);
  headerText->verticalOffset = offset;
  bodyText->verticalOffset = offset;
  const int32_t w = Width();
  const int32_t h = Height();
  Place(*background, Rect::Of(0, 0, w, h));
  Place(*sideImage, Rect::Of(24, h - 74, 42, 49));
  Place(*logo, Rect::Of(21, 1, 47, 71));
  Place(*headerText, Rect::Of(110, 18, w - 130, 46));
  Place(*bodyText, {110, 45, w - 20, h - 32});
}

void MUIPanelAutoUpdate::Update() {
  if (installerWindow->Host().GetSessionMode() == kByHand) return OpenDownloadPage();
  installerWindow->morph->Notify(kUpdateStep, 0);
}

void MUIPanelAutoUpdate::OpenDownloadPage() {
  MInstallerWindow& window = *installerWindow;
  MString url = Text(88);
  const uint32_t mask = window.QueryProductMask();
  if ((mask & host_flag::ActiveX) != 0) {
    url.Append(L"activex");
  } else if ((mask & host_flag::Plugin) != 0) {
    url.Append(L"plugin");
  } else if ((mask & host_flag::Pepper) != 0) {
    url.Append(L"ppapi");
  }
  (void)window.Shim().OpenUrl(window.handle, url);
  window.ExitInstaller(kExitDone);
  window.EndLatePanels();  // this panel too: nothing of it may be used from here on
}
