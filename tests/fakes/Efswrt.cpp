// Stands in for the library that protects a file to an identity.
#include "tests/fakes/FakeControls.h"

namespace {

EfsControls g_controls;

}  // namespace

extern "C" __declspec(dllexport) EfsControls* GetControls() {
  return &g_controls;
}

extern "C" __declspec(dllexport) HRESULT WINAPI ProtectFileToEnterpriseIdentity(PCWSTR path, PCWSTR identity) {
  ++g_controls.calls;
  lstrcpynW(g_controls.path, path, 260);
  lstrcpynW(g_controls.identity, identity, 260);
  return g_controls.result;
}
