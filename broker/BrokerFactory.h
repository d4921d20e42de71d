// The broker's class object. One exists while the server runs; it makes a broker object for each client and counts
// them.
#pragma once

#include <windows.h>

#include <unknwn.h>

#include <atomic>
#include <cstdint>

class HostCallbacks;

class BrokerFactory final : public IClassFactory {
 public:
  explicit BrokerFactory(HostCallbacks* hostCallbacks) : host(hostCallbacks) {}

  HRESULT STDMETHODCALLTYPE QueryInterface(REFIID iid, void** out) override;
  ULONG STDMETHODCALLTYPE AddRef() override;
  ULONG STDMETHODCALLTYPE Release() override;
  // An unknown interface makes an object and destroys it again, which may end the server like any other last release.
  HRESULT STDMETHODCALLTYPE CreateInstance(IUnknown* outer, REFIID iid, void** out) override;
  // Only counts: taking the last lock away leaves the server running until an object is next released.
  HRESULT STDMETHODCALLTYPE LockServer(BOOL lock) override;

  // A broker object has come (+1) or gone (-1).
  void CountObject(int32_t change) { objectCount += change; }
  // No object and no lock.
  [[nodiscard]] bool CanUnload() const { return objectCount == 0 && lockCount == 0; }

 private:
  virtual ~BrokerFactory() = default;

  std::atomic<int32_t> refCount{1};
  std::atomic<int32_t> lockCount{0};
  std::atomic<int32_t> objectCount{0};
  HostCallbacks* host;  // not owned
};
