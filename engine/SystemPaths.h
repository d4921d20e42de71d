// Where the player and its data live. A location that cannot be found is an empty optional or an empty text; nothing
// here reports. Paths are bounded by 260 units. Any thread, except where a text is cached for the process.
#pragma once

#include <windows.h>

#include <optional>
#include <string>

#include "engine/MString.h"
#include "engine/PlatformConstants.h"
#include "engine/SystemConfigFile.h"
#include "engine/WideText.h"

// `root` followed by `below`; nothing when that is longer than a path may be.
[[nodiscard]] std::optional<WideString> BoundedPath(WideView root, WideView below);
// A shell folder as the platform gives it.
[[nodiscard]] std::optional<WideString> FolderPath(ShellFolder folder);

// The directory of 32-bit system files: of the WOW64 directory only when this process itself runs under WOW64, so on a
// 64-bit build the plain system directory. The narrow form asks the narrow functions.
[[nodiscard]] std::optional<WideString> GetSystem32Path();
[[nodiscard]] std::optional<std::string> GetSystem32PathNarrow();

// The per-user root of the player's data, roaming or local. When the shell has no answer, the value that names the
// folder in the user's registry.
[[nodiscard]] std::optional<WideString> GetPlayerRoots(bool local);

// "...\bin" of the roaming player directory, where add-on products are put.
[[nodiscard]] std::optional<WideString> ProductDirectory();
// "...\bin\<name>\digest.s" below the settings directory of `playerDataDirectory`.
[[nodiscard]] WideString DigestPath(WideView settingsDirectory, WideView packageName);

// hms.cfg of the 32-bit system directory, also on 64-bit systems; that is where administrators have always put it.
[[nodiscard]] std::optional<WideString> SystemConfigPath();
// Reads it; an unreadable file is an absent one.
[[nodiscard]] SystemConfigFile ReadSystemConfig();
