#include <memory>
#include <new>

#include "engine/InstallEngine.h"
#include "engine/LumenBrokerShim.h"

// An engine that cannot be allocated leaves a shim without one; the operations that need it then answer false.
extern "C" LumenBrokerShim* Start(HostCallbacks* host) {
  auto* const shim = new (std::nothrow) LumenBrokerShim(host);
  if (shim != nullptr) shim->engine = new (std::nothrow) InstallEngine(shim);
  return shim;
}
