// What registration writes, as data: each series of values in the order of writing, all under the machine hive. Pure
// logic; any thread.
#pragma once

#include <cstdint>
#include <variant>
#include <vector>

#include "engine/MString.h"

struct RegistryRow {
  MString key;
  MString name;
  std::variant<MString, uint32_t> data;
};
using RegistryRows = std::vector<RegistryRow>;

// The size that Add/Remove Programs shows, in units of 1,024 bytes, while the payload's own cannot be told.
constexpr uint32_t kUnknownPayloadSize = 18432;

// The Add/Remove Programs entry of one kind; `sizeInKilobytes` is the payload's.
[[nodiscard]] RegistryRows UninstallEntryRows(uint32_t kind, const MString& version, const MString& uninstallerPath,
                                              uint32_t sizeInKilobytes);

struct InventoryFacts {
  MString version;
  MString playerPath;
  MString uninstallerPath;
  bool releasePlayer = false;  // else a debugger player
  bool fromMsi = false;
};
[[nodiscard]] RegistryRows InventoryRows(uint32_t kind, const InventoryFacts& facts);

[[nodiscard]] MString PluginRegistryKey();
[[nodiscard]] RegistryRows PluginRows(const MString& path, const MString& version);

// Options that the system keeps by a program's file name.
[[nodiscard]] MString ImageExecutionKey(const MString& fileName);
