// One scheduler's way to keep the notifier task. The task service and the older scheduler each have a class; the
// system's version chooses between them, and whoever keeps the task need not know which it is. Host's thread.
#pragma once

#include <windows.h>

#include <memory>
#include <optional>

#include "engine/Reporting.h"

struct NotifierTask;

constexpr wchar_t kNotifierTaskName[] = L"Corva Lumen Player PPAPI Notifier";
constexpr wchar_t kNotifierTaskAuthor[] = L"Corva Systems Incorporated";

class ScheduledTask {
 public:
  virtual ~ScheduledTask() = default;
  ScheduledTask(const ScheduledTask&) = delete;
  ScheduledTask& operator=(const ScheduledTask&) = delete;

  // Creates the task, or renews what the existing one runs. Stops at the first step that fails, lets go of all that it
  // holds, and answers false.
  [[nodiscard]] virtual bool Create(const NotifierTask& task) = 0;
  // Deletes the task. There being none is a success.
  [[nodiscard]] virtual bool Remove() = 0;

 protected:
  explicit ScheduledTask(HostCallbacks* host) : host_(host) {}

  // Whether a step succeeded; reports its code with the failing result in decimal when it did not.
  [[nodiscard]] bool Done(HRESULT result, ReportCode code) const;
  [[nodiscard]] HostCallbacks* Host() const { return host_; }

 private:
  HostCallbacks* host_;
};

// Windows 6.0 and later.
[[nodiscard]] std::unique_ptr<ScheduledTask> MakeTaskServiceTask(HostCallbacks* host);
// Before Windows 6.0.
[[nodiscard]] std::unique_ptr<ScheduledTask> MakeOldSchedulerTask(HostCallbacks* host);

// What the task says of itself: a text of the running program, not of this module.
[[nodiscard]] WideString NotifierTaskDescription();

// From the system's generator, below `limit`; nothing when it has none to give.
[[nodiscard]] std::optional<uint32_t> DrawNumber(uint32_t limit);
