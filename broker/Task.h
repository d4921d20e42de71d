// The one worker thread of the process. It carries the protection queries, whose platform calls must not run on the
// server's apartment thread, since that thread waits for them.
//
// The lock guards the one job slot and the stop flag. One slot is enough: the server's single thread posts one job and
// waits for it.
#pragma once

#include <windows.h>

#include <cstdint>

#include "engine/Handles.h"

class TaskJob {
 public:
  // Runs on the worker thread, in a multithreaded apartment. Must not throw.
  virtual void Run() = 0;

 protected:
  ~TaskJob() = default;
};

class Task {
 public:
  // Starts the thread. When that fails every Post fails.
  Task();
  // Stops the thread and waits for it.
  ~Task();
  Task(const Task&) = delete;
  Task& operator=(const Task&) = delete;

  // Hands a job to the worker; it must live until it has run. False when the worker is gone or going.
  [[nodiscard]] bool Post(TaskJob* job);

 private:
  static DWORD WINAPI ThreadMain(void* task);
  void Work();

  uint32_t stop = 0;
  KernelHandle thread;
  TaskJob* pendingJob = nullptr;
  CRITICAL_SECTION lock;
  CONDITION_VARIABLE wake;
};

// The process's worker, made on first use; null when there is no memory. Apartment thread only.
[[nodiscard]] Task* GetTask();
// Ends the worker if there is one. Blocks until its thread has ended. Apartment thread only.
void StopTask();
