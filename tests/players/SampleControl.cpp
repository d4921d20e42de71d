// The sample ActiveX control: registers itself as a class whose objects it never makes.
#include <windows.h>

#include <olectl.h>

#include <cwchar>
#include <iterator>

#include "engine/ProductIds.h"

#define WIDE_(x) L##x
#define WIDE(x) WIDE_(x)

namespace {

constexpr wchar_t kClassKey[] = L"Software\\Classes\\CLSID\\" WIDE(LUMEN_CONTROL_CLASS_ID);
constexpr wchar_t kNameKey[] = L"Software\\Classes\\TidewaterLumen.TidewaterLumen";

wchar_t g_path[MAX_PATH];

struct Row {
  const wchar_t* key;
  const wchar_t* below;
  const wchar_t* name;
  const wchar_t* data;
};
const Row kRows[] = {
    {kClassKey, nullptr, nullptr, L"Lumen Player Control"},
    {kClassKey, L"InprocServer32", nullptr, g_path},
    {kClassKey, L"InprocServer32", L"ThreadingModel", L"Apartment"},
    {kClassKey, L"ProgID", nullptr, L"TidewaterLumen.TidewaterLumen"},
    {kNameKey, nullptr, nullptr, L"Lumen Player Control"},
    {kNameKey, L"CLSID", nullptr, WIDE(LUMEN_CONTROL_CLASS_ID)},
};

bool Write(const Row& row) {
  wchar_t key[MAX_PATH] = {};
  std::swprintf(key, std::size(key), row.below == nullptr ? L"%ls" : L"%ls\\%ls", row.key, row.below);
  const DWORD bytes = static_cast<DWORD>((std::wcslen(row.data) + 1) * sizeof(wchar_t));
  return RegSetKeyValueW(HKEY_LOCAL_MACHINE, key, row.name, REG_SZ, row.data, bytes) == ERROR_SUCCESS;
}

bool DeleteWhole(const wchar_t* key) {
  const LONG error = RegDeleteTreeW(HKEY_LOCAL_MACHINE, key);
  return error == ERROR_SUCCESS || error == ERROR_FILE_NOT_FOUND;
}

}  // namespace

BOOL WINAPI DllMain(HINSTANCE instance, DWORD reason, void* /*reserved*/) {
  if (reason == DLL_PROCESS_ATTACH) GetModuleFileNameW(instance, g_path, MAX_PATH);
  return TRUE;
}

STDAPI DllRegisterServer() {
  for (const Row& row : kRows) {
    if (!Write(row)) return SELFREG_E_CLASS;
  }
  return S_OK;
}

STDAPI DllUnregisterServer() {
  const bool classGone = DeleteWhole(kClassKey);
  return DeleteWhole(kNameKey) && classGone ? S_OK : SELFREG_E_CLASS;
}

STDAPI DllCanUnloadNow() {
  return S_OK;
}

STDAPI DllGetClassObject(REFCLSID /*classId*/, REFIID /*interfaceId*/, void** object) {
  *object = nullptr;
  return CLASS_E_CLASSNOTAVAILABLE;
}
