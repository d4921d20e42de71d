// Opens the file that a save dialog has chosen, at the first write or seek through its cookie.
#pragma once

#include <windows.h>

#include "broker/BrokerCookieRecord.h"
#include "engine/DllHelpers.h"

// The handle, or INVALID_HANDLE_VALUE. Either way the record's deferred open is used up; the caller stores the handle.
[[nodiscard]] HANDLE OpenDeferred(BrokerCookieRecord& record, const Kernel32DllHelper& kernel32,
                                  const Edpwin32DllHelper& protection);
