// The registry keys of each product kind. All stand under the machine hive unless the caller opens another.
#pragma once

#include <cstdint>
#include <string>

// The key of all kinds together.
constexpr char kPlayerKey[] = "Software\\Halcyonics\\LumenPlayer";
constexpr char kSafeVersionsKey[] = "Software\\Halcyonics\\LumenPlayer\\SafeVersions";
constexpr char kRunOnceKey[] = "Software\\Microsoft\\Windows\\CurrentVersion\\RunOnce";
// Where the browser remembers that it fetched the control itself.
constexpr char kDistributionUnitKey[] =
    "Software\\Microsoft\\Code Store Database\\Distribution Units\\{7B1C3F52-4D0A-11CF-96B8-5A1E0C2D7F10}";

// Each answers for one kind; any other number, several kinds together included, gives the key without a suffix.
[[nodiscard]] std::string GetProductKey(uint32_t kind);
[[nodiscard]] std::string GetReleaseTypeKey(uint32_t kind);
// The Add/Remove Programs entry as it is written now.
[[nodiscard]] std::string GetUninstallEntryKey(uint32_t kind);
// The entry as earlier versions named it; only ever deleted.
[[nodiscard]] std::string GetOldUninstallKey(uint32_t kind);
