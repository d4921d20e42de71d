// Puts files in place so that a file in use stands in nobody's way: a new one is written beside the old one and takes
// its name; an old one that cannot be replaced is renamed and left to the next restart. Host's thread.
#pragma once

#include <windows.h>

#include <cstdint>
#include <functional>
#include <string>
#include <vector>

#include "engine/WideText.h"

struct FileToCopy {
  WideString source;
  WideString destination;
};

struct CopyOutcome {
  DWORD error = ERROR_SUCCESS;  // of the first file that could not be put in place; nothing is copied after it
  WideString failed;            // its destination
  bool restartNeeded = false;   // an old file waits for the next restart to go
};

// Bytes done, bytes in all, the file at work, and whether that was its end.
using CopyProgress = std::function<void(uint64_t, uint64_t, const WideString&, bool)>;

[[nodiscard]] CopyOutcome CopyFiles(const std::vector<FileToCopy>& files, const CopyProgress& progress);
