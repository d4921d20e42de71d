// The one list of paths that the unit test, the fuzz seeds and the benchmark share: tests/data/paths.txt.
#pragma once

#include <string>
#include <vector>

#include "engine/WideText.h"

struct PathRow {
  bool localAppData = false;
  std::string flags;  // of "WwCS", see the file
  WideString path;    // filled in for the user of MemoryPathOperations
  std::string reason;
};

// All rows; an empty list when the file cannot be read.
[[nodiscard]] std::vector<PathRow> ReadPathCorpus();
