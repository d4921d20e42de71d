#include "tests/support/WebServer.h"

#include <gtest/gtest.h>

#include <algorithm>

#include "engine/Registry.h"
#include "tests/support/StartProcess.h"

namespace {

constexpr char kProxyKey[] = "Software\\Microsoft\\Windows\\CurrentVersion\\Internet Settings";
constexpr int kPatience = 30000;

// How the system outside names a file that this one has on its drive Z.
WideString OutsidePath(const WideString& path) {
  WideString outside = path.substr(path.starts_with(L"Z:") || path.starts_with(L"z:") ? 2 : 0);
  std::replace(outside.begin(), outside.end(), L'\\', L'/');
  return outside;
}

SOCKET Listen(u_short& port) {
  const SOCKET listener = socket(AF_INET, SOCK_STREAM, 0);
  sockaddr_in address = {};
  address.sin_family = AF_INET;
  address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
  int size = sizeof(address);
  if (bind(listener, reinterpret_cast<sockaddr*>(&address), size) != 0 || listen(listener, 1) != 0)
    return INVALID_SOCKET;
  getsockname(listener, reinterpret_cast<sockaddr*>(&address), &size);
  port = ntohs(address.sin_port);
  return listener;
}

SOCKET AcceptInTime(SOCKET listener) {
  WSAPOLLFD ready = {listener, POLLRDNORM, 0};
  return WSAPoll(&ready, 1, kPatience) == 1 ? accept(listener, nullptr, nullptr) : INVALID_SOCKET;
}

}  // namespace

WebServer::WebServer(const WideString& folder) {
  WSADATA data = {};
  EXPECT_EQ(WSAStartup(MAKEWORD(2, 2), &data), 0);
  u_short port = 0;
  const SOCKET listener = Listen(port);
  const WideString script = OutsidePath(FromUtf8(LUMEN_SOURCE_DIR "/tests/support/web_server.py"));
  // It has no handle, as no program of the machine has; the lifeline tells whether it runs.
  (void)StartProcess(L"Z:\\usr\\bin\\python3 " + script + L" " + OutsidePath(folder) + L" --lifeline " +
                     WidenAscii(std::to_string(port)));
  lifeline_ = AcceptInTime(listener);
  closesocket(listener);
  std::string told;
  for (char c = 0; lifeline_ != INVALID_SOCKET && recv(lifeline_, &c, 1, 0) == 1 && c != '\n';) told += c;
  EXPECT_FALSE(told.empty()) << "the web server did not start";
  const RegistryKey key = CreateKey(HKEY_CURRENT_USER, kProxyKey, KEY_ALL_ACCESS);
  (void)WriteNumber(key.Get(), "ProxyEnable", 1);
  (void)WriteText(key.Get(), "ProxyServer", "http=127.0.0.1:" + told);
}

WebServer::~WebServer() {
  (void)DeleteValue(HKEY_CURRENT_USER, kProxyKey, "ProxyEnable");
  (void)DeleteValue(HKEY_CURRENT_USER, kProxyKey, "ProxyServer");
  if (lifeline_ != INVALID_SOCKET) closesocket(lifeline_);
  WSACleanup();
}
