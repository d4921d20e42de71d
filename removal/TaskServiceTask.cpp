// The notifier task in the task service. Each call of its fixed sequence has a report code of its own.
#include <windows.h>

#include <taskschd.h>

#include <cstdio>

#include "engine/ComSupport.h"
#include "removal/NotifierTask.h"
#include "removal/ScheduledTask.h"

namespace {

constexpr wchar_t kTriggerId[] = L"NotificationTrigger";
constexpr wchar_t kRepetitionInterval[] = L"PT1H";
constexpr wchar_t kRepetitionDuration[] = L"P1D";
constexpr wchar_t kStartTemplate[] = L"2000-01-01T00:00:00Z";
constexpr HRESULT kTaskAbsent = static_cast<HRESULT>(0x80070002);

// Creating and removing open the service by the same steps, but report under codes of their own.
struct OpeningCodes {
  ReportCode com, security, service, connection, folder;
};
constexpr OpeningCodes kCreating = {ReportCode::TaskComNotInitialized, ReportCode::TaskSecurityNotSet,
                                    ReportCode::TaskServiceNotCreated, ReportCode::TaskServiceNotConnected,
                                    ReportCode::TaskFolderNotOpened};
constexpr OpeningCodes kRemoving = {ReportCode::TaskRemovalComNotInitialized, ReportCode::TaskRemovalSecurityNotSet,
                                    ReportCode::TaskRemovalServiceNotCreated,
                                    ReportCode::TaskRemovalServiceNotConnected, ReportCode::TaskRemovalFolderNotOpened};

// The host's thread owns a window too, so it enters the kind of apartment that a window's thread has.
class Apartment {
 public:
  Apartment() : result_(CoInitializeEx(nullptr, COINIT_APARTMENTTHREADED)) {}
  ~Apartment() {
    if (SUCCEEDED(result_)) CoUninitialize();
  }
  Apartment(const Apartment&) = delete;
  Apartment& operator=(const Apartment&) = delete;
  [[nodiscard]] HRESULT Result() const { return result_; }

 private:
  HRESULT result_;
};

VARIANT Nothing() {
  VARIANT value;
  VariantInit(&value);
  return value;
}

// The minutes are random, so that the machines of the world do not all ask the vendor at once.
WideString StartBoundary() {
  WideString start(kStartTemplate);
  start[12] = L'0';
  start[14] = static_cast<wchar_t>(L'0' + DrawNumber(6).value_or(0));
  start[15] = static_cast<wchar_t>(L'0' + DrawNumber(10).value_or(0));
  return start;
}

class TaskServiceTask final : public ScheduledTask {
 public:
  explicit TaskServiceTask(HostCallbacks* host) : ScheduledTask(host) {}
  bool Create(const NotifierTask& task) override;
  bool Remove() override;

 private:
  struct Opened {
    ComPtr<ITaskService> service;
    ComPtr<ITaskFolder> root;
  };
  bool Open(HRESULT apartment, const OpeningCodes& codes, Opened* opened);

  bool CreateNew(const NotifierTask& task, const Opened& opened);
  bool Refresh(const NotifierTask& task, ITaskFolder& root, IRegisteredTask& existing);

  bool StartWhenAvailable(ITaskSettings& settings) const;
  bool SetSettings(ITaskDefinition& definition);
  bool SetRegistration(ITaskDefinition& definition);
  bool AddTrigger(ITaskDefinition& definition);
  bool RenewTrigger(ITaskDefinition& definition);
  bool RenewSettings(ITaskDefinition& definition);
  bool AddAction(IActionCollection& actions, const NotifierTask& task);
  bool RegisterAs(ReportCode failure, const NotifierTask& task, ITaskFolder& root, ITaskDefinition& definition);
};

bool TaskServiceTask::Create(const NotifierTask& task) {
  const Apartment apartment;
  Opened opened;
  if (!Open(apartment.Result(), kCreating, &opened)) return false;
  ComPtr<IRegisteredTask> existing;
  if (FAILED(opened.root->GetTask(BString(kNotifierTaskName).Get(), existing.GetAddressOf()))) {
    return CreateNew(task, opened);
  }
  return Refresh(task, *opened.root.Get(), *existing.Get());
}

bool TaskServiceTask::Remove() {
  const Apartment apartment;
  Opened opened;
  if (!Open(apartment.Result(), kRemoving, &opened)) return false;
  const HRESULT deleted = opened.root->DeleteTask(BString(kNotifierTaskName).Get(), 0);
  return SUCCEEDED(deleted) || deleted == kTaskAbsent;
}

bool TaskServiceTask::Open(HRESULT apartment, const OpeningCodes& codes, Opened* opened) {
  if (!Done(apartment, codes.com)) return false;
  const HRESULT secured = CoInitializeSecurity(nullptr, -1, nullptr, nullptr, RPC_C_AUTHN_LEVEL_PKT_PRIVACY,
                                               RPC_C_IMP_LEVEL_IMPERSONATE, nullptr, 0, nullptr);
  // Somebody else in the process may have settled the security already; that is told, and does not stop the task.
  if (!Done(secured, codes.security) && secured != RPC_E_TOO_LATE) return false;
  return Done(CoCreateInstance(__uuidof(TaskScheduler), nullptr, CLSCTX_INPROC_SERVER, __uuidof(ITaskService),
                               reinterpret_cast<void**>(opened->service.GetAddressOf())),
              codes.service) &&
         Done(opened->service->Connect(Nothing(), Nothing(), Nothing(), Nothing()), codes.connection) &&
         Done(opened->service->GetFolder(BString(L"\\").Get(), opened->root.GetAddressOf()), codes.folder);
}

bool TaskServiceTask::CreateNew(const NotifierTask& task, const Opened& opened) {
  ComPtr<ITaskDefinition> definition;
  if (!Done(opened.service->NewTask(0, definition.GetAddressOf()), ReportCode::TaskDefinitionNotCreated)) return false;
  ComPtr<IActionCollection> actions;
  if (!SetSettings(*definition.Get()) || !SetRegistration(*definition.Get()) || !AddTrigger(*definition.Get()) ||
      !Done(definition->get_Actions(actions.GetAddressOf()), ReportCode::TaskActionsNotRead) ||
      !AddAction(*actions.Get(), task) ||
      !RegisterAs(ReportCode::TaskNotRegistered, task, *opened.root.Get(), *definition.Get())) {
    return false;
  }
  Report(Host(), Severity::Information, ReportCode::TaskCreated);
  return true;
}

// The trigger keeps its start, so that the machine's own minute stays what it was drawn.
bool TaskServiceTask::Refresh(const NotifierTask& task, ITaskFolder& root, IRegisteredTask& existing) {
  ComPtr<ITaskDefinition> definition;
  if (!Done(existing.get_Definition(definition.GetAddressOf()), ReportCode::TaskDefinitionNotRead)) return false;
  ComPtr<IActionCollection> actions;
  if (!RenewTrigger(*definition.Get()) || !RenewSettings(*definition.Get()) ||
      !Done(definition->get_Actions(actions.GetAddressOf()), ReportCode::TaskActionsNotRead) ||
      // A collection that cannot be emptied is no better than one that cannot be had: the old action would stay.
      !Done(actions->Clear(), ReportCode::TaskActionsNotRead) || !AddAction(*actions.Get(), task) ||
      !RegisterAs(ReportCode::TaskNotRegisteredAgain, task, root, *definition.Get())) {
    return false;
  }
  Report(Host(), Severity::Information, ReportCode::TaskRefreshed);
  return true;
}

// The one step without a report code: its failure goes to a debugger.
bool TaskServiceTask::StartWhenAvailable(ITaskSettings& settings) const {
  const HRESULT result = settings.put_StartWhenAvailable(VARIANT_TRUE);
  if (SUCCEEDED(result)) return true;
  char text[64];
  std::snprintf(text, sizeof(text), "\nCannot put setting information: %x", static_cast<unsigned>(result));
  OutputDebugStringA(text);
  return false;
}

bool TaskServiceTask::SetSettings(ITaskDefinition& definition) {
  ComPtr<ITaskSettings> settings;
  return Done(definition.get_Settings(settings.GetAddressOf()), ReportCode::TaskSettingsNotRead) &&
         StartWhenAvailable(*settings.Get()) &&
         Done(settings->put_Compatibility(TASK_COMPATIBILITY_V2), ReportCode::TaskCompatibilityNotSet) &&
         Done(settings->put_DisallowStartIfOnBatteries(VARIANT_FALSE), ReportCode::TaskBatteryRuleNotSet) &&
         Done(settings->put_RunOnlyIfNetworkAvailable(VARIANT_TRUE), ReportCode::TaskNetworkRuleNotSet);
}

bool TaskServiceTask::RenewSettings(ITaskDefinition& definition) {
  ComPtr<ITaskSettings> settings;
  return Done(definition.get_Settings(settings.GetAddressOf()), ReportCode::TaskSettingsNotRead) &&
         StartWhenAvailable(*settings.Get()) &&
         Done(settings->put_Compatibility(TASK_COMPATIBILITY_V2), ReportCode::TaskCompatibilityNotSet);
}

bool TaskServiceTask::SetRegistration(ITaskDefinition& definition) {
  ComPtr<IRegistrationInfo> registration;
  return Done(definition.get_RegistrationInfo(registration.GetAddressOf()), ReportCode::TaskRegistrationNotRead) &&
         Done(registration->put_Author(BString(kNotifierTaskAuthor).Get()), ReportCode::TaskAuthorNotSet) &&
         Done(registration->put_Description(BString(WideView(NotifierTaskDescription())).Get()),
              ReportCode::TaskDescriptionNotSet);
}

bool TaskServiceTask::AddTrigger(ITaskDefinition& definition) {
  ComPtr<ITriggerCollection> triggers;
  ComPtr<ITrigger> trigger;
  ComPtr<IDailyTrigger> daily;
  ComPtr<IRepetitionPattern> repetition;
  return Done(definition.get_Triggers(triggers.GetAddressOf()), ReportCode::NewTaskTriggersNotRead) &&
         Done(triggers->Create(TASK_TRIGGER_DAILY, trigger.GetAddressOf()), ReportCode::TaskTriggerNotCreated) &&
         Done(trigger.As(&daily), ReportCode::TaskDailyTriggerMissing) &&
         Done(daily->put_Id(BString(kTriggerId).Get()), ReportCode::TaskTriggerIdNotSet) &&
         Done(daily->put_StartBoundary(BString(WideView(StartBoundary())).Get()), ReportCode::TaskStartNotSet) &&
         Done(daily->put_DaysInterval(1), ReportCode::TaskDailyIntervalNotSet) &&
         Done(daily->get_Repetition(repetition.GetAddressOf()), ReportCode::NewTaskRepetitionNotRead) &&
         Done(repetition->put_Duration(BString(kRepetitionDuration).Get()), ReportCode::TaskDurationNotSet) &&
         Done(repetition->put_Interval(BString(kRepetitionInterval).Get()), ReportCode::TaskIntervalNotSet);
}

bool TaskServiceTask::RenewTrigger(ITaskDefinition& definition) {
  ComPtr<ITriggerCollection> triggers;
  LONG count = 0;
  if (!Done(definition.get_Triggers(triggers.GetAddressOf()), ReportCode::TaskTriggersNotRead) ||
      !Done(triggers->get_Count(&count), ReportCode::TaskTriggersNotCounted)) {
    return false;
  }
  if (count == 0) {
    Report(Host(), Severity::Survived, ReportCode::TaskHasNoTrigger, MString::FromNumber(0));
    return false;
  }
  ComPtr<ITrigger> first;
  ComPtr<IRepetitionPattern> repetition;
  return Done(triggers->get_Item(1, first.GetAddressOf()), ReportCode::TaskTriggerNotRead) &&
         Done(first->get_Repetition(repetition.GetAddressOf()), ReportCode::TaskRepetitionNotRead) &&
         Done(repetition->put_Interval(BString(kRepetitionInterval).Get()), ReportCode::TaskRepetitionNotRenewed);
}

bool TaskServiceTask::AddAction(IActionCollection& actions, const NotifierTask& task) {
  ComPtr<IAction> action;
  ComPtr<IExecAction> program;
  return Done(actions.Create(TASK_ACTION_EXEC, action.GetAddressOf()), ReportCode::TaskActionNotCreated) &&
         Done(action.As(&program), ReportCode::TaskProgramActionMissing) &&
         Done(program->put_Path(BString(task.commandPath.View()).Get()), ReportCode::TaskProgramPathNotSet) &&
         Done(program->put_Arguments(BString(task.commandArguments.View()).Get()), ReportCode::TaskArgumentsNotSet);
}

bool TaskServiceTask::RegisterAs(ReportCode failure, const NotifierTask& task, ITaskFolder& root,
                                 ITaskDefinition& definition) {
  const BString userName(task.userName);
  VARIANT user = Nothing();  // lent: the string stays userName's
  V_VT(&user) = VT_BSTR;
  V_BSTR(&user) = userName.Get();
  ComPtr<IRegisteredTask> registered;
  return Done(
      root.RegisterTaskDefinition(BString(kNotifierTaskName).Get(), &definition, TASK_CREATE_OR_UPDATE, user, Nothing(),
                                  TASK_LOGON_INTERACTIVE_TOKEN, Nothing(), registered.GetAddressOf()),
      failure);
}

}  // namespace

std::unique_ptr<ScheduledTask> MakeTaskServiceTask(HostCallbacks* host) {
  return std::make_unique<TaskServiceTask>(host);
}
