#include "broker/CoLumenBrokerServer.h"

HRESULT CoLumenBrokerServer::BrokerMarkFileUnsafe(BSTR /*p_filePath*/, BSTR /*p_sourceURL*/, BSTR /*p_refURL*/) {
  return E_NOTIMPL;
}

HRESULT CoLumenBrokerServer::BrokerOpenFileWithAuditingInfo(BSTR /*pFileName*/, BSTR /*pRemoteUrl*/, ULONG /*p_hwnd*/,
                                                            ULONG* /*p_fileCookie*/) {
  return E_NOTIMPL;
}
