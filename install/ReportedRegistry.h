// Registry access of the installer: every failure is reported to the host and given back as false or nothing. Reads
// report 1036, writes 1035, deletions 1037. A null host is not told. Host's thread.
#pragma once

#include <windows.h>

#include <cstdint>
#include <optional>
#include <string_view>

#include "engine/MString.h"

class HostCallbacks;

// The names of ProductKeys.h and of fixed keys, which are ASCII.
[[nodiscard]] MString KeyName(std::string_view ascii);

// A text is plain or expandable; it is given as it stands. A value of another type counts as not readable.
[[nodiscard]] std::optional<MString> ReadRegistryText(HostCallbacks* host, HKEY root, const MString& key,
                                                      const MString& name);
// The text of a value by one path: what follows the last backslash is its name.
[[nodiscard]] std::optional<MString> ReadRegistryTextByPath(HostCallbacks* host, HKEY root, const MString& path);
[[nodiscard]] std::optional<uint32_t> ReadRegistryNumber(HostCallbacks* host, HKEY root, const MString& key,
                                                         const MString& name);
// Create the key when it is not there.
[[nodiscard]] bool WriteRegistryText(HostCallbacks* host, HKEY root, const MString& key, const MString& name,
                                     const MString& text);
[[nodiscard]] bool WriteRegistryNumber(HostCallbacks* host, HKEY root, const MString& key, const MString& name,
                                       uint32_t number);
// What is not there could not be deleted: that is a failure too.
[[nodiscard]] bool DeleteRegistryValue(HostCallbacks* host, HKEY root, const MString& key, const MString& name);
// With all its subkeys.
[[nodiscard]] bool DeleteRegistryKey(HostCallbacks* host, HKEY root, const MString& key);
