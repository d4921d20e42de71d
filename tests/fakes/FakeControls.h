// What a test sets before, and reads after, code that runs against the stand-ins. Shared by the stand-ins and the
// tests.
#pragma once

#include <windows.h>

#include <cstdint>

// srpapi.dll: SrpControls()
struct SrpControls {
  enum Mode : int32_t { Normal, WantsBufferAtOnce, NoIdentities, Fails, SecondCallFails };
  Mode mode = NoIdentities;
  const wchar_t* serverIds[4] = {};  // up to the first null
  const wchar_t* clientIds[4] = {};  // answered to an impersonating thread
  int32_t calls = 0;
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
  // The step of the query or the request that fails; the order is the chain's.
  enum Step : int32_t {
    None,
    FileFactory,
    FileStart,
    FileHandler,
    FileState,
    FileResults,
    ManagerFactory,
    InfoStart,
    InfoHandler,
    InfoState,
    InfoResults,
    InfoStatus,
    InfoIdentity,
    AuditFactory,
    AuditCreate,
    PolicyFactory,
    RequestStart,
    RequestHandler,
    RequestState,
    RequestResults,
  };
  Step fails = None;
  bool onAnotherThread = false;
  int32_t status = 1;
  const wchar_t* identity = L"";
  int32_t evaluation = 0;
  int32_t queries = 0;
  wchar_t source[64] = {};
  wchar_t target[64] = {};
  wchar_t auditData[64] = {};
  wchar_t auditTarget[128] = {};
};
