#include "host/HostedModule.h"

#include <string>

namespace {

using StartFunction = LumenBrokerShim*(HostCallbacks*);

constexpr wchar_t kDefaultModule[] = L"LumenUtil.dll";

// A vendor's copy has a name of its own and a module of the same name beside it. A module that is there but cannot be
// loaded is a failure, never a reason to load another.
WideString ModulePath(const WideString& ownPath) {
  WideString named = ownPath.substr(0, ownPath.rfind(L'.')) + L".dll";
  if (GetFileAttributesW(named.c_str()) != INVALID_FILE_ATTRIBUTES) return named;
  return ownPath.substr(0, ownPath.rfind(L'\\') + 1) + kDefaultModule;
}

}  // namespace

HostedModule::HostedModule(const WideString& ownPath, HostCallbacks* host) : host_(host), path_(ModulePath(ownPath)) {
  // A setup program runs from download folders: what the module imports comes from the system directory alone.
  library_.Reset(LoadLibraryExW(path_.c_str(), nullptr, LOAD_LIBRARY_SEARCH_SYSTEM32));
  if (!library_) {
    error_ = ToUtf8(path_) + " cannot be loaded (system error " + std::to_string(GetLastError()) + ")";
    return;
  }
  auto* const start =
      reinterpret_cast<StartFunction*>(reinterpret_cast<void*>(GetProcAddress(library_.Get(), "Start")));
  if (start == nullptr) {
    error_ = ToUtf8(path_) + " is not such a module: it has no Start";
    return;
  }
  host_->resourceModule = library_.Get();
  host_->shim = start(host_);
  if (host_->shim == nullptr) error_ = ToUtf8(path_) + " did not start: out of memory";
}

HostedModule::~HostedModule() {
  if (host_->shim != nullptr) host_->shim->Destroy(1);
  host_->shim = nullptr;
  host_->resourceModule = nullptr;
}
