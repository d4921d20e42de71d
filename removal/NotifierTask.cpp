#include "removal/NotifierTask.h"

#include <new>

#include "engine/Reporting.h"
#include "engine/SystemVersion.h"
#include "removal/ScheduledTask.h"
#include "removal/SessionUser.h"

namespace {

std::unique_ptr<ScheduledTask> SchedulerOf(uint32_t mode, HostCallbacks* host) {
  return mode == NotifierTask::kTaskService ? MakeTaskServiceTask(host) : MakeOldSchedulerTask(host);
}

uint32_t ModeOfThisSystem() {
  return IsVistaOrLater() ? NotifierTask::kTaskService : NotifierTask::kOldScheduler;
}

}  // namespace

NotifierTask::NotifierTask(const MString& path, const MString& arguments, HostCallbacks* hostCallbacks)
    : commandPath(path), commandArguments(arguments), host(hostCallbacks) {
  const WideString user = FindSessionUser(host, kUserNameCapacity);
  userName[user.copy(userName, kUserNameCapacity - 1)] = 0;
  mode = ModeOfThisSystem();
  Report(host, Severity::Survived, ReportCode::NotifierTaskStarted);
}

bool CreateNotifierTask(const MString& commandPath, const MString& commandArguments, HostCallbacks* host) {
  try {
    const auto task = std::make_unique<NotifierTask>(commandPath, commandArguments, host);
    return SchedulerOf(task->mode, host)->Create(*task);
  } catch (const std::bad_alloc&) {
    return false;
  }
}

bool RemoveNotifierTask(HostCallbacks* host) {
  try {
    return SchedulerOf(ModeOfThisSystem(), host)->Remove();
  } catch (const std::bad_alloc&) {
    return false;
  }
}
