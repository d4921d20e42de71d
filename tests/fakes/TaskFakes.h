// Both schedulers as COM classes of the test process. Every call that the notifier task makes is recorded with its
// arguments and can be made to fail by its number; so can the platform's own calls around them.
//
// An object is bare slots: one function a slot, whatever the interface, that looks its row up in a table. The slots
// come from the platform's headers, so a row cannot stand for another method than the one it names.
#pragma once

#include <windows.h>

#include <cstdint>
#include <functional>
#include <memory>
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
  int32_t triggers = 1;    // of the existing task
  int32_t living = 0;      // objects that are not released yet
  int32_t apartments = 0;  // entered and not left
  std::string debugOutput;

  // Records a call; its result is S_OK, or the failure when its turn has come.
  HRESULT Note(const std::string& call);
};
extern Record g_record;

// While it lives, the schedulers' classes, COM's start and end and the debug output are the test's.
class Stage {
 public:
  Stage();
  ~Stage();
  Stage(const Stage&) = delete;
  Stage& operator=(const Stage&) = delete;

 private:
  DWORD newClass_ = 0;
  DWORD oldClass_ = 0;
  ImportHook enter_, enterEx_, secure_, leave_, create_, debug_;
};

}  // namespace task_fakes
