#include "delivery/TrustAnchor.h"

#include <windows.h>

#include <new>

#include "engine/Handles.h"

bool LoadBuiltInAnchor(std::vector<uint8_t>& buffer) try {
  buffer.assign(kBuiltInAnchor, kBuiltInAnchor + kBuiltInAnchorSize);
  return true;
} catch (const std::bad_alloc&) {
  return false;
}

bool LoadFileToBuffer(const wchar_t* path, std::vector<uint8_t>& buffer) try {
  buffer.clear();
  const FileHandle file(CreateFileW(path, GENERIC_READ, FILE_SHARE_READ, nullptr, OPEN_EXISTING, 0, nullptr));
  if (!file.IsValid()) return false;
  DWORD high = 0;
  const DWORD size = GetFileSize(file.Get(), &high);
  if (size == INVALID_FILE_SIZE || high != 0) return false;
  std::vector<uint8_t> content(size);
  DWORD read = 0;
  if (!ReadFile(file.Get(), content.data(), size, &read, nullptr) || read != size) return false;
  buffer = std::move(content);
  return true;
} catch (const std::bad_alloc&) {
  return false;
}

bool LoadAnchor(const wchar_t* overridePath, std::vector<uint8_t>& buffer) {
  const bool overridden = overridePath != nullptr && overridePath[0] != 0;
  return overridden ? LoadFileToBuffer(overridePath, buffer) : LoadBuiltInAnchor(buffer);
}
