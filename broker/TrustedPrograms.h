// Which programs may own a dialog of the broker's: those that an administrator installed, and the few browsers that
// live elsewhere.
#pragma once

#include <span>

#include "engine/WideText.h"

// Whether `image`, a program's full path, lies under one of `roots`, or its file name is one of the known browsers'.
// ASCII case does not matter.
[[nodiscard]] bool IsTrustedProgram(WideView image, std::span<const WideString> roots);
