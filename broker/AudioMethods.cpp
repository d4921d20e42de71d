#include "broker/CoLumenBrokerServer.h"

HRESULT CoLumenBrokerServer::BrokerMMNotificationClientCreate(LONG_PTR /*sourceProcessHandle*/,
                                                              LONG_PTR* /*lpClientCookie*/) {
  return E_NOTIMPL;
}

HRESULT CoLumenBrokerServer::BrokerMMNotificationClientSetDefaultDeviceChangeEvent(
    LONG_PTR /*clientCookie*/, LONG_PTR /*defaultDeviceChangeEvent*/) {
  return E_NOTIMPL;
}

HRESULT CoLumenBrokerServer::BrokerMMNotificationClientSetDeviceStateChangeEvent(LONG_PTR /*clientCookie*/,
                                                                                 LONG_PTR /*deviceStateChangeEvent*/) {
  return E_NOTIMPL;
}

HRESULT CoLumenBrokerServer::BrokerMMNotificationClientDestroy(LONG_PTR /*clientCookie*/) {
  return E_NOTIMPL;
}
