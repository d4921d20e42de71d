// Repairs the access list of a file or registry key, so that an installer or uninstaller can do its work there, and
// guards the product's own files against being overwritten. Any thread; nothing is reported to the host.
#pragma once

#include <cstdint>

// The accounts whose access can be ensured, by the platform's number for each.
enum class KnownAccount : uint32_t { System = 22, Administrators = 26, Users = 27 };

// What a path names, again by the platform's numbers. A key's path begins with "MACHINE\" or "CLASSES_ROOT\".
enum class SecuredObject : uint32_t { File = 1, RegistryKey = 4 };

// Makes sure that the object's list grants `mask` to `account`. On a file, entries that deny the account anything are
// deleted and a grant of exactly this mask is not added again. The platform's error; 0 when the list was written.
[[nodiscard]] uint32_t EnsureAccess(const wchar_t* path, SecuredObject type, KnownAccount account, uint32_t mask);

// The guard of an installed file: one entry that denies everyone the writing of its content. It leaves deletion and
// attributes alone. Adding twice adds one entry; removing takes away what adding put there and nothing else. The
// platform's error, 0 for success.
[[nodiscard]] uint32_t AddWriteGuard(const wchar_t* path);
[[nodiscard]] uint32_t RemoveWriteGuard(const wchar_t* path);
