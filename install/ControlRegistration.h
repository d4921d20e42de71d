// The self-registration of the ActiveX control, by the entry points of its library. Host's thread.
#pragma once

#include "engine/MString.h"

class LumenBrokerShim;

// Loads the control's library and calls its DllRegisterServer, a second time after StopPlayers when it fails.
[[nodiscard]] bool RegisterControl(LumenBrokerShim* shim, const MString& path);
// Loads the library and calls its DllUnregisterServer. Failures are passed over. The class keys that earlier versions
// left are not touched.
void CallUnregisterServer(const MString& path);
