// Both schedulers as the test's own objects. Every call that the notifier task makes is recorded with its arguments and
// can be made to fail by its number; so can the platform's own calls around them.
#pragma once

#include <windows.h>

#include <cstdint>
#include <list>
#include <optional>
#include <string>

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
  HRESULT Note(const std::string& call);
};
extern Record g_record;

// While it lives, the schedulers' classes, COM's start and end and the debug output are the test's. The record is new.
class Stage {
 public:
  Stage();

 private:
  std::list<ImportHook> hooks_;
};

}  // namespace task_fakes
