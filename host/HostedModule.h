// The module, loaded and started for one host, and ended in the right order.
#pragma once

#include "engine/Handles.h"
#include "engine/HostCallbacks.h"
#include "engine/LumenBrokerShim.h"
#include "engine/WideText.h"

class HostedModule {
 public:
  // Loads the module that belongs to the program at `ownPath`: <its name>.dll beside it when there is such a file, else
  // LumenUtil.dll beside it. Sets the host's two data fields. `host` must outlive this object.
  HostedModule(const WideString& ownPath, HostCallbacks* host);
  // Ends the shim, then lets the module go.
  ~HostedModule();
  HostedModule(const HostedModule&) = delete;
  HostedModule& operator=(const HostedModule&) = delete;

  // False when the module could not be loaded or gave no shim; Error() then says why.
  explicit operator bool() const { return host_->shim != nullptr; }
  LumenBrokerShim* operator->() const { return host_->shim; }
  [[nodiscard]] const std::string& Error() const { return error_; }
  [[nodiscard]] const WideString& Path() const { return path_; }

 private:
  HostCallbacks* host_;
  WideString path_;
  LibraryHandle library_;
  std::string error_;
};
