// What the path policy needs of the platform, and nothing more: so that its decisions run on plain strings in tests.
#pragma once

#include <cstdint>
#include <optional>
#include <vector>

#include "engine/PlatformConstants.h"
#include "engine/WideText.h"

// One Win32 implementation, Win32PathOperations; an in-memory one in tests. All calls on the broker's apartment thread.
// An empty optional means: the platform refused, or the function is not there.
class PathOperations {
 public:
  virtual ~PathOperations() = default;

  // One round of GetFullPathNameW into a buffer of 1,040 units; refuses a result outside 1 to 1,040.
  virtual std::optional<WideString> FullPath(WideView path) = 0;
  // CharUpperBuffW over a copy. Empty when that function could not be bound.
  virtual std::optional<WideString> UpperCase(WideView text) = 0;
  // GetFileAttributesW.
  virtual std::optional<uint32_t> Attributes(WideView path) = 0;
  // GetFileAttributesExW, of which only the attributes count here.
  virtual std::optional<uint32_t> AttributesEx(WideView path) = 0;
  // GetLongPathNameW into 260 units.
  virtual std::optional<WideString> LongPath(WideView path) = 0;
  // The target of an object-manager link, read into 520 bytes; empty when `objectPath` names none.
  virtual std::optional<WideString> ObjectLinkTarget(WideView objectPath) = 0;
  // Opens one level of a path without following it and reads its reparse data, as stored.
  virtual std::optional<std::vector<uint8_t>> ReadReparsePoint(WideView path) = 0;
  // SHGetFolderPathW with flags 0, or for the two per-user data folders the registry value that names them.
  virtual std::optional<WideString> Folder(ShellFolder folder) = 0;
  // GetTempPathW into 260 units.
  virtual std::optional<WideString> TempPath() = 0;
};
