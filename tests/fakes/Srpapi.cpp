// Stands in for the library that tells a token's enterprise identities.
#include "engine/Handles.h"
#include "tests/fakes/FakeControls.h"

namespace {

SrpControls g_controls;

bool IsImpersonating() {
  HANDLE token = nullptr;
  return OpenThreadToken(GetCurrentThread(), TOKEN_QUERY, TRUE, &token) && KernelHandle(token).IsValid();
}

// The pointers, and behind them the texts.
void Fill(const wchar_t* const* ids, ULONG count, PCWSTR* out) {
  auto* text = reinterpret_cast<wchar_t*>(out + count);
  for (ULONG i = 0; i < count; ++i) {
    out[i] = lstrcpyW(text, ids[i]);
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
  const wchar_t* const* const known = IsImpersonating() ? g_controls.clientIds : g_controls.serverIds;
  ULONG found = 0, needed = 0;
  for (; found < 4 && known[found] != nullptr; ++found) {
    needed += static_cast<ULONG>(sizeof(PCWSTR) + (static_cast<ULONG>(lstrlenW(known[found])) + 1) * sizeof(wchar_t));
  }
  *count = g_controls.mode == SrpControls::NoIdentities ? 0 : found;
  if (*bytes < needed || ids == nullptr) {
    *bytes = needed;
    return kTooSmall;
  }
  Fill(known, found, ids);
  return S_OK;
}
