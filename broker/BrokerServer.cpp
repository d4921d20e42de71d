#include "broker/BrokerServer.h"

#include <new>

#include "LumenBroker.h"
#include "broker/BrokerFactory.h"
#include "broker/Task.h"
#include "engine/ComSupport.h"

namespace {

BrokerFactory* g_factory = nullptr;
DWORD g_registration = 0;

// Only the quit message ends it. An error goes round with the message as it was: windows of dialogs come and go here,
// and none of their failures may take the clients' server away.
UINT ServeUntilQuit() {
  MSG message = {};
  while (GetMessageW(&message, nullptr, 0, 0) != 0) {
    TranslateMessage(&message);
    DispatchMessageW(&message);
  }
  return static_cast<UINT>(message.wParam);
}

}  // namespace

UINT RunBrokerServer(HostCallbacks* host) {
  const ComInitializer com;
  if (!com.Succeeded()) return static_cast<UINT>(E_FAIL);
  UINT exitCode = static_cast<UINT>(E_FAIL);
  if (SUCCEEDED(RegisterBrokerClassObject(1, host))) {
    exitCode = ServeUntilQuit();
    RevokeBrokerClassObject();
  }
  StopTask();
  return exitCode;
}

HRESULT RegisterBrokerClassObject(int enable, HostCallbacks* host) {
  if (g_registration != 0) return E_FAIL;
  if (enable == 0) return S_OK;
  g_factory = new (std::nothrow) BrokerFactory(host);
  // Without memory COM is asked all the same, and refuses.
  return CoRegisterClassObject(CLSID_LumenBrokerImp6, g_factory, CLSCTX_LOCAL_SERVER, REGCLS_MULTIPLEUSE,
                               &g_registration);
}

HRESULT RevokeBrokerClassObject() {
  if (g_registration == 0) return E_FAIL;
  const HRESULT revoked = CoRevokeClassObject(g_registration);
  if (g_factory != nullptr) g_factory->Release();
  g_factory = nullptr;
  return revoked;
}

BrokerFactory* CurrentFactory() {
  return g_factory;
}
