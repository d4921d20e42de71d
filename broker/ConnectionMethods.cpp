#include "broker/CoLumenBrokerServer.h"

HRESULT CoLumenBrokerServer::BrokerLcdLock(LONG* /*p_refCount*/) {
  return E_NOTIMPL;
}

HRESULT CoLumenBrokerServer::BrokerLcdUnlock(LONG* /*p_refCount*/) {
  return E_NOTIMPL;
}

HRESULT CoLumenBrokerServer::BrokerLcdLockTime(LONG* /*p_lockTime*/) {
  return E_NOTIMPL;
}

HRESULT CoLumenBrokerServer::BrokerLcdFindConnectionFormat(BSTR /*p_string*/, ULONG /*p_realm*/, LONG* /*p_format*/) {
  return E_NOTIMPL;
}

HRESULT CoLumenBrokerServer::BrokerLcdRemoveConnection(BSTR /*p_string*/, ULONG /*p_realm*/) {
  return E_NOTIMPL;
}

HRESULT CoLumenBrokerServer::BrokerLcdTryAddConnection(BSTR /*p_string*/, ULONG /*p_realmToSeek*/,
                                                       ULONG /*p_realmToAdd*/, LONG /*p_msgFormatVersion*/) {
  return E_NOTIMPL;
}

HRESULT CoLumenBrokerServer::BrokerLcdGetMessageTarget(BSTR* /*p_string*/) {
  return E_NOTIMPL;
}

HRESULT CoLumenBrokerServer::BrokerLcdDispatchMessage(SAFEARRAY* /*p_msgData*/, ULONG /*p_senderTwlVersion*/,
                                                      ULONG /*p_expectedMsgFormat*/, ULONG /*p_realm*/) {
  return E_NOTIMPL;
}

HRESULT CoLumenBrokerServer::BrokerLcdClearMessage() {
  return E_NOTIMPL;
}

HRESULT CoLumenBrokerServer::BrokerLcdPruneDeadMessage() {
  return E_NOTIMPL;
}

HRESULT CoLumenBrokerServer::BrokerLcdGetMessageData(SAFEARRAY** /*p_msgData*/) {
  return E_NOTIMPL;
}

HRESULT CoLumenBrokerServer::BrokerLcdMessageTimeout(LONG* /*p_timeout*/) {
  return E_NOTIMPL;
}
