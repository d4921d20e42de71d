// What the machine says is installed: one key for each product kind, and the list of safe versions. `kind` is one
// product_kind flag; any other number stands for the player's base key. Failed reads report 1036, failed deletions
// 1037. Host's thread.
#pragma once

#include <cstdint>

#include "engine/MString.h"
#include "install/VersionNumbers.h"

class HostCallbacks;

// The installed player file and its uninstaller. True only when both were read; the second is read only after the
// first, and what was not read is left alone.
[[nodiscard]] bool ReadPlayerPaths(HostCallbacks* host, uint32_t kind, MString* playerPath, MString* uninstallerPath);

// How the installed version stands to this build.
[[nodiscard]] InstalledState CompareInstalledVersion(HostCallbacks* host, uint32_t kind);

// Whether the installed release type is `expected`. Of several kinds the last one decides, in the order ActiveX,
// plug-in, PPAPI. True also when no kind is named or nothing is installed.
[[nodiscard]] bool ReleaseTypeMatches(HostCallbacks* host, uint32_t kinds, uint32_t expected);

// False only when the list of safe versions names a later revision as the lowest safe one.
[[nodiscard]] bool IsSafeVersion(HostCallbacks* host);

[[nodiscard]] bool DeleteProductKey(HostCallbacks* host, uint32_t kind);
bool DeleteSafeVersions(HostCallbacks* host);

// Deletes what an installed kind leaves besides its product key. Every step runs; what is missing counts as failed.
[[nodiscard]] bool CleanRegistry(HostCallbacks* host, uint32_t kind);
