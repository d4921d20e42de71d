// Which files make up an installed kind, and where each comes from, by the settings. Pure logic; any thread.
#pragma once

#include <cstdint>
#include <vector>

#include "engine/SettingsTree.h"
#include "engine/WideText.h"

enum class FileSource : uint8_t {
  Payload,   // the payload folder
  Program,   // this program itself, under the name of the kind's uninstaller
  Module,    // the module, beside the uninstaller under its name
  Settings,  // the settings, likewise
};

struct PayloadFile {
  WideString name;  // in the player's directory
  FileSource source;
  uint32_t kind;          // a product_kind; 0: a service, which all kinds share
  bool optional = false;  // a payload need not have it
};

// The player first, then its uninstaller with what it needs, then the kind's extra files.
[[nodiscard]] std::vector<PayloadFile> FilesOfKind(const SettingsTree* settings, uint32_t kind);
// The two services; the feedback service only when `analytics` may be gathered.
[[nodiscard]] std::vector<PayloadFile> ServiceFiles(const SettingsTree* settings, bool analytics);

// The file name of a kind's player and of its uninstaller; empty when the settings name none.
[[nodiscard]] WideString PlayerName(const SettingsTree* settings, uint32_t kind);
[[nodiscard]] WideString UninstallerName(const SettingsTree* settings, uint32_t kind);
// The update service's file name, likewise.
[[nodiscard]] WideString UpdateServiceName(const SettingsTree* settings);
// The values of a setting in order.
[[nodiscard]] std::vector<WideString> SettingValues(const SettingsTree* settings, const WideString& name);
