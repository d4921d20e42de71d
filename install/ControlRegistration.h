// The self-registration of the ActiveX control, by the entry points of its library. Host's thread.
#pragma once

#include "engine/MString.h"

class LumenBrokerShim;

// Loads the control's library and calls its DllRegisterServer, a second time after StopPlayers when it fails.
[[nodiscard]] bool RegisterControl(LumenBrokerShim* shim, const MString& path);
// Loads the library, calls its DllUnregisterServer and deletes the class keys that the control has left in all its
// versions. What fails is passed over: true.
bool UnregisterControl(const MString& path);
