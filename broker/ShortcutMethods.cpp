#include "broker/CoLumenBrokerServer.h"

HRESULT CoLumenBrokerServer::BrokerCreateIconPath(BSTR /*p_fileName*/, BSTR* /*p_iconPath*/) {
  return E_NOTIMPL;
}

HRESULT CoLumenBrokerServer::BrokerCreateInternetShortcut(BSTR /*fileName*/, BSTR /*url*/, BSTR /*iconPath*/,
                                                          SAFEARRAY* /*p_signed_auth_data*/, SAFEARRAY* /*p_strings*/,
                                                          ULONG /*flags*/) {
  return E_NOTIMPL;
}

HRESULT CoLumenBrokerServer::BrokerCreateIconPathV2(BSTR /*p_fileName*/, BSTR* /*p_iconPath*/, LONG /*p_overwrite*/) {
  return E_NOTIMPL;
}

HRESULT CoLumenBrokerServer::BrokerCreateDesktopShortcut(BSTR /*fileName*/, BSTR /*url*/, BSTR /*iconPath*/,
                                                         ULONG /*flags*/) {
  return E_NOTIMPL;
}
