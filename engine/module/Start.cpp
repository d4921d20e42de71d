// The module's one export.
#include <new>

#include "engine/InstallEngine.h"
#include "engine/LumenBrokerShim.h"

namespace {

// Null when there is no memory for the engine or for one of its texts.
InstallEngine* NewEngine(LumenBrokerShim* shim) noexcept {
  try {
    return new InstallEngine(shim);
  } catch (const std::bad_alloc&) {
    return nullptr;
  }
}

}  // namespace

// An engine that cannot be allocated leaves a shim without one; the operations that need it then answer false.
extern "C" LumenBrokerShim* Start(HostCallbacks* host) {
  auto* const shim = new (std::nothrow) LumenBrokerShim(host);
  if (shim != nullptr) shim->engine = NewEngine(shim);
  return shim;
}
