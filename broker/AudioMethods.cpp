// Audio device notification. These four methods are the newest and answer with a bare 0 or 1.
#include <windows.h>

#include "broker/CoLumenBrokerServer.h"
#include "broker/MMNotificationClient.h"

namespace {

constexpr HRESULT kNo = S_FALSE;

HANDLE ToHandle(LONG_PTR value) {
  return reinterpret_cast<HANDLE>(value);
}

}  // namespace

// A cookie is the object's address. A null one is in the list when an allocation failed, and names nothing.
MMNotificationClient* CoLumenBrokerServer::FindNotificationClient(LONG_PTR cookie) const {
  for (MMNotificationClient* client : notificationClients) {
    if (client != nullptr && reinterpret_cast<LONG_PTR>(client) == cookie) return client;
  }
  return nullptr;
}

HRESULT CoLumenBrokerServer::BrokerMMNotificationClientCreate(LONG_PTR sourceProcessHandle, LONG_PTR* lpClientCookie) {
  MMNotificationClient* client = MMNotificationClient::Create(ToHandle(sourceProcessHandle));
  try {
    notificationClients.push_back(client);
  } catch (const std::bad_alloc&) {
    // Nothing could name or release it.
    if (client != nullptr) client->LeaveList();
    client = nullptr;
  }
  if (lpClientCookie != nullptr) *lpClientCookie = reinterpret_cast<LONG_PTR>(client);
  return S_OK;
}

HRESULT CoLumenBrokerServer::BrokerMMNotificationClientSetDefaultDeviceChangeEvent(LONG_PTR clientCookie,
                                                                                   LONG_PTR defaultDeviceChangeEvent) {
  MMNotificationClient* const client = FindNotificationClient(clientCookie);
  if (client == nullptr) return kNo;
  return client->SetDefaultDeviceChangeEvent(ToHandle(defaultDeviceChangeEvent)) ? S_OK : kNo;
}

HRESULT CoLumenBrokerServer::BrokerMMNotificationClientSetDeviceStateChangeEvent(LONG_PTR clientCookie,
                                                                                 LONG_PTR deviceStateChangeEvent) {
  MMNotificationClient* const client = FindNotificationClient(clientCookie);
  if (client == nullptr) return kNo;
  return client->SetDeviceStateChangeEvent(ToHandle(deviceStateChangeEvent)) ? S_OK : kNo;
}

// The entry stays in the list, so the same cookie may be destroyed again and is released again; MMNotificationClient is
// made for it.
HRESULT CoLumenBrokerServer::BrokerMMNotificationClientDestroy(LONG_PTR clientCookie) {
  MMNotificationClient* const client = FindNotificationClient(clientCookie);
  if (client == nullptr) return kNo;
  client->Release();
  return S_OK;
}
