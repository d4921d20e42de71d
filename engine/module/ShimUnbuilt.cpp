// Operations that this build does not have yet. They fail cleanly: nothing is read, written or reported.
#include "engine/LumenBrokerShim.h"

bool LumenBrokerShim::UninstallProduct(uint32_t /*kind*/, MString /*file*/, uint8_t /*removeSafeVersions*/) noexcept {
  return false;
}
bool LumenBrokerShim::RemoveProductKind(uint32_t /*kind*/, MString /*directory*/, uint8_t /*removeSafeVersions*/,
                                        uint8_t /*removeService*/) noexcept {
  return false;
}
bool LumenBrokerShim::RemoveNamedFiles(uint32_t /*kinds*/, MString /*directory*/) noexcept {
  return false;
}
bool LumenBrokerShim::RemoveOneFile(MString /*name*/, MString /*path*/) noexcept {
  return false;
}
bool LumenBrokerShim::RemovePatternFiles(uint32_t /*kinds*/, MString /*directory*/) noexcept {
  return false;
}
bool LumenBrokerShim::UnregisterActiveXControl(uint8_t /*removeSafeVersions*/, MString /*ignored*/) noexcept {
  return false;
}