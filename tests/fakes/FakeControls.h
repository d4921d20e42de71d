// What a test sets before, and reads after, code that runs against the stand-ins of enterprise data protection. Each of
// their libraries is a copy of the one stand-in, with controls of its own.
#pragma once

#include <windows.h>

#include <cstdint>

struct FakeControls {
  // srpapi.dll
  const wchar_t* serverIds[4] = {};  // up to the first null
  const wchar_t* clientIds[4] = {};  // answered to an impersonating thread
  // efswrt.dll
  HRESULT result = S_OK;
  int32_t calls = 0;
  wchar_t protectedFor[260] = {};
  // The runtime classes.
  enum Step : int32_t { None, AuditFactory, RequestState };
  Step fails = None;
  bool onAnotherThread = false;
  int32_t status = 1;
  const wchar_t* identity = L"";
  int32_t evaluation = 0;
  wchar_t source[64] = {};
  wchar_t target[64] = {};
  wchar_t auditData[64] = {};
  wchar_t auditTarget[128] = {};
};
