// Tells running browsers that the broker's elevation policy changed. Host's thread.
#pragma once

#include <windows.h>

#include "engine/MString.h"

class HostCallbacks;

// Starts the host's utility once for each running browser, in the context of that browser's user, to have the elevation
// policies read again. Neither waits nor reports; a browser that cannot be reached is passed over.
void AskBrowsersToRefresh(HostCallbacks* host);

// Starts a program under the token of `process`, which is open for querying. Failures are passed over.
void StartInContextOf(HANDLE process, const MString& commandLine);
