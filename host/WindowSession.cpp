#include "host/WindowSession.h"

#include <windows.h>

#include <new>

#include "engine/ComSupport.h"
#include "host/Console.h"
#include "host/InstallSteps.h"
#include "host/RemovalCommand.h"
#include "ui/toolkit/Events.h"
#include "ui/toolkit/MWindow.h"
#include "ui/toolkit/MorphUI.h"

namespace {

// What the host posts to the window.
constexpr uint32_t kFinish = 5;
constexpr uint32_t kOpenPanel = 6;
constexpr uint32_t kShowLastError = 8;

constexpr uint32_t kRemoveTitle = 30;
constexpr int32_t kMaintenanceWidth = 450, kWindowHeight = 345;
constexpr uint32_t kBackgroundUpdate = 12;  // the install source of an update that shows nothing

// What the installer's window is left with by QUIT where something is in the way.
constexpr int kQuit = -1;

int64_t PanelOf(HostCommand command) {
  switch (command) {
    case HostCommand::Uninstall: return 1;
    case HostCommand::Maintain: return 2;
    case HostCommand::Update: return 3;
    default: return 0;
  }
}

}  // namespace

int WindowSession::Run() {
  if (const auto nothing = RefuseUpdate()) return static_cast<int>(*nothing);
  const ComInitializer com;  // a screen reader in another process is answered through it
  const ChangeLock lock;
  (void)session.module->LoadEngineLists();  // what is not there yet is reported, and not missed here
  MorphUI* const ui = session.module->CreateUI();
  if (ui == nullptr || ui->window->handle == nullptr) {
    // Without a window nobody could end the loop.
    session.module->DestroyUI(nullptr, ui);
    return static_cast<int>(End(HostExit::Failed, "the window could not be made"));
  }
  ui->SetEventCallback(Notified, this);
  outcome = Refuse(lock);
  if (outcome) {
    ShowFailure(*ui);
  } else {
    Open(*ui);
  }
  const int code = ui->RunMessageLoop();
  session.module->DestroyUI(nullptr, ui);
  const bool installed = outcome == HostExit::Done || outcome == HostExit::RestartNeeded;
  if (installed && session.host.UpdateChoice()) ApplyUpdateChoice(session);
  return ExitCode(code);
}

std::optional<HostExit> WindowSession::RefuseUpdate() const {
  if (session.line.command != HostCommand::Update) return std::nullopt;
  switch (session.module->GetInstalledVersionState(session.line.kinds)) {
    case 0: return End(HostExit::Refused, "this player is not installed, so there is nothing to update");
    case 2: Tell(session, "This version is installed already."); return HostExit::Done;
    default: return std::nullopt;
  }
}

std::optional<HostExit> WindowSession::Refuse(const ChangeLock& lock) const {
  if (const auto refused = lock.Refuse(session)) return refused;
  const bool installs = session.line.command == HostCommand::Install || session.line.command == HostCommand::Update;
  return installs ? RefuseInstallation(session) : std::nullopt;
}

void WindowSession::Open(MorphUI& ui) {
  ui.PostEvent(CommandEventId, kOpenPanel, PanelOf(session.line.command));
  if (session.line.command != HostCommand::Maintain) return;
  MString title;
  ui.GetString(&title, kRemoveTitle);
  ShowMaintenance(ui, title);
}

void WindowSession::ShowMaintenance(MorphUI& ui, const MString& title) {
  MWindow& window = *ui.window;
  window.title = title;
  window.ApplyTitle();
  window.rect = {0, 0, kMaintenanceWidth, kWindowHeight};
  window.ApplyRect(false, true);
  window.Show(true);
}

int WindowSession::ExitCode(int windowCode) const {
  if (outcome) return static_cast<int>(*outcome);
  // The loop needs a library of the system, and gives the system's error when it has not run.
  if (!left) return static_cast<int>(End(HostExit::Failed, "the window ended early: " + std::to_string(windowCode)));
  if (windowCode != kQuit) return windowCode;
  const bool postponed = session.line.command == HostCommand::Update;
  return static_cast<int>(postponed ? HostExit::Left : HostExit::Conflicts);
}

int32_t WindowSession::Notified(MorphUI* ui, int32_t code, int64_t value, void* context) {
  auto& self = *static_cast<WindowSession*>(context);
  try {
    self.OnNotified(*ui, code, value);
  } catch (const std::bad_alloc&) {
    self.outcome = HostExit::Failed;
    self.ShowFailure(*ui);
  }
  return 0;
}

void WindowSession::OnNotified(MorphUI& ui, int32_t code, int64_t value) {
  switch (code) {
    case kInstallerExits: left = true; return;
    case kQueryProductMask: *reinterpret_cast<uint32_t*>(value) |= session.line.kinds; return;
    default: break;
  }
  if (left) return;  // a tick that was on its way when the user closed the window starts no work
  switch (code) {
    case kInstallStep: return Install(ui);
    case kUninstallStep: return Remove(ui);
    case kUpdateStep: return Update(ui);
    default: return;
  }
}

void WindowSession::Install(MorphUI& ui) {
  outcome = PerformInstallation(session);
  DropInput();
  if (outcome == HostExit::Failed || outcome == HostExit::Refused) ui.PostEvent(FailureEventId, kShowLastError, 0);
}

void WindowSession::Remove(MorphUI& ui) {
  outcome = PerformRemoval(session);
  DropInput();
  session.host.ForgetReleasePlayer();
  if (outcome == HostExit::Done) return;
  // The window has no other place for it at the end of a removal.
  if (outcome == HostExit::RestartNeeded) session.host.Tell(Severity::MustTell, ReportCode::SystemFileQueued);
  ui.PostEvent(FailureEventId, kShowLastError, 0);
}

// The panel of updates does not look for programs in the way, and stays as it is while the host works.
void WindowSession::Update(MorphUI& ui) {
  const auto inTheWay = ProgramsInTheWay(session);
  if (inTheWay && inTheWay->Count() > 0 && session.host.ConflictsBlockInstall()) {
    outcome = Fail(session, HostExit::Conflicts, ReportCode::PlayerInUse, WideString(inTheWay->Head()->value.View()));
  } else {
    outcome = PerformInstallation(session);
  }
  DropInput();
  if (outcome != HostExit::Done && outcome != HostExit::RestartNeeded) return ShowFailure(ui);
  ui.PostEvent(CommandEventId, kFinish, static_cast<int64_t>(*outcome));
}

// An update in the background ends instead: it shows nothing, whatever becomes of it.
void WindowSession::ShowFailure(MorphUI& ui) const {
  const bool unseen =
      session.line.command == HostCommand::Update && session.host.GetInstallSource() == kBackgroundUpdate;
  if (unseen) return ui.PostEvent(CommandEventId, kFinish, static_cast<int64_t>(*outcome));
  ui.PostEvent(FailureEventId, kShowLastError, 0);
}

void WindowSession::DropInput() {
  MSG message = {};
  while (PeekMessageW(&message, nullptr, WM_MOUSEFIRST, WM_MOUSELAST, PM_REMOVE) ||
         PeekMessageW(&message, nullptr, WM_KEYFIRST, WM_KEYLAST, PM_REMOVE)) {
  }
}
