#include "tests/support/FaultSteps.h"

#include <accctrl.h>
#include <aclapi.h>

#include <gtest/gtest.h>
#include <shlwapi.h>

#include <map>
#include <string>
#include <string_view>
#include <type_traits>

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

// True when this step is the one to fail. Nothing, and what only opens a key, is no step.
bool Step(const std::string& text) {
  if (!g_recording.on || text.empty() || text.starts_with("opened ")) return false;
  g_recording.steps.push_back(text);
  return g_recording.steps.size() == g_recording.failing;
}

std::string Utf8(const char* text) {
  return text;
}
std::string Utf8(const wchar_t* text) {
  return text == nullptr ? std::string() : ToUtf8(text);
}

template <class Unit>
std::string NameOf(HKEY root, const Unit* path) {
  if (root == HKEY_LOCAL_MACHINE) return "HKLM\\" + Utf8(path);
  if (root == HKEY_CURRENT_USER) return "HKCU\\" + Utf8(path);
  return g_recording.open[root] + "\\" + Utf8(path);
}

// Of the arguments of a call only the key that it opened is kept, under the name in the step's text.
template <class Argument>
void Keep(Argument, const std::string&) {}
void Keep(PHKEY key, const std::string& step) {
  g_recording.open[*key] = step.substr(step.find(' ') + 1);
}

// Looked up before any hook stands in its place.
const auto g_find = Own<decltype(::GetProcAddress)>(L"kernel32.dll", "GetProcAddress");

// A function of the platform's with a step in front, which `Describe` names by the call's arguments.
template <class Function, class Describe>
struct StandIn;
template <class Result, class... Arguments, class Describe>
struct StandIn<Result(Arguments...), Describe> {
  static inline Result (*real)(Arguments...) = nullptr;
  static Result Call(Arguments... arguments) {
    const std::string step = Describe()(arguments...);
    if (Step(step)) {
      SetLastError(g_recording.error);
      if constexpr (std::is_same_v<Result, LONG> || std::is_same_v<Result, DWORD>) return Result(g_recording.error);
      if constexpr (std::is_same_v<Result, HANDLE>) return INVALID_HANDLE_VALUE;
      return Result{};
    }
    const Result result = real(arguments...);
    if (result == Result{}) (Keep(arguments, step), ...);
    return result;
  }
};

struct Row {
  const char* name;
  void* replacement;
};

template <class Function, class Describe>
Row Replace(const char* name, Describe /*describe*/) {
  using Stand = StandIn<Function, Describe>;
  for (const wchar_t* const library : {L"advapi32.dll", L"kernel32.dll", L"shlwapi.dll"}) {
    void* const found = reinterpret_cast<void*>(g_find(GetModuleHandleW(library), name));
    if (found != nullptr) Stand::real = reinterpret_cast<decltype(Stand::real)>(found);
  }
  return {name, reinterpret_cast<void*>(&Stand::Call)};
}

const auto kCreates = [](HKEY root, const auto* path, auto...) { return "create " + NameOf(root, path); };
const auto kWrites = [](HKEY key, const auto* name, DWORD, DWORD type, auto...) {
  return (type == REG_DWORD ? "number " : "text ") + g_recording.open[key] + " | " + Utf8(name);
};
const auto kDeletesKey = [](HKEY root, const auto* path) { return "delete key " + NameOf(root, path); };

// What the code under test looks up itself.
FARPROC WINAPI Find(HMODULE module, LPCSTR name) {
  const std::string_view wanted = reinterpret_cast<uintptr_t>(name) > 0xFFFF ? name : "";
  void* replacement = nullptr;
  if (wanted == "SHDeleteKeyW") replacement = Replace<decltype(::SHDeleteKeyW)>(name, kDeletesKey).replacement;
  if (wanted == "SetNamedSecurityInfoW") {
    const auto secures = [](LPWSTR path, auto...) { return "security " + Utf8(path); };
    replacement = Replace<decltype(::SetNamedSecurityInfoW)>(name, secures).replacement;
  }
  if (replacement != nullptr) return reinterpret_cast<FARPROC>(replacement);
  const bool entry = wanted == "DllRegisterServer" || wanted == "DllUnregisterServer";
  if (!entry || !Step("entry " + std::string(wanted))) return g_find(module, name);
  SetLastError(g_recording.error);
  return nullptr;
}

// The module keeps the deletion function for good once it has found it, so it has to find this one first: before any
// test runs. Outside a recording it is the real one.
const bool g_deletionBound = [] {
  const ImportHook find(GetModuleHandleW(nullptr), "GetProcAddress", &Find);
  (void)DeleteKeyTree(HKEY_CURRENT_USER, L"Software\\Lumen tests: no such key");
  return true;
}();

}  // namespace

FaultSteps::FaultSteps() {
  EXPECT_TRUE(g_deletionBound);
  const Row rows[] = {
      Replace<decltype(::RegOpenKeyExW)>(
          "RegOpenKeyExW", [](HKEY root, LPCWSTR path, auto...) { return "opened " + NameOf(root, path); }),
      Replace<decltype(::RegCreateKeyExW)>("RegCreateKeyExW", kCreates),
      Replace<decltype(::RegCreateKeyExA)>("RegCreateKeyExA", kCreates),
      Replace<decltype(::RegSetValueExW)>("RegSetValueExW", kWrites),
      Replace<decltype(::RegSetValueExA)>("RegSetValueExA", kWrites),
      Replace<decltype(::RegDeleteValueW)>(
          "RegDeleteValueW",
          [](HKEY key, LPCWSTR name) { return "delete value " + g_recording.open[key] + " | " + Utf8(name); }),
      Replace<decltype(::CreateFileW)>("CreateFileW", [](LPCWSTR path, auto...) { return "open " + Utf8(path); }),
      Replace<decltype(::DeleteFileW)>("DeleteFileW", [](LPCWSTR path) { return "delete " + Utf8(path); }),
      Replace<decltype(::SetFileAttributesW)>("SetFileAttributesW",
                                              [](LPCWSTR path, DWORD) { return "attributes " + Utf8(path); }),
      Replace<decltype(::MoveFileExW)>("MoveFileExW", [](LPCWSTR path, auto...) { return "queue " + Utf8(path); }),
      Replace<decltype(::SHDeleteKeyA)>("SHDeleteKeyA", kDeletesKey),
      Replace<decltype(::CreateProcessW)>("CreateProcessW",
                                          [](LPCWSTR, LPWSTR line, auto...) { return "start " + Utf8(line); }),
      Replace<decltype(::LoadLibraryW)>("LoadLibraryW",
                                        [](LPCWSTR path) {
                                          const bool ofSystem = _wcsnicmp(path, L"C:\\windows\\system32\\", 20) == 0;
                                          return ofSystem ? std::string() : "load " + Utf8(path);
                                        }),
      {"GetProcAddress", reinterpret_cast<void*>(&Find)},
  };
  for (const Row& row : rows) {
    hooks_.push_back(std::make_unique<ImportHook>(GetModuleHandleW(nullptr), row.name, row.replacement));
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
