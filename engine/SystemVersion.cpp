#include "engine/SystemVersion.h"

#include <windows.h>

bool IsVistaOrLater() {
  OSVERSIONINFOEXW wanted = {};
  wanted.dwOSVersionInfoSize = sizeof(wanted);
  wanted.dwMajorVersion = 6;
  return VerifyVersionInfoW(&wanted, VER_MAJORVERSION, VerSetConditionMask(0, VER_MAJORVERSION, VER_GREATER_EQUAL));
}
