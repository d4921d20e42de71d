// A second client for tests of the broker, in a process of its own: BrokerClient.exe EVENTS [FILE].
//
// Activates the broker, creates FILE through it if one is named, sets the event <EVENTS>ready, waits for <EVENTS>go and
// releases. Exit code: the cookie of the file, 0 without one, or the HRESULT of what failed.
#include <windows.h>

#include <string>

#include "tests/support/BrokerProcess.h"

int wmain(int argc, wchar_t** argv) {
  if (argc < 2) return E_INVALIDARG;
  const WideString name(argv[1]);
  const KernelHandle ready(OpenEventW(EVENT_MODIFY_STATE, FALSE, (name + L"ready").c_str()));
  const KernelHandle go(OpenEventW(SYNCHRONIZE, FALSE, (name + L"go").c_str()));
  const ComInitializer apartment;
  ComPtr<ILumenBroker6> broker;
  HRESULT result = broker_process::Activate(broker);
  ULONG cookie = 0;
  if (SUCCEEDED(result) && argc > 2 && argv[2][0] != 0) {
    result = broker->BrokerCreateFile(BString(argv[2]).Get(), FALSE, TRUE, &cookie);
  }
  if (FAILED(result)) return result;
  SetEvent(ready.Get());
  WaitForSingleObject(go.Get(), broker_process::kPatience);
  return static_cast<int>(cookie);
}
