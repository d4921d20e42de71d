// What the search for conflicts needs to know of the running processes, and the one thing it does to them.
#pragma once

#include <cstdint>
#include <optional>
#include <vector>

#include "engine/MString.h"

// As the platform gives them, in any case. The path may be a device's when the name was found without the modules.
struct ProcessIdentity {
  MString name;
  MString path;
};

// Only this many processes are looked at, however many run. Long-standing behaviour: on a machine where more run, a
// conflict may go unseen, and its file is then left to the next restart.
constexpr size_t kMostProcesses = 256;

class ProcessList {
 public:
  // The processes' ids in the platform's order, at most kMostProcesses. Nothing when they cannot be listed.
  [[nodiscard]] virtual std::optional<std::vector<uint32_t>> List() = 0;
  // Nothing when the process cannot be read, or has ended since it was listed.
  [[nodiscard]] virtual std::optional<ProcessIdentity> Identify(uint32_t id) = 0;
  // The paths of the files that the process has loaded, its own first; empty when they cannot be read.
  [[nodiscard]] virtual std::vector<MString> LoadedFiles(uint32_t id) = 0;
  // Ends the process at once, with exit code 0. Failures are passed over.
  virtual void End(uint32_t id) = 0;

 protected:
  ~ProcessList() = default;
};
