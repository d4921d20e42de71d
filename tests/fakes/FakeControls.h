// What a test sets before, and reads after, code that runs against the stand-ins. Shared by the stand-ins and the
// tests.
#pragma once

#include <windows.h>

#include <cstdint>

// srpapi.dll: SrpControls()
struct SrpControls {
  enum Mode : int32_t { Normal, NoIdentities };
  Mode mode = NoIdentities;
  const wchar_t* serverIds[4] = {};  // up to the first null
  const wchar_t* clientIds[4] = {};  // answered to an impersonating thread
};

// efswrt.dll: EfsControls()
struct EfsControls {
  HRESULT result = S_OK;
  int32_t calls = 0;
  wchar_t path[260] = {};
  wchar_t identity[260] = {};
};

// The runtime classes: EnterpriseControls()
struct EnterpriseControls {
  enum Step : int32_t { None, AuditFactory, RequestState };  // what fails
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
