#include "delivery/ProductDownload.h"

#include <algorithm>
#include <optional>
#include <string>

#include "delivery/ProductUrl.h"

namespace {

constexpr char kAgent[] = "Tidewater Lumen";
constexpr DWORD kRequestFlags = INTERNET_FLAG_RELOAD | INTERNET_FLAG_NO_CACHE_WRITE;
static_assert(kRequestFlags == 0x84000000 && (kRequestFlags | INTERNET_FLAG_SECURE) == 0x84800000);
constexpr uint32_t kMostRead = 65536;
constexpr DWORD kFirstErrorStatus = 400;
constexpr WideView kDigestMark = L"DIGEST#";

// A line break in the path would end the request's first line: what follows would be the client's own headers, or to a
// proxy a request to any host.
bool HasControlBytes(const std::string& path) {
  return std::any_of(path.begin(), path.end(), [](char c) { return (c >= 0 && c < ' ') || c == 127; });
}

std::optional<DWORD> QueryNumber(HINTERNET request, DWORD header) {
  DWORD number = 0;
  DWORD size = sizeof(number);
  if (!HttpQueryInfoA(request, header | HTTP_QUERY_FLAG_NUMBER, &number, &size, nullptr)) return std::nullopt;
  return number;
}

}  // namespace

bool ProductDownload::Open(const wchar_t* url) {
  if (SendRequest(NarrowToCodePage(url).c_str()) && ReadAnswer()) return true;
  Close();
  return false;
}

bool ProductDownload::ReadOn() {
  if (buffer == nullptr) return false;
  const DWORD wanted = std::min(total - received, kMostRead);
  DWORD read = 0;
  if (!InternetReadFile(requestHandle.Get(), buffer.get() + received, wanted, &read)) return false;
  received += read;
  return true;
}

StoreResult ProductDownload::Store(const wchar_t* name, const wchar_t* overridePath) {
  if (buffer == nullptr) return StoreResult::NoData;
  const std::span<const uint8_t> data(buffer.get(), total);
  const WideView given(name);
  const StoreResult result = given.starts_with(kDigestMark) ? StoreProductDigest(name + kDigestMark.size(), data)
                                                            : InstallSignedPackage(name, data, overridePath);
  Close();
  return result;
}

void ProductDownload::Close() {
  requestHandle.Reset();
  connectionHandle.Reset();
  internetHandle.Reset();
  buffer.reset();
  received = 0;
  total = 0;
}

bool ProductDownload::SendRequest(const char* url) {
  std::string host;
  std::string path;
  bool secure = false;
  if (!ParseProductUrl(url, host, path, secure) || HasControlBytes(path)) return false;
  internetHandle.Reset(InternetOpenA(kAgent, INTERNET_OPEN_TYPE_PRECONFIG, nullptr, nullptr, 0));
  if (!internetHandle) return false;
  const INTERNET_PORT port = secure ? INTERNET_DEFAULT_HTTPS_PORT : INTERNET_DEFAULT_HTTP_PORT;
  connectionHandle.Reset(
      InternetConnectA(internetHandle.Get(), host.c_str(), port, nullptr, nullptr, INTERNET_SERVICE_HTTP, 0, 0));
  if (!connectionHandle) return false;
  requestHandle.Reset(HttpOpenRequestA(connectionHandle.Get(), "GET", path.c_str(), "HTTP/1.0", nullptr, nullptr,
                                       secure ? kRequestFlags | INTERNET_FLAG_SECURE : kRequestFlags, 0));
  if (!requestHandle) return false;
  if (!HttpSendRequestA(requestHandle.Get(), nullptr, 0, nullptr, 0)) {
    OutputDebugStringA("HttpSendRequestA fail");
    return false;
  }
  return true;
}

bool ProductDownload::ReadAnswer() {
  const std::optional<DWORD> status = QueryNumber(requestHandle.Get(), HTTP_QUERY_STATUS_CODE);
  if (!status || *status >= kFirstErrorStatus) return false;
  const std::optional<DWORD> length = QueryNumber(requestHandle.Get(), HTTP_QUERY_CONTENT_LENGTH);
  if (!length) return false;
  // Zeroed, since all of it can be stored before it has been read; calloc does that without touching a large block. One
  // byte at least: an answer without content is still an answer.
  buffer.reset(static_cast<uint8_t*>(std::calloc(std::max<size_t>(*length, 1), 1)));
  total = *length;
  return buffer != nullptr;
}
