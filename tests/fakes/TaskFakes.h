// Both schedulers as the test's own objects. Every call that the notifier task makes is recorded with its arguments and
// can be made to fail by its number; so can the platform's own calls around them.
//
// An object is bare slots: one function a slot, whatever the interface, that looks its row up in a table. The slots
// come from the platform's headers, so a row cannot stand for another method than the one it names.
#pragma once

// clang-format off
#include <windows.h>
#include <mstask.h>
#include <objidl.h>
#include <taskschd.h>
#include <wtsapi32.h>
// clang-format on

#include <algorithm>
#include <array>
#include <cstring>
#include <list>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "engine/WideText.h"
#include "tests/support/ImportHook.h"
#include "tests/support/Texts.h"

namespace task_fakes {

struct Record {
  Lines calls;                   // "Interface::Method argument argument", in order
  std::optional<size_t> failAt;  // the call that fails
  HRESULT failure = E_UNEXPECTED;
  bool taskExists = false;
  WORD triggers = 1;       // of the existing task
  int32_t living = 0;      // objects that are not released yet
  int32_t apartments = 0;  // entered and not left
  std::string debugOutput;

  // Records a call; its result is S_OK, or the failure when its turn has come.
  HRESULT Note(const std::string& call) {
    calls.push_back(call);
    return failAt == calls.size() - 1 ? failure : S_OK;
  }
};
inline Record g_record;

using Arguments = std::array<uintptr_t, 8>;

struct Row {
  size_t slot;
  std::string_view name;        // with the interface, as which an object is known
  std::string_view noted = "";  // pairs: t(ext), n(umber), v(ariant) or r(ecord), and the argument's place
  std::string_view given = "";  // hands out an object of this interface
  size_t givenAt = 0;           // by the pointer in this argument
  HRESULT (*effect)(const Arguments& arguments) = nullptr;
};

// A pointer to a virtual method holds the offset of its slot, plus one.
template <class Method>
size_t SlotOf(Method method) {
  uintptr_t words[2] = {};
  static_assert(sizeof(method) == sizeof(words));
  std::memcpy(words, &method, sizeof(words));
  return (words[0] - 1) / sizeof(void*);
}

inline HRESULT FindExisting(const Arguments& /*arguments*/) {
  return g_record.taskExists ? S_OK : static_cast<HRESULT>(0x80070002);
}

inline HRESULT CountTriggers(const Arguments& arguments) {
  *reinterpret_cast<WORD*>(arguments[0]) = g_record.triggers;
  return S_OK;
}

// The existing item starts at 42 minutes past.
inline HRESULT FillRecord(const Arguments& arguments) {
  auto* const record = reinterpret_cast<TASK_TRIGGER*>(arguments[0]);
  record->wBeginYear = 9999;
  record->wBeginMonth = record->wBeginDay = 1;
  record->wStartMinute = 42;
  return S_OK;
}

#define METHOD(type, name) SlotOf(&type::name), #type "::" #name

inline const Row kRows[] = {
    {METHOD(ITaskService, Connect), "v0v1v2v3"},
    {METHOD(ITaskService, GetFolder), "t0", "ITaskFolder", 1},
    {METHOD(ITaskService, NewTask), "n0", "ITaskDefinition", 1},
    {METHOD(ITaskFolder, GetTask), "t0", "IRegisteredTask", 1, FindExisting},
    {METHOD(ITaskFolder, DeleteTask), "t0", "", 0, FindExisting},
    {METHOD(ITaskFolder, RegisterTaskDefinition), "t0n2v3v4n5v6", "IRegisteredTask", 7},
    {METHOD(IRegisteredTask, get_Definition), "", "ITaskDefinition"},
    {METHOD(ITaskDefinition, get_Settings), "", "ITaskSettings"},
    {METHOD(ITaskDefinition, get_RegistrationInfo), "", "IRegistrationInfo"},
    {METHOD(ITaskDefinition, get_Triggers), "", "ITriggerCollection"},
    {METHOD(ITaskDefinition, get_Actions), "", "IActionCollection"},
    {METHOD(ITaskSettings, put_StartWhenAvailable), "n0"},
    {METHOD(ITaskSettings, put_Compatibility), "n0"},
    {METHOD(ITaskSettings, put_DisallowStartIfOnBatteries), "n0"},
    {METHOD(ITaskSettings, put_RunOnlyIfNetworkAvailable), "n0"},
    {METHOD(IRegistrationInfo, put_Author), "t0"},
    {METHOD(IRegistrationInfo, put_Description), "t0"},
    {METHOD(ITriggerCollection, get_Count), "", "", 0, CountTriggers},
    {METHOD(ITriggerCollection, get_Item), "n0", "IDailyTrigger", 1},
    {METHOD(ITriggerCollection, Create), "n0", "IDailyTrigger", 1},
    {0, "IDailyTrigger::QueryInterface", "", "IDailyTrigger", 1},
    {METHOD(IDailyTrigger, put_Id), "t0"},
    {METHOD(IDailyTrigger, put_StartBoundary), "t0"},
    {METHOD(IDailyTrigger, get_Repetition), "", "IRepetitionPattern"},
    {METHOD(IDailyTrigger, put_DaysInterval), "n0"},
    {METHOD(IRepetitionPattern, put_Duration), "t0"},
    {METHOD(IRepetitionPattern, put_Interval), "t0"},
    {METHOD(IActionCollection, Clear)},
    {METHOD(IActionCollection, Create), "n0", "IExecAction", 1},
    {0, "IExecAction::QueryInterface", "", "IExecAction", 1},
    {METHOD(IExecAction, put_Path), "t0"},
    {METHOD(IExecAction, put_Arguments), "t0"},

    {METHOD(ITaskScheduler, Activate), "t0", "ITask", 2, FindExisting},
    {METHOD(ITaskScheduler, NewWorkItem), "t0", "ITask", 3},
    {METHOD(ITaskScheduler, Delete), "t0", "", 0, FindExisting},
    {0, "ITask::QueryInterface", "", "IPersistFile", 1},
    {METHOD(ITask, SetAccountInformation), "t0t1"},
    {METHOD(ITask, SetCreator), "t0"},
    {METHOD(ITask, SetComment), "t0"},
    {METHOD(ITask, SetApplicationName), "t0"},
    {METHOD(ITask, SetFlags), "n0"},
    {METHOD(ITask, SetParameters), "t0"},
    {METHOD(ITask, CreateTrigger), "", "ITaskTrigger", 1},
    {METHOD(ITask, GetTriggerCount), "", "", 0, CountTriggers},
    {METHOD(ITask, GetTrigger), "n0", "ITaskTrigger", 1},
    {METHOD(ITaskTrigger, SetTrigger), "r0"},
    {METHOD(ITaskTrigger, GetTrigger), "", "", 0, FillRecord},
    {METHOD(IPersistFile, Save), "t0n1"},
};

inline std::string TextOrNull(const void* text) {
  return text == nullptr ? "null" : "'" + ToUtf8(static_cast<const wchar_t*>(text)) + "'";
}

// Type, start and repetition; the date need only be one.
inline std::string RecordText(const TASK_TRIGGER& record) {
  std::string text = record.cbTriggerSize == sizeof(record) && record.wBeginYear >= 2000 && record.wBeginMonth != 0 &&
                             record.wBeginDay != 0
                         ? "dated"
                         : "lacks its date or size";
  for (const DWORD part : {static_cast<DWORD>(record.TriggerType), static_cast<DWORD>(record.wStartHour),
                           static_cast<DWORD>(record.wStartMinute), record.MinutesInterval, record.MinutesDuration}) {
    text += " " + std::to_string(part);
  }
  return text;
}

inline std::string NotedText(char as, uintptr_t value) {
  const auto* const memory = reinterpret_cast<const void*>(value);
  if (as == 't') return TextOrNull(memory);
  if (as == 'n') return std::to_string(static_cast<int16_t>(value));
  if (as == 'r') return RecordText(*static_cast<const TASK_TRIGGER*>(memory));
  const auto* const variant = static_cast<const VARIANT*>(memory);
  return V_VT(variant) == VT_EMPTY ? "-" : V_VT(variant) == VT_BSTR ? TextOrNull(V_BSTR(variant)) : "?";
}

// The first field is the table of functions, as COM has it.
struct Object {
  explicit Object(std::string_view is);
  uintptr_t Call(size_t slot, const Arguments& arguments);

  void* const* table;
  std::string_view interface_;
  ULONG count = 1;
};

template <size_t Slot>
uintptr_t WINAPI Thunk(Object* self, uintptr_t a, uintptr_t b, uintptr_t c, uintptr_t d, uintptr_t e, uintptr_t f,
                       uintptr_t g, uintptr_t h) {
  // The platform's calling convention leaves the cleaning to the caller: surplus arguments are only never looked at.
  return self->Call(Slot, {a, b, c, d, e, f, g, h});
}

template <size_t... Slots>
std::array<void*, sizeof...(Slots)> TableOf(std::index_sequence<Slots...> /*slots*/) {
  return {reinterpret_cast<void*>(&Thunk<Slots>)...};
}

inline Object::Object(std::string_view is) : interface_(is) {
  static const auto slots = TableOf(std::make_index_sequence<64>());
  table = slots.data();
  ++g_record.living;
}

inline uintptr_t Object::Call(size_t slot, const Arguments& arguments) {
  if (slot == 1) return ++count;
  if (slot == 2) {
    const ULONG left = --count;
    g_record.living -= left == 0 ? 1 : 0;
    if (left == 0) delete this;
    return left;
  }
  const auto* const row = std::find_if(std::begin(kRows), std::end(kRows), [&](const Row& candidate) {
    return candidate.slot == slot && candidate.name.substr(0, candidate.name.find(':')) == interface_;
  });
  if (row == std::end(kRows)) {
    g_record.Note("slot " + std::to_string(slot) + " that is not expected");
    return static_cast<uintptr_t>(E_NOTIMPL);
  }
  std::string call(row->name);
  for (size_t i = 0; i < row->noted.size(); i += 2) {
    call += " " + NotedText(row->noted[i], arguments[static_cast<size_t>(row->noted[i + 1] - '0')]);
  }
  HRESULT result = g_record.Note(call);
  if (SUCCEEDED(result) && row->effect != nullptr) result = row->effect(arguments);
  if (SUCCEEDED(result) && !row->given.empty()) {
    *reinterpret_cast<Object**>(arguments[row->givenAt]) = new Object(row->given);
  }
  return static_cast<uintptr_t>(result);
}

constexpr DWORD kNone = ~0u;
inline HRESULT WINAPI EnterEx(void* /*reserved*/, DWORD how) {
  const HRESULT noted = g_record.Note(how == kNone ? "CoInitialize" : "CoInitializeEx");
  if (SUCCEEDED(noted)) ++g_record.apartments;
  return noted;
}
inline HRESULT WINAPI Enter(void* reserved) {
  return EnterEx(reserved, kNone);
}
inline void WINAPI Leave() {
  --g_record.apartments;
}
inline HRESULT WINAPI Secure(void*, LONG, void*, void*, DWORD authentication, DWORD impersonation, void*, DWORD,
                             void*) {
  return g_record.Note("CoInitializeSecurity " + std::to_string(authentication) + " " + std::to_string(impersonation));
}
inline HRESULT WINAPI Create(REFCLSID clsid, IUnknown* /*outer*/, DWORD context, REFIID /*iid*/, void** out) {
  const bool old = IsEqualGUID(clsid, CLSID_CTaskScheduler);
  const char* const name = old ? "old" : IsEqualGUID(clsid, __uuidof(TaskScheduler)) ? "new" : "unknown";
  const HRESULT noted = g_record.Note(std::string("CoCreateInstance ") + name + " " + std::to_string(context));
  if (SUCCEEDED(noted)) *out = new Object(old ? "ITaskScheduler" : "ITaskService");
  return noted;
}
inline void WINAPI Debug(const char* text) {
  g_record.debugOutput += text;
}

// While it lives, the schedulers' classes, COM's start and end and the debug output are the test's. The record is new.
class Stage {
 public:
  Stage() {
    g_record = Record();
    const HMODULE self = GetModuleHandleW(nullptr);
    hooks_.emplace_back(self, "CoInitialize", &Enter);
    hooks_.emplace_back(self, "CoInitializeEx", &EnterEx);
    hooks_.emplace_back(self, "CoInitializeSecurity", &Secure);
    hooks_.emplace_back(self, "CoUninitialize", &Leave);
    hooks_.emplace_back(self, "CoCreateInstance", &Create);
    hooks_.emplace_back(self, "OutputDebugStringA", &Debug);
  }

 private:
  std::list<ImportHook> hooks_;
};

}  // namespace task_fakes

// Functions that the task looks up at run time: the session functions of the logged-on users, and the system's random
// generator. Once FindLateFunctions was called they are the test's for the rest of the process.
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
