// Who is logged on: the account that a task of the user is registered under. Host's thread.
#pragma once

#include <cstddef>

#include "engine/WideText.h"

class HostCallbacks;

// "domain\user" of the active session, or the user alone when both together do not fit `capacity` with their
// terminator; empty when there is neither, or when the system lacks the functions, which alone is not reported.
[[nodiscard]] WideString FindSessionUser(HostCallbacks* host, size_t capacity);
