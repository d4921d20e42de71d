// Functions that code under test looks up at run time: the session functions of the logged-on users, and the system's
// random generator. Once FindLateFunctions was called they are the test's for the rest of the process.
#pragma once

#include <windows.h>

#include <wtsapi32.h>

#include <cstdint>
#include <cstring>
#include <optional>
#include <string>
#include <vector>

#include "engine/WideText.h"
#include "tests/support/ImportHook.h"

namespace late_functions {

struct Session {
  DWORD id;
  std::optional<uint32_t> state;  // nothing: the question fails with error 5
};

struct Machine {
  const char* missing = nullptr;                                          // the session function that the library lacks
  std::optional<std::vector<Session>> sessions = std::vector<Session>();  // nothing: listing fails with error 8
  WideString user;
  WideString domain;
  DWORD userError = 0;
  DWORD domainError = 0;
  int32_t allocations = 0;
  std::vector<uint32_t> draws;  // what the generator gives; it fails when it has run out
};
inline Machine g_machine;

inline void* Allocate(const void* content, size_t size) {
  ++g_machine.allocations;
  void* const memory = ::operator new(size);
  std::memcpy(memory, content, size);
  return memory;
}

inline void WINAPI FreeMemory(void* memory) {
  --g_machine.allocations;
  ::operator delete(memory);
}

inline BOOL WINAPI Enumerate(HANDLE, DWORD, DWORD, WTS_SESSION_INFOA** out, DWORD* count) {
  if (!g_machine.sessions) return SetLastError(ERROR_NOT_ENOUGH_MEMORY), FALSE;
  std::vector<WTS_SESSION_INFOA> all;
  for (const Session& session : *g_machine.sessions) all.push_back({session.id, nullptr, WTSListen});
  *count = static_cast<DWORD>(all.size());
  *out = static_cast<WTS_SESSION_INFOA*>(Allocate(all.data(), all.size() * sizeof(WTS_SESSION_INFOA)));
  return TRUE;
}

inline BOOL WINAPI QueryState(HANDLE, DWORD id, WTS_INFO_CLASS what, char** out, DWORD* bytes) {
  for (const Session& session : g_machine.sessions.value_or(std::vector<Session>())) {
    if (session.id != id || what != WTSConnectState || !session.state) continue;
    *bytes = sizeof(uint32_t);
    *out = static_cast<char*>(Allocate(&*session.state, sizeof(uint32_t)));
    return TRUE;
  }
  return SetLastError(ERROR_ACCESS_DENIED), FALSE;
}

inline BOOL WINAPI QueryName(HANDLE, DWORD, WTS_INFO_CLASS what, wchar_t** out, DWORD* bytes) {
  const bool user = what == WTSUserName;
  const WideString& name = user ? g_machine.user : g_machine.domain;
  *bytes = static_cast<DWORD>((name.size() + 1) * sizeof(wchar_t));
  *out = static_cast<wchar_t*>(Allocate(name.c_str(), *bytes));
  const DWORD error = user ? g_machine.userError : g_machine.domainError;
  if (error != 0) SetLastError(error);
  return TRUE;
}

inline BOOLEAN WINAPI Generate(void* out, ULONG size) {
  if (g_machine.draws.empty() || size != sizeof(uint32_t)) return FALSE;
  std::memcpy(out, &g_machine.draws.front(), sizeof(uint32_t));
  g_machine.draws.erase(g_machine.draws.begin());
  return TRUE;
}

inline auto* const g_original = Own<decltype(GetProcAddress)>(L"kernel32.dll", "GetProcAddress");

inline FARPROC WINAPI Find(HMODULE module, const char* name) {
  static const struct {
    const char* name;
    void* function;
  } rows[] = {{"WTSFreeMemory", reinterpret_cast<void*>(&FreeMemory)},
              {"WTSEnumerateSessionsA", reinterpret_cast<void*>(&Enumerate)},
              {"WTSQuerySessionInformationA", reinterpret_cast<void*>(&QueryState)},
              {"WTSQuerySessionInformationW", reinterpret_cast<void*>(&QueryName)},
              {"SystemFunction036", reinterpret_cast<void*>(&Generate)}};
  if (g_machine.missing != nullptr && std::strcmp(name, g_machine.missing) == 0) return nullptr;
  for (const auto& row : rows) {
    if (std::strcmp(row.name, name) == 0) return reinterpret_cast<FARPROC>(row.function);
  }
  return g_original(module, name);
}

// For the rest of the process: what was found once is kept by those who found it.
inline void FindLateFunctions() {
  static const ImportHook hook(GetModuleHandleW(nullptr), "GetProcAddress", &Find);
  g_machine = Machine();
}

}  // namespace late_functions
