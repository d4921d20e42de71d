#include "host/RemovalCommand.h"

#include <windows.h>

#include "host/Console.h"
#include "host/InstallCommand.h"
#include "host/PayloadList.h"
#include "host/WhatIf.h"

namespace {

constexpr uint32_t kUninstalled = 10;
constexpr uint32_t kWillRemove = 11;
constexpr uint32_t kRestartToComplete = 74;

// The module's removal counts everything that was not there to be deleted as a failure, so its answer cannot say
// whether the player has gone; what is left does.
bool RemoveKind(const Session& session, uint32_t kind) {
  (void)session.module->RemoveProductKind(kind, MString(WideView(SystemDirectory())), 1, 0);
  if (AnyInstalled(kind)) return false;
  Tell(session, "Removed: " + std::string(NameOfKind(kind)) + ".");
  return true;
}

// A service that would not stop still holds its file when its player has gone.
void LeaveServicesToRestart(const Session& session) {
  for (const PayloadFile& service : ServiceFiles(session.host.GetSettings(), true)) {
    const WideString path = PlayerDirectory() + service.name;
    if (GetFileAttributesW(path.c_str()) == INVALID_FILE_ATTRIBUTES) continue;
    MoveFileExW(path.c_str(), nullptr, MOVEFILE_DELAY_UNTIL_REBOOT);
  }
}

// The host made the directories, so it takes them away when nothing else is in them; behind files that wait for the
// next restart they wait too.
void RemoveDirectories(bool filesWait) {
  const WideString player = PlayerDirectory();
  const WideString inner = player.substr(0, player.size() - 1);
  const WideString outer = inner.substr(0, inner.rfind(L'\\'));
  for (const WideString& directory : {inner, outer}) {
    if (!RemoveDirectoryW(directory.c_str()) && filesWait) {
      MoveFileExW(directory.c_str(), nullptr, MOVEFILE_DELAY_UNTIL_REBOOT);
    }
  }
}

}  // namespace

HostExit RemovePlayers(const Session& session) {
  const ChangeLock lock;
  if (const auto refused = lock.Refuse(session)) return *refused;
  (void)session.module->LoadEngineLists();
  if (session.line.whatIf) return TellRemoval(session);
  return PerformRemoval(session);
}

HostExit PerformRemoval(const Session& session) {
  const size_t pending = PendingOperations();
  const uint32_t told = session.host.Log().CountToTell();
  bool all = true;
  for (const uint32_t kind : EachKind(session.line.kinds)) {
    if (!RemoveKind(session, kind)) all = false;
  }
  const MString directory{WideView(PlayerDirectory())};
  (void)session.module->RemoveNamedFiles(session.line.kinds, directory);
  (void)session.module->RemovePatternFiles(session.line.kinds, directory);
  if (!AnyInstalled(kAllKinds)) {
    (void)session.module->RemoveUpdateService(nullptr, MString(WideView(SystemDirectory())));
    LeaveServicesToRestart(session);
    RemoveDirectories(PendingOperations() > pending);
  }
  if (PendingOperations() > pending) session.host.RequireRestart();
  if (!all) return Fail(session, HostExit::Failed, ReportCode::PlayerNotRemoved);
  Tell(session, ModuleText(session, kUninstalled));
  if (session.host.IsRestartRequired()) {
    Tell(session, ModuleText(session, kRestartToComplete));
    return HostExit::RestartNeeded;
  }
  return session.host.Log().CountToTell() > told ? HostExit::Failed : HostExit::Done;
}

HostExit MaintainPlayer(const Session& session) {
  if (session.line.silent) return RemovePlayers(session);
  const std::string name(NameOfKind(session.line.kinds));
  for (;;) {
    switch (Ask(ModuleText(session, kWillRemove) + "\n" + name + ": [u]ninstall, [r]einstall or [q]uit?")) {
      case 'r': return InstallPlayers(session);
      case 'q': return HostExit::Done;
      case 'u':
      case 0: return RemovePlayers(session);
      default: break;  // a slip of the hand removes nothing
    }
  }
}
