// The notifier task in the scheduler of systems before Windows 6.0, whose tasks are work items kept in files.
// clang-format off
#include <windows.h>
#include <mstask.h>
#include <objidl.h>
// clang-format on

#include "engine/ComSupport.h"
#include "removal/NotifierTask.h"
#include "removal/ScheduledTask.h"

namespace {

constexpr DWORD kFlags = TASK_FLAG_RUN_ONLY_IF_LOGGED_ON | TASK_FLAG_RUN_IF_CONNECTED_TO_INTERNET;
static_assert(kFlags == 9216);
constexpr uint32_t kMinutesOfAnHour = 60;
constexpr uint32_t kMinutesOfADay = 24 * 60;
constexpr HRESULT kTaskAbsent = static_cast<HRESULT>(0x80070002);

const wchar_t* Terminated(const MString& text) {
  return text.Data() == nullptr ? L"" : text.Data();
}

// All zero but for the minute and what the scheduler demands of any record: its size and a date to begin at. So a new
// item runs once; the first refresh makes it hourly.
TASK_TRIGGER StartRecord(uint32_t minute) {
  SYSTEMTIME today = {};
  GetLocalTime(&today);
  TASK_TRIGGER record = {};
  record.cbTriggerSize = sizeof(record);
  record.wBeginYear = today.wYear;
  record.wBeginMonth = today.wMonth;
  record.wBeginDay = today.wDay;
  record.wStartMinute = static_cast<WORD>(minute);
  return record;
}

class OldSchedulerTask final : public ScheduledTask {
 public:
  explicit OldSchedulerTask(HostCallbacks* host) : ScheduledTask(host) {}
  bool Create(const NotifierTask& task) override;
  bool Remove() override;

 private:
  bool CreateScheduler(ReportCode failure, ComPtr<ITaskScheduler>* scheduler);
  bool CreateNew(const NotifierTask& task, ITask& item);
  bool Refresh(const NotifierTask& task, ITask& item);
  bool AddTrigger(ITask& item);
  bool RenewTrigger(ITask& item);
  bool SetCommand(ITask& item, const NotifierTask& task, bool withFlags);
  bool Save(ITask& item, ReportCode noFile, ReportCode notSaved);
};

bool OldSchedulerTask::Create(const NotifierTask& task) {
  const ComInitializer com;
  ComPtr<ITaskScheduler> scheduler;
  if (!Done(com.Result(), ReportCode::OldTaskComNotInitialized) ||
      !CreateScheduler(ReportCode::OldTaskSchedulerNotCreated, &scheduler)) {
    return false;
  }
  ComPtr<ITask> item;
  const HRESULT found =
      scheduler->Activate(kNotifierTaskName, IID_ITask, reinterpret_cast<IUnknown**>(item.GetAddressOf()));
  if (SUCCEEDED(found)) return Refresh(task, *item.Get());
  // Whatever kept the old item away, a new one takes its place; only its mere absence is not worth telling.
  if (found != kTaskAbsent) (void)Done(found, ReportCode::OldTaskNotActivated);
  return Done(scheduler->NewWorkItem(kNotifierTaskName, CLSID_CTask, IID_ITask,
                                     reinterpret_cast<IUnknown**>(item.ReleaseAndGetAddressOf())),
              ReportCode::OldTaskNotCreated) &&
         CreateNew(task, *item.Get());
}

bool OldSchedulerTask::Remove() {
  const ComInitializer com;
  ComPtr<ITaskScheduler> scheduler;
  if (!Done(com.Result(), ReportCode::OldTaskRemovalComNotInitialized) ||
      !CreateScheduler(ReportCode::OldTaskRemovalSchedulerNotCreated, &scheduler)) {
    return false;
  }
  const HRESULT deleted = scheduler->Delete(kNotifierTaskName);
  return SUCCEEDED(deleted) || deleted == kTaskAbsent;
}

bool OldSchedulerTask::CreateScheduler(ReportCode failure, ComPtr<ITaskScheduler>* scheduler) {
  return Done(CoCreateInstance(CLSID_CTaskScheduler, nullptr, CLSCTX_INPROC_SERVER, IID_ITaskScheduler,
                               reinterpret_cast<void**>(scheduler->GetAddressOf())),
              failure);
}

bool OldSchedulerTask::CreateNew(const NotifierTask& task, ITask& item) {
  if (!Done(item.SetAccountInformation(task.userName, nullptr), ReportCode::OldTaskAccountNotSet) ||
      !Done(item.SetCreator(kNotifierTaskAuthor), ReportCode::OldTaskCreatorNotSet) ||
      !Done(item.SetComment(NotifierTaskDescription().c_str()), ReportCode::OldTaskCommentNotSet) ||
      !SetCommand(item, task, true) || !AddTrigger(item) ||
      !Save(item, ReportCode::NewOldTaskFileNotAskedFor, ReportCode::NewOldTaskNotSaved)) {
    return false;
  }
  Report(Host(), Severity::Information, ReportCode::OldTaskCreated);
  return true;
}

bool OldSchedulerTask::Refresh(const NotifierTask& task, ITask& item) {
  if (!RenewTrigger(item) || !SetCommand(item, task, false) ||
      !Done(item.SetAccountInformation(task.userName, nullptr), ReportCode::OldTaskAccountNotRenewed) ||
      !Done(item.SetFlags(kFlags), ReportCode::OldTaskFlagsNotRenewed) ||
      !Save(item, ReportCode::OldTaskFileNotAskedFor, ReportCode::OldTaskNotSavedAgain)) {
    return false;
  }
  Report(Host(), Severity::Information, ReportCode::OldTaskRefreshed);
  return true;
}

bool OldSchedulerTask::AddTrigger(ITask& item) {
  ComPtr<ITaskTrigger> trigger;
  WORD index = 0;
  if (!Done(item.CreateTrigger(&index, trigger.GetAddressOf()), ReportCode::OldTaskTriggerNotCreated)) return false;
  const auto minute = DrawNumber(kMinutesOfAnHour);
  if (!Done(minute ? S_OK : E_FAIL, ReportCode::OldTaskStartNotDrawn)) return false;
  TASK_TRIGGER record = StartRecord(*minute);
  return Done(trigger->SetTrigger(&record), ReportCode::OldTaskTriggerNotSet);
}

// The start stays as it was drawn; what is renewed is the hourly repetition.
bool OldSchedulerTask::RenewTrigger(ITask& item) {
  WORD count = 0;
  ComPtr<ITaskTrigger> first;
  TASK_TRIGGER record = {};
  record.cbTriggerSize = sizeof(record);
  if (!Done(item.GetTriggerCount(&count), ReportCode::OldTaskTriggersNotCounted) ||
      !Done(item.GetTrigger(0, first.GetAddressOf()), ReportCode::OldTaskTriggerNotRead) ||
      !Done(first->GetTrigger(&record), ReportCode::OldTaskTriggerDataNotRead)) {
    return false;
  }
  record.TriggerType = TASK_TIME_TRIGGER_DAILY;
  record.Type.Daily.DaysInterval = 1;
  record.MinutesInterval = kMinutesOfAnHour;
  record.MinutesDuration = kMinutesOfADay;
  return Done(first->SetTrigger(&record), ReportCode::OldTaskTriggerNotRenewed);
}

// A new item gets its flags between the two; an existing one gets them later, under a code of their own.
bool OldSchedulerTask::SetCommand(ITask& item, const NotifierTask& task, bool withFlags) {
  return Done(item.SetApplicationName(Terminated(task.commandPath)), ReportCode::OldTaskApplicationNotSet) &&
         (!withFlags || Done(item.SetFlags(kFlags), ReportCode::OldTaskFlagsNotSet)) &&
         Done(item.SetParameters(Terminated(task.commandArguments)), ReportCode::OldTaskParametersNotSet);
}

bool OldSchedulerTask::Save(ITask& item, ReportCode noFile, ReportCode notSaved) {
  ComPtr<IPersistFile> file;
  return Done(item.QueryInterface(IID_IPersistFile, reinterpret_cast<void**>(file.GetAddressOf())), noFile) &&
         Done(file->Save(nullptr, TRUE), notSaved);
}

}  // namespace

std::unique_ptr<ScheduledTask> MakeOldSchedulerTask(HostCallbacks* host) {
  return std::make_unique<OldSchedulerTask>(host);
}
