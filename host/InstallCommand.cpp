#include "host/InstallCommand.h"

#include <windows.h>

#include "host/Console.h"
#include "host/InstallSteps.h"
#include "host/WhatIf.h"

namespace {

// Text ids of the module.
constexpr uint32_t kWaitForConflicts = 14;
constexpr uint32_t kMediaPlayerConflict = 72;

constexpr DWORD kConflictInterval = 1000;  // milliseconds between two looks at the running programs

std::string NamesOf(const MStringList& conflicts) {
  std::string names;
  for (const auto* entry = conflicts.Head(); entry != nullptr; entry = entry->next) {
    if (!names.empty()) names += ", ";
    names += ToUtf8(entry->value.View());
  }
  return names;
}

// Waits until nobody is in the way; in silence there is nobody to ask for it.
std::optional<HostExit> PassConflicts(const Session& session) {
  if (!session.host.ConflictsBlockInstall() && session.host.ConflictCheckIsOptional()) return std::nullopt;
  std::string shown;
  for (auto conflicts = ProgramsInTheWay(session); conflicts && conflicts->Count() > 0;
       conflicts = ProgramsInTheWay(session)) {
    const std::string names = NamesOf(*conflicts);
    if (session.line.silent) return End(HostExit::Conflicts, "these programs use the player: " + names);
    if (names != shown) Say(ModuleText(session, kWaitForConflicts) + "\n  " + names + "\n");
    shown = names;
    Sleep(kConflictInterval);
  }
  session.host.NotifyConflictsCleared(nullptr);
  return std::nullopt;
}

}  // namespace

HostExit InstallPlayers(const Session& session) {
  const ChangeLock lock;
  if (const auto refused = lock.Refuse(session)) return *refused;
  (void)session.module->LoadEngineLists();  // what is not there yet is reported, and not missed here
  if (const auto refused = RefuseInstallation(session)) return *refused;
  if (session.line.whatIf) return TellInstallation(session, FilesToCopy(session));
  if (session.module->IsBadRealPlayer()) Tell(session, ModuleText(session, kMediaPlayerConflict));
  if (const auto blocked = PassConflicts(session)) return *blocked;
  return PerformInstallation(session);
}

HostExit UpdatePlayer(const Session& session) {
  switch (session.module->GetInstalledVersionState(session.line.kinds)) {
    case 0: return End(HostExit::Refused, "this player is not installed, so there is nothing to update");
    case 2: Tell(session, "This version is installed already."); return HostExit::Done;
    default: return InstallPlayers(session);
  }
}

HostExit ShowConflicts(const Session& session) {
  (void)session.module->LoadEngineLists();
  const auto conflicts = ProgramsInTheWay(session);
  if (!conflicts) return End(HostExit::Failed, "the running programs cannot be listed");
  if (conflicts->Count() == 0) {
    Say("No running program is in the way.\n");
    return HostExit::Done;
  }
  for (const auto* entry = conflicts->Head(); entry != nullptr; entry = entry->next) {
    Say(ToUtf8(entry->key.View()) + "\t" + ToUtf8(entry->value.View()) + "\n");
  }
  return HostExit::Conflicts;
}
