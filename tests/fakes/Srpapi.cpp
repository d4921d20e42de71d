// Stands in for the library that tells a token's enterprise identities.
#include <cstring>

#include "tests/fakes/FakeControls.h"

namespace {

SrpControls g_controls;

bool IsImpersonating() {
  HANDLE token = nullptr;
  if (!OpenThreadToken(GetCurrentThread(), TOKEN_QUERY, TRUE, &token)) return false;
  CloseHandle(token);  // handle-check: a stand-in has no owning types
  return true;
}

ULONG Count(const wchar_t* const* ids) {
  ULONG count = 0;
  while (count < 4 && ids[count] != nullptr) ++count;
  return count;
}

ULONG SizeOf(const wchar_t* const* ids) {
  ULONG bytes = 0;
  for (ULONG i = 0; i < Count(ids); ++i) {
    bytes += static_cast<ULONG>(sizeof(PCWSTR) + (static_cast<ULONG>(lstrlenW(ids[i])) + 1) * sizeof(wchar_t));
  }
  return bytes;
}

void Fill(const wchar_t* const* ids, PCWSTR* out) {
  auto* text = reinterpret_cast<wchar_t*>(out + Count(ids));
  for (ULONG i = 0; i < Count(ids); ++i) {
    lstrcpyW(text, ids[i]);
    out[i] = text;
    text += lstrlenW(ids[i]) + 1;
  }
}

}  // namespace

extern "C" __declspec(dllexport) SrpControls* GetControls() {
  return &g_controls;
}

extern "C" __declspec(dllexport) HRESULT WINAPI
    SrpGetEnterpriseIds(HANDLE /*token*/, ULONG* bytes, PCWSTR* ids, ULONG* count) {
  constexpr HRESULT kTooSmall = static_cast<HRESULT>(0x8007007A);
  ++g_controls.calls;
  const wchar_t* const* const known = IsImpersonating() ? g_controls.clientIds : g_controls.serverIds;
  if (g_controls.mode == SrpControls::Fails) return E_FAIL;
  if (g_controls.mode == SrpControls::WantsBufferAtOnce && ids == nullptr) return E_INVALIDARG;
  const ULONG needed = SizeOf(known);
  *count = g_controls.mode == SrpControls::NoIdentities ? 0 : Count(known);
  if (*bytes < needed || ids == nullptr) {
    *bytes = needed;
    return kTooSmall;
  }
  if (g_controls.mode == SrpControls::SecondCallFails) return E_FAIL;
  Fill(known, ids);
  return S_OK;
}
