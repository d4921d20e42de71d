#include "install/FileProtection.h"

#include <windows.h>

#include "install/AccessRepair.h"

namespace {

bool SetReadOnly(const MString& path, bool on) {
  const DWORD attributes = GetFileAttributesW(path.Data());
  if (attributes == INVALID_FILE_ATTRIBUTES) return false;
  const DWORD wanted = on ? attributes | FILE_ATTRIBUTE_READONLY : attributes & ~DWORD{FILE_ATTRIBUTE_READONLY};
  return wanted == attributes || SetFileAttributesW(path.Data(), wanted);
}

}  // namespace

bool ProtectFile(const MString& path, bool on) {
  if (on) return SetReadOnly(path, true) && AddWriteGuard(path.Data()) == ERROR_SUCCESS;
  const bool unguarded = RemoveWriteGuard(path.Data()) == ERROR_SUCCESS;
  return SetReadOnly(path, false) && unguarded;
}
