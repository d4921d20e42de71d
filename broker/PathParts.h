// A path cut into its parts. Nothing is bounded here: what is too long for the platform fails when the platform is
// asked.
#pragma once

#include "engine/WideText.h"

struct PathParts {
  WideString drive;      // "C:" or empty
  WideString directory;  // from behind the drive up to and with the last slash
  WideString name;
  WideString extension;  // from the last dot of the last component
};

[[nodiscard]] PathParts SplitPath(WideView path);
