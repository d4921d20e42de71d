#include "install/Registration.h"

#include <windows.h>

#include <algorithm>
#include <memory>

#include "engine/HostCallbacks.h"
#include "engine/InstallEngine.h"
#include "engine/LumenBrokerShim.h"
#include "install/ExtraFiles.h"
#include "install/RegistrationRows.h"
#include "install/ReportedRegistry.h"

namespace {

constexpr uint32_t kSourceIsMsi = 2;
constexpr wchar_t kSkipValidation[] = L"DisableExceptionChainValidation";

bool WriteRow(HostCallbacks* host, const RegistryRow& row) {
  if (const auto* const text = std::get_if<MString>(&row.data)) {
    return WriteRegistryText(host, HKEY_LOCAL_MACHINE, row.key, row.name, *text);
  }
  return WriteRegistryNumber(host, HKEY_LOCAL_MACHINE, row.key, row.name, std::get<uint32_t>(row.data));
}

bool WriteRows(HostCallbacks* host, const RegistryRows& rows) {
  return std::all_of(rows.begin(), rows.end(), [host](const RegistryRow& row) { return WriteRow(host, row); });
}

uint32_t PayloadKilobytes(HostCallbacks* host) {
  MString path;
  host->GetPayloadPath(&path);
  const FileHandle payload(CreateFileW(path.Data(), GENERIC_READ, FILE_SHARE_READ, nullptr, OPEN_EXISTING, 0, nullptr));
  LARGE_INTEGER size = {};
  if (!payload || !GetFileSizeEx(payload.Get(), &size)) return kUnknownPayloadSize;
  return static_cast<uint32_t>(size.QuadPart >> 10);
}

// One program after another, whatever becomes of each.
void SkipExceptionChainValidation(LumenBrokerShim* shim, uint32_t kind) {
  const MStringList* const files = ExtraFilesOf(shim, kind);
  for (const auto* file = files == nullptr ? nullptr : files->Head(); file != nullptr; file = file->next) {
    if (!file->key.EndsWith(L".exe")) continue;
    (void)WriteRegistryNumber(shim->host, HKEY_LOCAL_MACHINE, ImageExecutionKey(file->key), kSkipValidation, 0);
  }
}

}  // namespace

bool WriteUninstallEntry(LumenBrokerShim* shim, uint32_t kind, const MString& uninstallerPath) {
  return WriteRows(shim->host,
                   UninstallEntryRows(kind, shim->engine->version, uninstallerPath, PayloadKilobytes(shim->host)));
}

bool WriteInventory(LumenBrokerShim* shim, const MString& playerPath, const MString& uninstallerPath, uint32_t kind) {
  HostCallbacks* const host = shim->host;
  InventoryFacts facts;
  facts.version = shim->engine->version;
  facts.playerPath = playerPath;
  facts.uninstallerPath = uninstallerPath;
  facts.releasePlayer = (host->GetFlags() & host_flag::ReleasePlayer) != 0;
  facts.fromMsi = host->GetInstallSource() == kSourceIsMsi;
  const bool written = WriteRows(host, InventoryRows(kind, facts));
  SkipExceptionChainValidation(shim, kind);
  return written;
}

bool WritePluginRegistry(LumenBrokerShim* shim, const MString& path) {
  return WriteRows(shim->host, PluginRows(path, shim->engine->version));
}

std::optional<MString> ReadPluginPath(HostCallbacks* host) {
  return ReadRegistryTextByPath(host, HKEY_LOCAL_MACHINE, PluginRegistryKey());
}

bool DeletePluginRegistry(HostCallbacks* host) {
  return DeleteRegistryKey(host, HKEY_LOCAL_MACHINE, PluginRegistryKey());
}

bool DeleteImageExecutionKey(HostCallbacks* host, const MString& fileName) {
  if (fileName.IsEmpty()) return false;  // that would be the options of every program
  return DeleteRegistryKey(host, HKEY_LOCAL_MACHINE, ImageExecutionKey(fileName));
}
