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

// The platform's functions, looked up before any hook stands in their place; by name, since the compiler would turn
// their addresses back into calls through the import table.
template <class Function>
void Find(Function*& function, const wchar_t* library, const char* name) {
  function = reinterpret_cast<Function*>(reinterpret_cast<void*>(GetProcAddress(GetModuleHandleW(library), name)));
}
struct Originals {
  decltype(&::RegOpenKeyExW) RegOpenKeyExW;
  decltype(&::RegCreateKeyExW) RegCreateKeyExW;
  decltype(&::RegCreateKeyExA) RegCreateKeyExA;
  decltype(&::RegSetValueExW) RegSetValueExW;
  decltype(&::RegSetValueExA) RegSetValueExA;
  decltype(&::RegDeleteValueW) RegDeleteValueW;
  decltype(&::CreateFileW) CreateFileW;
  decltype(&::DeleteFileW) DeleteFileW;
  decltype(&::SetFileAttributesW) SetFileAttributesW;
  decltype(&::MoveFileExW) MoveFileExW;
  decltype(&::CreateProcessW) CreateProcessW;
  decltype(&::LoadLibraryW) LoadLibraryW;
  decltype(&::GetProcAddress) GetProcAddress;
  Originals() {
    Find(RegOpenKeyExW, L"advapi32.dll", "RegOpenKeyExW");
    Find(RegCreateKeyExW, L"advapi32.dll", "RegCreateKeyExW");
    Find(RegCreateKeyExA, L"advapi32.dll", "RegCreateKeyExA");
    Find(RegSetValueExW, L"advapi32.dll", "RegSetValueExW");
    Find(RegSetValueExA, L"advapi32.dll", "RegSetValueExA");
    Find(RegDeleteValueW, L"advapi32.dll", "RegDeleteValueW");
    Find(CreateFileW, L"kernel32.dll", "CreateFileW");
    Find(DeleteFileW, L"kernel32.dll", "DeleteFileW");
    Find(SetFileAttributesW, L"kernel32.dll", "SetFileAttributesW");
    Find(MoveFileExW, L"kernel32.dll", "MoveFileExW");
    Find(CreateProcessW, L"kernel32.dll", "CreateProcessW");
    Find(LoadLibraryW, L"kernel32.dll", "LoadLibraryW");
    Find(GetProcAddress, L"kernel32.dll", "GetProcAddress");
  }
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
LSTATUS WINAPI DeleteTreeStep(HKEY root, LPCWSTR path) {
  if (Step("delete key " + NameOf(root, Utf8(path)))) return Failure();
  using Function = LSTATUS WINAPI(HKEY, LPCWSTR);
  static auto* const deleteKey = reinterpret_cast<Function*>(
      reinterpret_cast<void*>(g_real.GetProcAddress(GetModuleHandleW(L"shlwapi.dll"), "SHDeleteKeyW")));
  return deleteKey(root, path);
}
LSTATUS WINAPI DeleteTreeStepA(HKEY root, LPCSTR path) {
  if (Step("delete key " + NameOf(root, path))) return Failure();
  using Function = LSTATUS WINAPI(HKEY, LPCSTR);
  static auto* const deleteKey = reinterpret_cast<Function*>(
      reinterpret_cast<void*>(g_real.GetProcAddress(GetModuleHandleW(L"shlwapi.dll"), "SHDeleteKeyA")));
  return deleteKey(root, path);
}
DWORD WINAPI SecurityStep(LPWSTR path, SE_OBJECT_TYPE type, SECURITY_INFORMATION what, PSID owner, PSID group,
                          PACL list, PACL audit) {
  if (Step("security " + Utf8(path))) return g_recording.error;
  return SetNamedSecurityInfoW(path, type, what, owner, group, list, audit);
}

template <class Function>
FARPROC AsFound(Function* function) {
  return reinterpret_cast<FARPROC>(reinterpret_cast<void*>(function));
}

FARPROC WINAPI FindStep(HMODULE module, LPCSTR name) {
  const std::string_view wanted = reinterpret_cast<uintptr_t>(name) > 0xFFFF ? name : "";
  if (wanted == "SHDeleteKeyW") return AsFound(&DeleteTreeStep);
  if (wanted == "SetNamedSecurityInfoW") return AsFound(&SecurityStep);
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
      {"RegOpenKeyExW", reinterpret_cast<void*>(&OpenKeyW)},
      {"RegCreateKeyExW", reinterpret_cast<void*>(&CreateKeyW)},
      {"RegCreateKeyExA", reinterpret_cast<void*>(&CreateKeyA)},
      {"RegSetValueExW", reinterpret_cast<void*>(&SetValueW)},
      {"RegSetValueExA", reinterpret_cast<void*>(&SetValueA)},
      {"RegDeleteValueW", reinterpret_cast<void*>(&DeleteValueW)},
      {"CreateFileW", reinterpret_cast<void*>(&OpenFileW)},
      {"DeleteFileW", reinterpret_cast<void*>(&DeleteFileStep)},
      {"SetFileAttributesW", reinterpret_cast<void*>(&AttributesStep)},
      {"MoveFileExW", reinterpret_cast<void*>(&MoveStep)},
      {"SHDeleteKeyA", reinterpret_cast<void*>(&DeleteTreeStepA)},
      {"CreateProcessW", reinterpret_cast<void*>(&StartStep)},
      {"LoadLibraryW", reinterpret_cast<void*>(&LoadStep)},
      {"GetProcAddress", reinterpret_cast<void*>(&FindStep)},
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
