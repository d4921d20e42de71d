#include "engine/LumenBrokerShim.h"

#include "engine/HostCallbacks.h"
#include "engine/InstallEngine.h"

LumenBrokerShim::LumenBrokerShim(HostCallbacks* hostCallbacks) : host(hostCallbacks) {}

LumenBrokerShim::~LumenBrokerShim() {
  delete engine;
}

void LumenBrokerShim::Destroy(uint32_t flag) {
  if ((flag & 1) != 0) {
    delete this;
  } else {
    this->~LumenBrokerShim();
  }
}

MString* LumenBrokerShim::LoadString(MString* /*out*/, uint32_t /*id*/, uint8_t /*useHost*/) {
  return nullptr;
}
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
bool LumenBrokerShim::IsUacEnabled() {
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
bool LumenBrokerShim::RefreshElevationPolicy() {
  return false;
}
bool LumenBrokerShim::RegisterBrokerServer(MString /*path*/, uint32_t /*kind*/) {
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
bool LumenBrokerShim::StopPlayers() {
  return false;
}
uint32_t LumenBrokerShim::RunBroker() {
  return 0;
}
InstallEngine* LumenBrokerShim::GetEngine() {
  return nullptr;
}
MStringList* LumenBrokerShim::GetAXFilenames() {
  return nullptr;
}
MStringList* LumenBrokerShim::GetPluginFilenames() {
  return nullptr;
}
MStringList* LumenBrokerShim::GetPluginDirectories() {
  return nullptr;
}
MStringList* LumenBrokerShim::GetAXFilenamePatterns() {
  return nullptr;
}
MStringList* LumenBrokerShim::GetPluginFilenamePatterns() {
  return nullptr;
}
MStringList* LumenBrokerShim::GetPepperFilenamePatterns() {
  return nullptr;
}
MStringList* LumenBrokerShim::GetProductManagerPatterns() {
  return nullptr;
}
MStringList* LumenBrokerShim::GetProductManagerEntries() {
  return nullptr;
}
bool LumenBrokerShim::StoreConflicts(uint32_t /*value*/) {
  return false;
}
bool LumenBrokerShim::HasStoredConflicts() {
  return false;
}
MStringList* LumenBrokerShim::FindConflicts(uint32_t /*kinds*/) {
  return nullptr;
}
MStringList* LumenBrokerShim::GetExtraActiveXFiles() {
  return nullptr;
}
MStringList* LumenBrokerShim::GetExtraPluginFiles() {
  return nullptr;
}
MStringList* LumenBrokerShim::GetExtraPepperFiles() {
  return nullptr;
}
bool LumenBrokerShim::AddExtraActiveXFile(MString /*name*/) {
  return false;
}
bool LumenBrokerShim::AddExtraPluginFile(MString /*name*/) {
  return false;
}
bool LumenBrokerShim::AddExtraPepperFile(MString /*name*/) {
  return false;
}
bool LumenBrokerShim::LoadEngineLists() {
  return false;
}
bool LumenBrokerShim::MarkUpdateRejected(MString /*version*/) {
  return false;
}
MString* LumenBrokerShim::ReadUpdateDescription(MString* /*out*/, MString /*xml*/) {
  return nullptr;
}
MString* LumenBrokerShim::ExtractMetaBlock(MString* /*out*/, MString /*xml*/) {
  return nullptr;
}
MString* LumenBrokerShim::ExtractUpdateVersion(MString* /*out*/, MString /*xml*/) {
  return nullptr;
}
bool LumenBrokerShim::FindDefaultBrowser() {
  return false;
}
bool LumenBrokerShim::OpenExpressInstallUrl(HWND /*window*/) {
  return false;
}
bool LumenBrokerShim::OpenUrl(HWND /*window*/, MString /*url*/) {
  return false;
}
bool LumenBrokerShim::OpenControlPanelApplet() {
  return false;
}
bool LumenBrokerShim::IsBadRealPlayer() {
  return false;
}
uint32_t LumenBrokerShim::GetInstalledVersionState(uint32_t /*kind*/) {
  return 0;
}
uint8_t LumenBrokerShim::WasRegistrationReached() {
  return 0;
}
