// Asks the user, through the platform's policy manager, whether a protected file may go to a remote address, and leaves
// an entry in the audit log.
#pragma once

#include <windows.h>

#include "engine/WideText.h"

// True only on consent. `identity` owns the file, `target` is who is to have it; `fileName` and `remoteUrl` go into the
// audit entry. Pumps messages until the platform answers, so calls may arrive meanwhile. A null identity or target, or
// a window of 0 or -1, is a refusal. Apartment thread.
[[nodiscard]] bool RequestAuditedConsent(const wchar_t* identity, const wchar_t* target, HWND window,
                                         const wchar_t* fileName, const wchar_t* remoteUrl);
