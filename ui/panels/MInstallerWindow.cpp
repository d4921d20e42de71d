#include "ui/panels/MInstallerWindow.h"

#include "engine/HostCallbacks.h"
#include "engine/LumenBrokerShim.h"
#include "ui/toolkit/MorphUI.h"
#include "ui/toolkit/Widgets.h"

namespace {

constexpr uint32_t kBackground = 3355442;  // red, green and blue 50, 50, 51
constexpr int32_t kBarHeight = 67;
constexpr int32_t kFallbackWidth = 450;
// The host's flags when it is the background updater, whose left button only postpones.
constexpr uint32_t kUpdaterFlags = 130;
constexpr uint32_t kUpdaterSource = 4;

}  // namespace

MInstallerWindow::MInstallerWindow(MorphUI* ui) : MWindow(ui) {
  backgroundColor = kBackground;
}

// Panels go before the skin that their regions draw from, whatever the order of the fields.
MInstallerWindow::~MInstallerWindow() {
  EndLatePanels();
  progressPanel.reset();
  conflictsPanel.reset();
  maintainPanel.reset();
  uninstallerSplash.reset();
  installerSplash.reset();
}

bool MInstallerWindow::HandleEvent(uint32_t id, uint32_t message, int64_t param) {
  if (id == WindowEventId) {
    switch (message) {
      case kWindowClosing: EndLatePanels(); return true;
      case kWindowCreated: Build(); return true;
      case kWindowResized: Resize(); return true;
      default: return false;
    }
  }
  if (id == CommandEventId && message == kOpenPanel) {
    OpenPanel(param);
    return true;
  }
  if (id == FailureEventId) ShowPanel(failurePanel.get());
  MUIPanel* const active = ActivePanel();
  const bool handled = active != nullptr && active->HandleEvent(id, message, param);
  if (id == CommandEventId && message == kFinish && !handled) ExitInstaller(static_cast<int32_t>(param));
  return handled;
}

void MInstallerWindow::SetFocusRegion(MRegion* region, bool showRing) {
  PlaceFocus(region, showRing, focusRing.get());
}

HostCallbacks& MInstallerWindow::Host() const {
  return *morph->host;
}

LumenBrokerShim& MInstallerWindow::Shim() const {
  return *morph->host->shim;
}

MString MInstallerWindow::Text(uint32_t id) const {
  MString text;
  morph->GetString(&text, id);
  return text;
}

uint32_t MInstallerWindow::QueryProductMask() const {
  uint32_t mask = 0;
  morph->Notify(kQueryProductMask, reinterpret_cast<int64_t>(&mask));
  return mask;
}

MUIPanel* MInstallerWindow::ActivePanel() const {
  return root == nullptr ? nullptr : static_cast<MUIPanel*>(root->firstChild);
}

void MInstallerWindow::ShowPanel(MUIPanel* panel) {
  if (panel == nullptr || root == nullptr) return;
  Rect area = {0, 0, rect.right, rect.bottom};
  if (MUIPanel* const active = ActivePanel(); active != panel) {
    if (active != nullptr) {
      active->HandleEvent(WindowEventId, kWindowHidden, 0);
      active->Detach();
    }
    root->Attach(panel);
    panel->bounds = area;
    panel->bounds.bottom += bottomBar->bounds.top - bottomBar->bounds.bottom + 1;
    panel->HandleEvent(WindowEventId, kWindowCreated, 0);
  }
  platform->Invalidate(area);
}

void MInstallerWindow::TakeStandardSize() {
  const int32_t width = ParseLength(Text(71));
  rect = {0, 0, width == 0 ? kFallbackWidth : width, kWindowHeight};
  ApplyRect(false, true);
}

void MInstallerWindow::AnimateToStandardHeight() {
  targetRect = {0, 0, targetRect.Width(), kWindowHeight};
}

void MInstallerWindow::SetTitle(const MString& text) {
  title = text;
  ApplyTitle();
}

void MInstallerWindow::SetButtonText(MButton& button, const MString& text) {
  button.label = text;
  ShowText(*button.labelText, text);
}

void MInstallerWindow::SetButtonEnabled(MButton& button, bool on) {
  button.SetEnabled(on);
  button.labelText->alpha = on ? 255 : 128;
  button.labelText->Layout();
  button.data = on ? button.normalData.get() : button.disabledData.get();
  button.Layout();
}

void MInstallerWindow::ShowRestartNote() {
  using namespace text_locale;
  restartText->SetVisible(true);
  restartIcon->SetVisible(true);
  restartText->verticalOffset = OffsetIn({TraditionalChinese, Japanese, Korean, SimplifiedChinese}, 1);
  restartText->Layout();
}

void MInstallerWindow::HideRestartNote() {
  restartText->SetVisible(false);
  restartIcon->SetVisible(false);
}

void MInstallerWindow::EndLatePanels() {
  failurePanel.reset();
  autoUpdatePanel.reset();
}

void MInstallerWindow::Build() {
  if (root != nullptr) return;  // built once
  skinImage = std::make_unique<MImage>();
  skinImage->Load(morph->resourceModule, image_id::Skin);
  bannerImage = std::make_unique<MImage>();
  bannerImage->Load(morph->resourceModule, image_id::Banner);
  root = std::make_unique<MSkinnedSection>();
  Attach(root.get());
  BuildBottomBar();
  conflictsPanel = std::make_unique<MUIPanelConflicts>(this);
  progressPanel = std::make_unique<MUIPanelProgress>(this);
  failurePanel = std::make_unique<MUIPanelFailure>(this);
  BuildNotes();
  Resize();
}

void MInstallerWindow::BuildBottomBar() {
  bottomBarData = std::make_unique<MScale3Data>(MScale3Data{Skin(), {1, 0, 1, 68}, {2, 0, 1, 68}, {3, 0, 1, 68}});
  bottomBar = std::make_unique<MScale3Section>(this, bottomBarData.get());
  Attach(bottomBar.get());

  constexpr int32_t kRingPieces[3] = {7, 1, 7};
  focusRingData = std::make_unique<MScale9Data>(Skin(), 13, 44, kRingPieces, kRingPieces);
  focusRing = std::make_unique<MScale9Section>(this, focusRingData.get());
  Place(*focusRing, Rect::Of(230, 192, 25, 25));
  Attach(focusRing.get());
  ringVisible = false;
  focusRing->SetVisible(false);

  const bool postpones = Host().GetFlags() == kUpdaterFlags && Host().GetInstallSource() == kUpdaterSource;
  leftButton = MakeButton(this, Skin(), Text(postpones ? 34 : 17));
  leftButton->controlId = control_id::LeftButton;
  leftButton->bounds = Rect::Of(94, 18, 140, 33);
  rightButton = MakeButton(this, Skin(), Text(18));
  rightButton->controlId = control_id::RightButton;
  for (MButton* const button : {leftButton.get(), rightButton.get()}) {
    button->SetVisible(false);
    bottomBar->Attach(button);
  }
}

// The place in front of the message about a conflicting player is its own; beside it the note moves to the right.
void MInstallerWindow::BuildNotes() {
  const Point by = Shim().IsBadRealPlayer() ? Point{250, 20} : Point{};
  restartText = std::make_unique<MTextArea>(this, 16, false, false);
  restartText->SetText(Text(89));
  restartText->bounds = {117 + by.x, 25 + by.y, 400 + by.x, 42 + by.y};
  messageText = std::make_unique<MTextArea>(this, 16, true, false);
  messageText->bounds = {117, 10, 550, 82};
  restartIcon = std::make_unique<MSkinnedSection>(Skin(), SourceRect{5, 30, 13, 13});
  restartIcon->bounds = {97 + by.x, 25 + by.y, 112 + by.x, 40 + by.y};
  for (MRegion* const note : {static_cast<MRegion*>(restartText.get()), static_cast<MRegion*>(messageText.get()),
                              static_cast<MRegion*>(restartIcon.get())}) {
    note->SetVisible(false);
    bottomBar->Attach(note);
  }
}

void MInstallerWindow::Resize() {
  if (root == nullptr) return;
  bottomBar->bounds = Rect::Of(0, rect.bottom - kBarHeight - 1, rect.right, kBarHeight);
  rightButton->bounds = Rect::Of(bottomBar->bounds.right - 156, 18, 140, 33);
  root->bounds = Rect::Of(0, 0, rect.right, rect.bottom + 1 + (bottomBar->bounds.top - bottomBar->bounds.bottom));
  const uint32_t mode = Host().GetSessionMode();
  if (mode == 1 || mode == 2) SetButtonText(*rightButton, Text(39));
  for (MButton* const button : {rightButton.get(), leftButton.get()}) {
    button->labelText->Layout();
    button->Layout();
  }
  bottomBar->Layout();
  if (MUIPanel* const active = ActivePanel()) {
    active->bounds = root->bounds;
    active->HandleEvent(WindowEventId, kWindowResized, 0);
  }
  if (ringVisible) SetFocusRegion(focusRegion, true);
}

void MInstallerWindow::OpenPanel(int64_t which) {
  switch (which) {
    case kOpenInstaller:
      if (installerSplash == nullptr) installerSplash = std::make_unique<MUIPanelInstallerSplash>(this);
      return ShowPanel(installerSplash.get());
    case kOpenUninstaller:
      if (uninstallerSplash == nullptr) uninstallerSplash = std::make_unique<MUIPanelUninstallerSplash>(this);
      return ShowPanel(uninstallerSplash.get());
    case kOpenMaintain:
      if (maintainPanel == nullptr) maintainPanel = std::make_unique<MUIPanelMaintain>(this);
      return ShowPanel(maintainPanel.get());
    case kOpenAutoUpdate:
      if (autoUpdatePanel == nullptr) autoUpdatePanel = std::make_unique<MUIPanelAutoUpdate>(this);
      return ShowPanel(autoUpdatePanel.get());
    default: return;
  }
}
