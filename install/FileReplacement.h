// How a file of the player goes: deleted, or left to the next reboot while it is in use. Host's thread.
#pragma once

#include <windows.h>

#include <cstdint>

#include "engine/Handles.h"
#include "engine/MString.h"

class HostCallbacks;
class LumenBrokerShim;

// <windows.h> makes a macro of this name, which would rename the operation.
#undef ReplaceFile

// Kinds of ReplaceFile that are no product.
namespace file_kind {
constexpr uint32_t Other = 0;
constexpr uint32_t ServerFile = 2;
}  // namespace file_kind

// Desired access by number; every mode shares reading. Write and Read want an existing file, the others make one.
enum class FileMode : uint32_t { ReadWrite = 1, Append = 2, Write = 3, Read = 4 };
// Append begins at the end. Invalid on failure, with the platform's error.
[[nodiscard]] FileHandle OpenByMode(const MString& path, FileMode mode);

// Whether it can be opened for reading, or is there and denied. A file that another program keeps to itself does not
// exist by this rule, and callers rely on that.
[[nodiscard]] bool FileExists(const MString& path);

// Deletes `path`, which belongs to one product_kind or one file_kind. 0 for success, and for a file that does not
// exist; else the last error, also when the file was queued for the next reboot. A file in use that the host named as
// an extra file of the kind is never queued: the deletion would hit the new copy. Failures report 1015.
uint32_t ReplaceFile(LumenBrokerShim* shim, const MString& path, uint32_t kind);

// Queues `path` to be deleted when the system starts next; a failure reports 1045.
void ScheduleDeleteAtReboot(HostCallbacks* host, const MString& path);

// The one flag that makes TestFileLocked look.
constexpr uint32_t kTestLock = 512;
// Locked: it can be opened for reading and not for writing.
enum class FileLock : uint32_t { Free = 0, Locked = 1, LockedAndEmpty = 2 };
// Reports 20 with the path in every case. Without kTestLock the answer is Free.
[[nodiscard]] FileLock TestFileLocked(HostCallbacks* host, uint32_t flags, const MString& path);

// Removes a file of the system directory, with what the system remembers about it. While any kind is installed it does
// nothing and gives true. Otherwise true when the file is gone and the control panel's value about it was deleted.
[[nodiscard]] bool RemoveSystemFile(HostCallbacks* host, const MString& path);
