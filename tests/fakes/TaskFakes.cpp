#include "tests/fakes/TaskFakes.h"

// clang-format off
#include <mstask.h>
#include <objidl.h>
#include <taskschd.h>
// clang-format on

#include <algorithm>
#include <array>
#include <cstring>
#include <utility>

#include "engine/ComSupport.h"

namespace task_fakes {

Record g_record;

HRESULT Record::Note(const std::string& call) {
  const bool fails = failAt == calls.size();
  calls.push_back(call);
  return fails ? failure : S_OK;
}

namespace {

enum class Kind : uint8_t {
  None,
  Service,
  Folder,
  Registered,
  Definition,
  Settings,
  Registration,
  Triggers,
  Trigger,
  Repetition,
  Actions,
  Action,
  OldScheduler,
  OldItem,
  OldTrigger,
  OldFile,
};

using Arguments = std::array<uintptr_t, 9>;

// What is noted of an argument.
enum class As : uint8_t { Text, Number };
struct Noted {
  As as;
  size_t index;
};
// What a call hands out: an object of this kind, by the pointer in this argument.
struct Given {
  Kind kind = Kind::None;
  size_t index = 0;
};
struct Row {
  Kind kind;
  size_t slot;
  const char* name;
  std::vector<Noted> noted = {};
  Given given = {};
  HRESULT (*effect)(const Arguments& arguments, std::string* call) = nullptr;  // instead of success, when it has one
};

// A pointer to a virtual method holds the offset of its slot, plus one.
template <class Method>
size_t SlotOf(Method method) {
  uintptr_t words[2] = {};
  static_assert(sizeof(method) == sizeof(words));
  std::memcpy(words, &method, sizeof(words));
  return (words[0] - 1) / sizeof(void*);
}

HRESULT FindExisting(const Arguments& /*arguments*/, std::string* /*call*/) {
  return g_record.taskExists ? S_OK : static_cast<HRESULT>(0x80070002);
}

HRESULT CountTriggers(const Arguments& arguments, std::string* /*call*/) {
  *reinterpret_cast<LONG*>(arguments[0]) = g_record.triggers;
  return S_OK;
}

HRESULT CountOldTriggers(const Arguments& arguments, std::string* /*call*/) {
  *reinterpret_cast<WORD*>(arguments[0]) = static_cast<WORD>(g_record.triggers);
  return S_OK;
}

HRESULT NoteRegistration(const Arguments& arguments, std::string* call) {
  const auto* const user = reinterpret_cast<const VARIANT*>(arguments[3]);
  const auto* const password = reinterpret_cast<const VARIANT*>(arguments[4]);
  *call += " '" + (V_VT(user) == VT_BSTR ? ToUtf8(V_BSTR(user)) : "not a text") + "'";
  *call += V_VT(password) == VT_EMPTY ? " no password" : " a password";
  return S_OK;
}

HRESULT NoteConnection(const Arguments& arguments, std::string* call) {
  for (size_t i = 0; i < 4; ++i)
    *call += V_VT(reinterpret_cast<const VARIANT*>(arguments[i])) == VT_EMPTY ? " -" : " ?";
  return S_OK;
}

HRESULT NoteRecord(const Arguments& arguments, std::string* call) {
  const auto& record = *reinterpret_cast<const TASK_TRIGGER*>(arguments[0]);
  SYSTEMTIME today = {};
  GetLocalTime(&today);
  const bool dated = record.wBeginYear >= today.wYear && record.wBeginMonth != 0 && record.wBeginDay != 0;
  for (const uint32_t part : {static_cast<uint32_t>(record.TriggerType), static_cast<uint32_t>(record.wStartHour),
                              static_cast<uint32_t>(record.wStartMinute), static_cast<uint32_t>(record.MinutesInterval),
                              static_cast<uint32_t>(record.MinutesDuration)}) {
    *call += " " + std::to_string(part);
  }
  *call += dated && record.cbTriggerSize == sizeof(record) ? " whole" : " lacks its date or size";
  return S_OK;
}

// The existing item starts at 42 minutes past.
HRESULT FillRecord(const Arguments& arguments, std::string* /*call*/) {
  auto* const record = reinterpret_cast<TASK_TRIGGER*>(arguments[0]);
  record->wBeginYear = 9999;
  record->wBeginMonth = record->wBeginDay = 1;
  record->wStartMinute = 42;
  return S_OK;
}

#define METHOD(type, name) SlotOf(&type::name), #type "::" #name

const std::vector<Row>& Rows() {
  using enum Kind;
  constexpr Noted text0 = {As::Text, 0};
  constexpr Noted number0 = {As::Number, 0};
  static const std::vector<Row> rows = {
      {Service, METHOD(ITaskService, Connect), {}, {}, NoteConnection},
      {Service, METHOD(ITaskService, GetFolder), {text0}, {Folder, 1}},
      {Service, METHOD(ITaskService, NewTask), {number0}, {Definition, 1}},
      {Folder, METHOD(ITaskFolder, GetTask), {text0}, {Registered, 1}, FindExisting},
      {Folder, METHOD(ITaskFolder, DeleteTask), {text0}, {}, FindExisting},
      {Folder,
       METHOD(ITaskFolder, RegisterTaskDefinition),
       {text0, {As::Number, 2}, {As::Number, 5}},
       {Registered, 7},
       NoteRegistration},
      {Registered, METHOD(IRegisteredTask, get_Definition), {}, {Definition, 0}},
      {Definition, METHOD(ITaskDefinition, get_Settings), {}, {Settings, 0}},
      {Definition, METHOD(ITaskDefinition, get_RegistrationInfo), {}, {Registration, 0}},
      {Definition, METHOD(ITaskDefinition, get_Triggers), {}, {Triggers, 0}},
      {Definition, METHOD(ITaskDefinition, get_Actions), {}, {Actions, 0}},
      {Settings, METHOD(ITaskSettings, put_StartWhenAvailable), {number0}},
      {Settings, METHOD(ITaskSettings, put_Compatibility), {number0}},
      {Settings, METHOD(ITaskSettings, put_DisallowStartIfOnBatteries), {number0}},
      {Settings, METHOD(ITaskSettings, put_RunOnlyIfNetworkAvailable), {number0}},
      {Registration, METHOD(IRegistrationInfo, put_Author), {text0}},
      {Registration, METHOD(IRegistrationInfo, put_Description), {text0}},
      {Triggers, METHOD(ITriggerCollection, get_Count), {}, {}, CountTriggers},
      {Triggers, METHOD(ITriggerCollection, get_Item), {number0}, {Trigger, 1}},
      {Triggers, METHOD(ITriggerCollection, Create), {number0}, {Trigger, 1}},
      {Trigger, 0, "ITrigger::QueryInterface", {}, {Trigger, 1}},
      {Trigger, METHOD(ITrigger, put_Id), {text0}},
      {Trigger, METHOD(ITrigger, put_StartBoundary), {text0}},
      {Trigger, METHOD(ITrigger, get_Repetition), {}, {Repetition, 0}},
      {Trigger, METHOD(IDailyTrigger, put_DaysInterval), {number0}},
      {Repetition, METHOD(IRepetitionPattern, put_Duration), {text0}},
      {Repetition, METHOD(IRepetitionPattern, put_Interval), {text0}},
      {Actions, METHOD(IActionCollection, Clear)},
      {Actions, METHOD(IActionCollection, Create), {number0}, {Action, 1}},
      {Action, 0, "IAction::QueryInterface", {}, {Action, 1}},
      {Action, METHOD(IExecAction, put_Path), {text0}},
      {Action, METHOD(IExecAction, put_Arguments), {text0}},

      {OldScheduler, METHOD(ITaskScheduler, Activate), {text0}, {OldItem, 2}, FindExisting},
      {OldScheduler, METHOD(ITaskScheduler, NewWorkItem), {text0}, {OldItem, 3}},
      {OldScheduler, METHOD(ITaskScheduler, Delete), {text0}, {}, FindExisting},
      {OldItem, 0, "ITask::QueryInterface", {}, {OldFile, 1}},
      {OldItem, METHOD(ITask, SetAccountInformation), {text0, {As::Text, 1}}},
      {OldItem, METHOD(ITask, SetCreator), {text0}},
      {OldItem, METHOD(ITask, SetComment), {text0}},
      {OldItem, METHOD(ITask, SetApplicationName), {text0}},
      {OldItem, METHOD(ITask, SetFlags), {number0}},
      {OldItem, METHOD(ITask, SetParameters), {text0}},
      {OldItem, METHOD(ITask, CreateTrigger), {}, {OldTrigger, 1}},
      {OldItem, METHOD(ITask, GetTriggerCount), {}, {}, CountOldTriggers},
      {OldItem, METHOD(ITask, GetTrigger), {number0}, {OldTrigger, 1}},
      {OldTrigger, METHOD(ITaskTrigger, SetTrigger), {}, {}, NoteRecord},
      {OldTrigger, METHOD(ITaskTrigger, GetTrigger), {}, {}, FillRecord},
      {OldFile, METHOD(IPersistFile, Save), {text0, {As::Number, 1}}},
  };
  return rows;
}

std::string NotedText(const Noted& noted, const Arguments& arguments) {
  const uintptr_t value = arguments[noted.index];
  if (noted.as == As::Number) return " " + std::to_string(static_cast<int16_t>(value));
  const auto* const text = reinterpret_cast<const wchar_t*>(value);
  return text == nullptr ? " null" : " '" + ToUtf8(text) + "'";
}

// The first field is the table of functions, as COM has it.
struct Object {
  explicit Object(Kind k);
  uintptr_t Call(size_t slot, const Arguments& arguments);

  void* const* table;
  Kind kind;
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

Object::Object(Kind k) : kind(k) {
  static const auto slots = TableOf(std::make_index_sequence<64>());
  table = slots.data();
  ++g_record.living;
}

uintptr_t Object::Call(size_t slot, const Arguments& arguments) {
  if (slot == 1) return ++count;
  if (slot == 2) {
    const ULONG left = --count;
    if (left == 0) {
      --g_record.living;
      delete this;
    }
    return left;
  }
  const auto row = std::find_if(Rows().begin(), Rows().end(),
                                [&](const Row& candidate) { return candidate.kind == kind && candidate.slot == slot; });
  if (row == Rows().end()) {
    g_record.Note("slot " + std::to_string(slot) + " that is not expected");
    return static_cast<uintptr_t>(E_NOTIMPL);
  }
  std::string call = row->name;
  for (const Noted& noted : row->noted) call += NotedText(noted, arguments);
  const HRESULT own = row->effect == nullptr ? S_OK : row->effect(arguments, &call);
  const HRESULT noted = g_record.Note(call);
  const HRESULT result = FAILED(noted) ? noted : own;
  if (SUCCEEDED(result) && row->given.kind != Kind::None) {
    *reinterpret_cast<Object**>(arguments[row->given.index]) = new Object(row->given.kind);
  }
  return static_cast<uintptr_t>(result);
}

template <Kind kKind>
class Factory final : public IClassFactory {
 public:
  HRESULT STDMETHODCALLTYPE QueryInterface(REFIID /*iid*/, void** out) override {
    *out = this;
    return S_OK;
  }
  ULONG STDMETHODCALLTYPE AddRef() override { return 2; }
  ULONG STDMETHODCALLTYPE Release() override { return 1; }
  HRESULT STDMETHODCALLTYPE CreateInstance(IUnknown* /*outer*/, REFIID /*iid*/, void** out) override {
    *out = new Object(kKind);
    return S_OK;
  }
  HRESULT STDMETHODCALLTYPE LockServer(BOOL /*lock*/) override { return S_OK; }
};

DWORD RegisterClass(REFCLSID clsid, IClassFactory* factory) {
  DWORD number = 0;
  CoRegisterClassObject(clsid, factory, CLSCTX_INPROC_SERVER, REGCLS_MULTIPLEUSE, &number);
  return number;
}

auto* const g_enterEx = Own<decltype(CoInitializeEx)>(L"ole32.dll", "CoInitializeEx");
auto* const g_leave = Own<decltype(CoUninitialize)>(L"ole32.dll", "CoUninitialize");
auto* const g_create = Own<decltype(CoCreateInstance)>(L"ole32.dll", "CoCreateInstance");

HRESULT Entered(const char* name, DWORD how) {
  const HRESULT noted = g_record.Note(name);
  if (FAILED(noted)) return noted;
  ++g_record.apartments;
  return g_enterEx(nullptr, how);
}

HRESULT WINAPI Enter(void* /*reserved*/) {
  return Entered("CoInitialize", COINIT_APARTMENTTHREADED);
}
HRESULT WINAPI EnterEx(void* /*reserved*/, DWORD how) {
  return Entered("CoInitializeEx", how);
}
void WINAPI Leave() {
  --g_record.apartments;
  g_leave();
}
HRESULT WINAPI Secure(void*, LONG, void*, void*, DWORD authentication, DWORD impersonation, void*, DWORD, void*) {
  return g_record.Note("CoInitializeSecurity " + std::to_string(authentication) + " " + std::to_string(impersonation));
}
HRESULT WINAPI Create(REFCLSID clsid, IUnknown* outer, DWORD context, REFIID iid, void** out) {
  const HRESULT noted = g_record.Note("CoCreateInstance " + std::to_string(context));
  return FAILED(noted) ? noted : g_create(clsid, outer, context, iid, out);
}
void WINAPI Debug(const char* text) {
  g_record.debugOutput += text;
}

}  // namespace

Stage::Stage()
    : enter_(GetModuleHandleW(nullptr), "CoInitialize", &Enter),
      enterEx_(GetModuleHandleW(nullptr), "CoInitializeEx", &EnterEx),
      secure_(GetModuleHandleW(nullptr), "CoInitializeSecurity", &Secure),
      leave_(GetModuleHandleW(nullptr), "CoUninitialize", &Leave),
      create_(GetModuleHandleW(nullptr), "CoCreateInstance", &Create),
      debug_(GetModuleHandleW(nullptr), "OutputDebugStringA", &Debug) {
  static Factory<Kind::Service> newFactory;
  static Factory<Kind::OldScheduler> oldFactory;
  g_record = Record();
  newClass_ = RegisterClass(__uuidof(TaskScheduler), &newFactory);
  oldClass_ = RegisterClass(CLSID_CTaskScheduler, &oldFactory);
}

Stage::~Stage() {
  CoRevokeClassObject(newClass_);
  CoRevokeClassObject(oldClass_);
}

}  // namespace task_fakes
