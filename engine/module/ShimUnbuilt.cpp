// Operations that this build does not have yet. They fail cleanly: nothing is read, written or reported.
#include "engine/LumenBrokerShim.h"

MorphUI* LumenBrokerShim::CreateUI() {
  return nullptr;
}
void LumenBrokerShim::DestroyUI(void* /*ignored*/, MorphUI* /*ui*/) {}

bool LumenBrokerShim::ReleaseTypeMatches(uint32_t /*kinds*/, uint32_t /*expected*/) {
  return false;
}
bool LumenBrokerShim::CheckInstallAllowed(uint32_t /*kinds*/, uint32_t* /*code*/, uint32_t /*mode*/) {
  return false;
}
bool LumenBrokerShim::UninstallProduct(uint32_t /*kind*/, MString /*file*/, uint8_t /*removeSafeVersions*/) {
  return false;
}
bool LumenBrokerShim::RegisterProduct(uint32_t /*kind*/, MString /*playerPath*/, MString /*uninstallerPath*/,
                                      MString /*ignored*/, uint8_t /*writeUninstallEntry*/) {
  return false;
}
bool LumenBrokerShim::RemoveUpdateService(void* /*ignored*/, MString /*directory*/) {
  return false;
}
bool LumenBrokerShim::RemoveProductKind(uint32_t /*kind*/, MString /*directory*/, uint8_t /*removeSafeVersions*/,
                                        uint8_t /*removeService*/) {
  return false;
}
bool LumenBrokerShim::RemoveNamedFiles(uint32_t /*kinds*/, MString /*directory*/) {
  return false;
}
bool LumenBrokerShim::RemoveOneFile(MString /*name*/, MString /*path*/) {
  return false;
}
bool LumenBrokerShim::RemovePatternFiles(uint32_t /*kinds*/, MString /*directory*/) {
  return false;
}
bool LumenBrokerShim::RegisterActiveXControl(MString /*path*/) {
  return false;
}
bool LumenBrokerShim::RegisterPluginEntry(MString /*path*/) {
  return false;
}
bool LumenBrokerShim::UnregisterActiveXControl(uint8_t /*removeSafeVersions*/, MString /*ignored*/) {
  return false;
}

bool LumenBrokerShim::StoreConflicts(uint32_t /*value*/) {
  return false;
}
MStringList* LumenBrokerShim::FindConflicts(uint32_t /*kinds*/) {
  return nullptr;
}
bool LumenBrokerShim::FindDefaultBrowser() {
  return false;
}
uint32_t LumenBrokerShim::GetInstalledVersionState(uint32_t /*kind*/) {
  return 0;
}
