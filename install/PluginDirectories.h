// The directories that browsers load plug-ins from, as far as browsers told the registry. Host's thread.
#pragma once

#include "engine/MString.h"

class LumenBrokerShim;

// Fills the engine's plug-in directories from what browsers left in the registry, and adds `fallback`. Works once: a
// list that holds anything stays as it is.
void RefreshPluginDirectories(LumenBrokerShim* shim, const MString& fallback);
