#include "removal/UninstallEntries.h"

#include <windows.h>

#include <shellapi.h>

#include <string>

#include "engine/Handles.h"
#include "engine/InstallEngine.h"
#include "engine/ProductKeys.h"
#include "engine/ProductKind.h"
#include "engine/SystemPaths.h"
#include "install/ClassKeys.h"

namespace {

bool KeyExists(const MString& prefix, const MString& name) {
  MString path = prefix;
  path.Append(name);
  HKEY opened = nullptr;
  const LONG error = RegOpenKeyW(HKEY_LOCAL_MACHINE, path.Data(), &opened);
  return error == ERROR_SUCCESS && RegistryKey(opened).IsValid();
}

const MStringList* PackagesOf(const InstallEngine& engine, uint32_t kind) {
  switch (kind) {
    case product_kind::ActiveX: return &engine.guidsAX;
    case product_kind::Plugin: return &engine.guidsPlugin;
    case product_kind::Pepper: return &engine.guidsPepper;
    default: return nullptr;
  }
}

}  // namespace

void RemoveMsiProduct(const MsiKeyPrefixes& prefixes, const MString& toolDirectory, const MString& productCode) {
  if (!KeyExists(prefixes.first, productCode) && !KeyExists(prefixes.second, productCode)) return;
  MString tool = toolDirectory;
  tool.Append(MString(L"\\msiexec.exe"));
  MString parameters(L"/q /X ");
  parameters.Append(productCode);
  SHELLEXECUTEINFOW execution = {};
  static_assert(sizeof(execution) == 112);
  execution.cbSize = sizeof(execution);
  execution.fMask = SEE_MASK_NOCLOSEPROCESS;
  execution.hwnd = GetForegroundWindow();
  execution.lpFile = tool.Data();
  execution.lpParameters = parameters.Data();
  execution.nShow = SW_SHOWNORMAL;
  if (!ShellExecuteExW(&execution)) return;
  const KernelHandle process(execution.hProcess);
  if (process) WaitForSingleObject(process.Get(), INFINITE);
}

void CleanUpUninstallEntries(const InstallEngine& engine, uint32_t kind) {
  const MStringList* const packages = PackagesOf(engine, kind);
  if (packages == nullptr) return;  // another kind's key would be the bare prefix of all entries
  (void)DeleteMachineKey(("MACHINE\\" + GetUninstallEntryKey(kind)).c_str());
  const std::optional<WideString> system = GetSystem32Path();
  if (!system) return;
  const MsiKeyPrefixes prefixes{engine.uninstallRoot, engine.uninstallRootWow};
  for (const auto* package = packages->Head(); package != nullptr; package = package->next) {
    // An empty name would be found as the root of all entries.
    if (!package->key.IsEmpty()) RemoveMsiProduct(prefixes, MString(WideView(*system)), package->key);
  }
}
