// The broker's life as a COM local server: COM starts the host program, which calls RunBrokerServer on its own thread
// and stays in it until the last client has gone.
//
// The thread is a single-threaded apartment, so the calls of all clients arrive one at a time; a method that blocks
// holds up every client. Nothing here checks who calls: the process has COM's default security, and the path policy
// stands in for that check.
#pragma once

#include <windows.h>

class HostCallbacks;

// Publishes the class object, serves until the quit message and withdraws it. The exit code of the server: that of the
// quit message, or 0x80004005 when the apartment could not be entered or the class object not be published.
[[nodiscard]] UINT RunBrokerServer(HostCallbacks* host);

// E_FAIL when it is published already; S_OK without doing anything when `enable` is 0.
[[nodiscard]] HRESULT RegisterBrokerClassObject(int enable, HostCallbacks* host);
// What COM said to taking the class object back, which is also released; E_FAIL when nothing was ever published. The
// registration's number is kept, so a process publishes once in its life.
HRESULT RevokeBrokerClassObject();
