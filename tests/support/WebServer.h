// The vendor's web server on loopback, for as long as a test holds it: a process of its own that is the system's proxy
// meanwhile, so that every host name leads to it. Tests that use it hold the CTest resource lock `broker`.
#pragma once

#include <winsock2.h>
// after winsock2.h, which must come first
#include <windows.h>

#include "engine/WideText.h"

class WebServer {
 public:
  // `folder` holds files/, whose files it serves as /files/NAME, and tls.pem. See web_server.py for the other paths.
  explicit WebServer(const WideString& folder);
  WebServer(const WebServer&) = delete;
  WebServer& operator=(const WebServer&) = delete;
  ~WebServer();  // the server ends with the connection that it was started with

 private:
  SOCKET lifeline_ = INVALID_SOCKET;
};
