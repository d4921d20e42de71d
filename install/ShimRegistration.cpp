// The operations of the shim that make an installed kind known. The broker's own registration stands with the module.
#include "engine/DllHelpers.h"
#include "engine/LumenBrokerShim.h"
#include "engine/ProductKind.h"
#include "install/ClassKeys.h"
#include "install/ControlRegistration.h"
#include "install/FileProtection.h"
#include "install/Registration.h"

bool LumenBrokerShim::RegisterProduct(uint32_t kind, MString playerPath, MString uninstallerPath, MString /*ignored*/,
                                      uint8_t writeUninstallEntry) noexcept {
  registrationReached = 0;
  if (engine == nullptr) return false;
  if (!RegisterBrokerServer(uninstallerPath, kind)) return false;
  if (kind == product_kind::ActiveX && !RegisterActiveXControl(playerPath)) return false;
  if (kind == product_kind::Plugin && !RegisterPluginEntry(playerPath)) return false;
  registrationReached = 1;
  // From here on the kind works; what the lists about it lack is reported and no reason to fail.
  if (writeUninstallEntry != 0) WriteUninstallEntry(this, kind, uninstallerPath);
  WriteInventory(this, playerPath, uninstallerPath, kind);
  return true;
}

bool LumenBrokerShim::RefreshElevationPolicy() noexcept {
  const LibraryHandle library(LoadSystemLibrary(L"ieframe.dll"));
  if (!library) return false;
  using Refresh = HRESULT WINAPI();
  auto* const refresh =
      reinterpret_cast<Refresh*>(reinterpret_cast<void*>(GetProcAddress(library.Get(), "IERefreshElevationPolicy")));
  if (refresh == nullptr) return false;
  refresh();  // whatever it says: the browser has been asked
  return true;
}

bool LumenBrokerShim::RegisterActiveXControl(MString path) noexcept {
  if (!RegisterControl(this, path)) return false;
  ProtectFile(path, true);
  RepairClassKeyAccess();
  return true;
}

bool LumenBrokerShim::RegisterPluginEntry(MString path) noexcept {
  if (engine != nullptr) WritePluginRegistry(this, path);
  return true;
}
