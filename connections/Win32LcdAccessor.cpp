#include "connections/Win32LcdAccessor.h"

namespace {

constexpr char kMutexName[] = "HalcyonicsMutexOmega";
constexpr char kMappingName[] = "HalcyonicsFMOmega";
constexpr DWORD kViewRights = 0xF001F;
// The platform maps whole pages, which is where the overrun of the last entry has room.
constexpr size_t kPageBytes = 4096;
constexpr size_t kMappedBytes = (sizeof(LcdSegment) + kPageBytes - 1) / kPageBytes * kPageBytes;
static_assert(kMappedBytes >= sizeof(LcdSegment) + kLcdOverrun);

}  // namespace

Win32LcdAccessor::Win32LcdAccessor() {
  SetLastError(ERROR_SUCCESS);
  // The creator owns the lock at once, so that nobody sees the segment before it is initialised.
  mutexHandle.Reset(CreateMutexA(nullptr, TRUE, kMutexName));
  if (mutexHandle) {
    const bool existed = GetLastError() == ERROR_ALREADY_EXISTS;
    if (!existed || WaitForSingleObject(mutexHandle.Get(), INFINITE) == WAIT_OBJECT_0) {
      Open();
      ReleaseMutex(mutexHandle.Get());
    }
  }
  if (view) return;
  mappingHandle.Reset();
  mutexHandle.Reset();
}

void Win32LcdAccessor::Open() {
  mappingHandle.Reset(
      CreateFileMappingA(INVALID_HANDLE_VALUE, nullptr, PAGE_READWRITE, 0, sizeof(LcdSegment), kMappingName));
  const bool existed = GetLastError() == ERROR_ALREADY_EXISTS;
  if (!mappingHandle) return;
  view.Reset(MapViewOfFile(mappingHandle.Get(), kViewRights, 0, 0, sizeof(LcdSegment)));
  if (!view) return;
  AttachSegment(static_cast<LcdSegment*>(view.Get()), !existed, kMappedBytes);
  if (!IsSegmentValid()) view.Reset();
}

int32_t Win32LcdAccessor::Lock() {
  if (!view) return 0;
  if (lockCount > 0) return ++lockCount;
  if (WaitForSingleObject(mutexHandle.Get(), INFINITE) == WAIT_OBJECT_0) {
    lockTime = GetTickCount();
    lockCount = 1;
  }
  return lockCount;
}

int32_t Win32LcdAccessor::Unlock() {
  if (lockCount >= 2) return --lockCount;
  if (mutexHandle) ReleaseMutex(mutexHandle.Get());
  lockCount = 0;
  return lockCount;
}
