#include "install/ControlRegistration.h"

#include <windows.h>

#include "engine/Handles.h"
#include "engine/LumenBrokerShim.h"
#include "engine/Reporting.h"
#include "install/ClassKeys.h"

namespace {

using EntryPoint = HRESULT WINAPI();

EntryPoint* FindEntryPoint(const LibraryHandle& library, const char* name) {
  return reinterpret_cast<EntryPoint*>(reinterpret_cast<void*>(GetProcAddress(library.Get(), name)));
}

void ReportWith(LumenBrokerShim* shim, Severity severity, ReportCode code, const MString& path, uint32_t error) {
  Report(shim->host, severity, code, PathAndError(path, error));
}

}  // namespace

bool RegisterControl(LumenBrokerShim* shim, const MString& path) {
  const LibraryHandle library(LoadLibraryW(path.Data()));
  if (!library) {
    ReportWith(shim, Severity::MustTell, ReportCode::ControlNotLoaded, path, GetLastError());
    return false;
  }
  EntryPoint* const registerServer = FindEntryPoint(library, "DllRegisterServer");
  if (registerServer == nullptr) {
    ReportWith(shim, Severity::MustTell, ReportCode::RegisterServerMissing, path, GetLastError());
    return false;
  }
  HRESULT answer = registerServer();
  if (SUCCEEDED(answer)) return true;
  // Class keys that the account may not write are the usual cause, and stopping the players repairs them.
  ReportWith(shim, Severity::Survived, ReportCode::RegisterServerFailed, path, static_cast<uint32_t>(answer));
  shim->StopPlayers();
  answer = registerServer();
  if (SUCCEEDED(answer)) return true;
  ReportWith(shim, Severity::MustTell, ReportCode::RegisterServerFailed, path, static_cast<uint32_t>(answer));
  return false;
}

bool UnregisterControl(const MString& path) {
  if (const LibraryHandle library(LoadLibraryW(path.Data())); library) {
    EntryPoint* const unregisterServer = FindEntryPoint(library, "DllUnregisterServer");
    if (unregisterServer != nullptr) unregisterServer();
  }
  DeleteClassKeys(ClassKeySelection::Control);
  return true;
}
