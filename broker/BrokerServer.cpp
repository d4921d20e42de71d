#include "broker/BrokerServer.h"

#include <new>

#include "broker/BrokerFactory.h"
#include "broker/Task.h"
#include "engine/ComSupport.h"

namespace {

CoLumenBrokerServer::Factory* g_factory = nullptr;
DWORD g_registration = 0;  // what CoRegisterClassObject numbered it

// Only the quit message ends it. An error of GetMessageW goes round with the message as it was: windows of dialogs come
// and go here, and none of their failures may take the clients' server away. The call has no argument that a client
// could spoil, so an error cannot be made to last and the loop cannot be made to spin.
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
  StopTask();  // waits for its thread, while the apartment that the thread's calls may need still stands
  return exitCode;
}

HRESULT RegisterBrokerClassObject(int enable, HostCallbacks* host) {
  if (g_registration != 0) return E_FAIL;
  if (enable == 0) return S_OK;
  g_factory = new (std::nothrow) CoLumenBrokerServer::Factory(host);
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

CoLumenBrokerServer::Factory* CurrentFactory() {
  return g_factory;
}
