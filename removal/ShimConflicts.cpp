// The shim's operations on processes that stand in the way.
#include <windows.h>

#include <string>

#include "engine/HostCallbacks.h"
#include "engine/LumenBrokerShim.h"
#include "engine/ProductKeys.h"
#include "engine/ProductKind.h"
#include "engine/Registry.h"
#include "install/Inventory.h"
#include "install/ReportedRegistry.h"
#include "removal/ConflictSearch.h"
#include "removal/RunningProcesses.h"

namespace {

constexpr wchar_t kConflictingProcs[] = L"ConflictingProcs";
constexpr REGSAM kStoreRights = 0x20006;

// What is installed of a kind. The conflicts panel asks at every tick, so nothing is reported: the log would be full of
// kinds that are not installed.
ConflictKind KindOf(uint32_t kind, MString newFile) {
  ConflictKind known{kind, std::move(newFile), false, MString(L"")};
  MString player;
  MString uninstaller;
  known.isInstalled = ReadPlayerPaths(nullptr, kind, &player, &uninstaller);
  if (known.isInstalled) known.installedPath = player;
  return known;
}

ConflictQuestion QuestionOf(HostCallbacks* host, uint32_t kinds) {
  MString control[3];
  MString helper[3];
  host->GetBrowserPaths(&control[0], &helper[0]);
  host->GetPluginPaths(&control[1], &helper[1]);
  host->GetPepperPaths(&control[2], &helper[2]);
  MString payload;
  host->GetPayloadPath(&payload);
  return {kinds,
          {KindOf(product_kind::Plugin, control[1]), KindOf(product_kind::ActiveX, control[0]),
           KindOf(product_kind::Pepper, control[2])},
          helper[0],
          payload,
          host->GetSettings(),
          host->IsRestartRequired(),
          host->ConflictCheckIsOptional(),
          host->GetInstallSource()};
}

}  // namespace

MStringList* LumenBrokerShim::FindConflicts(uint32_t kinds) noexcept {
  RunningProcesses processes;
  return SearchConflicts(QuestionOf(host, kinds), processes).release();
}

bool LumenBrokerShim::StoreConflicts(uint32_t value) noexcept {
  const std::unique_ptr<MStringList> conflicts(FindConflicts(value));
  if (conflicts == nullptr || conflicts->Count() == 0) return false;
  return WriteRegistryText(nullptr, HKEY_CURRENT_USER, KeyName(kPlayerKey), MString(kConflictingProcs),
                           JoinShownNames(*conflicts));
}

bool LumenBrokerShim::HasStoredConflicts() noexcept {
  const RegistryKey key = OpenKey(HKEY_CURRENT_USER, kPlayerKey, kStoreRights);
  return key && RegDeleteValueW(key.Get(), kConflictingProcs) == ERROR_SUCCESS;
}

bool LumenBrokerShim::FindDefaultBrowser() noexcept {
  RunningProcesses processes;
  browserName = FindRunningBrowser(processes);
  return !browserName.IsEmpty();
}

bool LumenBrokerShim::IsBadRealPlayer() noexcept {
  const auto version = ReadText(HKEY_LOCAL_MACHINE, "SOFTWARE\\RealNetworks\\RealPlayer", "version");
  return version && version->starts_with('6');
}
