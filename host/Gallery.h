// The gallery: one window with every control of the toolkit in every state, drawn with the module's skin and texts. For
// those who change the skin, a translation or a control, and for whoever wants to see what the installer is made of.
#pragma once

#include "engine/HostCallbacks.h"

// Shows the window in the thread's language until it is closed. False when it cannot be shown. `host` has its shim and
// its resource module.
[[nodiscard]] bool RunGallery(HostCallbacks& host);
