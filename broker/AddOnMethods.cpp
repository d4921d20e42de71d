// Downloads, stores, asks about and starts add-on products for a client that may do none of it itself.
#include <new>

#include "broker/CoLumenBrokerServer.h"
#include "delivery/ProductDownload.h"
#include "delivery/ProductLaunch.h"
#include "delivery/ProductStatus.h"
#include "engine/HostCallbacks.h"

namespace {

// The anchor file that the host names in place of the built-in one. Its flag changes nothing here.
MString AnchorOverride(HostCallbacks* host) {
  MString path;
  uint8_t flag = 0;
  if (host != nullptr) host->GetDownloadSettings(&path, &flag);
  return path;
}

// The download behind a cookie; null for an unknown cookie and for one of a file or a search.
ProductDownload* FindDownload(const CookieTable& cookies, uint32_t cookie) {
  BrokerCookieRecord* const record = cookies.FindCookie(cookie);
  return record == nullptr ? nullptr : static_cast<ProductDownload*>(record->download.get());
}

}  // namespace

HRESULT CoLumenBrokerServer::BrokerLMOpenDownload(BSTR p_url, ULONG* p_lmCookie) {
  if (p_url == nullptr || p_lmCookie == nullptr) return E_INVALIDARG;
  *p_lmCookie = 0;
  BrokerCookieRecord* const record = cookies.AllocateCookie();
  if (record == nullptr) return E_FAIL;
  const uint32_t cookie = record->cookie;
  try {
    auto download = std::make_unique<ProductDownload>();
    ProductDownload* const session = download.get();
    record->download = std::move(download);
    if (session->Open(p_url)) {
      *p_lmCookie = cookie;
      return S_OK;
    }
  } catch (const std::bad_alloc&) {
  }
  (void)cookies.FreeCookie(cookie);  // what the record holds goes with it
  return E_FAIL;
}

HRESULT CoLumenBrokerServer::BrokerLMUpdateDownload(ULONG p_lmCookie, ULONG* p_pos, ULONG* p_len) {
  ProductDownload* const download = FindDownload(cookies, p_lmCookie);
  if (p_pos == nullptr || p_len == nullptr || download == nullptr) return E_INVALIDARG;
  if (!download->ReadOn()) return E_FAIL;
  *p_pos = download->Received();
  *p_len = download->Total();
  return S_OK;
}

HRESULT CoLumenBrokerServer::BrokerLMCloseDownload(ULONG p_lmCookie, BSTR p_applicationName, ULONG* p_resultCode) {
  ProductDownload* const download = FindDownload(cookies, p_lmCookie);
  if (p_resultCode == nullptr || download == nullptr) return E_INVALIDARG;
  StoreResult result = StoreResult::Stored;
  if (p_applicationName != nullptr) {
    try {
      const MString anchor = AnchorOverride(host);
      result = download->Store(p_applicationName, anchor.Data());
    } catch (const std::bad_alloc&) {
      result = StoreResult::NoMemory;
    }
  }
  *p_resultCode = static_cast<ULONG>(result);
  (void)cookies.FreeCookie(p_lmCookie);
  return S_OK;
}

HRESULT CoLumenBrokerServer::BrokerLMLaunch(BSTR p_applicationName, BSTR p_applicationParams) try {
  if (p_applicationName == nullptr) return E_INVALIDARG;
  const MString anchor = AnchorOverride(host);
  const Shell32DllHelper shell32;
  return LaunchProduct(p_applicationName, p_applicationParams, anchor.Data(), Kernel32(), shell32) ? S_OK : E_FAIL;
} catch (const std::bad_alloc&) {
  return E_FAIL;
}

HRESULT CoLumenBrokerServer::BrokerLMGetVersion(BSTR p_applicationName, ULONG* p_fileVersionMS,
                                                ULONG* p_fileVersionLS) try {
  if (p_applicationName == nullptr || p_fileVersionMS == nullptr || p_fileVersionLS == nullptr) return E_INVALIDARG;
  const MString anchor = AnchorOverride(host);
  const std::optional<ProductVersion> version = ReadProductVersion(p_applicationName, anchor.Data());
  if (!version) return E_FAIL;
  *p_fileVersionMS = version->mostSignificant;
  *p_fileVersionLS = version->leastSignificant;
  return S_OK;
} catch (const std::bad_alloc&) {
  return E_FAIL;
}

HRESULT CoLumenBrokerServer::BrokerLMIsRunning(BSTR p_applicationName) try {
  if (p_applicationName == nullptr) return E_INVALIDARG;
  return IsProductRunning(p_applicationName) ? S_OK : S_FALSE;
} catch (const std::bad_alloc&) {
  return S_FALSE;
}
