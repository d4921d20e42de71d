#include "install/Inventory.h"

#include <windows.h>

#include "engine/Handles.h"
#include "engine/ProductKeys.h"
#include "engine/ProductKind.h"
#include "engine/Registry.h"
#include "install/ReportedRegistry.h"

namespace {

// The value of the safe versions that speaks of this build's major version.
constexpr wchar_t kSafeVersionName[] = L"28.0";

// The keys of GetReleaseTypeKey, in the order of asking. This question has always spelled the hive's first key in
// capitals, and logs show it.
struct ReleaseTypeRow {
  uint32_t kind;
  const char* key;
};
constexpr ReleaseTypeRow kReleaseTypes[] = {
    {product_kind::ActiveX, "SOFTWARE\\Halcyonics\\LumenPlayerActiveXReleaseType"},
    {product_kind::Plugin, "SOFTWARE\\Halcyonics\\LumenPlayerPluginReleaseType"},
    {product_kind::Pepper, "SOFTWARE\\Halcyonics\\LumenPlayerPepperReleaseType"},
};

bool ReadInto(MString* out, HostCallbacks* host, uint32_t kind, const wchar_t* name) {
  const auto text = ReadRegistryText(host, HKEY_LOCAL_MACHINE, KeyName(GetProductKey(kind)), name);
  if (text) *out = *text;
  return text.has_value();
}

}  // namespace

bool ReadPlayerPaths(HostCallbacks* host, uint32_t kind, MString* playerPath, MString* uninstallerPath) {
  return ReadInto(playerPath, host, kind, L"PlayerPath") && ReadInto(uninstallerPath, host, kind, L"UninstallerPath");
}

InstalledState CompareInstalledVersion(HostCallbacks* host, uint32_t kind) {
  MString installed;
  return ReadInto(&installed, host, kind, L"Version") ? StateOfVersion(installed) : InstalledState::NotInstalled;
}

bool ReleaseTypeMatches(HostCallbacks* host, uint32_t kinds, uint32_t expected) {
  const char* key = nullptr;
  for (const ReleaseTypeRow& row : kReleaseTypes) {
    if ((kinds & row.kind) != 0) key = row.key;
  }
  // Nothing installed is no failure, so the key is tried before the read that reports.
  if (key == nullptr || !OpenKey(HKEY_LOCAL_MACHINE, key, KEY_QUERY_VALUE)) return true;
  return ReadRegistryNumber(host, HKEY_LOCAL_MACHINE, KeyName(key), L"Release").value_or(0) == expected;
}

bool IsSafeVersion(HostCallbacks* host) {
  const auto lowest = ReadRegistryNumber(host, HKEY_LOCAL_MACHINE, KeyName(kSafeVersionsKey), kSafeVersionName);
  return !lowest || IsSafeRevision(*lowest);
}

bool DeleteProductKey(HostCallbacks* host, uint32_t kind) {
  return DeleteRegistryKey(host, HKEY_LOCAL_MACHINE, KeyName(GetProductKey(kind)));
}

bool DeleteSafeVersions(HostCallbacks* host) {
  return DeleteRegistryKey(host, HKEY_LOCAL_MACHINE, KeyName(kSafeVersionsKey));
}

bool CleanRegistry(HostCallbacks* host, uint32_t kind) {
  const MString base = KeyName(kPlayerKey);
  bool all = DeleteRegistryValue(host, HKEY_CURRENT_USER, KeyName(kRunOnceKey), L"LumenPlayerUpdate");
  all = DeleteRegistryKey(host, HKEY_CURRENT_USER, KeyName(GetProductKey(kind))) && all;
  all = DeleteRegistryValue(host, HKEY_CURRENT_USER, base, L"LumenPlayerVersion") && all;
  all = DeleteRegistryValue(host, HKEY_CURRENT_USER, base, L"TwlInstall") && all;
  all = DeleteRegistryKey(host, HKEY_LOCAL_MACHINE, KeyName(GetReleaseTypeKey(kind))) && all;
  if (kind == product_kind::ActiveX) {
    all = DeleteRegistryKey(host, HKEY_LOCAL_MACHINE, KeyName(kDistributionUnitKey)) && all;
  }
  if (kind == product_kind::Plugin || kind == product_kind::Pepper) {
    // Only machines that once had an earlier version have this entry, so its absence counts for nothing.
    (void)DeleteRegistryKey(host, HKEY_LOCAL_MACHINE, KeyName(GetOldUninstallKey(kind)));
  }
  return all;
}
