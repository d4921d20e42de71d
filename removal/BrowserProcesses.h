// Judgements about running browsers, and one service to them. Any thread; nothing is reported.
#pragma once

#include <windows.h>

class HostCallbacks;

// Whether the window belongs to Internet Explorer in one of its two program folders, or to a process with one of Edge's
// names: a client may hand the broker such a window as the owner of a dialog.
[[nodiscard]] bool IsBrowserWindow(HWND window);

// Starts the host's utility once for each running Internet Explorer process and its broker, under the token of that
// process, to have the elevation policies read again. Of several processes of one user each gets its own. Failures are
// passed over, the started programs are not waited for.
void RefreshIEElevationInSessions(HostCallbacks* host);
