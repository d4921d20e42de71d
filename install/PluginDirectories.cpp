#include "install/PluginDirectories.h"

#include <windows.h>

#include <optional>

#include "engine/Handles.h"
#include "engine/LumenBrokerShim.h"
#include "engine/MStringList.h"
#include "install/PluginDirectoryText.h"
#include "install/ReportedRegistry.h"

namespace {

constexpr wchar_t kMozillaKey[] = L"Software\\Mozilla";
constexpr wchar_t kOperaKey[] = L"Software\\Opera Software";
constexpr DWORD kSubkeyUnits = 256;  // the longest name that a key can have, and its terminator

void AddMozilla(LumenBrokerShim* shim, MStringList* directories) {
  RegistryKey mozilla;
  if (RegOpenKeyExW(HKEY_LOCAL_MACHINE, kMozillaKey, 0, KEY_ENUMERATE_SUB_KEYS, mozilla.Receive()) != ERROR_SUCCESS) {
    return;
  }
  for (DWORD index = 0;; ++index) {
    wchar_t name[kSubkeyUnits] = {};
    DWORD units = kSubkeyUnits;
    if (RegEnumKeyExW(mozilla.Get(), index, name, &units, nullptr, nullptr, nullptr, nullptr) != ERROR_SUCCESS) return;
    MString key(kMozillaKey);
    key.AppendPath(L'\\', name);
    key.Append(L"\\extensions");
    const auto directory = ReadRegistryText(shim->host, HKEY_LOCAL_MACHINE, key, L"Plugins");
    if (directory) directories->Add(*directory);
  }
}

// A user's own setting goes before the machine's.
void AddOpera(LumenBrokerShim* shim, MStringList* directories, const wchar_t* name) {
  auto text = ReadRegistryText(shim->host, HKEY_CURRENT_USER, kOperaKey, name);
  if (!text) text = ReadRegistryText(shim->host, HKEY_LOCAL_MACHINE, kOperaKey, name);
  const auto directory = text ? PluginDirectoryFrom(*text) : std::nullopt;
  if (directory) directories->Add(*directory);
}

}  // namespace

void RefreshPluginDirectories(LumenBrokerShim* shim, const MString& fallback) {
  MStringList* const directories = shim->GetPluginDirectories();
  if (directories == nullptr || directories->Count() != 0) return;
  AddMozilla(shim, directories);
  AddOpera(shim, directories, L"Last CommandLine");
  AddOpera(shim, directories, L"Plugin Path");
  directories->Add(fallback);
}
