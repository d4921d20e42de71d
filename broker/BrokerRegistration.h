// How COM, and the browser's protected mode, find the broker: seventeen registry values under the machine hive.
#pragma once

#include <windows.h>

#include <cstddef>

// Writes the values for the server at `serverPath`, or with `install` false deletes the four keys whole. A null path to
// install does nothing. Failures are silent: whoever installed finds out when activation fails.
void WriteBrokerRegistration(const char* serverPath, bool install);

// The server that is registered for the newest generation of the broker that has one, going back through all six. False
// when none has; `buffer` is then left alone. A path that does not fit is passed over.
[[nodiscard]] bool FindBrokerServerPath(char* buffer, size_t size);
