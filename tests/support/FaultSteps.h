// Records what the code under test changes on the machine, step by step, and makes one chosen step fail. Serves loops
// that let every step of a sequence fail in turn:
//
//     FaultSteps faults;
//     const Lines all = faults.Run(0, sequence);
//     for (size_t failing = 1; failing <= all.size(); ++failing) {
//       const Lines steps = faults.Run(failing, sequence);
//       ... what still ran, what was reported ...
//     }
//
// It reaches code that is linked into the test program itself. Reading the registry is no step. One at a time.
#pragma once

#include <windows.h>

#include <cstddef>
#include <functional>
#include <memory>
#include <vector>

#include "tests/support/ImportHook.h"
#include "tests/support/Texts.h"

class FaultSteps {
 public:
  FaultSteps();
  ~FaultSteps();
  FaultSteps(const FaultSteps&) = delete;
  FaultSteps& operator=(const FaultSteps&) = delete;

  // Runs `sequence` and returns its steps, a failing one included. The step numbered `failing`, from 1, is not
  // performed and fails with `error`; 0 lets all succeed. Steps read:
  //   "create KEY"          "text KEY | NAME"     "number KEY | NAME"    "delete value KEY | NAME"   "delete key KEY"
  //   "open PATH"           "delete PATH"         "attributes PATH"      "queue PATH"
  //   "load PATH"           "entry NAME"          "security PATH"        "start COMMAND LINE"
  // where KEY begins with HKLM or HKCU, `load` is of a library outside the system directory, and `entry` is of
  // DllRegisterServer or DllUnregisterServer.
  Lines Run(size_t failing, const std::function<void()>& sequence, DWORD error = ERROR_ACCESS_DENIED);

 private:
  std::vector<std::unique_ptr<ImportHook>> hooks_;
};
