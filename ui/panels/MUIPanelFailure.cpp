#include "ui/panels/MUIPanelFailure.h"

#include "engine/HostCallbacks.h"
#include "ui/panels/MInstallerWindow.h"

namespace {

constexpr uint32_t kErrorSeverity = 2;

// Codes that the panel has a heading of its own for. The second pair is the host's; this module reports none of it.
bool IsUninstallersBusiness(uint32_t code) {
  return code == 1047 || code == 1048;
}
bool IsInstallersBusiness(uint32_t code) {
  return code == 1040 || code == 1044;
}

}  // namespace

MUIPanelFailure::MUIPanelFailure(MInstallerWindow* window) : MUIPanel(window) {
  bounds = Rect::Of(0, 0, 414, 345);
  headerText = MakeText(17, Style::Bold, Text(8), 0);
  messageText = MakeText(18, Style::Markup, Text(51), 48);
  strip = MakeImage({0, 15, 1, 72});
  warning_ = MakeImage({0, 110, 33, 30});
  warning_->bounds = Rect::Of(22, 26, 33, 30);
  logo = MakeLogo();
  Attach(strip.get());
  Attach(warning_.get());
  Attach(logo.get());
}

bool MUIPanelFailure::HandleEvent(uint32_t id, uint32_t message, int64_t /*param*/) {
  if (id == WindowEventId) {
    if (message == kWindowCreated) Show();
    if (message == kWindowResized) Resize();
    if (message == kWindowHidden) {
      headerText->Detach();
      messageText->Detach();
    }
    return true;
  }
  if (id == FailureEventId && message == kShowLastError) {
    ShowLastError();
    return true;
  }
  if (id == control_id::LeftButton && message == kClicked) {
    installerWindow->ExitInstaller(kExitQuit);
    return true;
  }
  return false;
}

void MUIPanelFailure::Show() {
  MInstallerWindow& window = *installerWindow;
  window.TakeStandardSize();
  window.SetTitle(Insert(Text(29), kShownVersion));
  Attach(headerText.get());
  Attach(messageText.get());
  window.leftButton->SetVisible(true);
  window.rightButton->SetVisible(false);
  window.SetButtonText(*window.leftButton, Text(17));
  window.SetButtonEnabled(*window.leftButton, true);
  window.Show(true);
  window.HideRestartNote();
  Resize();
}

void MUIPanelFailure::Resize() {
  const int32_t w = Width();
  Place(*headerText, Rect::Of(85, 35, w - 114, 45));
  Place(*messageText, Rect::Of(85, 80, w - 114, Height() - 90));
  Place(*logo, Rect::Of(bounds.left + 10, 1, 47, 71));
}

// The newest error; without one the very first report, and without a report the words that the panel was made with.
void MUIPanelFailure::ShowLastError() {
  HostCallbacks& host = installerWindow->Host();
  MessageLog* const log = host.GetMessageLog();
  const uint32_t count = log == nullptr ? 0 : log->Count();
  if (count != 0) {
    uint32_t index = count - 1;
    while (index > 0 && log->Severity(index) < kErrorSeverity) --index;
    const uint32_t code = log->Code(index);
    MString text;
    MString message;
    log->Text(&text, index);
    log->Format(&message, &host, log->Severity(index), code, text, 0);
    messageText->SetText(message);
    if (IsUninstallersBusiness(code)) {
      ShowText(*headerText, Text(75));
      installerWindow->SetTitle(Text(30));
    } else if (IsInstallersBusiness(code)) {
      ShowText(*headerText, Text(76));
    }
  }
  messageText->Layout();
  installerWindow->SetButtonEnabled(*installerWindow->rightButton, true);
}
