// The sample ActiveX control: registers itself as a class whose objects it never makes.
#include <windows.h>

#include <olectl.h>

#include <cwchar>

#include "engine/ProductIds.h"

#define WIDE_(x) L##x
#define WIDE(x) WIDE_(x)

namespace {

#define CLASS_KEY L"Software\\Classes\\CLSID\\" WIDE(LUMEN_CONTROL_CLASS_ID)
#define NAME_KEY L"Software\\Classes\\TidewaterLumen.TidewaterLumen"

wchar_t g_path[MAX_PATH];

struct Row {
  const wchar_t* key;
  const wchar_t* name;
  const wchar_t* data;
};
const Row kRows[] = {
    {CLASS_KEY, nullptr, L"Lumen Player Control"},
    {CLASS_KEY L"\\InprocServer32", nullptr, g_path},
    {CLASS_KEY L"\\InprocServer32", L"ThreadingModel", L"Apartment"},
    {CLASS_KEY L"\\ProgID", nullptr, L"TidewaterLumen.TidewaterLumen"},
    {NAME_KEY, nullptr, L"Lumen Player Control"},
    {NAME_KEY L"\\CLSID", nullptr, WIDE(LUMEN_CONTROL_CLASS_ID)},
};

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
    const auto bytes = static_cast<DWORD>((std::wcslen(row.data) + 1) * sizeof(wchar_t));
    if (RegSetKeyValueW(HKEY_LOCAL_MACHINE, row.key, row.name, REG_SZ, row.data, bytes) != ERROR_SUCCESS) {
      return SELFREG_E_CLASS;
    }
  }
  return S_OK;
}

STDAPI DllUnregisterServer() {
  const bool classGone = DeleteWhole(CLASS_KEY);
  return DeleteWhole(NAME_KEY) && classGone ? S_OK : SELFREG_E_CLASS;
}
