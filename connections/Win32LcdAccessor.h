// Opens the directory of this machine: the named segment, and the named lock that guards every byte of it. Whoever
// opens the two names takes part. A directory that cannot be opened leaves an accessor whose Lock answers 0, for good.
#pragma once

#include <windows.h>

#include <cstdint>

#include "connections/CoreLcdAccessor.h"
#include "engine/Handles.h"

class Win32LcdAccessor final : public CoreLcdAccessor {
 public:
  // Waits for the lock without a limit, to see the segment only once it is initialised.
  Win32LcdAccessor();
  // Does not release a lock that is still held; the platform then tells the next that it was abandoned.
  ~Win32LcdAccessor() override = default;

  // The lock belongs to the calling thread. An abandoned lock counts as not obtained, though the platform has granted
  // it.
  int32_t Lock() override;
  int32_t Unlock() override;
  uint32_t LockTime() override { return lockTime; }
  int32_t MessageTimeout() override { return 5000; }

 private:
  void Open();

  KernelHandle mutexHandle;
  KernelHandle mappingHandle;
  MappedView view;
  uint32_t lockTime = 0;
  int32_t lockCount = 0;
};
