// The operations of the shim that belong to no subsystem: its life, texts, lists and questions about the machine.
#include "engine/LumenBrokerShim.h"

#include <algorithm>

#include "broker/BrokerRegistration.h"
#include "broker/BrokerServer.h"
#include "engine/HostCallbacks.h"
#include "engine/InstallEngine.h"
#include "engine/ProductKind.h"
#include "engine/Registry.h"
#include "engine/SystemVersion.h"
#include "install/BrowserRefresh.h"
#include "install/FileProtection.h"

namespace {

// The null list stands for "no engine", which only a failed allocation leaves.
MStringList* ListOf(InstallEngine* engine, MStringList InstallEngine::*list) {
  return engine == nullptr ? nullptr : &(engine->*list);
}

bool AddTo(InstallEngine* engine, MStringList InstallEngine::*list, const MString& name) {
  return engine != nullptr && (engine->*list).Add(name);
}

}  // namespace

LumenBrokerShim::LumenBrokerShim(HostCallbacks* hostCallbacks) : host(hostCallbacks) {}

LumenBrokerShim::~LumenBrokerShim() {
  delete engine;
}

void LumenBrokerShim::Destroy(uint32_t flag) noexcept {
  this->~LumenBrokerShim();
  if ((flag & 1) != 0) ::operator delete(this);
}

MString* LumenBrokerShim::LoadString(MString* out, uint32_t id, uint8_t useHost) noexcept {
  const wchar_t* text = nullptr;
  // With no buffer the platform lends the resource itself, which need not be terminated.
  const int length = LoadStringW(host->resourceModule, id, reinterpret_cast<wchar_t*>(&text), 0);
  if (length > 0) {
    *out = MString(text, length);
  } else if (useHost != 0) {
    host->LoadStringFallback(out, id, 0);
  } else {
    *out = MString(L"MISSING LOCALIZATION");
  }
  return out;
}

bool LumenBrokerShim::IsUacEnabled() noexcept {
  if (!IsVistaOrLater()) return false;
  const auto enabled =
      ReadNumber(HKEY_LOCAL_MACHINE, "SOFTWARE\\Microsoft\\Windows\\CurrentVersion\\Policies\\System", "EnableLUA");
  return static_cast<int32_t>(enabled.value_or(0)) > 0;
}

bool LumenBrokerShim::RegisterBrokerServer(MString path, uint32_t kind) noexcept {
  if (kind != product_kind::ActiveX) return true;
  WriteBrokerRegistration(path.Narrow().get(), true);
  ProtectFile(path, true);
  AskBrowsersToRefresh(host);
  return true;
}

uint32_t LumenBrokerShim::RunBroker() noexcept {
  return RunBrokerServer(host);
}

InstallEngine* LumenBrokerShim::GetEngine() noexcept {
  return engine;
}

MStringList* LumenBrokerShim::GetAXFilenames() noexcept {
  return ListOf(engine, &InstallEngine::filenamesAX);
}
MStringList* LumenBrokerShim::GetPluginFilenames() noexcept {
  return ListOf(engine, &InstallEngine::filenamesPlugin);
}
MStringList* LumenBrokerShim::GetPluginDirectories() noexcept {
  return ListOf(engine, &InstallEngine::pluginDirectories);
}
MStringList* LumenBrokerShim::GetAXFilenamePatterns() noexcept {
  return ListOf(engine, &InstallEngine::axPatterns);
}
MStringList* LumenBrokerShim::GetPluginFilenamePatterns() noexcept {
  return ListOf(engine, &InstallEngine::pluginPatterns);
}
MStringList* LumenBrokerShim::GetPepperFilenamePatterns() noexcept {
  return ListOf(engine, &InstallEngine::pepperPatterns);
}
MStringList* LumenBrokerShim::GetProductManagerPatterns() noexcept {
  return ListOf(engine, &InstallEngine::productManagerPatterns);
}
MStringList* LumenBrokerShim::GetProductManagerEntries() noexcept {
  return ListOf(engine, &InstallEngine::productManagerEntries);
}

MStringList* LumenBrokerShim::GetExtraActiveXFiles() noexcept {
  return ListOf(engine, &InstallEngine::extraActiveXFiles);
}
MStringList* LumenBrokerShim::GetExtraPluginFiles() noexcept {
  return ListOf(engine, &InstallEngine::extraPluginFiles);
}
MStringList* LumenBrokerShim::GetExtraPepperFiles() noexcept {
  return ListOf(engine, &InstallEngine::extraPepperFiles);
}

bool LumenBrokerShim::AddExtraActiveXFile(MString name) noexcept {
  return AddTo(engine, &InstallEngine::extraActiveXFiles, name);
}
bool LumenBrokerShim::AddExtraPluginFile(MString name) noexcept {
  return AddTo(engine, &InstallEngine::extraPluginFiles, name);
}
bool LumenBrokerShim::AddExtraPepperFile(MString name) noexcept {
  return AddTo(engine, &InstallEngine::extraPepperFiles, name);
}

bool LumenBrokerShim::LoadEngineLists() noexcept {
  return engine != nullptr && engine->LoadEngineLists();
}

uint8_t LumenBrokerShim::WasRegistrationReached() noexcept {
  return registrationReached;
}
