// Judgements about running browsers, and one service to them. Any thread; nothing is reported.
#pragma once

#include <windows.h>

class HostCallbacks;

// Whether the window belongs to Internet Explorer in one of its two program folders, or to a process with one of Edge's
// names. Narrower than what the broker asks of a dialog's owner (`IsDialogOwnerAllowed` trusts all of the program
// folders), and without a caller there: every method that takes a window has its own rule from that one.
[[nodiscard]] bool IsBrowserWindow(HWND window);

// Starts the host's utility once for each running Internet Explorer process and its broker, under the token of that
// process, to have the elevation policies read again. Of several processes of one user each gets its own. Failures are
// passed over, the started programs are not waited for. Registering the broker does the same by `AskBrowsersToRefresh`,
// which looks at more processes and at names in any case; this stricter form has no caller in the product.
void RefreshIEElevationInSessions(HostCallbacks* host);
