// Starts a program of the tests.
#pragma once

#include <windows.h>

#include "engine/Handles.h"
#include "engine/WideText.h"

// Invalid when it could not be started; also for a program of the machine that Wine runs on, which has no handle here.
// With `output`, what it writes to its standard output and error goes there.
[[nodiscard]] inline KernelHandle StartProcess(WideString commandLine, HANDLE output = nullptr) {
  STARTUPINFOW startup = {};
  startup.cb = sizeof(startup);
  startup.dwFlags = output == nullptr ? 0 : STARTF_USESTDHANDLES;
  startup.hStdOutput = startup.hStdError = output;
  PROCESS_INFORMATION started = {};
  if (!CreateProcessW(nullptr, commandLine.data(), nullptr, nullptr, output != nullptr, 0, nullptr, nullptr, &startup,
                      &started)) {
    return {};
  }
  const KernelHandle thread(started.hThread);
  return KernelHandle(started.hProcess);
}
