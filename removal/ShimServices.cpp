// The shim's operation on the update service.
#include "engine/HostCallbacks.h"
#include "engine/LumenBrokerShim.h"
#include "engine/Reporting.h"
#include "removal/MaintenanceCommands.h"

// The service is a release player's; other players have none to remove.
bool LumenBrokerShim::RemoveUpdateService(void* /*ignored*/, MString directory) noexcept {
  if ((host->GetFlags() & host_flag::ReleasePlayer) != 0) return true;
  MString name(L"");
  host->GetUpdateServiceFileName(&name);
  MString tail(L"Halcyons\\Lumen\\");
  tail.Append(name);
  directory.AppendPath(L'\\', tail);
  if (RemoveUpdateServiceFile(host, directory, true)) return true;
  Report(host, Severity::Survived, ReportCode::UpdateServiceNotRemoved);
  return false;
}
