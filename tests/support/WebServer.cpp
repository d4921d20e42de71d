#include "tests/support/WebServer.h"

#include <gtest/gtest.h>
#include <wincrypt.h>

#include <algorithm>
#include <sstream>

#include "engine/Registry.h"
#include "tests/support/StartProcess.h"
#include "tests/support/TestFiles.h"

namespace {

constexpr char kProxyKey[] = "Software\\Microsoft\\Windows\\CurrentVersion\\Internet Settings";
constexpr long kPatienceSeconds = 30;

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
  fd_set ready;
  FD_ZERO(&ready);
  FD_SET(listener, &ready);
  timeval patience = {kPatienceSeconds, 0};
  return select(0, &ready, nullptr, nullptr, &patience) == 1 ? accept(listener, nullptr, nullptr) : INVALID_SOCKET;
}

HCERTSTORE OpenRoots() {
  return CertOpenStore(CERT_STORE_PROV_SYSTEM_W, 0, 0, CERT_SYSTEM_STORE_CURRENT_USER, L"Root");
}

}  // namespace

WebServer::WebServer(const WideString& folder) : folder_(folder) {
  WSADATA data = {};
  EXPECT_EQ(WSAStartup(MAKEWORD(2, 2), &data), 0);
  DeleteFileW((folder_ + L"\\requests.txt").c_str());
  u_short port = 0;
  const SOCKET listener = Listen(port);
  const WideString script = OutsidePath(FromUtf8(LUMEN_SOURCE_DIR "/tests/support/web_server.py"));
  // It has no handle, as no program of the machine has; the lifeline tells whether it runs.
  (void)StartProcess(L"Z:\\usr\\bin\\python3 " + script + L" " + OutsidePath(folder_) + L" --lifeline " +
                     WidenAscii(std::to_string(port)));
  lifeline_ = AcceptInTime(listener);
  closesocket(listener);
  std::string told;
  for (char c = 0; lifeline_ != INVALID_SOCKET && recv(lifeline_, &c, 1, 0) == 1 && c != '\n';) told += c;
  EXPECT_FALSE(told.empty()) << "the web server did not start";
  UseAsProxy(told);
}

WebServer::~WebServer() {
  const RegistryKey key = CreateKey(HKEY_CURRENT_USER, kProxyKey, KEY_ALL_ACCESS);
  RegDeleteValueW(key.Get(), L"ProxyEnable");
  RegDeleteValueW(key.Get(), L"ProxyServer");
  if (lifeline_ != INVALID_SOCKET) closesocket(lifeline_);
  WSACleanup();
}

Lines WebServer::Requests() const {
  std::istringstream text(testing_files::ReadWhole(folder_ + L"\\requests.txt"));
  Lines lines;
  for (std::string line; std::getline(text, line);) lines.push_back(line);
  return lines;
}

void WebServer::UseAsProxy(const std::string& port) {
  const RegistryKey key = CreateKey(HKEY_CURRENT_USER, kProxyKey, KEY_ALL_ACCESS);
  const DWORD on = 1;
  const std::string servers = "http=127.0.0.1:" + port + ";https=127.0.0.1:" + port;
  RegSetValueExW(key.Get(), L"ProxyEnable", 0, REG_DWORD, reinterpret_cast<const BYTE*>(&on), sizeof(on));
  RegSetValueExA(key.Get(), "ProxyServer", 0, REG_SZ, reinterpret_cast<const BYTE*>(servers.c_str()),
                 static_cast<DWORD>(servers.size() + 1));
}

void AddTrustedRoot(const std::string& der) {
  const HCERTSTORE store = OpenRoots();
  EXPECT_TRUE(CertAddEncodedCertificateToStore(store, X509_ASN_ENCODING, reinterpret_cast<const BYTE*>(der.data()),
                                               static_cast<DWORD>(der.size()), CERT_STORE_ADD_REPLACE_EXISTING,
                                               nullptr));
  CertCloseStore(store, 0);  // no certificate of the store is held, or it would not be written before that is freed
}

void RemoveTrustedRoot(const std::string& der) {
  const HCERTSTORE store = OpenRoots();
  const PCCERT_CONTEXT certificate = CertCreateCertificateContext(
      X509_ASN_ENCODING, reinterpret_cast<const BYTE*>(der.data()), static_cast<DWORD>(der.size()));
  const PCCERT_CONTEXT stored =
      CertFindCertificateInStore(store, X509_ASN_ENCODING, 0, CERT_FIND_EXISTING, certificate, nullptr);
  if (stored != nullptr) CertDeleteCertificateFromStore(stored);  // frees it too
  CertFreeCertificateContext(certificate);
  CertCloseStore(store, 0);
}
