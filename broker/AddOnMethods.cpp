#include "broker/CoLumenBrokerServer.h"

HRESULT CoLumenBrokerServer::BrokerLMOpenDownload(BSTR /*p_url*/, ULONG* /*p_lmCookie*/) {
  return E_NOTIMPL;
}

HRESULT CoLumenBrokerServer::BrokerLMUpdateDownload(ULONG /*p_lmCookie*/, ULONG* /*p_pos*/, ULONG* /*p_len*/) {
  return E_NOTIMPL;
}

HRESULT CoLumenBrokerServer::BrokerLMCloseDownload(ULONG /*p_lmCookie*/, BSTR /*p_applicationName*/,
                                                   ULONG* /*p_resultCode*/) {
  return E_NOTIMPL;
}

HRESULT CoLumenBrokerServer::BrokerLMLaunch(BSTR /*p_applicationName*/, BSTR /*p_applicationParams*/) {
  return E_NOTIMPL;
}

HRESULT CoLumenBrokerServer::BrokerLMGetVersion(BSTR /*p_applicationName*/, ULONG* /*p_fileVersionMS*/,
                                                ULONG* /*p_fileVersionLS*/) {
  return E_NOTIMPL;
}

HRESULT CoLumenBrokerServer::BrokerLMIsRunning(BSTR /*p_applicationName*/) {
  return E_NOTIMPL;
}
