// clang-format off
#include <windows.h>
// clang-format on

#include "ui/panels/MUIPanelConflicts.h"

#include "engine/HostCallbacks.h"
#include "engine/LumenBrokerShim.h"
#include "engine/MStringList.h"
#include "engine/SystemPaths.h"
#include "install/FileReplacement.h"
#include "ui/panels/MInstallerWindow.h"

namespace {

constexpr uint32_t kPoll = 200;  // message of the panel's own timer events
constexpr size_t kNamedRows = 5;

}  // namespace

MUIPanelConflicts::offendingApp::offendingApp(MInstallerWindow* window, std::unique_ptr<MSkinnedSection> warningIcon)
    : installerWindow(window), icon(std::move(warningIcon)) {
  icon->bounds = Rect::Of(2, 6, 13, 13);
  nameText = std::make_unique<MTextArea>(window, 20, false, false);
  nameText->format = 4;
  Attach(icon.get());
}

void MUIPanelConflicts::offendingApp::SetName(const MString& name) {
  nameText->SetText(name);
  nameText->bounds = Rect::Of(18, 2, installerWindow->rect.right - bounds.left - 20, bounds.Height() - 4);
  icon->bounds = Rect::Of(2, (bounds.Height() - 11) >> 1, 13, 13);
  nameText->Layout();
}

MUIPanelConflicts::MUIPanelConflicts(MInstallerWindow* window) : MUIPanel(window) {
  handler = CountTick;
  handlerContext = this;
  headerText = MakeText(17, Style::Bold, Text(14), 48);
  logo = MakeLogo();
  strip = MakeImage({0, 22, 1, 65});
  for (size_t k = 0; k < offendingApps.size(); ++k) {
    offendingApps[k] = std::make_unique<offendingApp>(window, MakeImage({20, 30, 13, 13}));
    const auto row = static_cast<int32_t>(k);
    offendingApps[k]->bounds = k < 3 ? Rect::Of(85, 90 + 32 * row, 180, 28) : Rect::Of(283, 32 * row - 26, 180, 28);
  }
}

bool MUIPanelConflicts::HandleEvent(uint32_t id, uint32_t message, int64_t /*param*/) {
  if (id == WindowEventId) {
    if (message == kWindowCreated) Show();
    if (message == kWindowResized) Resize();
    if (message == kWindowHidden) Hide();
    return true;
  }
  if (id == TickEventId && message == kPoll) {
    Poll();
    return true;
  }
  if (id == control_id::LeftButton && message == kClicked) {
    installerWindow->ExitInstaller(kExitQuit);
    return true;
  }
  return false;
}

bool MUIPanelConflicts::CountTick(MRegion* /*region*/, MWindow* window, const Point* /*point*/, bool /*inside*/,
                                  uint32_t message, void* context) {
  auto& panel = *static_cast<MUIPanelConflicts*>(context);
  if (message != kTimerTick || ++panel.pollTicks <= panel.pollPeriod) return false;
  panel.pollTicks = 0;
  window->PostEvent(TickEventId, kPoll);
  return false;
}

void MUIPanelConflicts::Show() {
  Attach(logo.get());
  Attach(headerText.get());
  for (const auto& row : offendingApps) {
    Attach(row.get());
    row->Attach(row->nameText.get());
  }
  const uint32_t mask = installerWindow->QueryProductMask();
  if (!MustLook()) {
    installerWindow->ShowPanel(installerWindow->progressPanel.get());
    return;
  }
  anyConflict = RefreshConflicts(mask) ? 1 : 0;
  if (anyConflict == 0) return GoOn();
  installerWindow->AnimateToStandardHeight();
  installerWindow->rightButton->SetVisible(false);
  Resize();
}

void MUIPanelConflicts::Resize() {
  const int32_t w = Width();
  Place(*strip, Rect::Of(0, 0, w, 65));
  Place(*headerText, Rect::Of(85, 35, w - 90, 50));
  Place(*logo, Rect::Of(bounds.left + 10, 1, 47, 71));
}

void MUIPanelConflicts::Hide() {
  for (const auto& row : offendingApps) {
    row->nameText->Detach();
    row->Detach();
  }
  headerText->Detach();
}

// Goes on when the last conflict is gone, also when the search came not to be needed any more. Conflicts that come up
// after the panel was opened without any are shown, and hold it from then on.
void MUIPanelConflicts::Poll() {
  const uint32_t mask = installerWindow->QueryProductMask();
  const bool found = MustLook() && RefreshConflicts(mask);
  if (anyConflict != 0 && !found) {
    installerWindow->rightButton->SetVisible(true);
    GoOn();
  }
  anyConflict = found ? 1 : 0;
  Invalidate();
}

bool MUIPanelConflicts::RefreshConflicts(uint32_t mask) {
  const std::unique_ptr<MStringList> conflicts(installerWindow->Shim().FindConflicts(mask));
  size_t placed = 0;
  int32_t more = 0;
  // A search that failed counts as one that found nothing: no list may keep an installation from going on for ever.
  const MStringList::MStringNode* node = conflicts == nullptr ? nullptr : conflicts->Head();
  for (; node != nullptr; node = node->next) {
    if (placed == kNamedRows) {
      ++more;
      continue;
    }
    offendingApps[placed]->SetName(node->value);
    offendingApps[placed++]->SetVisible(true);
  }
  for (size_t k = placed; k < kNamedRows; ++k) offendingApps[k]->SetVisible(false);
  if (more != 0) offendingApps[kNamedRows]->SetName(Insert(Text(28), MString::FromNumber(more)));
  offendingApps[kNamedRows]->SetVisible(more != 0);
  return placed != 0;
}

bool MUIPanelConflicts::MustLook() const {
  HostCallbacks& host = installerWindow->Host();
  return host.ConflictsBlockInstall() || !host.ConflictCheckIsOptional() || IsControlFileLocked();
}

bool MUIPanelConflicts::IsControlFileLocked() const {
  const std::optional<WideString> directory = GetSystem32Path();
  if (!directory) return false;
  MString name;
  installerWindow->Host().GetSettingsManagerFileName(&name);
  MString path = MString(WideView(*directory));
  path.AppendPath(L'\\', name);
  return TestFileLocked(&installerWindow->Host(), kTestLock, path) == FileLock::Locked;
}

void MUIPanelConflicts::GoOn() {
  installerWindow->Host().NotifyConflictsCleared(nullptr);
  installerWindow->ShowPanel(installerWindow->progressPanel.get());
}
