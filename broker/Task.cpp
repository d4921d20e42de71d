#include "broker/Task.h"

#include <objbase.h>

#include <memory>
#include <new>
#include <utility>

namespace {

std::unique_ptr<Task> g_task;

class Locked {
 public:
  explicit Locked(CRITICAL_SECTION& section) : section_(section) { EnterCriticalSection(&section_); }
  ~Locked() { LeaveCriticalSection(&section_); }
  Locked(const Locked&) = delete;
  Locked& operator=(const Locked&) = delete;

 private:
  CRITICAL_SECTION& section_;
};

}  // namespace

Task* GetTask() {
  if (!g_task) g_task.reset(new (std::nothrow) Task);
  return g_task.get();
}

void StopTask() {
  g_task.reset();
}

Task::Task() {
  InitializeCriticalSection(&lock);
  InitializeConditionVariable(&wake);
  thread.Reset(CreateThread(nullptr, 0, ThreadMain, this, 0, nullptr));
  if (!thread) stop = 1;
}

Task::~Task() {
  {
    const Locked locked(lock);
    stop = 1;
  }
  WakeAllConditionVariable(&wake);
  if (thread) {
    while (WaitForSingleObject(thread.Get(), 1000) == WAIT_TIMEOUT) {
    }
  }
  thread.Reset();
  DeleteCriticalSection(&lock);
}

bool Task::Post(TaskJob* job) {
  {
    const Locked locked(lock);
    if (!thread || stop != 0) return false;
    pendingJob = job;
  }
  WakeConditionVariable(&wake);
  return true;
}

DWORD Task::ThreadMain(void* task) {
  const HRESULT apartment = CoInitializeEx(nullptr, COINIT_MULTITHREADED);
  static_cast<Task*>(task)->Work();
  if (SUCCEEDED(apartment)) CoUninitialize();
  return 0;
}

void Task::Work() {
  for (;;) {
    TaskJob* job = nullptr;
    {
      const Locked locked(lock);
      if (stop != 0) return;
      job = std::exchange(pendingJob, nullptr);
      if (job == nullptr) SleepConditionVariableCS(&wake, &lock, INFINITE);
    }
    if (job != nullptr) job->Run();
  }
}
