// The processes of this machine. Any thread; nothing is reported.
#pragma once

#include <windows.h>

#include "removal/ProcessList.h"

// The file name and path of the process `id`, as the platform gives them. False when it cannot be opened; a process
// that tells nothing has an empty name.
[[nodiscard]] bool GetProcessIdentity(uint32_t id, MString* name, MString* path);
// The same for a process that is open with the rights to query it and to read its memory.
[[nodiscard]] ProcessIdentity IdentityOf(HANDLE process);

class RunningProcesses final : public ProcessList {
 public:
  // Nothing when the system directory is unknown or the platform's call fails; no processes at all when the platform
  // has no such call.
  [[nodiscard]] std::optional<std::vector<uint32_t>> List() override;
  [[nodiscard]] std::optional<ProcessIdentity> Identify(uint32_t id) override;
  // Each call keeps the process open for the rest of this program's life.
  [[nodiscard]] std::vector<MString> LoadedFiles(uint32_t id) override;
  void End(uint32_t id) override;
};
