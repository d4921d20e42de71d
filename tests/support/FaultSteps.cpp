#include "tests/support/FaultSteps.h"

#include <accctrl.h>
#include <aclapi.h>

#include <gtest/gtest.h>

#include <map>
#include <string>
#include <string_view>

#include "engine/DllHelpers.h"
#include "engine/WideText.h"

namespace {

struct Recording {
  Lines steps;
  size_t failing = 0;
  DWORD error = 0;
  bool on = false;
  std::map<HKEY, std::string> open;
};
Recording g_recording;

// The platform's functions, looked up before any hook stands in their place.
#define ORIGINAL(library, name) decltype(&::name) name = Own<decltype(::name)>(library, #name)
struct Originals {
  ORIGINAL(L"advapi32.dll", RegOpenKeyExW);
  ORIGINAL(L"advapi32.dll", RegCreateKeyExW);
  ORIGINAL(L"advapi32.dll", RegCreateKeyExA);
  ORIGINAL(L"advapi32.dll", RegSetValueExW);
  ORIGINAL(L"advapi32.dll", RegSetValueExA);
  ORIGINAL(L"advapi32.dll", RegDeleteValueW);
  ORIGINAL(L"kernel32.dll", CreateFileW);
  ORIGINAL(L"kernel32.dll", DeleteFileW);
  ORIGINAL(L"kernel32.dll", SetFileAttributesW);
  ORIGINAL(L"kernel32.dll", MoveFileExW);
  ORIGINAL(L"kernel32.dll", CreateProcessW);
  ORIGINAL(L"kernel32.dll", LoadLibraryW);
  ORIGINAL(L"kernel32.dll", GetProcAddress);
};
const Originals g_real;

// True when this step is the one to fail.
bool Step(const std::string& text) {
  if (!g_recording.on) return false;
  g_recording.steps.push_back(text);
  return g_recording.steps.size() == g_recording.failing;
}

BOOL FailWith() {
  SetLastError(g_recording.error);
  return FALSE;
}

std::string Utf8(const wchar_t* text) {
  return text == nullptr ? std::string() : ToUtf8(text);
}

std::string NameOf(HKEY root, const std::string& path) {
  if (root == HKEY_LOCAL_MACHINE) return "HKLM\\" + path;
  if (root == HKEY_CURRENT_USER) return "HKCU\\" + path;
  return g_recording.open[root] + "\\" + path;
}

LONG Opened(LONG status, PHKEY key, const std::string& name) {
  if (status == ERROR_SUCCESS) g_recording.open[*key] = name;
  return status;
}

std::string WriteText(HKEY key, DWORD type, const std::string& name) {
  return (type == REG_DWORD ? "number " : "text ") + g_recording.open[key] + " | " + name;
}

LONG Failure() {
  return static_cast<LONG>(g_recording.error);
}

LONG WINAPI OpenKeyW(HKEY root, LPCWSTR path, DWORD options, REGSAM rights, PHKEY key) {
  return Opened(g_real.RegOpenKeyExW(root, path, options, rights, key), key, NameOf(root, Utf8(path)));
}
LONG WINAPI CreateKeyW(HKEY root, LPCWSTR path, DWORD reserved, LPWSTR type, DWORD options, REGSAM rights,
                       LPSECURITY_ATTRIBUTES security, PHKEY key, LPDWORD disposition) {
  const std::string name = NameOf(root, Utf8(path));
  if (Step("create " + name)) return Failure();
  return Opened(g_real.RegCreateKeyExW(root, path, reserved, type, options, rights, security, key, disposition), key,
                name);
}
LONG WINAPI CreateKeyA(HKEY root, LPCSTR path, DWORD reserved, LPSTR type, DWORD options, REGSAM rights,
                       LPSECURITY_ATTRIBUTES security, PHKEY key, LPDWORD disposition) {
  const std::string name = NameOf(root, path);
  if (Step("create " + name)) return Failure();
  return Opened(g_real.RegCreateKeyExA(root, path, reserved, type, options, rights, security, key, disposition), key,
                name);
}
LONG WINAPI SetValueW(HKEY key, LPCWSTR name, DWORD reserved, DWORD type, const BYTE* data, DWORD bytes) {
  if (Step(WriteText(key, type, Utf8(name)))) return Failure();
  return g_real.RegSetValueExW(key, name, reserved, type, data, bytes);
}
LONG WINAPI SetValueA(HKEY key, LPCSTR name, DWORD reserved, DWORD type, const BYTE* data, DWORD bytes) {
  if (Step(WriteText(key, type, name))) return Failure();
  return g_real.RegSetValueExA(key, name, reserved, type, data, bytes);
}
LONG WINAPI DeleteValueW(HKEY key, LPCWSTR name) {
  if (Step("delete value " + g_recording.open[key] + " | " + Utf8(name))) return Failure();
  return g_real.RegDeleteValueW(key, name);
}

HANDLE WINAPI OpenFileW(LPCWSTR path, DWORD access, DWORD share, LPSECURITY_ATTRIBUTES security, DWORD disposition,
                        DWORD flags, HANDLE sample) {
  if (Step("open " + Utf8(path))) {
    FailWith();
    return INVALID_HANDLE_VALUE;
  }
  return g_real.CreateFileW(path, access, share, security, disposition, flags, sample);
}
BOOL WINAPI DeleteFileStep(LPCWSTR path) {
  return Step("delete " + Utf8(path)) ? FailWith() : g_real.DeleteFileW(path);
}
BOOL WINAPI AttributesStep(LPCWSTR path, DWORD attributes) {
  return Step("attributes " + Utf8(path)) ? FailWith() : g_real.SetFileAttributesW(path, attributes);
}
BOOL WINAPI MoveStep(LPCWSTR path, LPCWSTR target, DWORD flags) {
  return Step("queue " + Utf8(path)) ? FailWith() : g_real.MoveFileExW(path, target, flags);
}

BOOL WINAPI StartStep(LPCWSTR program, LPWSTR line, LPSECURITY_ATTRIBUTES process, LPSECURITY_ATTRIBUTES thread,
                      BOOL inherit, DWORD flags, LPVOID environment, LPCWSTR directory, LPSTARTUPINFOW startup,
                      LPPROCESS_INFORMATION started) {
  if (Step("start " + Utf8(line))) return FailWith();
  return g_real.CreateProcessW(program, line, process, thread, inherit, flags, environment, directory, startup,
                               started);
}

HMODULE WINAPI LoadStep(LPCWSTR path) {
  const bool ofSystem = _wcsnicmp(path, L"C:\\windows\\system32\\", 20) == 0;
  if (!ofSystem && Step("load " + Utf8(path))) {
    FailWith();
    return nullptr;
  }
  return g_real.LoadLibraryW(path);
}

// Found at run time, by the code under test, through GetProcAddress.
template <class Unit>
LSTATUS DeleteTree(HKEY root, const Unit* path, const std::string& shown, const char* function) {
  if (Step("delete key " + NameOf(root, shown))) return Failure();
  return reinterpret_cast<LSTATUS WINAPI (*)(HKEY, const Unit*)>(
      reinterpret_cast<void*>(g_real.GetProcAddress(GetModuleHandleW(L"shlwapi.dll"), function)))(root, path);
}
LSTATUS WINAPI DeleteTreeStep(HKEY root, LPCWSTR path) {
  return DeleteTree(root, path, Utf8(path), "SHDeleteKeyW");
}
LSTATUS WINAPI DeleteTreeStepA(HKEY root, LPCSTR path) {
  return DeleteTree(root, path, path, "SHDeleteKeyA");
}
DWORD WINAPI SecurityStep(LPWSTR path, SE_OBJECT_TYPE type, SECURITY_INFORMATION what, PSID owner, PSID group,
                          PACL list, PACL audit) {
  if (Step("security " + Utf8(path))) return g_recording.error;
  return SetNamedSecurityInfoW(path, type, what, owner, group, list, audit);
}

template <class Function>
void* Address(Function* function) {
  return reinterpret_cast<void*>(function);
}

FARPROC WINAPI FindStep(HMODULE module, LPCSTR name) {
  const std::string_view wanted = reinterpret_cast<uintptr_t>(name) > 0xFFFF ? name : "";
  if (wanted == "SHDeleteKeyW") return reinterpret_cast<FARPROC>(Address(&DeleteTreeStep));
  if (wanted == "SetNamedSecurityInfoW") return reinterpret_cast<FARPROC>(Address(&SecurityStep));
  const bool entry = wanted == "DllRegisterServer" || wanted == "DllUnregisterServer";
  if (entry && Step("entry " + std::string(wanted))) {
    FailWith();
    return nullptr;
  }
  return g_real.GetProcAddress(module, name);
}

// The module keeps the deletion function for good once it has found it, so it has to find this one first: before any
// test runs. Outside a recording it is the real one.
const bool g_deletionBound = [] {
  const ImportHook find(GetModuleHandleW(nullptr), "GetProcAddress", &FindStep);
  (void)DeleteKeyTree(HKEY_CURRENT_USER, L"Software\\Lumen tests: no such key");
  return true;
}();

}  // namespace

FaultSteps::FaultSteps() {
  EXPECT_TRUE(g_deletionBound);
  const std::pair<const char*, void*> rows[] = {
      {"RegOpenKeyExW", Address(&OpenKeyW)},
      {"RegCreateKeyExW", Address(&CreateKeyW)},
      {"RegCreateKeyExA", Address(&CreateKeyA)},
      {"RegSetValueExW", Address(&SetValueW)},
      {"RegSetValueExA", Address(&SetValueA)},
      {"RegDeleteValueW", Address(&DeleteValueW)},
      {"CreateFileW", Address(&OpenFileW)},
      {"DeleteFileW", Address(&DeleteFileStep)},
      {"SetFileAttributesW", Address(&AttributesStep)},
      {"MoveFileExW", Address(&MoveStep)},
      {"SHDeleteKeyA", Address(&DeleteTreeStepA)},
      {"CreateProcessW", Address(&StartStep)},
      {"LoadLibraryW", Address(&LoadStep)},
      {"GetProcAddress", Address(&FindStep)},
  };
  for (const auto& [name, replacement] : rows) {
    hooks_.push_back(std::make_unique<ImportHook>(GetModuleHandleW(nullptr), name, replacement));
  }
}

FaultSteps::~FaultSteps() {
  g_recording = {};
}

Lines FaultSteps::Run(size_t failing, const std::function<void()>& sequence, DWORD error) {
  g_recording = {};
  g_recording.failing = failing;
  g_recording.error = error;
  g_recording.on = true;
  sequence();
  g_recording.on = false;
  return g_recording.steps;
}
