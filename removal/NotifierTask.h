// The hourly task "Corva Lumen Player PPAPI Notifier" of the logged-on user, in whichever scheduler the system has: the
// task service from Windows 6.0 on, the older scheduler before. COM is entered and left within each call. Host's
// thread.
#pragma once

#include <cstdint>

#include "engine/MString.h"

class HostCallbacks;

// What one call wants the task to be.
struct NotifierTask {
  // Finds the user and the scheduler, and reports 1106, every time.
  NotifierTask(const MString& path, const MString& arguments, HostCallbacks* hostCallbacks);

  static constexpr uint32_t kOldScheduler = 1;
  static constexpr uint32_t kTaskService = 2;
  static constexpr uint32_t kUserNameCapacity = 273;  // with the terminator

  MString commandPath;
  MString commandArguments;
  uint32_t mode;
  HostCallbacks* host;                  // not owned
  wchar_t userName[kUserNameCapacity];  // the account that the task is registered under; may be empty
};

// Creates the task, or refreshes the action of the one there is: it then runs `commandPath` with `commandArguments`.
// False when a step failed; each step reports a code of its own, with the failing result in decimal.
[[nodiscard]] bool CreateNotifierTask(const MString& commandPath, const MString& commandArguments, HostCallbacks* host);

// Removes the task. Its absence is no failure.
bool RemoveNotifierTask(HostCallbacks* host);
