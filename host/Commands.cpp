#include "host/Commands.h"

#include <string>

#include "engine/DllHelpers.h"
#include "engine/MStringList.h"
#include "engine/ProductIds.h"
#include "engine/ProductKind.h"
#include "engine/Registry.h"
#include "host/Console.h"
#include "host/Gallery.h"
#include "host/InstallCommand.h"
#include "host/MachineState.h"
#include "host/RemovalCommand.h"
#include "host/WindowSession.h"

namespace {

constexpr wchar_t kServerKey[] = L"Software\\Classes\\CLSID\\" LUMEN_BROKER_CLASS_ID_6 L"\\LocalServer32";

// What the broker's registration consists of, in the order in which the module takes it away.
constexpr const wchar_t* kRegisteredKeys[] = {
    L"Software\\Classes\\CLSID\\" LUMEN_BROKER_CLASS_ID_6,
    L"Software\\Classes\\TypeLib\\" LUMEN_BROKER_LIBRARY_ID,
    L"Software\\Classes\\Interface\\" LUMEN_BROKER_INTERFACE_ID_6,
    L"Software\\Microsoft\\Internet Explorer\\Low Rights\\ElevationPolicy\\" LUMEN_BROKER_ELEVATION_POLICY_ID,
};

HostExit Done(const char* text) {
  Say(std::string(text) + "\n");
  return HostExit::Done;
}

HostExit Failed(const std::string& why) {
  SayError("LumenHost: " + why + "\n");
  return HostExit::Failed;
}

// The module writes the registration without telling of failures, so the host looks at what COM will read.
HostExit Register(const HostedModule& module, uint32_t kind) {
  const WideString own = OwnPath();
  if (!module->RegisterBrokerServer(MString(WideView(own)), kind)) return Failed("the broker could not be registered");
  if (kind != product_kind::ActiveX) return Done("This kind has no broker; nothing to register.");
  const auto registered = ReadWideText(HKEY_LOCAL_MACHINE, kServerKey, L"");
  if (!registered) return Failed("the registration could not be written; it wants administrative rights");
  if (*registered != own) {
    return Failed("the registered path is " + ToUtf8(*registered) + " and not this program's, " + ToUtf8(own) +
                  "; it wants administrative rights and a path of plain letters");
  }
  return Done("The broker is registered.");
}

HostExit Unregister(uint32_t kind) {
  if (kind != product_kind::ActiveX) return Done("This kind has no broker; nothing to take away.");
  LONG error = ERROR_SUCCESS;
  bool found = false;
  for (const wchar_t* const key : kRegisteredKeys) {
    const LONG deleted = DeleteKeyTree(HKEY_LOCAL_MACHINE, key);
    if (deleted == ERROR_SUCCESS)
      found = true;
    else if (deleted != ERROR_FILE_NOT_FOUND)
      error = deleted;
  }
  if (error != ERROR_SUCCESS) {
    return Failed("the registration could not be taken away (system error " + std::to_string(error) +
                  "); it wants administrative rights");
  }
  return Done(found ? "The broker's registration is gone." : "The broker was not registered.");
}

HostExit RefreshPolicies(const HostedModule& module) {
  if (!module->RefreshElevationPolicy()) return Failed("this system has no browser that reads elevation policies");
  return Done("The browser has been asked to read its policies again.");
}

HostExit ShowStatus(const Session& session) {
  Say(FormatTable(PlayerRows()) + "\n" + FormatTable(MachineRows(session)));
  return HostExit::Done;
}

// The hourly task runs this. A vendor's host asks the vendor first; here it is what an earlier run has left.
HostExit CheckForUpdate(const Session& session) {
  static constexpr const char* kStates[] = {"not installed", "older than this build", "this build's version",
                                            "newer than this build"};
  const uint32_t state = session.module->GetInstalledVersionState(session.line.kinds);
  Say(std::string(NameOfKind(session.line.kinds)) + ": " + kStates[state <= 3 ? state : 0] + "\n");
  MStringList description;
  if (!session.module->ReadUpdateDescription(&description)) return Done("No update is waiting.");
  for (const auto* line = description.Head(); line != nullptr; line = line->next) {
    Say("update: " + ToUtf8(line->key.View()) + "\n");
  }
  return HostExit::Done;
}

HostExit Run(const Session& session) {
  const uint32_t kind = session.line.kinds;
  switch (session.line.command) {
    case HostCommand::Install: return InstallPlayers(session);
    case HostCommand::Uninstall: return RemovePlayers(session);
    case HostCommand::Maintain: return MaintainPlayer(session);
    case HostCommand::Update: return UpdatePlayer(session);
    case HostCommand::Check: return CheckForUpdate(session);
    case HostCommand::Conflicts: return ShowConflicts(session);
    case HostCommand::Status: return ShowStatus(session);
    case HostCommand::Register: return Register(session.module, kind);
    case HostCommand::Unregister: return Unregister(kind);
    case HostCommand::RefreshPolicies: return RefreshPolicies(session.module);
    case HostCommand::Gallery: return RunGallery(session.host) ? HostExit::Done : HostExit::Failed;
    case HostCommand::Broker:
    case HostCommand::Help: break;  // one has exit codes of its own, the other needs no module
  }
  return HostExit::Usage;
}

}  // namespace

int RunHostCommand(const Session& session) {
  if (session.line.command == HostCommand::Broker) return static_cast<int>(session.module->RunBroker());
  if (session.line.InWindow()) return WindowSession(session).Run();
  return static_cast<int>(Run(session));
}
