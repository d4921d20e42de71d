// The vendor's web server on loopback, for as long as a test holds it: a process of its own that is the system's proxy
// meanwhile, so that every host name leads to it. Tests that use it hold the CTest resource lock `broker`.
#pragma once

#include <winsock2.h>
// after winsock2.h, which must come first
#include <windows.h>

#include <string>

#include "engine/Handles.h"
#include "engine/WideText.h"
#include "tests/support/Texts.h"

class WebServer {
 public:
  // `folder` holds files/, whose files it serves as /files/NAME, and tls.pem. See web_server.py for the other paths.
  explicit WebServer(const WideString& folder);
  WebServer(const WebServer&) = delete;
  WebServer& operator=(const WebServer&) = delete;
  ~WebServer();  // the server ends with the connection that it was started with

  [[nodiscard]] bool IsRunning() const { return lifeline_ != INVALID_SOCKET; }
  // What was asked for so far, a line a request.
  [[nodiscard]] Lines Requests() const;

 private:
  void UseAsProxy(const std::string& port);

  WideString folder_;
  SOCKET lifeline_ = INVALID_SOCKET;
};

// Puts a certificate (DER) into this user's root store, and takes it out again. A process sees the store as it first
// met it, so the one that is to trust must not have asked before.
void AddTrustedRoot(const std::string& der);
void RemoveTrustedRoot(const std::string& der);
