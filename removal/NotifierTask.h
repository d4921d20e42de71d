// The hourly task "Corva Lumen Player PPAPI Notifier" of the logged-on user, in whichever scheduler the system has: the
// task service from Windows 6.0 on, the older scheduler before. COM is entered and left within each call. Host's
// thread.
#pragma once

#include "engine/MString.h"

class HostCallbacks;

// Creates the task, or refreshes the action of the one there is: it then runs `commandPath` with `commandArguments`.
// False when a step failed; each step reports a code of its own, with the failing result in decimal.
[[nodiscard]] bool CreateNotifierTask(const MString& commandPath, const MString& commandArguments, HostCallbacks* host);

// Removes the task. Its absence is no failure.
bool RemoveNotifierTask(HostCallbacks* host);
