#pragma once
class LumenBrokerShim;
class InstallEngine {
 public:
  explicit InstallEngine(LumenBrokerShim* owner) : shim(owner) {}
  LumenBrokerShim* shim;
};
