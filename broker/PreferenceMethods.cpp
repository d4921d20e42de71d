#include "broker/CoLumenBrokerServer.h"

HRESULT CoLumenBrokerServer::BrokerPrefGetAndDeleteLumenPlayerVersion(BSTR* /*p_string*/) {
  return E_NOTIMPL;
}

HRESULT CoLumenBrokerServer::BrokerPrefMarkAutoUpdaterForRun(BSTR /*p_xmlFromServer*/) {
  return E_NOTIMPL;
}

HRESULT CoLumenBrokerServer::BrokerPrefGetExceptionDialogSize(ULONG* /*p_width*/, ULONG* /*p_height*/) {
  return E_NOTIMPL;
}

HRESULT CoLumenBrokerServer::BrokerPrefSetExceptionDialogSize(ULONG /*p_width*/, ULONG /*p_height*/) {
  return E_NOTIMPL;
}

HRESULT CoLumenBrokerServer::BrokerDelayScreensaver() {
  return E_NOTIMPL;
}

HRESULT CoLumenBrokerServer::BrokerPrefGetLumenPlayerVersion(BSTR* /*p_string*/) {
  return E_NOTIMPL;
}

HRESULT CoLumenBrokerServer::BrokerPrefDeleteLumenPlayerVersion() {
  return E_NOTIMPL;
}

HRESULT CoLumenBrokerServer::BrokerGetDirectInputCount(ULONG* /*p_count*/) {
  return E_NOTIMPL;
}

HRESULT CoLumenBrokerServer::BrokerIsDriveAvailable(LPWSTR /*p_lpwRootPathName*/) {
  return E_NOTIMPL;
}
