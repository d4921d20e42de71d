// Texts for a console: progress, and the module's own texts without the marks that its window understands. Pure logic;
// any thread.
#pragma once

#include <cstdint>
#include <string>

#include "engine/WideText.h"

// Without "<...>" marks; a line break mark becomes one line break, several together too.
[[nodiscard]] WideString WithoutMarks(WideView text);

// "[#####     ]  50%  name". `done` above `total` counts as all; nothing to do is all done.
[[nodiscard]] std::string ProgressLine(uint64_t done, uint64_t total, const std::string& name);
