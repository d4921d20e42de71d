// Makes an installed kind known to the system: the Add/Remove Programs entry, the inventory and the plug-in's entry.
// Values go under the machine hive; a series stops at its first failure, which is reported. Host's thread.
#pragma once

#include <cstdint>
#include <optional>

#include "engine/MString.h"

class HostCallbacks;
class LumenBrokerShim;

// `kind` is one product_kind. What could be written before a failure stays.
bool WriteUninstallEntry(LumenBrokerShim* shim, uint32_t kind, const MString& uninstallerPath);
// Also tells the system not to validate the exception chain of the kind's extra programs, whatever failed before.
bool WriteInventory(LumenBrokerShim* shim, const MString& playerPath, const MString& uninstallerPath, uint32_t kind);

// The NPAPI plug-in's entry.
bool WritePluginRegistry(LumenBrokerShim* shim, const MString& path);
// The plug-in's path as another installer may have written it, beside the entry rather than in it; the entry that
// WritePluginRegistry makes has none. Nothing, reported as 1036, when it is not there.
[[nodiscard]] std::optional<MString> ReadPluginPath(HostCallbacks* host);
// The plug-in's entry with its subkeys; false, reported as 1037, when that failed or there is none.
[[nodiscard]] bool DeletePluginRegistry(HostCallbacks* host);

// The options that the system keeps by a program's file name; false, reported as 1037, when there are none. An empty
// name deletes nothing.
bool DeleteImageExecutionKey(HostCallbacks* host, const MString& fileName);
